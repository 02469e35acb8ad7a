# How all of this project's own code is compiled and linked. Its targets link kesta_flags privately;
# none of these flags reach a host's targets.

add_library(kesta_flags INTERFACE)
target_compile_options(kesta_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${KESTA_WERROR}>:-Werror>)

# Only optimised builds are hardened: debugging and sanitizer builds have checks of their own.
# _FORTIFY_SOURCE is undefined first because some compilers define it themselves.
set(KESTA_OPTIMISED $<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>)
target_compile_options(kesta_flags INTERFACE
  "$<${KESTA_OPTIMISED}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
target_link_options(kesta_flags INTERFACE
  "$<${KESTA_OPTIMISED}:LINKER:-z,relro;LINKER:-z,now;LINKER:-z,noexecstack;LINKER:-z,text>")

# Programs are position-independent, too, where the toolchain supports it.
include(CheckPIESupported)
cmake_policy(SET CMP0083 NEW)
check_pie_supported(LANGUAGES CXX)
set_target_properties(kesta_flags PROPERTIES INTERFACE_POSITION_INDEPENDENT_CODE ON)
