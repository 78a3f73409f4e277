# The packages and what is theirs alone: zorvane-b2v, the tools, and zorvane-lab, the lab. The folders of the source
# install their own parts. All lies below the prefix: tarnv/ is the suite's tree, which the programs know as /usr/tarnv,
# and the rest is where Debian looks for it. Another prefix than /usr is a place to stage or to look at.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set(CMAKE_INSTALL_PREFIX /usr CACHE PATH "where the tree is installed" FORCE)
endif()
set(ZOR_MAINTAINER "Zorvane maintainers <maintainers@zorvane.example>" CACHE STRING "who answers for the packages")
find_program(GZIP gzip REQUIRED)

set(here ${CMAKE_CURRENT_LIST_DIR})
set(made ${CMAKE_BINARY_DIR}/packaging)
set(compressed_files)

# install_compressed(FILE FOLDER NAME COMPONENT): the file as FOLDER/NAME.gz, the same bytes at every build.
function(install_compressed file folder name component)
  set(out ${made}/${component}/${folder}/${name}.gz)
  cmake_path(GET out PARENT_PATH out_folder)
  file(MAKE_DIRECTORY ${out_folder})
  add_custom_command(OUTPUT ${out} COMMAND ${GZIP} -9nc ${file} > ${out} DEPENDS ${file} VERBATIM)
  install(FILES ${out} DESTINATION ${folder} COMPONENT ${component})
  set(compressed_files ${compressed_files} ${out} PARENT_SCOPE)
endfunction()

# The name that people type, as a link to the program in the suite's tree.
function(install_link program component)
  file(MAKE_DIRECTORY ${made}/links)
  file(CREATE_LINK ../tarnv/kelvarion/bin/${program} ${made}/links/${program} SYMBOLIC)
  install(FILES ${made}/links/${program} DESTINATION bin COMPONENT ${component})
endfunction()

set(b2v_pages zorb2v.1 zorinfo.1 kvn.toml.5 zorb2v-veconfig.5)
set(lab_pages zorlab.1)
foreach(component b2v lab)
  foreach(page ${${component}_pages})
    string(REGEX MATCH "[0-9]$" section ${page})
    install_compressed(${PROJECT_SOURCE_DIR}/share/man/man${section}/${page} share/man/man${section} ${page} ${component})
  endforeach()
  set(docs share/doc/zorvane-${component})
  configure_file(${here}/changelog.in ${made}/changelog @ONLY)
  install_compressed(${made}/changelog ${docs} changelog.Debian ${component})
  install(FILES ${here}/copyright DESTINATION ${docs} COMPONENT ${component})
  install(FILES ${here}/lintian-overrides.${component} DESTINATION share/lintian/overrides
          RENAME zorvane-${component} COMPONENT ${component})
endforeach()
add_custom_target(compressed ALL DEPENDS ${compressed_files})

install_link(zorb2v b2v)
install_link(zorinfo b2v)
install_link(zorlab lab)
install(FILES ${here}/kvn.toml DESTINATION tarnv/kelvarion COMPONENT b2v)
install(DIRECTORY DESTINATION tarnv/kelvarion/zorvane/server/data COMPONENT b2v)
install(DIRECTORY DESTINATION tarnv/kelvarion/zorvane/client/data COMPONENT b2v)
install(DIRECTORY DESTINATION tarnv/var/global COMPONENT b2v)
install(FILES ${here}/zorlab.service DESTINATION lib/systemd/system COMPONENT lab)
install(FILES ${here}/zorlab.sysusers DESTINATION lib/sysusers.d RENAME zorlab.conf COMPONENT lab)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zorvane)
set(CPACK_PACKAGE_VENDOR "Zorvane")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL b2v lab)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE zorvane)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${ZOR_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_B2V_PACKAGE_NAME zorvane-b2v)
set(CPACK_DEBIAN_B2V_DESCRIPTION "conversion of backed-up Windows servers into virtual machines
zorb2v reads a client's saved configuration from the recovery database,
decides whether the client qualifies, checks backup and target, and submits
the job that makes a virtual machine of its backup. zorinfo tells beforehand
all that stands against a conversion, drafts the target's file, and tells
what became of a job.

Both are for a Linux server of the backup suite, or for trying with the lab
of the package zorvane-lab. Messages are in English, German and Japanese.")
set(CPACK_DEBIAN_B2V_PACKAGE_SUGGESTS "zorvane-lab, bash-completion")
set(CPACK_DEBIAN_B2V_PACKAGE_CONTROL_EXTRA ${here}/scripts/b2v/conffiles ${here}/scripts/b2v/postrm)

# The lab's kvn.toml names the catalogues of the tools; and the system user is made from the package's own sysusers.d.
set(CPACK_DEBIAN_LAB_PACKAGE_NAME zorvane-lab)
set(CPACK_DEBIAN_LAB_DESCRIPTION "servers of a backup suite in miniature, to rehearse conversions
zorlab plays the recovery daemons, the request daemon with a virtual
inventory, the backup catalogue and a job runner on one machine, with
invented clients and targets: for demonstration, rehearsal, training and
tests of zorb2v.

It is no recovery product: it converts nothing and protects nothing. The
service zorlab.service comes with it and is not started by itself.")
set(CPACK_DEBIAN_LAB_PACKAGE_DEPENDS "zorvane-b2v (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), systemd | systemd-standalone-sysusers | systemd-sysusers")
set(CPACK_DEBIAN_LAB_PACKAGE_CONTROL_EXTRA
  ${here}/scripts/lab/postinst ${here}/scripts/lab/prerm ${here}/scripts/lab/postrm)
include(CPack)
