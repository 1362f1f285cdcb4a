# CPack runs this on the files of a package before it packs them.
set(files "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")

set(packed)
if(CPACK_GENERATOR STREQUAL "DEB")
  set(documents "${files}/usr/share/doc/zorvane")
  execute_process(
    COMMAND "${CMAKE_CURRENT_LIST_DIR}/debian/changelog" ${CPACK_PACKAGE_VERSION} "${CPACK_DEBIAN_PACKAGE_MAINTAINER}"
    INPUT_FILE "${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md" OUTPUT_FILE "${documents}/changelog"
    COMMAND_ERROR_IS_FATAL ANY)
  list(APPEND packed "${documents}/changelog")
  file(COPY "${CMAKE_CURRENT_LIST_DIR}/debian/copyright" DESTINATION "${documents}")
  file(MAKE_DIRECTORY "${files}/usr/share/lintian/overrides")
  file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/debian/lintian-overrides" "${files}/usr/share/lintian/overrides/zorvane")
endif()

file(GLOB manuals "${files}/share/man/man1/*.1" "${files}/usr/share/man/man1/*.1")
list(APPEND packed ${manuals})
if(packed)
  execute_process(COMMAND gzip -9n ${packed} COMMAND_ERROR_IS_FATAL ANY)
endif()

# Packages of the same commit are identical, whenever they are made.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch -h -d "@$ENV{SOURCE_DATE_EPOCH}" {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
