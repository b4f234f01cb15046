# The target `docs`: the reference as HTML, made by Doxygen of the public headers and the pages of docs/. A warning is an
# error.
find_program(VRUINFO_DOXYGEN doxygen REQUIRED)
find_program(VRUINFO_DOT dot REQUIRED)
set(docs_dir "${CMAKE_BINARY_DIR}/docs")
file(WRITE "${CMAKE_BINARY_DIR}/Doxyfile"
    "@INCLUDE = ${CMAKE_CURRENT_SOURCE_DIR}/Doxyfile\nPROJECT_NUMBER = ${PROJECT_VERSION}\nOUTPUT_DIRECTORY = ${docs_dir}\n")
file(GLOB_RECURSE doc_sources CONFIGURE_DEPENDS include/*.h docs/*.md docs/*.dox)
add_custom_command(OUTPUT "${docs_dir}/html/index.html"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${docs_dir}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${docs_dir}"
    COMMAND "${VRUINFO_DOXYGEN}" "${CMAKE_BINARY_DIR}/Doxyfile"
    DEPENDS ${doc_sources} README.md CHANGELOG.md CONTRIBUTING.md Doxyfile
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    COMMENT "Making the reference"
    VERBATIM)
add_custom_target(docs ALL DEPENDS "${docs_dir}/html/index.html")

if(VRUINFO_INSTALL)
    include(GNUInstallDirs)
    install(DIRECTORY "${docs_dir}/html" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
endif()
