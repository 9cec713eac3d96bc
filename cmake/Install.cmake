# Installation and the Debian packages.
#
#   bin/toolbase                          rpath $ORIGIN/../<privlib>
#   <privlib> = <libdir>/toolbase         libtoolbase.so, liborvkctl.so, libnetwork_regex.so:
#                                         the product's own, not for other programs
#   <privlib>/plugins/*.so                (toolbase finds them there when no
#                                         plugins/ folder is beside it)
#   include/toolbase/*.h, include/hostctl/*.h
#   <libdir>/pkgconfig/toolbase.pc, orvkctl.pc (written at install, for the prefix installed to)
#   share/bash-completion/completions/toolbase, share/zsh/vendor-completions/_toolbase
#   share/man/man1/*.1.gz                 when the build made manual pages (build/man/*.1)
#
# <libdir> is lib/<multiarch triplet> where the platform has one (Debian), else lib.
# Every path is relative to the prefix, so `cmake --install --prefix DIR` and
# the packages give the same working tree. The packages (cpack) are two
# components: "runtime" (toolbase) and "dev" (toolbase-dev: headers and
# pkg-config files), each stripped, with its debug symbols in a -dbgsym package.
include(GNUInstallDirs)

set(TOOLBASE_ARCH_LIBDIR ${CMAKE_INSTALL_LIBDIR})
if(CMAKE_LIBRARY_ARCHITECTURE AND NOT CMAKE_INSTALL_LIBDIR MATCHES "${CMAKE_LIBRARY_ARCHITECTURE}$")
  set(TOOLBASE_ARCH_LIBDIR ${CMAKE_INSTALL_LIBDIR}/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
set(TOOLBASE_PRIVATE_LIBDIR ${TOOLBASE_ARCH_LIBDIR}/toolbase)
set(TOOLBASE_PLUGIN_INSTALL_DIR ${TOOLBASE_PRIVATE_LIBDIR}/plugins)
set(TOOLBASE_PKGCONFIG_DIR ${TOOLBASE_ARCH_LIBDIR}/pkgconfig)
file(RELATIVE_PATH TOOLBASE_PLUGIN_FROM_BIN /x/${CMAKE_INSTALL_BINDIR} /x/${TOOLBASE_PLUGIN_INSTALL_DIR})
file(RELATIVE_PATH TOOLBASE_LIB_FROM_BIN /x/${CMAKE_INSTALL_BINDIR} /x/${TOOLBASE_PRIVATE_LIBDIR})

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

install(TARGETS toolbase_installed RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
# Shared objects are mapped, not run: no execute bit (as Debian installs them).
set(TOOLBASE_LIBRARY_MODE OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
install(TARGETS toolbase orvkctl orvkctl_linux network_regex LIBRARY DESTINATION ${TOOLBASE_PRIVATE_LIBDIR}
        PERMISSIONS ${TOOLBASE_LIBRARY_MODE} COMPONENT runtime)
install(TARGETS network LIBRARY DESTINATION ${TOOLBASE_PLUGIN_INSTALL_DIR}
        PERMISSIONS ${TOOLBASE_LIBRARY_MODE} COMPONENT runtime)
install(DIRECTORY platform/toolbase platform/hostctl
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev FILES_MATCHING PATTERN "*.h")

# pkg-config files name the prefix installed to (known only at install time:
# `cmake --install --prefix DIR`, or /usr in the packages), with absolute paths.
foreach(pc toolbase orvkctl)
  install(CODE "
    set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
    set(libdir \"\${prefix}/${TOOLBASE_PRIVATE_LIBDIR}\")
    set(includedir \"\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}\")
    set(PROJECT_VERSION ${PROJECT_VERSION})
    configure_file(${CMAKE_SOURCE_DIR}/cmake/${pc}.pc.in ${CMAKE_BINARY_DIR}/pkgconfig/${pc}.pc @ONLY)
    file(INSTALL ${CMAKE_BINARY_DIR}/pkgconfig/${pc}.pc
         DESTINATION \"\${prefix}/${TOOLBASE_PKGCONFIG_DIR}\")" COMPONENT dev)
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
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT runtime)
install(FILES ${CMAKE_BINARY_DIR}/completion/_toolbase
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT runtime)

# Manual pages that the build generated (build/man/*.1), compressed as Debian
# installs them.
install(CODE "
  file(GLOB pages ${CMAKE_BINARY_DIR}/man/*.1)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/man-gz)
  foreach(page IN LISTS pages)
    get_filename_component(name \"\${page}\" NAME)
    execute_process(COMMAND gzip -9nc \"\${page}\"
                    OUTPUT_FILE ${CMAKE_BINARY_DIR}/man-gz/\${name}.gz COMMAND_ERROR_IS_FATAL ANY)
    file(INSTALL ${CMAKE_BINARY_DIR}/man-gz/\${name}.gz
         DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1\")
  endforeach()" COMPONENT runtime)

# Each package's copyright and changelog, as Debian wants them.
execute_process(COMMAND gzip -9nc ${CMAKE_SOURCE_DIR}/cmake/debian/changelog
                OUTPUT_FILE ${CMAKE_BINARY_DIR}/generated/changelog.gz)
foreach(package toolbase toolbase-dev)
  set(component runtime)
  if(package STREQUAL "toolbase-dev")
    set(component dev)
  endif()
  install(FILES ${CMAKE_SOURCE_DIR}/cmake/debian/copyright ${CMAKE_BINARY_DIR}/generated/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME toolbase)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Toolbase maintainers <toolbase@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME toolbase)
# libnftables1: opened only when the linux host's firewall is used, so no
# library dependency names it.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "bash-completion, libnftables1")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "host administration command framework, with its network commands
toolbase runs administration commands as words (toolbase network nic list),
with help, shell completion, batches of commands run all or nothing, and
output for people (simple, table) and for scripts (json, xml, csv).

Commands come from plug-ins. This package has the framework, the network
plug-in (switches, port groups, physical NICs, IP interfaces, routes, DNS,
firewall, IPsec) and the host control library it drives, which by default
keeps a simulated host in a state file of the user's own.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME toolbase-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "toolbase (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "pkg-config")
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "development files for toolbase plug-ins
toolbase runs administration commands that plug-ins add to its tree of words.

This package has the headers of the framework and of the host control
library, and their pkg-config files (toolbase, orvkctl), to build further
plug-ins; pkg-config --variable=plugindir toolbase names the folder they go in.")
include(CPack)
