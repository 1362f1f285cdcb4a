# clang for Windows, with headers and libraries from Debian's mingw-w64, in the variant that uses native Windows threads:
# the one with POSIX threads would need a DLL. clang does not find that variant by itself.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
execute_process(COMMAND x86_64-w64-mingw32-g++-win32 -print-libgcc-file-name
  OUTPUT_VARIABLE mingw_libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(mingw_libraries ${mingw_libgcc} DIRECTORY)
set(CMAKE_CXX_FLAGS_INIT
  "-isystem ${mingw_libraries}/include/c++ -isystem ${mingw_libraries}/include/c++/x86_64-w64-mingw32")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -L${mingw_libraries} -B${mingw_libraries}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
