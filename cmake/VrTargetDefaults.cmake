# Jumps and returns that the processor checks, where it and the compiler have it.
include(CheckCXXCompilerFlag)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    check_cxx_compiler_flag(-fcf-protection VRUINFO_HAS_CHECKED_JUMPS)
endif()
set(VRUINFO_CHECKED_JUMPS $<$<BOOL:${VRUINFO_HAS_CHECKED_JUMPS}>:-fcf-protection>)

# vr_target_defaults(<target>): the compiler settings that all of our own targets share.
function(vr_target_defaults target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
        $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion> # as gcc has it
        $<$<BOOL:${VRUINFO_WARNINGS_AS_ERRORS}>:-Werror>)
    if(VRUINFO_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${VRUINFO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${VRUINFO_SANITIZE})
        # clang's sanitizers tell of themselves as gcc's do.
        if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND VRUINFO_SANITIZE MATCHES "thread|address")
            string(TOUPPER "__SANITIZE_${CMAKE_MATCH_0}__" told)
            target_compile_definitions(${target} PRIVATE "${told}=1")
        endif()
    else()
        # tests/security/check_hardening looks for what comes of these. A read costs 12 instructions of 4000 more with the
        # last two.
        target_compile_options(${target} PRIVATE
            -fstack-protector-strong $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>
            -fstack-clash-protection ${VRUINFO_CHECKED_JUMPS})
    endif()
    # clang's sanitizers stand in the programs alone: its libraries are not whole before they are loaded.
    if(NOT (VRUINFO_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang"))
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now,-z,noexecstack)
endfunction()
