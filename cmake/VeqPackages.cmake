# The Debian packages that scripts/package builds: one for each component of VeqInstall.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The VEQ maintainers")
set(CPACK_PACKAGE_CONTACT "The VEQ maintainers <maintainers@veq.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime development tools)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The program's own library is in no installed package yet; the component says that it needs it.
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
veq_package(RUNTIME libveq${PROJECT_VERSION_MAJOR} libs "shared library" "the shared library")
veq_package(DEVELOPMENT libveq-dev libdevel "development files"
            "the headers and the files by which CMake and pkg-config find them")
veq_package(TOOLS veq-tools science "command-line program" "the program veq")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)

include(CPack)
