# Puts the sanitizers chosen with VEQ_SANITIZE into a target.
function(veq_sanitize target)
  if(VEQ_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VEQ_SANITIZE} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    # In instrumented code GCC loses sight of which alternative a variant holds, and warns in vain.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized -Wno-array-bounds
                                               -Wno-stringop-overflow -Wno-restrict)
    endif()
    target_link_options(${target} PRIVATE -fsanitize=${VEQ_SANITIZE})
  endif()
endfunction()
