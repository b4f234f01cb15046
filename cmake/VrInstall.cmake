# What `cmake --install` puts where. Libraries, headers, CMake package and pkg-config files for those who link; the tool with
# its manual page, completions and schemas; the languages for those who ship an installation.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VrUInfo")
set(companion_dir "${CMAKE_INSTALL_LIBDIR}/vruinfo")

install(TARGETS VrOsBase VrPlatformBase VrUInfo EXPORT VrUInfoTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT libraries)
# Loaded or run by the libraries, never linked to.
install(TARGETS VrUInfoIcons VrMessageBoxUi LIBRARY DESTINATION "${companion_dir}" COMPONENT libraries)
install(TARGETS VrMessageBox RUNTIME DESTINATION "${companion_dir}" COMPONENT libraries)
get_property(languages GLOBAL PROPERTY VRUINFO_LANGUAGES)
foreach(language IN LISTS languages)
    install(TARGETS VrUInfoRes_${language}
        LIBRARY DESTINATION "${companion_dir}/languages/${language}" COMPONENT libraries)
endforeach()

install(DIRECTORY include/VrUInfo include/VrOsBase include/VrPlatformBase
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development FILES_MATCHING PATTERN "*.h")
install(EXPORT VrUInfoTargets NAMESPACE VrUInfo:: DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file(cmake/VrUInfoConfig.cmake.in VrUInfoConfig.cmake INSTALL_DESTINATION "${package_dir}"
    PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(VrUInfoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
        "${CMAKE_CURRENT_BINARY_DIR}/VrUInfoConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/VrUInfoConfigVersion.cmake"
        cmake/VrAddResourceLibrary.cmake cmake/VrResourceStrings.cmake cmake/VrResourceIcon.qrc.in
        cmake/VrResourceLibrary.map
    DESTINATION "${package_dir}" COMPONENT development)

# What there is to read, with the hosts to begin from.
install(FILES README.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development FILES_MATCHING PATTERN "*.md")
install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)

# A pkg-config file finds its way from its own place, so that a prefix may be moved.
file(RELATIVE_PATH prefix_from_pc
    "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
foreach(library IN ITEMS vruinfo vrosbase vrplatformbase)
    configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${library}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endforeach()

if(TARGET vruinfo)
    install(TARGETS vruinfo RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tool)
    set(tool_dir "${CMAKE_BINARY_DIR}/tools/vruinfo")
    install(FILES "${tool_dir}/vruinfo.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tool)
    install(FILES "${tool_dir}/vruinfo.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        RENAME vruinfo COMPONENT tool)
    install(FILES "${tool_dir}/_vruinfo" DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" COMPONENT tool)
    install(DIRECTORY tools/vruinfo/schemas DESTINATION "${CMAKE_INSTALL_DATADIR}/vruinfo" COMPONENT tool)
endif()
