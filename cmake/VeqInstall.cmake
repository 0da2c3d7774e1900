# What `cmake --install` puts where: the components `runtime` (the shared library), `readers` (the one
# of veq::readers), `development` (headers, what a build needs to find the libraries, guide and examples)
# and `tools` (the program and the data).
include(CMakePackageConfigHelpers)

set(VEQ_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/veq")
set(VEQ_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS veq EXPORT veqTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
                NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)

# The headers are those that veq/veq.hpp and the one of veq::readers reach, as they are when somebody
# installs.
set(VEQ_ROOT_HEADERS veq/veq.hpp)
if(TARGET veq_readers)
  list(APPEND VEQ_ROOT_HEADERS veq/readers/reading.hpp)
endif()
install(CODE "set(VEQ_SOURCE_DIR \"${PROJECT_SOURCE_DIR}\")
  set(VEQ_INCLUDE_DIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
  set(VEQ_ROOT_HEADERS \"${VEQ_ROOT_HEADERS}\")" COMPONENT development)
install(SCRIPT "${CMAKE_CURRENT_LIST_DIR}/VeqInstallHeaders.cmake" COMPONENT development)

install(EXPORT veqTargets NAMESPACE veq:: DESTINATION "${VEQ_CMAKE_DIR}" COMPONENT development)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/veqConfig.cmake.in" veqConfig.cmake
                              INSTALL_DESTINATION "${VEQ_CMAKE_DIR}")
write_basic_package_version_file(veqConfigVersion.cmake COMPATIBILITY ${VEQ_COMPATIBILITY})
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/veqConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/veqConfigVersion.cmake"
        DESTINATION "${VEQ_CMAKE_DIR}" COMPONENT development)

# The pkg-config file finds everything from where it lies, so that an installed tree can be moved.
# What a static library needs besides is asked for with --static where there is a choice.
file(RELATIVE_PATH VEQ_PC_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" VEQ_PC_PREFIX "${VEQ_PC_PREFIX}")
file(RELATIVE_PATH VEQ_PC_LIBDIR "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_LIBDIR}")
file(RELATIVE_PATH VEQ_PC_INCLUDEDIR "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
list(JOIN VEQ_PUBLIC_OPTIONS " " VEQ_PC_OPTIONS)
set(VEQ_PC_LIBS "-lveq")
set(VEQ_PC_LIBS_PRIVATE "-pthread")
if(NOT BUILD_SHARED_LIBS)
  string(APPEND VEQ_PC_LIBS " ${VEQ_PC_LIBS_PRIVATE}")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/veq.pc.in" veq.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/veq.pc" DESTINATION "${VEQ_PKGCONFIG_DIR}"
        COMPONENT development)

# The component `readers` of the CMake package, and a file of its own for pkg-config.
if(TARGET veq_readers)
  install(TARGETS veq_readers EXPORT veqReadersTargets
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT readers
                  NAMELINK_COMPONENT development
          ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
          RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT readers)
  install(EXPORT veqReadersTargets NAMESPACE veq:: DESTINATION "${VEQ_CMAKE_DIR}"
          COMPONENT development)
  set_target_properties(veq_readers PROPERTIES INSTALL_RPATH "$ORIGIN")
  set(VEQ_PC_READERS_NEEDS "pugixml zlib libzstd")
  if(BUILD_SHARED_LIBS)
    set(VEQ_PC_READERS_REQUIRES "veq = ${PROJECT_VERSION}")
  else()
    set(VEQ_PC_READERS_REQUIRES "veq = ${PROJECT_VERSION} ${VEQ_PC_READERS_NEEDS}")
  endif()
  configure_file("${CMAKE_CURRENT_LIST_DIR}/veq-readers.pc.in" veq-readers.pc @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/veq-readers.pc" DESTINATION "${VEQ_PKGCONFIG_DIR}"
          COMPONENT development)
endif()

# The texts lie beside each other as in the source tree, so that their links hold.
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/README.md"
              "${PROJECT_SOURCE_DIR}/VERSIONING.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
              "${PROJECT_SOURCE_DIR}/CITATION.cff"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" "${PROJECT_SOURCE_DIR}/examples"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
        PATTERN reference EXCLUDE PATTERN CMakeLists.txt EXCLUDE)

if(VEQ_BUILD_TOOLS)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/data" DESTINATION "${CMAKE_INSTALL_DATADIR}/veq"
          COMPONENT tools)
  install(FILES "${PROJECT_SOURCE_DIR}/tools/veq/THIRD-PARTY"
          DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT tools)
  # The program finds the library beside itself wherever the tree is moved.
  file(RELATIVE_PATH to_libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(veq_program PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
  install(TARGETS veq_program DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  foreach(section 1 5)
    install(DIRECTORY "${PROJECT_BINARY_DIR}/tools/veq/man/" COMPONENT tools
            DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" FILES_MATCHING PATTERN "*.${section}")
  endforeach()
  # Where each shell looks for what others install.
  set(completions "${PROJECT_SOURCE_DIR}/tools/veq/completions")
  install(FILES "${completions}/veq.bash" RENAME veq COMPONENT tools
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  install(FILES "${completions}/veq.zsh" RENAME _veq COMPONENT tools
          DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
  install(FILES "${completions}/veq.fish" COMPONENT tools
          DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endif()
