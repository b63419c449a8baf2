# SPDX-License-Identifier: Apache-2.0
# Every text of the template is translated, none is marked as doubtful, and what is put into the texts agrees.
cmake_minimum_required(VERSION 3.24)
execute_process(COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C "${MSGFMT}" --check --statistics -o /dev/null "${CATALOGUE}"
  ERROR_VARIABLE told RESULT_VARIABLE failed)
if(failed OR NOT told MATCHES "^([0-9]+) translated messages[.]\n$")
  message(FATAL_ERROR "${CATALOGUE}: ${told}")
endif()
set(translated "${CMAKE_MATCH_1}")
file(STRINGS "${TEMPLATE}" ids REGEX "^msgid ")
list(LENGTH ids wanted)
# The first is the template's own head.
math(EXPR wanted "${wanted} - 1")
if(NOT translated EQUAL wanted)
  message(FATAL_ERROR "${CATALOGUE} has ${translated} texts, the template ${wanted}: run scripts/texts")
endif()
