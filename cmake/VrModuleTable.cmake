# Turns a list of module base names, one a line, into the rows of a C++ array of wide texts.
#
#   cmake -DINPUT=<text file> -DOUTPUT=<file> -DCOUNT=<number> -P VrModuleTable.cmake
#
# Refuses a list of another length, a name that does not begin with "Vr" or is no plain name, and one that stands twice.
cmake_minimum_required(VERSION 3.25)

file(STRINGS "${INPUT}" names ENCODING UTF-8)
list(LENGTH names length)
if(NOT length EQUAL COUNT)
    message(FATAL_ERROR "${INPUT} has ${length} names; there must be ${COUNT}")
endif()

set(rows "")
set(seen "")
foreach(name IN LISTS names)
    if(NOT name MATCHES "^Vr[A-Za-z0-9]+$")
        message(FATAL_ERROR "${INPUT}: '${name}' is no module name: \"Vr\" and letters or digits")
    endif()
    string(TOLOWER "${name}" folded)
    if(folded IN_LIST seen)
        message(FATAL_ERROR "${INPUT}: '${name}' stands there twice (case does not count)")
    endif()
    list(APPEND seen "${folded}")
    string(APPEND rows "L\"${name}\",\n")
endforeach()
file(WRITE "${OUTPUT}" "${rows}")
