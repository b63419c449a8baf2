# SPDX-License-Identifier: Apache-2.0
# Builds and runs the consumer with nothing but the compiler and pkg-config.
set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")
execute_process(COMMAND pkg-config --cflags --libs orvcore OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(more UNIX_COMMAND "${FLAGS}")
execute_process(COMMAND "${CXX}" -std=c++17 ${more} "${SOURCE}" -o "${OUT}" ${flags}
  "-Wl,-rpath,${PREFIX}/${LIBDIR}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${OUT}" COMMAND_ERROR_IS_FATAL ANY)
