# vr_add_resource_library(<target>
#     NAME <base name>            base name of the library's file: VrUInfoRes, or VrCustomRes for a partner brand
#     STRINGS <file>...           text files with the texts, see below
#     [ICON <picture>]            the application icon, in any format that Qt reads
#     [PREFIX <prefix>]           where the icon stands in Qt's resources; default "<NAME>/<NAME>"
#     [OUTPUT_DIRECTORY <dir>]    where the library is written; default the current binary directory
#     [LIB_PREFIX lib|none])      whether the file name begins with "lib"; default lib
#
# Builds a resource library: a module that is loaded at run time and never linked to. It exports the two symbols
# `VrResourceStrings` (rows of id and text, ascending) and `VrResourceStringCount`, and nothing else. Loading it
# registers the icon as `:/<prefix>/IDI_VORNA_OEM_APPLICATION_EXE`. With an icon it needs Qt5 Core, without one nothing.
# CMake writes the source of the table when it builds, so no tool beside CMake, Qt and a compiler is needed.
#
# A text file is UTF-8 with or without a byte-order mark, LF or CRLF, and holds one text a line (of 8191 bytes at most):
#
#     # A line that begins with "#" is a comment, a blank line is nothing.
#     4092  Kestrel Draft
#     5001  First line\nsecond line
#
#  1. The id is a decimal number from 1 to 65535, each once in all files of the library together.
#  2. Blanks and tabs before the id, between id and text and behind the text go. Those inside the text stay.
#  3. `\n` newline, `\r` carriage return, `\t` tab, `\s` blank (one that stays at an end of the text), `\\` backslash,
#     `\xH...;` the character with that hexadecimal number (1 to 6 digits). No other escape, and no text is empty.
#     Nothing else has a meaning: quotes, brackets, semicolons and a "#" behind the id are text.
#
# A file that breaks this ends the build with a line "<file>:<line>: error: <what>" for each fault.
include_guard(GLOBAL)

function(vr_add_resource_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;ICON;PREFIX;OUTPUT_DIRECTORY;LIB_PREFIX" "STRINGS")
    _vr_resource_check_arguments()
    _vr_resource_strings_source(source)
    add_library(${target} MODULE "${source}")
    target_compile_features(${target} PRIVATE cxx_std_11)
    if(arg_ICON)
        _vr_resource_add_icon()
    endif()
    _vr_resource_target_properties()
endfunction()

# The helpers below are macros over the arguments of vr_add_resource_library().

macro(_vr_resource_check_arguments)
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "vr_add_resource_library(${target}): unknown arguments ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_NAME OR NOT arg_STRINGS)
        message(FATAL_ERROR "vr_add_resource_library(${target}): NAME and STRINGS are needed")
    endif()
    if(NOT DEFINED arg_LIB_PREFIX)
        set(arg_LIB_PREFIX lib)
    elseif(NOT arg_LIB_PREFIX MATCHES "^(lib|none)$")
        message(FATAL_ERROR "vr_add_resource_library(${target}): LIB_PREFIX is lib or none, not ${arg_LIB_PREFIX}")
    endif()
    if(NOT arg_PREFIX)
        set(arg_PREFIX "${arg_NAME}/${arg_NAME}")
    endif()
    if(NOT arg_OUTPUT_DIRECTORY)
        set(arg_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}")
    endif()
endmacro()

macro(_vr_resource_strings_source out)
    set(files "")
    foreach(file IN LISTS arg_STRINGS)
        get_filename_component(file "${file}" ABSOLUTE)
        list(APPEND files "${file}")
    endforeach()
    set(${out} "${CMAKE_CURRENT_BINARY_DIR}/${target}_strings.cpp")
    add_custom_command(
        OUTPUT "${${out}}"
        COMMAND "${CMAKE_COMMAND}" -P "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/VrResourceStrings.cmake" "${${out}}" ${files}
        DEPENDS ${files} "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/VrResourceStrings.cmake"
        COMMENT "Generating the texts of ${target}"
        VERBATIM)
endmacro()

macro(_vr_resource_add_icon)
    get_filename_component(picture "${arg_ICON}" ABSOLUTE)
    if(NOT EXISTS "${picture}")
        message(FATAL_ERROR "vr_add_resource_library(${target}): no icon ${picture}")
    endif()
    if(NOT TARGET Qt5::Core OR NOT TARGET Qt5::rcc)
        find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
    endif()
    set(icon_qrc "${CMAKE_CURRENT_BINARY_DIR}/${target}_icon.qrc")
    string(REGEX REPLACE "^/+" "" icon_prefix "${arg_PREFIX}")
    string(REPLACE "&" "&amp;" icon_file "${picture}")
    string(REPLACE "<" "&lt;" icon_file "${icon_file}")
    configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/VrResourceIcon.qrc.in" "${icon_qrc}" @ONLY)
    # Not qt5_add_resources(), which needs variables that only the scope of find_package() has. A picture is compressed
    # already, so the bytes stand in the library as they are in the file.
    set(icon_source "${CMAKE_CURRENT_BINARY_DIR}/${target}_icon.cpp")
    add_custom_command(
        OUTPUT "${icon_source}"
        COMMAND Qt5::rcc --no-compress --name "${target}_icon" --output "${icon_source}" "${icon_qrc}"
        DEPENDS "${picture}" "${icon_qrc}"
        COMMENT "Generating the icon of ${target}"
        VERBATIM)
    target_sources(${target} PRIVATE "${icon_source}")
    target_link_libraries(${target} PRIVATE Qt5::Core)
endmacro()

macro(_vr_resource_target_properties)
    set(file_prefix "")
    if(arg_LIB_PREFIX STREQUAL "lib")
        set(file_prefix lib)
    endif()
    get_filename_component(arg_OUTPUT_DIRECTORY "${arg_OUTPUT_DIRECTORY}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")
    set(version_script "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/VrResourceLibrary.map")
    # The generator expression keeps generators with several configurations from adding a folder of their own.
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME "${arg_NAME}"
        PREFIX "${file_prefix}"
        SUFFIX ".so"
        DEBUG_POSTFIX ""
        LIBRARY_OUTPUT_DIRECTORY "$<1:${arg_OUTPUT_DIRECTORY}>"
        CXX_VISIBILITY_PRESET hidden
        POSITION_INDEPENDENT_CODE ON
        AUTOMOC OFF
        AUTOUIC OFF
        AUTORCC OFF
        LINK_DEPENDS "${version_script}")
    # Data with one initialiser: neither exceptions nor segments of their own for code, so that loading it is quick.
    target_compile_options(${target} PRIVATE -fno-exceptions)
    target_link_options(${target} PRIVATE
        "LINKER:--version-script=${version_script}" LINKER:--as-needed LINKER:-z,noseparate-code
        LINKER:-z,relro,-z,now,-z,noexecstack)
endmacro()
