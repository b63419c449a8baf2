# SPDX-License-Identifier: Apache-2.0
# Compiler settings that hold for this project only: nothing here is forced on a parent project.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(ORVELLE_CCACHE ccache)
if(ORVELLE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ORVELLE_CCACHE}")
  set(CMAKE_C_COMPILER_LAUNCHER "${ORVELLE_CCACHE}")
endif()

add_library(orv_compile INTERFACE)
target_compile_features(orv_compile INTERFACE cxx_std_17)
# The signed/unsigned enum notes come from OpenCV's own headers.
target_compile_options(orv_compile INTERFACE -Wall -Wextra -Wno-deprecated-enum-enum-conversion)
target_include_directories(orv_compile INTERFACE
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>" "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/wxjson>")
if(ORVELLE_DEVELOPER)
  target_compile_options(orv_compile INTERFACE -Werror)
endif()
# Tools of the build that would take minutes with a sanitizer or with counters have the property ORV_PLAIN.
set(orv_watched "$<NOT:$<BOOL:$<TARGET_PROPERTY:ORV_PLAIN>>>")
if(ORVELLE_SANITIZE)
  target_compile_options(orv_compile INTERFACE "$<${orv_watched}:-fsanitize=${ORVELLE_SANITIZE}>" -fno-omit-frame-pointer)
  target_link_options(orv_compile INTERFACE -fsanitize=${ORVELLE_SANITIZE})
endif()
if(ORVELLE_COVERAGE)
  # The counters of the worker thread and of helpers must not lose a step.
  target_compile_options(orv_compile INTERFACE "$<${orv_watched}:--coverage;-fprofile-update=atomic>")
  target_compile_definitions(orv_compile INTERFACE ORVELLE_COVERAGE)
  target_link_options(orv_compile INTERFACE --coverage)
endif()
if(ORVELLE_FUZZ)
  target_compile_options(orv_compile INTERFACE -fsanitize=fuzzer-no-link)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
