# The target docs: the reference manual of the public headers, in reference/html of the build directory.
# Anything undocumented is an error.
find_program(VARN3D_DOXYGEN doxygen)
mark_as_advanced(VARN3D_DOXYGEN)
if(VARN3D_DOXYGEN)
  list(JOIN VARN3D_PUBLIC_HEADERS " " documentedFiles)
  configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
  add_custom_target(
    docs
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/reference
    COMMAND ${VARN3D_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    VERBATIM)
endif()
