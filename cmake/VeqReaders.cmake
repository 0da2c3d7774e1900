# The library veq::readers: the formats that need more than the C++ standard library. It stands on the
# public headers of veq and on the few internal functions that these export for it.
find_package(pugixml REQUIRED)
find_package(ZLIB REQUIRED)
find_path(VEQ_ZSTD_INCLUDE zstd.h REQUIRED)
find_library(VEQ_ZSTD_LIBRARY zstd REQUIRED)

add_library(veq_readers ${VEQ_READERS_SOURCES})
add_library(veq::readers ALIAS veq_readers)
target_include_directories(veq_readers SYSTEM PRIVATE "${VEQ_ZSTD_INCLUDE}")
target_link_libraries(veq_readers PUBLIC veq PRIVATE pugixml::pugixml ZLIB::ZLIB
                                                     "${VEQ_ZSTD_LIBRARY}")
set_target_properties(veq_readers PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON VERSION ${PROJECT_VERSION}
                                             SOVERSION ${VEQ_ABI_VERSION})
veq_developer_options(veq_readers)
