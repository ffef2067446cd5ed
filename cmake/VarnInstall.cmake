# What is installed: the library, its public headers, and what CMake and pkg-config need to find it.
# A static and a shared build may be installed into the same prefix; each brings its own targets
# file, and the package's configuration chooses between them.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

if(BUILD_SHARED_LIBS)
  set(linkage shared)
else()
  set(linkage static)
endif()
set(packageDirectory ${CMAKE_INSTALL_LIBDIR}/cmake/Varn3D)

install(
  TARGETS varn3d_library
  EXPORT Varn3D-${linkage}-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(header IN LISTS VARN3D_PUBLIC_HEADERS)
  install(FILES ${PROJECT_SOURCE_DIR}/${header}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dt3Library)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/varn3d
        RENAME copyright)

install(EXPORT Varn3D-${linkage}-targets NAMESPACE Varn3D:: DESTINATION ${packageDirectory})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/Varn3DConfig.cmake.in ${PROJECT_BINARY_DIR}/Varn3DConfig.cmake
  INSTALL_DESTINATION ${packageDirectory}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/Varn3DConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/Varn3DConfig.cmake
              ${PROJECT_BINARY_DIR}/Varn3DConfigVersion.cmake DESTINATION ${packageDirectory})

# The prefix in varn3d.pc is relative to the file, so that an installation may be moved.
file(RELATIVE_PATH prefixFromPc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" prefixFromPc ${prefixFromPc})
configure_file(${PROJECT_SOURCE_DIR}/cmake/varn3d.pc.in ${PROJECT_BINARY_DIR}/varn3d.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/varn3d.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET varn3d AND BUILD_SHARED_LIBS AND NOT APPLE)
  file(RELATIVE_PATH librariesFromPrograms /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(varn3d PROPERTIES INSTALL_RPATH "$ORIGIN/${librariesFromPrograms}")
endif()

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR DEB TGZ)
  set(CPACK_PACKAGE_NAME varn3d)
  set(CPACK_PACKAGE_VENDOR "the Varn3D project")
  set(CPACK_PACKAGE_CONTACT "the Varn3D project <varn3d@example.org>")
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
  set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
  set(CPACK_VERBATIM_VARIABLES ON)
  set(CPACK_STRIP_FILES ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  include(CPack)
endif()
