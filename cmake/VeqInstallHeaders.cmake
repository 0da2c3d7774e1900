# Installs VEQ_ROOT_HEADERS and the headers that they reach, by whatever way. The headers of internal/ folders
# that public ones include are among them, and helpers that only the sources use are not.
cmake_policy(VERSION 3.25)

set(waiting ${VEQ_ROOT_HEADERS})
set(reached "")
while(waiting)
  list(POP_FRONT waiting header)
  if(header IN_LIST reached)
    continue()
  endif()
  list(APPEND reached "${header}")
  file(STRINGS "${VEQ_SOURCE_DIR}/${header}" includes REGEX "^#include \"veq/")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" include "${include}")
    list(APPEND waiting "${include}")
  endforeach()
endwhile()

foreach(header IN LISTS reached)
  cmake_path(GET header PARENT_PATH directory)
  file(INSTALL "${VEQ_SOURCE_DIR}/${header}"
       DESTINATION "${CMAKE_INSTALL_PREFIX}/${VEQ_INCLUDE_DIR}/${directory}")
endforeach()
