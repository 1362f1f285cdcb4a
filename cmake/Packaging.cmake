# `cmake --install`, and the packages that script/package makes from it.
if(WIN32)
  set(program_folder .)
  set(tool_folder tools)
  set(page_folder .)
  set(document_folder .)
else()
  set(program_folder ${CMAKE_INSTALL_BINDIR})
  set(tool_folder ${CMAKE_INSTALL_DATADIR}/zorvane)
  set(page_folder ${tool_folder})
  set(document_folder ${CMAKE_INSTALL_DOCDIR})
endif()
install(TARGETS zorvane RUNTIME DESTINATION ${program_folder})

# What script/build-page builds, when it was run before; the packages have to hold it.
install(FILES "${PROJECT_SOURCE_DIR}/build/page/zorvane.html" "${PROJECT_SOURCE_DIR}/build/wasm/zorvane.wasm"
  DESTINATION ${page_folder} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ OPTIONAL)

# README refers to these as docs/...
install(FILES README.md DESTINATION ${document_folder})
file(GLOB documents CONFIGURE_DEPENDS docs/*.md docs/*.svg docs/*.png)
install(FILES ${documents} DESTINATION ${document_folder}/docs)

# The tools find their modules in their own folder, and the engine relative to it.
file(GLOB tool_programs CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/tools" tools/zorvane-*)
list(FILTER tool_programs EXCLUDE REGEX "\\.")
list(TRANSFORM tool_programs PREPEND tools/ OUTPUT_VARIABLE tool_files)
install(PROGRAMS ${tool_files} DESTINATION ${tool_folder})
file(GLOB tool_modules CONFIGURE_DEPENDS tools/*.py tools/*.json)
install(FILES ${tool_modules} DESTINATION ${tool_folder})

# install_link(FOLDER NAME TARGET)
# Installs a symbolic link in a folder. All paths are relative to the installation prefix.
function(install_link folder name target)
  file(RELATIVE_PATH target "/${folder}" "/${target}")
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/links")
  file(CREATE_LINK "${target}" "${PROJECT_BINARY_DIR}/links/${name}" SYMBOLIC)
  install(FILES "${PROJECT_BINARY_DIR}/links/${name}" DESTINATION ${folder})
endfunction()

if(NOT WIN32)
  foreach(program IN LISTS tool_programs)
    install_link(${program_folder} ${program} ${tool_folder}/${program})
  endforeach()
  # README refers to these as tools/... and zorvane.html
  install_link(${document_folder} tools ${tool_folder})
  install_link(${document_folder} zorvane.html ${page_folder}/zorvane.html)
  foreach(program IN ITEMS zorvane LISTS tool_programs)
    install(FILES docs/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endforeach()
endif()

set(CPACK_PACKAGE_NAME zorvane)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/PackageFiles.cmake")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(package_system windows-x64)
else()
  set(CPACK_GENERATOR TGZ DEB)
  set(CPACK_STRIP_FILES ON)
  set(package_system linux-x64)
endif()
set(CPACK_PACKAGE_FILE_NAME "zorvane-${PROJECT_VERSION}-${package_system}")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The project has no mail address, but the field is mandatory.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Zorvane project <maintainers@zorvane.invalid>")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "python3, pgn-extract, parallel, rsync")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "chess engine that other programs drive, and analysis of games")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "\
Zorvane searches chess positions for any chess interface over UCI, for a host
application through request and response files, and for scripts from the
command line. The same position and limits give the same tree, to the last
node, on every machine.
.
zorvane-host searches many positions side by side, on one machine or many.
zorvane-analyse turns a PGN file into an annotated PGN and a page to look at.
Both need python3; the analysis needs pgn-extract.")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/prerm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
