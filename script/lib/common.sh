# shellcheck shell=bash
# Shared by all scripts. Source it first: it changes to the root of the repository.

cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 1

# Prints a message and ends the script.
fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# install_missing PROBE=PACKAGE ...
# Installs the Debian packages whose probe is missing. A probe is a command, or a
# file if it begins with a slash. Never asks; names on standard error what it
# installs. With ZORVANE_NO_INSTALL set it names the packages and fails instead.
install_missing() {
  local missing=() need probe
  for need in "$@"; do
    probe=${need%%=*}
    if [[ $probe == /* ]]; then
      [[ -e $probe ]] || missing+=("${need#*=}")
    elif ! command -v "$probe" >/dev/null; then
      missing+=("${need#*=}")
    fi
  done
  ((${#missing[@]})) || return 0
  if [[ -n ${ZORVANE_NO_INSTALL:-} ]] || ! command -v apt-get >/dev/null; then
    fail "please install: ${missing[*]}"
  fi

  local as_root=() apt_get=(env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300)
  if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "please install as root: ${missing[*]}"
    as_root=(sudo)
  fi
  echo "installing ${missing[*]}" >&2
  "${as_root[@]}" "${apt_get[@]}" update >&2
  "${as_root[@]}" "${apt_get[@]}" install -y --no-install-recommends "${missing[@]}" >&2
}

# What building needs. Configuring includes the tests, so their libraries are
# among it.
install_build_tools() {
  install_missing cmake=cmake ninja=ninja-build clang++=clang ld.lld=lld \
    python3=python3 /usr/include/gtest/gtest.h=libgtest-dev
}

# The fuzzer runtime must be where clang looks for it.
install_fuzz_tools() {
  install_build_tools
  install_missing "$(clang++ -print-resource-dir)/lib/linux/libclang_rt.fuzzer-x86_64.a=libclang-rt-dev"
}

# mingw-w64 in the variant that uses native Windows threads.
install_windows_tools() {
  install_build_tools
  install_missing x86_64-w64-mingw32-g++-win32=g++-mingw-w64-x86-64-win32
}

# clang, its runtime and libc++ for WebAssembly are of one version.
install_wasm_tools() {
  install_build_tools
  install_missing clang++-14=clang-14 /usr/lib/wasm32-wasi/libc.a=wasi-libc \
    /usr/lib/wasm32-wasi/libc++.a=libc++-14-dev-wasm32 /usr/lib/wasm32-wasi/libc++abi.a=libc++abi-14-dev-wasm32 \
    /usr/lib/llvm-14/lib/clang/14.0.6/lib/wasi/libclang_rt.builtins-wasm32.a=libclang-rt-14-dev-wasm32
}

# The packages of web/, in the versions of its lock file.
install_web_packages() {
  install_missing node=nodejs npm=npm
  if [[ ! web/node_modules/.package-lock.json -nt web/package-lock.json ]]; then
    npm ci --prefix web >&2
  fi
}

# What running the tests needs besides the build tools.
install_test_tools() {
  install_missing parallel=parallel /usr/games/pgn-extract=pgn-extract
}

# configure PRESET [CMAKE_ARGUMENT ...]
# Prints nothing unless it fails: standard output belongs to the program that a
# script runs afterwards.
configure() {
  local log
  if ! log=$(cmake --preset "$@" 2>&1); then
    echo "$log" >&2
    fail "cannot configure $1"
  fi
}

# build PRESET [TARGET ...]
# Configures and builds the targets, all by default. Output goes to standard error.
build() {
  local preset=$1
  shift
  configure "$preset"
  cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}
