# The library veq::readers: the formats that need more than the C++ standard library. It stands on the
# public headers of veq and on the few internal functions that these export for it.
if(NOT VEQ_BUILD_READERS)
  return()
endif()

find_package(pugixml QUIET)
find_package(ZLIB QUIET)
find_path(VEQ_ZSTD_INCLUDE zstd.h)
find_library(VEQ_ZSTD_LIBRARY zstd)
if(pugixml_FOUND AND ZLIB_FOUND AND VEQ_ZSTD_INCLUDE AND VEQ_ZSTD_LIBRARY)
  set(found TRUE)
else()
  set(found FALSE)
endif()
if(VEQ_BUILD_READERS STREQUAL "AUTO" AND NOT found)
  message(STATUS "VEQ: pugixml, zlib and zstd are not all there, so GraphML and compressed files are not "
                 "read")
  return()
endif()
veq_need("${found}" "What veq::readers needs (pugixml, zlib and zstd)"
         "libpugixml-dev zlib1g-dev libzstd-dev" VEQ_BUILD_READERS)

add_library(veq_readers ${VEQ_READERS_SOURCES})
add_library(veq::readers ALIAS veq_readers)
target_include_directories(veq_readers SYSTEM PRIVATE "${VEQ_ZSTD_INCLUDE}")
# Where it is installed, zstd goes by its name, as nobody knows where it lies there.
target_link_libraries(veq_readers PUBLIC veq PRIVATE pugixml::pugixml ZLIB::ZLIB
                      "$<BUILD_INTERFACE:${VEQ_ZSTD_LIBRARY}>" "$<INSTALL_INTERFACE:zstd>")
set_target_properties(veq_readers PROPERTIES OUTPUT_NAME veq-readers EXPORT_NAME readers
                                             CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON VERSION ${PROJECT_VERSION}
                                             SOVERSION ${VEQ_ABI_VERSION})
veq_developer_options(veq_readers)
