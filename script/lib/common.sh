# shellcheck shell=bash
# What the scripts share. Source it first: it moves to the repository's folder.

cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 1

# Ends the script with a message.
fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# install_missing PROBE=PACKAGE ...
# Installs the Debian packages whose probe is absent. A probe is a command, or
# a file when it begins with a slash. Asks nothing; says what it installs on
# standard error. With ZORVANE_NO_INSTALL set it fails instead and names them.
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

# What building needs. A build is not configured without its tests, so their
# tools belong to it.
install_build_tools() {
  install_missing cmake=cmake ninja=ninja-build clang++=clang ld.lld=lld \
    python3=python3 /usr/include/gtest/gtest.h=libgtest-dev
}

# The runtime of the fuzz targets lies where clang looks for it.
install_fuzz_tools() {
  install_build_tools
  install_missing "$(clang++ -print-resource-dir)/lib/linux/libclang_rt.fuzzer-x86_64.a=libclang-rt-dev"
}

# The variant of mingw-w64 with the threads of Windows itself.
install_windows_tools() {
  install_build_tools
  install_missing x86_64-w64-mingw32-g++-win32=g++-mingw-w64-x86-64-win32
}

# What running the tests needs, beside the build tools.
install_test_tools() {
  install_missing parallel=parallel \
    /usr/games/pgn-extract=pgn-extract /usr/lib/python3/dist-packages/jinja2=python3-jinja2
}

# configure PRESET [CMAKE_ARGUMENT ...]
# Quiet unless it fails: standard output stays free for the program that a
# script runs afterwards.
configure() {
  local log
  if ! log=$(cmake --preset "$@" 2>&1); then
    echo "$log" >&2
    fail "cannot configure $1"
  fi
}

# build PRESET [TARGET ...]
# Configures and builds, all of the preset by default, on standard error.
build() {
  local preset=$1
  shift
  configure "$preset"
  cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}
