# vr_add_test(<name> [PLAIN] SOURCES <files...> [LIBRARIES <targets...>])
#
# A GoogleTest program. Each of its cases becomes one CTest case, run in a process of its own. Unless PLAIN is given,
# the program stages a fresh installation around itself for each case (see tests/support/installed_main.cpp).
include(GoogleTest)

function(vr_add_test name)
    cmake_parse_arguments(arg "PLAIN" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    vr_target_defaults(${name})
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
