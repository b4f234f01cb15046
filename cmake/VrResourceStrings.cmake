# cmake -P VrResourceStrings.cmake <output.cpp> <strings.txt>...
#
# Turns text files of ids and texts into the C++ source of a string table. The syntax of the files is described in
# VrAddResourceLibrary.cmake. Every fault is told as "<file>:<line>: error: <what>" on standard error; with any fault
# the exit code is not 0 and the output is not written.
#
# Everything works on the bytes as hexadecimal pairs ("41 c3 a4 "), never on the texts themselves, so that semicolons,
# brackets, quotes and backslashes mean nothing to CMake's lists and regular expressions. The texts leave as arrays of
# code points, so that they mean nothing to the C++ compiler either.
cmake_minimum_required(VERSION 3.19)

set(kHex "[0-9a-f]")
set(kBlanks "((20|09) )+")
set(kNext "[89ab]${kHex} ") # a continuation byte
# Exactly the well-formed sequences: nothing overlong, no surrogates, nothing above U+10FFFF.
set(kTwoBytes "c[2-9a-f] ${kNext}|d${kHex} ${kNext}")
set(kThreeBytes "e0 [ab]${kHex} ${kNext}|e[1-9abcef] ${kNext}${kNext}|ed [89]${kHex} ${kNext}")
set(kFourBytes "f0 [9ab]${kHex} ${kNext}${kNext}|f[123] ${kNext}${kNext}${kNext}|f4 8${kHex} ${kNext}${kNext}")
set(kUtf8 "[0-7]${kHex} |${kTwoBytes}|${kThreeBytes}|${kFourBytes}")
set(kLineLimit 8191) # bytes; also keeps the recursion of the regular expressions small
set(kControl "(0[0-8b-f]|1${kHex}|7f) ")
set(kNumberEscape "5c 78 ((3[0-9]|[46][1-6]) )+3b ")
set(kPlain "([0-46-7]${kHex} |5[0-9abdef] )+") # a run of ASCII without a backslash
set(kToken "${kPlain}|${kNumberEscape}|5c ${kHex}${kHex} |5c |${kUtf8}")

# The readers below are macros over this state and over the current `file` and `line_number`.
set(errors 0)
set(ids "")

# Tells one fault at the current place.
function(vr_error text)
    message(NOTICE "${file}:${line_number}: error: ${text}")
    math(EXPR count "${errors} + 1")
    set(errors ${count} PARENT_SCOPE)
endfunction()

# Hexadecimal pairs of ASCII characters -> the characters (letters and digits only).
function(vr_ascii out pairs)
    set(text "")
    string(REGEX MATCHALL "${kHex}${kHex}" pairs "${pairs}")
    foreach(pair IN LISTS pairs)
        math(EXPR code "0x${pair}")
        string(ASCII ${code} char)
        string(APPEND text "${char}")
    endforeach()
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

# The pairs of one UTF-8 sequence of several bytes -> its code point, with a comma behind it.
function(vr_code_point out pairs)
    string(REGEX MATCHALL "${kHex}${kHex}" bytes "${pairs}")
    list(POP_FRONT bytes lead)
    list(LENGTH bytes following)
    math(EXPR code "0x${lead} & (0x3f >> ${following})")
    foreach(byte IN LISTS bytes)
        math(EXPR code "(${code} << 6) | (0x${byte} & 0x3f)")
    endforeach()
    set(${out} "${code}, " PARENT_SCOPE)
endfunction()

# The pairs of one escape -> its code point with a comma behind it, or "bad".
function(vr_escape out pairs)
    set(code bad)
    if(pairs STREQUAL "5c 6e ")
        set(code "10, ")
    elseif(pairs STREQUAL "5c 72 ")
        set(code "13, ")
    elseif(pairs STREQUAL "5c 73 ")
        set(code "32, ")
    elseif(pairs STREQUAL "5c 74 ")
        set(code "9, ")
    elseif(pairs STREQUAL "5c 5c ")
        set(code "92, ")
    elseif(pairs MATCHES "^5c 78 (.+)3b $")
        vr_ascii(digits "${CMAKE_MATCH_1}")
        vr_escaped_number(code "${digits}")
    endif()
    set(${out} "${code}" PARENT_SCOPE)
endfunction()

# The digits of a number escape -> the code point with a comma behind it, or "bad" for what is no character.
function(vr_escaped_number out digits)
    set(${out} bad PARENT_SCOPE)
    string(LENGTH "${digits}" length)
    if(length GREATER 6)
        return()
    endif()
    math(EXPR code "0x${digits}")
    if(code EQUAL 0 OR code GREATER 1114111 OR (code GREATER 55295 AND code LESS 57344))
        return()
    endif()
    set(${out} "${code}, " PARENT_SCOPE)
endfunction()

# The pairs of a text -> its code points, each with a comma behind it, or "bad" for a bad escape.
function(vr_code_points out pairs)
    set(codes "")
    string(REGEX MATCHALL "${kToken}" tokens "${pairs}")
    foreach(token IN LISTS tokens)
        if(token MATCHES "^${kPlain}$")
            string(REGEX REPLACE "(${kHex}${kHex}) " "0x\\1, " code "${token}")
        elseif(token MATCHES "^5c ")
            vr_escape(code "${token}")
        else()
            vr_code_point(code "${token}")
        endif()
        if(code STREQUAL "bad")
            set(${out} bad PARENT_SCOPE)
            return()
        endif()
        string(APPEND codes "${code}")
    endforeach()
    set(${out} "${codes}" PARENT_SCOPE)
endfunction()

# Takes `id` and `rest`, the pairs of its text, into the table.
macro(vr_add_text)
    vr_code_points(codes "${rest}")
    string(LENGTH "${id}" id_length)
    if(id_length GREATER 5 OR id LESS 1 OR id GREATER 65535)
        vr_error("id ${id} is outside 1 to 65535")
    elseif(DEFINED place_${id})
        vr_error("id ${id} stands twice; first at ${place_${id}}")
    elseif(codes STREQUAL "bad")
        vr_error("bad escape; there are \\n \\r \\t \\s \\\\ and \\xH...; with 1 to 6 digits of a character's number")
    else()
        list(APPEND ids ${id})
        set(place_${id} "${file}:${line_number}")
        set(text_${id} "${codes}")
    endif()
endmacro()

# Reads `line`, which is neither blank nor a comment, into `id` and `rest`.
macro(vr_read_entry)
    string(REGEX MATCH "^(3[0-9] )+" digits "${line}")
    string(REGEX REPLACE "^(3[0-9] )+" "" rest "${line}")
    if(digits STREQUAL "")
        vr_error("malformed line; expected an id, a blank and a text")
    elseif(rest STREQUAL "")
        vr_error("id without a text")
    elseif(NOT rest MATCHES "^(20|09) ")
        vr_error("malformed line; expected a blank behind the id")
    else()
        vr_ascii(id "${digits}")
        string(REGEX REPLACE "^0+(.)" "\\1" id "${id}")
        string(REGEX REPLACE "^${kBlanks}" "" rest "${rest}")
        vr_add_text()
    endif()
endmacro()

# Reads one `line`.
macro(vr_read_line)
    string(LENGTH "${line}" line_length)
    math(EXPR line_length "${line_length} / 3")
    if(line_length GREATER kLineLimit)
        vr_error("more than ${kLineLimit} bytes in a line")
    else()
        vr_read_short_line()
    endif()
endmacro()

# Reads one `line` of bearable length.
macro(vr_read_short_line)
    string(REGEX REPLACE "0d $" "" line "${line}")
    string(REGEX REPLACE "^${kBlanks}" "" line "${line}")
    string(REGEX REPLACE "${kBlanks}$" "" line "${line}")
    string(REGEX REPLACE "${kUtf8}" "" invalid "${line}")
    if(NOT invalid STREQUAL "")
        vr_error("not valid UTF-8")
    elseif(line MATCHES "${kControl}")
        vr_error("a control character; write it as an escape")
    elseif(NOT line STREQUAL "" AND NOT line MATCHES "^23 ")
        math(EXPR entries "${entries} + 1")
        vr_read_entry()
    endif()
endmacro()

# Reads one `file`.
macro(vr_read_file)
    file(READ "${file}" pairs HEX)
    string(REGEX REPLACE "(${kHex}${kHex})" "\\1 " pairs "${pairs}")
    string(REGEX REPLACE "^ef bb bf " "" pairs "${pairs}")
    string(REPLACE "0a " ";" lines "${pairs}")
    set(line_number 0)
    set(entries 0)
    set(errors_before ${errors})
    foreach(line IN LISTS lines)
        math(EXPR line_number "${line_number} + 1")
        vr_read_line()
    endforeach()
    if(entries EQUAL 0 AND errors EQUAL errors_before)
        set(line_number 1)
        vr_error("no text in this file")
    endif()
endmacro()

function(vr_write_source path)
    list(SORT ids COMPARE NATURAL)
    list(LENGTH ids count)
    set(texts "")
    set(rows "")
    foreach(id IN LISTS ids)
        string(APPEND texts "const wchar_t kText${id}[] = {${text_${id}}0};\n")
        string(APPEND rows "    {${id}, kText${id}},\n")
    endforeach()
    file(WRITE "${path}"
"// Generated from text files by VrResourceStrings.cmake; changes here are lost.
#include <cstdint>

struct VrResourceString {
    std::uint32_t id;
    const wchar_t* text;
};

extern \"C\" {
extern __attribute__((visibility(\"default\"))) const VrResourceString VrResourceStrings[${count}];
extern __attribute__((visibility(\"default\"))) const std::uint32_t VrResourceStringCount;
}

namespace {
${texts}} // namespace

const VrResourceString VrResourceStrings[${count}] = {
${rows}};
const std::uint32_t VrResourceStringCount = ${count};
")
endfunction()

if(CMAKE_ARGC LESS 5)
    message(FATAL_ERROR "usage: cmake -P VrResourceStrings.cmake <output.cpp> <strings.txt>...")
endif()
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(index RANGE 4 ${last})
    set(file "${CMAKE_ARGV${index}}")
    if(EXISTS "${file}" AND NOT IS_DIRECTORY "${file}")
        vr_read_file()
    else()
        set(line_number 1)
        vr_error("no such file")
    endif()
endforeach()
if(errors GREATER 0)
    message(FATAL_ERROR "${errors} error(s) in the texts of a resource library")
endif()
vr_write_source("${CMAKE_ARGV3}")
