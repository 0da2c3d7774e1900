# The template of pages as a source of the library: what builds the library needs nothing that built the
# template. String literals are cut into pieces of less than 64 kB, which every compiler takes,
# and have their length from its lexer, which counts much faster than its evaluation of constants.
set(template "${CMAKE_CURRENT_SOURCE_DIR}/veq/drawing/page_template.html")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${template}")
file(READ "${template}" bytes HEX)
string(LENGTH "${bytes}" digits)
set(VEQ_PAGE_TEMPLATE "")
set(begin 0)
while(begin LESS digits)
  string(SUBSTRING "${bytes}" ${begin} 16000 piece)
  string(REGEX REPLACE "(..)" "\\\\x\\1" piece "${piece}")
  string(APPEND VEQ_PAGE_TEMPLATE "    \"${piece}\"sv,\n")
  math(EXPR begin "${begin} + 16000")
endwhile()
configure_file("${CMAKE_CURRENT_SOURCE_DIR}/cmake/page_template.cpp.in"
               "${CMAKE_CURRENT_BINARY_DIR}/generated/page_template.cpp" @ONLY)
list(APPEND VEQ_SOURCES "${CMAKE_CURRENT_BINARY_DIR}/generated/page_template.cpp")
