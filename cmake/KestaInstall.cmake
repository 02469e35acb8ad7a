# What `cmake --install` puts where.

include(CMakePackageConfigHelpers)

install(TARGETS kesta EXPORT KestaTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${KESTA_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kesta)

set(KESTA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Kesta)
install(EXPORT KestaTargets NAMESPACE Kesta:: DESTINATION ${KESTA_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KestaConfig.cmake INSTALL_DESTINATION ${KESTA_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/KestaConfig.cmake ${PROJECT_BINARY_DIR}/KestaConfigVersion.cmake
  DESTINATION ${KESTA_CMAKE_DIR})

# The CMake package and kesta.pc locate the installation relative to themselves, so it can be moved as
# a whole.
file(RELATIVE_PATH KESTA_PC_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" KESTA_PC_PREFIX "${KESTA_PC_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/kesta.pc.in ${PROJECT_BINARY_DIR}/kesta.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kesta.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(KESTA_BUILD_TOOL)
  # The tool finds the library relative to itself, wherever the prefix is; below /usr the system does.
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH KESTA_LIB_FROM_BIN
      /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(kesta_command PROPERTIES INSTALL_RPATH "$ORIGIN/${KESTA_LIB_FROM_BIN}")
  endif()
  install(TARGETS kesta_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/tool/kesta.bash-completion
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kesta)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/kesta.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/KestaDebug.ini.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
endif()

# Only a sample: a host puts its own into conf/ below its installation directory.
install(FILES ${PROJECT_SOURCE_DIR}/conf/KestaDebug.ini DESTINATION ${CMAKE_INSTALL_DOCDIR})
