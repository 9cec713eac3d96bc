# Installation and the Debian package.
#
#   bin/toolbase                        rpath $ORIGIN/../<libdir>
#   <libdir>/libtoolbase.so, liborvkctl.so
#   <libdir>/toolbase/plugins/*.so      (toolbase finds them there when no
#                                       plugins/ folder is beside it)
#   include/toolbase/*.h, include/hostctl/*.h
#   <libdir>/pkgconfig/toolbase.pc, orvkctl.pc (relocatable: paths from ${pcfiledir})
#   share/bash-completion/completions/toolbase, share/zsh/vendor-completions/_toolbase
#
# Every path is relative to the prefix, so `cmake --install --prefix DIR` and
# the package give the same working tree.
include(GNUInstallDirs)

set(TOOLBASE_PLUGIN_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/toolbase/plugins)
file(RELATIVE_PATH TOOLBASE_PLUGIN_FROM_BIN /x/${CMAKE_INSTALL_BINDIR} /x/${TOOLBASE_PLUGIN_INSTALL_DIR})
file(RELATIVE_PATH TOOLBASE_LIB_FROM_BIN /x/${CMAKE_INSTALL_BINDIR} /x/${CMAKE_INSTALL_LIBDIR})
file(RELATIVE_PATH TOOLBASE_LIB_FROM_PLUGINS /x/${TOOLBASE_PLUGIN_INSTALL_DIR} /x/${CMAKE_INSTALL_LIBDIR})
file(RELATIVE_PATH PC_TO_PREFIX /x/${CMAKE_INSTALL_LIBDIR}/pkgconfig /x)
if(PC_TO_PREFIX STREQUAL "")
  set(PC_TO_PREFIX ".")
endif()

configure_file(cmake/build_config.cc.in ${CMAKE_BINARY_DIR}/generated/build_config.cc @ONLY)
target_sources(toolbase PRIVATE ${CMAKE_BINARY_DIR}/generated/build_config.cc)
# Run paths. Each executable has one folder, its libraries', as DT_RPATH: the
# loader looks there first for every library of the process, the plug-ins'
# included, and for each folder it looks in it first tries a dozen
# subfolders in vain, so every folder more costs every command. The build
# tree's (the libraries beside the executable) and the installed tree's
# differ, so each has an executable of its own: CMake would otherwise
# rewrite the run path at install, padding the build tree's with an empty
# entry, which the loader takes for the current directory. The plug-in has
# none of its own, which would hide the executable's; it is loaded by
# toolbase, whose run path finds its libraries.
set_target_properties(toolbase_cli PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN")
set_target_properties(toolbase_installed PROPERTIES BUILD_WITH_INSTALL_RPATH ON
                      INSTALL_RPATH "$ORIGIN/${TOOLBASE_LIB_FROM_BIN}")
target_link_options(toolbase_cli PRIVATE -Wl,--disable-new-dtags)
target_link_options(toolbase_installed PRIVATE -Wl,--disable-new-dtags)
set_target_properties(network PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "")

install(TARGETS toolbase_installed RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS toolbase orvkctl network_regex LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS network LIBRARY DESTINATION ${TOOLBASE_PLUGIN_INSTALL_DIR})
install(DIRECTORY platform/toolbase platform/hostctl
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

foreach(pc toolbase orvkctl)
  configure_file(cmake/${pc}.pc.in ${CMAKE_BINARY_DIR}/pkgconfig/${pc}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/pkgconfig/${pc}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# The completion scripts come from the built toolbase itself.
add_custom_command(
  OUTPUT ${CMAKE_BINARY_DIR}/completion/toolbase ${CMAKE_BINARY_DIR}/completion/_toolbase
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/completion
  COMMAND toolbase_cli --completion bash > ${CMAKE_BINARY_DIR}/completion/toolbase
  COMMAND toolbase_cli --completion zsh > ${CMAKE_BINARY_DIR}/completion/_toolbase
  DEPENDS toolbase_cli
  VERBATIM)
add_custom_target(toolbase_completion ALL
  DEPENDS ${CMAKE_BINARY_DIR}/completion/toolbase ${CMAKE_BINARY_DIR}/completion/_toolbase)
install(FILES ${CMAKE_BINARY_DIR}/completion/toolbase
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${CMAKE_BINARY_DIR}/completion/_toolbase
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME toolbase)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "toolbase maintainers <toolbase@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Host command framework with the network plug-in and a simulated host")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, pkg-config")
include(CPack)
