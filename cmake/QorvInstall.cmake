# What `cmake --install` puts where, and the two ways to find it: CMake package and pkg-config.
# Components: runtime (the shared library), dev (headers, static library, package files), tools (the program).
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qorv_skia)

foreach(target qorv_skia qorv_skia_static)
  if(TARGET ${target})
    install(TARGETS ${target} EXPORT qorv_skia
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
      ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
  endif()
endforeach()
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

install(EXPORT qorv_skia NAMESPACE qorv:: DESTINATION ${package_dir} FILE qorv_skia-targets.cmake COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qorv_skia-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/qorv_skia-config.cmake ${PROJECT_BINARY_DIR}/qorv_skia-config-version.cmake
  DESTINATION ${package_dir} COMPONENT dev)

# The pkg-config file is written at installation, which may name another prefix. One for a system folder names it, so
# that pkg-config recognises the compiler's own search paths; any other finds its prefix from where it lies, so that the
# installed tree can be moved.
set(QORV_PC_LIBDIR "\${prefix}")
cmake_path(APPEND QORV_PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
set(QORV_PC_INCLUDEDIR "\${prefix}")
cmake_path(APPEND QORV_PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
set(QORV_PC_PREFIX @QORV_PC_PREFIX@)
configure_file(cmake/qorv_skia.pc.in ${PROJECT_BINARY_DIR}/qorv_skia.pc @ONLY)
file(RELATIVE_PATH to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
install(CODE "
  set(QORV_PC_PREFIX [[\${pcfiledir}/${to_prefix}]])
  if(CMAKE_INSTALL_PREFIX MATCHES [[^/usr(/local)?$]])
    set(QORV_PC_PREFIX \${CMAKE_INSTALL_PREFIX})
  endif()
  configure_file([[${PROJECT_BINARY_DIR}/qorv_skia.pc]] [[${PROJECT_BINARY_DIR}/installed/qorv_skia.pc]] @ONLY)" COMPONENT dev)
install(FILES ${PROJECT_BINARY_DIR}/installed/qorv_skia.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(TARGET qorv)
  file(RELATIVE_PATH to_library ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(qorv PROPERTIES INSTALL_RPATH $ORIGIN/${to_library})
  install(TARGETS qorv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/qorv.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME qorv COMPONENT tools)
  if(TARGET qorv_manual)
    install(FILES ${PROJECT_BINARY_DIR}/tools/qorv.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  endif()
endif()
