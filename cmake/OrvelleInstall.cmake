# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` puts where, and how other projects find it.
include(CMakePackageConfigHelpers)

set(orv_include_dir "${CMAKE_INSTALL_INCLUDEDIR}/orvelle")
set(orv_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/orvelle")

get_property(orv_parts GLOBAL PROPERTY ORV_PARTS)
foreach(orv_part_name IN LISTS orv_parts)
  get_property(orv_headers GLOBAL PROPERTY ORV_HEADERS_${orv_part_name})
  get_property(orv_header_dir GLOBAL PROPERTY ORV_HEADER_DIR_${orv_part_name})
  foreach(orv_header IN LISTS orv_headers)
    get_filename_component(orv_sub "${orv_header}" DIRECTORY)
    # <wx/jsonval.h> stands in a folder of its own name already.
    if(orv_part_name STREQUAL "wxjson")
      set(orv_target_dir "${orv_include_dir}/wxjson/${orv_sub}")
    else()
      set(orv_target_dir "${orv_include_dir}/${orv_part_name}/${orv_sub}")
    endif()
    install(FILES "${orv_header_dir}/${orv_header}" DESTINATION "${orv_target_dir}" COMPONENT development)
  endforeach()
endforeach()

foreach(orv_target orvcore filters)
  target_include_directories(${orv_target} INTERFACE
    "$<INSTALL_INTERFACE:${orv_include_dir}>" "$<INSTALL_INTERFACE:${orv_include_dir}/wxjson>")
  target_compile_features(${orv_target} INTERFACE cxx_std_17)
endforeach()
install(TARGETS orvcore filters EXPORT orvelleTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS orvelle RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
install(EXPORT orvelleTargets NAMESPACE orvelle:: DESTINATION "${orv_cmake_dir}" COMPONENT development)
configure_package_config_file(cmake/orvelleConfig.cmake.in "${PROJECT_BINARY_DIR}/orvelleConfig.cmake"
  INSTALL_DESTINATION "${orv_cmake_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/orvelleConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/orvelleConfig.cmake" "${PROJECT_BINARY_DIR}/orvelleConfigVersion.cmake"
  DESTINATION "${orv_cmake_dir}" COMPONENT development)
execute_process(COMMAND "${WX_CONFIG}" --cxxflags core
  OUTPUT_VARIABLE ORV_PC_CFLAGS OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND "${WX_CONFIG}" --libs core,net,base
  OUTPUT_VARIABLE ORV_PC_LIBS OUTPUT_STRIP_TRAILING_WHITESPACE)
string(APPEND ORV_PC_CFLAGS " -I${OPENCV_INCLUDE_DIR}")
string(APPEND ORV_PC_LIBS " -lopencv_core -lopencv_imgproc")
# The package may be installed anywhere: the way back from the file to the prefix.
file(RELATIVE_PATH ORV_PC_UP "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/orvcore.pc.in "${PROJECT_BINARY_DIR}/orvcore.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/orvcore.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
# What the looks of reports are taken from; also where the programs of a build look for it.
set(orv_report_style "${PROJECT_SOURCE_DIR}/data/report-style/style.css"
  "${PROJECT_SOURCE_DIR}/data/report-style/head.html")
install(FILES ${orv_report_style} DESTINATION "${CMAKE_INSTALL_DATADIR}/orvelle/report-style" COMPONENT runtime)
foreach(orv_file IN LISTS orv_report_style)
  get_filename_component(orv_name "${orv_file}" NAME)
  configure_file("${orv_file}" "${PROJECT_BINARY_DIR}/share/orvelle/report-style/${orv_name}" COPYONLY)
endforeach()
