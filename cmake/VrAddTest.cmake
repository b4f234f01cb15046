# vr_add_test(<name> [PLAIN] [OPTIMIZED] SOURCES <files...> [LIBRARIES <targets...>])
#
# A GoogleTest program. Each of its cases becomes one CTest case, run in a process of its own. Unless PLAIN is given,
# the program stages a fresh installation around itself for each case (see tests/support/installed_main.cpp). With
# OPTIMIZED it is compiled as its users compile: for code that stands in headers.
include(GoogleTest)

# A test is compiled for a run of a moment: what is optimised, and watched by the fuzzer, is the library that it tests.
function(vr_compile_quickly target)
    if(VRUINFO_SANITIZE MATCHES "fuzzer-no-link")
        target_compile_options(${target} PRIVATE -fno-sanitize=fuzzer-no-link)
    elseif(NOT VRUINFO_SANITIZE)
        target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-O0;-g1;-U_FORTIFY_SOURCE>)
    endif()
endfunction()

function(vr_add_test name)
    cmake_parse_arguments(arg "PLAIN;OPTIMIZED" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    vr_target_defaults(${name})
    if(NOT arg_OPTIMIZED)
        vr_compile_quickly(${name})
    endif()
    if(arg_PLAIN)
        target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gtest_main)
    else()
        target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} VrTestSupport)
    endif()
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    # A home of its own keeps the real one out of reach even when a test forgets to set one.
    gtest_discover_tests(${name}
        DISCOVERY_TIMEOUT 120
        PROPERTIES TIMEOUT 300 ENVIRONMENT "HOME=${CMAKE_BINARY_DIR}/nohome")
endfunction()
