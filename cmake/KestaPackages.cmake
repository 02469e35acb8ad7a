# Three Debian packages: libkesta1 (the library), libkesta-dev (what hosts are compiled with) and
# kesta-tools (the command). scripts/package makes them.

set(KESTA_MAINTAINER "Fernhold maintainers <maintainers@fernhold.example>")
set(KESTA_DEB_RELEASE 1)
set(KESTA_DEB_VERSION ${PROJECT_VERSION}-${KESTA_DEB_RELEASE})
find_program(KESTA_GZIP gzip REQUIRED)

function(kesta_install_gzipped source name directory component)
  set(gzipped ${PROJECT_BINARY_DIR}/packages/${component}/${name}.gz)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packages/${component})
  execute_process(COMMAND ${KESTA_GZIP} -9nc ${source} OUTPUT_FILE ${gzipped}
                  COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${gzipped} DESTINATION ${directory} COMPONENT ${component})
endfunction()

# The date of the newest release in the change log is that of the packages.
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md KESTA_RELEASES REGEX "^## \\[${PROJECT_VERSION}\\]")
string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+$" KESTA_RELEASE_DAY "${KESTA_RELEASES}")
if(NOT KESTA_RELEASE_DAY)
  message(FATAL_ERROR "CHANGELOG.md has no dated release ${PROJECT_VERSION}")
endif()
execute_process(COMMAND date -uRd ${KESTA_RELEASE_DAY} OUTPUT_VARIABLE KESTA_RELEASE_DATE
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian-changelog.in
  ${PROJECT_BINARY_DIR}/packages/changelog.Debian @ONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kesta)
set(CPACK_PACKAGE_CONTACT "${KESTA_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")   # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL libkesta1 libkesta-dev kesta-tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KESTA_DEB_RELEASE})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${KESTA_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

function(kesta_package name section depends summary text)
  string(TOUPPER ${name} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  set(doc ${CMAKE_INSTALL_DATADIR}/doc/${name})
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian-copyright
    DESTINATION ${doc} RENAME copyright COMPONENT ${name})
  kesta_install_gzipped(${PROJECT_BINARY_DIR}/packages/changelog.Debian changelog.Debian
    ${doc} ${name})
  kesta_install_gzipped(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog ${doc} ${name})
endfunction()

kesta_package(libkesta1 libs ""
  "foundation library of Fernhold hosts"
  "Texts, errors, containers, dates, a trace log, and IP addresses, ranges and
host queries. This package holds the shared library.")
set(CPACK_DEBIAN_LIBKESTA1_PACKAGE_SHLIBDEPS ON)
# What packages of hosts will depend on, and the trigger that refreshes the loader's cache. cpack adds
# scripts that refresh it, too; they do no harm.
file(WRITE ${PROJECT_BINARY_DIR}/packages/shlibs
  "libkesta ${PROJECT_VERSION_MAJOR} libkesta1 (>= ${PROJECT_VERSION})\n")
file(WRITE ${PROJECT_BINARY_DIR}/packages/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBKESTA1_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/packages/shlibs ${PROJECT_BINARY_DIR}/packages/triggers)

kesta_package(libkesta-dev libdevel "libkesta1 (= ${KESTA_DEB_VERSION})"
  "foundation library of Fernhold hosts, development files"
  "Texts, errors, containers, dates, a trace log, and IP addresses, ranges and
host queries. This package holds the headers, and what CMake and pkg-config
need to find the library.")

kesta_package(kesta-tools net "libkesta1 (>= ${PROJECT_VERSION})"
  "command of the foundation library of Fernhold hosts"
  "The kesta command answers questions about IP address ranges, the addresses of
the host and calendar dates, and shows trace logs as plain text.")
set(CPACK_DEBIAN_KESTA-TOOLS_PACKAGE_SHLIBDEPS ON)

kesta_install_gzipped(${PROJECT_SOURCE_DIR}/docs/kesta.1 kesta.1
  ${CMAKE_INSTALL_MANDIR}/man1 kesta-tools)

include(CPack)
