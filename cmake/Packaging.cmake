# `cmake --install`, and the packages that script/package makes of it.
if(WIN32)
  set(program_folder .)
  set(document_folder .)
else()
  set(program_folder ${CMAKE_INSTALL_BINDIR})
  set(document_folder ${CMAKE_INSTALL_DOCDIR})
endif()
install(PROGRAMS $<TARGET_FILE:zorvane> DESTINATION ${program_folder}
  RENAME ${ZORVANE_INSTALL_NAME}${CMAKE_EXECUTABLE_SUFFIX})
# README refers to these as docs/... and tools/...; the tools look for their modules, and for the program, from there.
install(FILES README.md DESTINATION ${document_folder})
install(FILES docs/request-protocol.md docs/performance.md docs/nodes-per-second.svg docs/time-to-depth.svg
  docs/analysis-page.png
  DESTINATION ${document_folder}/docs)
install(PROGRAMS tools/zorvane-host tools/zorvane-analyse DESTINATION ${document_folder}/tools)
install(FILES tools/zorvane_batch.py tools/zorvane_requests.py tools/zorvane_pgn.py tools/zorvane-analyse.html.j2
  DESTINATION ${document_folder}/tools)

set(ZORVANE_PACKAGE_WITH "" CACHE PATH "Another build folder whose program goes into the package as well")

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(package_system windows-x64)
else()
  set(CPACK_GENERATOR TGZ)
  set(package_system linux-x64)
endif()
set(CPACK_PACKAGE_NAME zorvane)
set(CPACK_PACKAGE_FILE_NAME "zorvane-${PROJECT_VERSION}-${package_system}")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};zorvane;ALL;/")
if(ZORVANE_PACKAGE_WITH)
  list(APPEND CPACK_INSTALL_CMAKE_PROJECTS "${ZORVANE_PACKAGE_WITH};zorvane;ALL;/")
endif()
include(CPack)
