# How all of this project's own code is compiled and linked. A target that is to be built this way
# links kesta_flags privately; nothing of it reaches a host's targets.

add_library(kesta_flags INTERFACE)
target_compile_options(kesta_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${KESTA_WERROR}>:-Werror>)

# Hardening goes with optimisation: debugging and sanitizer builds bring checks of their own.
# _FORTIFY_SOURCE is undefined first because some compilers define it themselves.
set(KESTA_OPTIMISED $<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>)
target_compile_options(kesta_flags INTERFACE
  "$<${KESTA_OPTIMISED}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
target_link_options(kesta_flags INTERFACE
  "$<${KESTA_OPTIMISED}:LINKER:-z,relro;LINKER:-z,now;LINKER:-z,noexecstack;LINKER:-z,text>")

# Programs are position-independent, too, where the toolchain can.
include(CheckPIESupported)
cmake_policy(SET CMP0083 NEW)
check_pie_supported(LANGUAGES CXX)
set_target_properties(kesta_flags PROPERTIES INTERFACE_POSITION_INDEPENDENT_CODE ON)
