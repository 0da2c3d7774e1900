# Warnings and developer settings. They stay PRIVATE: a project that uses the library sees none. A
# warning that only a later compiler knows must not stop somebody who just wants to install, so
# warnings are errors in the presets alone.
option(VEQ_WERROR "Treat warnings as errors" OFF)

# Indices have 64 bits everywhere. Where pointers have 32, each use of one would be a conversion to
# warn of, although the sizes have been compared with what memory can hold.
# At -O3, GCC 12 takes what it inlines of std::string for faults; the sanitizers look for such.
function(veq_developer_options target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
                                             $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>:-Wconversion>
                                             -Wnon-virtual-dtor -Woverloaded-virtual
                                             $<$<BOOL:${VEQ_WERROR}>:-Werror>)
  endif()
  if(PROJECT_IS_TOP_LEVEL AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE
      "$<$<CONFIG:Release>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>")
  endif()
  veq_sanitize(${target})
endfunction()
