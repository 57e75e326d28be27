# What `cmake --install` puts where, the two ways to find it (CMake package, pkg-config) and the Debian packages.
# Components: runtime (the shared library), dev (header, static library, package files), tools (the program).
include(CMakePackageConfigHelpers)

install(TARGETS qorv_skia EXPORT qorv_skia
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(TARGETS qorv_skia_static EXPORT qorv_skia
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(FILES ${PROJECT_SOURCE_DIR}/include/qorv_skia.h ${PROJECT_SOURCE_DIR}/include/qorv_skia.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

install(EXPORT qorv_skia NAMESPACE qorv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qorv_skia FILE qorv_skia-targets.cmake COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qorv_skia-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/qorv_skia-config.cmake ${PROJECT_BINARY_DIR}/qorv_skia-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qorv_skia COMPONENT dev)

# Every path in the pkg-config file is relative to the file itself, so that the installed tree can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH QORV_PC_LIBDIR ${pkgconfig_dir} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH QORV_PC_INCLUDEDIR ${pkgconfig_dir} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(${PROJECT_SOURCE_DIR}/cmake/qorv_skia.pc.in ${PROJECT_BINARY_DIR}/qorv_skia.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qorv_skia.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(TARGET qorv)
  file(RELATIVE_PATH to_library ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(qorv PROPERTIES INSTALL_RPATH $ORIGIN/${to_library})
  install(TARGETS qorv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()

# Debian packages, made by `cpack` in the build folder of the preset "package".
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qorv-skia)
set(CPACK_PACKAGE_VENDOR "libqorv_skia developers")
set(CPACK_PACKAGE_CONTACT "libqorv_skia developers <developers@qorv-skia.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
if(QORV_AARCH64)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)  # cpack itself would name the building machine's
endif()
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libqorv-skia${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}: shared library")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libqorv-skia-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libqorv-skia${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEV_DESCRIPTION "${PROJECT_DESCRIPTION}: header, static library, CMake and pkg-config files")
include(CPack)
