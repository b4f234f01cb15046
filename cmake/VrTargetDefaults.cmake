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
        $<$<BOOL:${VRUINFO_WARNINGS_AS_ERRORS}>:-Werror>)
    if(VRUINFO_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${VRUINFO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${VRUINFO_SANITIZE})
    else()
        target_compile_options(${target} PRIVATE
            -fstack-protector-strong $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
    endif()
    target_link_options(${target} PRIVATE -Wl,--no-undefined -Wl,-z,relro,-z,now)
endfunction()
