# What `cmake --install` puts where. The components are those of the packages: libkesta1,
# libkesta-dev and kesta-tools.

include(CMakePackageConfigHelpers)

install(TARGETS kesta EXPORT KestaTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT libkesta1 NAMELINK_COMPONENT libkesta-dev)
install(FILES ${KESTA_HEADERS}
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kesta COMPONENT libkesta-dev)

set(KESTA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Kesta)
install(EXPORT KestaTargets NAMESPACE Kesta::
  DESTINATION ${KESTA_CMAKE_DIR} COMPONENT libkesta-dev)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KestaConfig.cmake INSTALL_DESTINATION ${KESTA_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/KestaConfig.cmake ${PROJECT_BINARY_DIR}/KestaConfigVersion.cmake
  DESTINATION ${KESTA_CMAKE_DIR} COMPONENT libkesta-dev)

# Both the CMake package and kesta.pc find the installation from where they lie themselves, so it
# may be moved as a whole.
file(RELATIVE_PATH KESTA_PC_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" KESTA_PC_PREFIX "${KESTA_PC_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/kesta.pc.in ${PROJECT_BINARY_DIR}/kesta.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kesta.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT libkesta-dev)

if(KESTA_BUILD_TOOL)
  # The tool finds the library beside itself, wherever the prefix is; below /usr the system does.
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH KESTA_LIB_FROM_BIN
      /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(kesta_command PROPERTIES INSTALL_RPATH "$ORIGIN/${KESTA_LIB_FROM_BIN}")
  endif()
  install(TARGETS kesta_command
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kesta-tools)
  install(FILES ${PROJECT_SOURCE_DIR}/tool/kesta.bash-completion
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kesta
    COMPONENT kesta-tools)
  if(NOT KESTA_PACKAGES)   # the packages carry it compressed
    install(FILES ${PROJECT_SOURCE_DIR}/docs/kesta.1
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT kesta-tools)
  endif()
endif()

# A sample only: a host puts its own into conf/ below its installation directory.
set(KESTA_SAMPLE_DIR ${CMAKE_INSTALL_DOCDIR})
if(KESTA_PACKAGES)
  set(KESTA_SAMPLE_DIR ${CMAKE_INSTALL_DATADIR}/doc/libkesta1/examples)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/conf/KestaDebug.ini
  DESTINATION ${KESTA_SAMPLE_DIR} COMPONENT libkesta1)
