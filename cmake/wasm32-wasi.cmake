# clang for WebAssembly with the system interface WASI, with Debian's wasi-libc and libc++ for it. To CMake the system is
# "Generic", as it knows no WASI.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
# Of the version that the libraries are for.
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_CXX_COMPILER_TARGET wasm32-wasi)
# Every browser since 2023 has the vector instructions.
set(CMAKE_CXX_FLAGS_INIT -msimd128)
# The stack comes first in memory, so that one that overflows traps instead of writing over data.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-z,stack-size=1048576 -Wl,--stack-first -Wl,--strip-all")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
