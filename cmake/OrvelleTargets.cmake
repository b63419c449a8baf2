# SPDX-License-Identifier: Apache-2.0
# orv_part(<name> SOURCES <file>... LINK <target>... [HEADERS <file>...])
#
# One library of the house: a static part with hidden symbols, joined into a shared library below and linked by the
# tests as it is, so that private code can be tested. HEADERS are installed. A precompiled header of the part's own
# (<name>/pch.h) is used where it exists. Parts are told apart from other libraries by their suffix "_part".
function(orv_part name)
  cmake_parse_arguments(part "" "" "SOURCES;LINK;HEADERS" ${ARGN})
  set_property(GLOBAL APPEND PROPERTY ORV_PARTS ${name})
  set_property(GLOBAL PROPERTY ORV_HEADERS_${name} ${part_HEADERS})
  set_property(GLOBAL PROPERTY ORV_HEADER_DIR_${name} "${CMAKE_CURRENT_SOURCE_DIR}")
  set(external ${part_LINK})
  list(FILTER external EXCLUDE REGEX "_part$")
  set_property(GLOBAL PROPERTY ORV_EXTERNAL_${name} ${external})
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
endfunction()

# orv_shared(<target> OUTPUT <name> PARTS <part>... [LINK <target>...])
#
# A shared library made of the objects of parts. What it shows of wxWidgets, OpenCV and Boost in its headers is public.
function(orv_shared target)
  cmake_parse_arguments(shared "" "OUTPUT" "PARTS;LINK" ${ARGN})
  set(objects "")
  set(external "")
  foreach(part IN LISTS shared_PARTS)
    get_target_property(type ${part}_part TYPE)
    if(NOT type STREQUAL "INTERFACE_LIBRARY")
      list(APPEND objects "$<TARGET_OBJECTS:${part}_part>")
    endif()
    get_property(part_external GLOBAL PROPERTY ORV_EXTERNAL_${part})
    list(APPEND external ${part_external})
  endforeach()
  list(REMOVE_DUPLICATES external)
  add_library(${target} SHARED ${objects})
  add_library(orvelle::${target} ALIAS ${target})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${shared_OUTPUT} LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION} SOVERSION ${ORVELLE_ABI}
    INSTALL_RPATH "$ORIGIN")
  target_link_libraries(${target} PRIVATE ${external} orv_compile ${shared_LINK})
  target_link_options(${target} PRIVATE -Wl,--as-needed)
  if(NOT (ORVELLE_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang"))
    # Clang links a sanitizer's runtime with programs only.
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
  target_link_libraries(${target} INTERFACE "$<BUILD_INTERFACE:orv_compile>" "$<BUILD_INTERFACE:wx::core>"
    "$<BUILD_INTERFACE:wx::net>" "$<BUILD_INTERFACE:wx::base>" "$<BUILD_INTERFACE:cv::core>"
    "$<BUILD_INTERFACE:cv::imgproc>" "$<BUILD_INTERFACE:Boost::headers>")
endfunction()
