# SPDX-License-Identifier: Apache-2.0
# orv_part(<name> SOURCES <file>... LINK <target>... [HEADERS <file>...])
#
# One library of the house: a static part with hidden symbols, joined into liborvcore.so and linked by the tests as it
# is, so that private code can be tested. HEADERS are installed under include/orvelle/<name>. A precompiled header of
# the part's own (<name>/pch.h) is used where it exists.
function(orv_part name)
  cmake_parse_arguments(part "" "" "SOURCES;LINK;HEADERS" ${ARGN})
  if(NOT part_SOURCES)
    # Headers alone.
    add_library(${name}_part INTERFACE)
    target_link_libraries(${name}_part INTERFACE orv_compile ${part_LINK})
    return()
  endif()
  add_library(${name}_part STATIC ${part_SOURCES})
  target_link_libraries(${name}_part PUBLIC orv_compile ${part_LINK})
  if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/pch.h")
    target_precompile_headers(${name}_part PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/pch.h")
  endif()
  set_property(GLOBAL APPEND PROPERTY ORV_PARTS ${name})
  set_property(GLOBAL PROPERTY ORV_HEADERS_${name} ${part_HEADERS})
  set_property(GLOBAL PROPERTY ORV_HEADER_DIR_${name} "${CMAKE_CURRENT_SOURCE_DIR}")
endfunction()
