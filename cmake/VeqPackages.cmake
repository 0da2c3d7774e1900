# The Debian packages that scripts/package builds: one for each component of VeqInstall.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The VEQ authors")
set(CPACK_PACKAGE_CONTACT "The VEQ authors <maintainers@veq.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime development tools)
if(TARGET veq_readers)
  list(APPEND CPACK_COMPONENTS_ALL readers)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The libraries of this project are in no installed package yet; the components say that they need them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")

# Each description begins with its own summary.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(description "
VEQ holds a network in memory, directed or not, with weights and properties of its vertices and
edges. It answers questions about the network, reads and writes several text formats, makes model
networks, and lets agents walk over a network at random, the same way for the same seed on every
machine.
")
function(veq_package component name section summary contents)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${component}_DESCRIPTION
      "complex networks and random walks, ${summary}${description}\nThis package holds ${contents}."
      PARENT_SCOPE)
endfunction()
veq_package(RUNTIME libveq${VEQ_ABI_VERSION} libs "shared library" "the shared library")
veq_package(DEVELOPMENT libveq-dev libdevel "development files"
            "the headers, the files by which CMake and pkg-config find them, the guide and examples")
veq_package(READERS libveq-readers${VEQ_ABI_VERSION} libs "readers of GraphML and compressed files"
            "the shared library that reads GraphML and files compressed by gzip and zstd")
veq_package(TOOLS veq-tools science "command-line program" "the program veq and two small networks to try it on")
set(libraries runtime)
if(TARGET veq_readers)
  set(CPACK_COMPONENT_READERS_DEPENDS runtime)
  list(APPEND libraries readers)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS ${libraries})
set(CPACK_COMPONENT_TOOLS_DEPENDS ${libraries})

# The program's examples are about the data, and so are the guide's.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS veq-tools)

# Each package has its licence where Debian looks for it.
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/VeqDebianCopyright.cmake")
set(CPACK_VEQ_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
foreach(component RUNTIME DEVELOPMENT READERS TOOLS)
  set(CPACK_VEQ_${component}_PACKAGE "${CPACK_DEBIAN_${component}_PACKAGE_NAME}")
endforeach()

include(CPack)
