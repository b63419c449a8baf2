# SPDX-License-Identifier: Apache-2.0
# Every library that the project stands on, as one imported target each. All are Debian 12 packages; scripts/setup
# installs them.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
# Two libraries of OpenCV alone, found without its package file: that one belongs to the package of all of OpenCV.
find_path(OPENCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4 REQUIRED)
foreach(orv_cv_part core imgproc)
  find_library(OPENCV_${orv_cv_part}_LIBRARY opencv_${orv_cv_part} REQUIRED)
  add_library(orv_cv_${orv_cv_part} INTERFACE)
  add_library(cv::${orv_cv_part} ALIAS orv_cv_${orv_cv_part})
  target_include_directories(orv_cv_${orv_cv_part} SYSTEM INTERFACE "${OPENCV_INCLUDE_DIR}")
  target_link_libraries(orv_cv_${orv_cv_part} INTERFACE "${OPENCV_${orv_cv_part}_LIBRARY}")
endforeach()
find_package(Boost REQUIRED)
find_package(nlohmann_json 3 REQUIRED)
find_package(OpenSSL 3 REQUIRED COMPONENTS Crypto)
find_package(CURL REQUIRED)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)
find_package(TIFF REQUIRED)
pkg_check_modules(WEBP REQUIRED IMPORTED_TARGET libwebp libwebpdemux)
pkg_check_modules(HEIF REQUIRED IMPORTED_TARGET libheif)
pkg_check_modules(RAW REQUIRED IMPORTED_TARGET libraw_r)
pkg_check_modules(QPDF REQUIRED IMPORTED_TARGET libqpdf)

# wx-config names flags only, so the targets are made here.
find_program(WX_CONFIG wx-config REQUIRED)
foreach(orv_wx_part base net core)
  execute_process(COMMAND "${WX_CONFIG}" --cxxflags core
    OUTPUT_VARIABLE orv_wx_cxxflags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND "${WX_CONFIG}" --libs ${orv_wx_part}
    OUTPUT_VARIABLE orv_wx_libs OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(orv_wx_cxxflags UNIX_COMMAND "${orv_wx_cxxflags}")
  separate_arguments(orv_wx_libs UNIX_COMMAND "${orv_wx_libs}")
  # "-pthread" is Threads::Threads' business.
  list(REMOVE_ITEM orv_wx_cxxflags -pthread)
  list(REMOVE_ITEM orv_wx_libs -pthread)
  add_library(orv_wx_${orv_wx_part} INTERFACE)
  add_library(wx::${orv_wx_part} ALIAS orv_wx_${orv_wx_part})
  # The headers are the system's: their warnings are not ours.
  set(orv_wx_includes "")
  set(orv_wx_defines "")
  foreach(orv_flag IN LISTS orv_wx_cxxflags)
    if(orv_flag MATCHES "^-I(.+)")
      list(APPEND orv_wx_includes "${CMAKE_MATCH_1}")
    else()
      list(APPEND orv_wx_defines "${orv_flag}")
    endif()
  endforeach()
  target_include_directories(orv_wx_${orv_wx_part} SYSTEM INTERFACE ${orv_wx_includes})
  target_compile_options(orv_wx_${orv_wx_part} INTERFACE ${orv_wx_defines})
  target_link_libraries(orv_wx_${orv_wx_part} INTERFACE ${orv_wx_libs} Threads::Threads)
endforeach()
