# SPDX-License-Identifier: Apache-2.0
# Makes the Debian packages and looks at what they hold and need.
cmake_minimum_required(VERSION 3.24)
file(REMOVE_RECURSE "${OUT}")
execute_process(COMMAND "${CPACK}" -G DEB --config "${BUILD}/CPackConfig.cmake" -B "${OUT}"
  OUTPUT_VARIABLE told ERROR_VARIABLE told RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "cpack: ${told}")
endif()

function(expect_in text wanted)
  foreach(one IN LISTS wanted)
    if(NOT text MATCHES "${one}")
      message(FATAL_ERROR "\"${one}\" is missing in\n${text}")
    endif()
  endforeach()
endfunction()

file(GLOB runtime "${OUT}/orvelle_${VERSION}_*.deb")
file(GLOB development "${OUT}/orvelle-dev_${VERSION}_*.deb")
execute_process(COMMAND dpkg-deb -f "${runtime}" Depends OUTPUT_VARIABLE depends COMMAND_ERROR_IS_FATAL ANY)
expect_in("${depends}" "libimage-exiftool-perl;libc6 ;libwxgtk3.2;libopencv-core;libjpeg62-turbo;libraw;libqpdf")
if(depends MATCHES "orvcore|-dev")
  message(FATAL_ERROR "the program's package needs itself or headers: ${depends}")
endif()
execute_process(COMMAND dpkg-deb -c "${runtime}" OUTPUT_VARIABLE files COMMAND_ERROR_IS_FATAL ANY)
expect_in("${files}" "/usr/bin/orvelle\n;/liborvcore[.]so[.]${ABI} -> liborvcore[.]so[.]${VERSION}\n;\
/liborvfilters[.]so[.]${ABI} -> ;/usr/share/man/man1/orvelle[.]1\n;\
/usr/share/bash-completion/completions/orvelle\n;/usr/share/orvelle/report-style/style.css\n;\
/usr/share/doc/orvelle/copyright\n;/usr/share/doc/orvelle/docs/commands[.]md\n")
if(files MATCHES "[.]h\n|[.]so\n|[.]cmake\n")
  message(FATAL_ERROR "the program's package holds what belongs into the other:\n${files}")
endif()
execute_process(COMMAND dpkg-deb -I "${runtime}" triggers OUTPUT_VARIABLE triggers COMMAND_ERROR_IS_FATAL ANY)
expect_in("${triggers}" "ldconfig")

execute_process(COMMAND dpkg-deb -f "${development}" Depends OUTPUT_VARIABLE depends COMMAND_ERROR_IS_FATAL ANY)
expect_in("${depends}" "orvelle \\(= ${VERSION}\\);libwxgtk3.2-dev;libopencv-core-dev;libboost-dev")
execute_process(COMMAND dpkg-deb -c "${development}" OUTPUT_VARIABLE files COMMAND_ERROR_IS_FATAL ANY)
expect_in("${files}" "/include/orvelle/orvcore/orvcore[.]h\n;/liborvcore[.]so -> liborvcore[.]so[.]${ABI}\n;\
/cmake/orvelle/orvelleConfig[.]cmake\n;/pkgconfig/orvcore[.]pc\n")
