# shellcheck shell=bash
# Wine, for running the Windows programs here. Needs common.sh.

readonly wine_attempts=3
readonly wine_start_s=120

# find_wine NAME
# Where a program of wine is: Debian keeps them off the path.
find_wine() {
  command -v "$1" || dpkg -L wine64 2>/dev/null | grep -m 1 "/$1\$"
}

# Installs wine where it is missing; its Windows will be in build/wine, without
# the parts that would ask or write elsewhere.
prepare_wine() {
  install_missing "$(find_wine wine64)=wine64"
  wine=$(find_wine wine64)
  wineserver=$(find_wine wineserver64)
  export WINEPREFIX=$PWD/build/wine WINEARCH=win64 WINEDEBUG=-all
  export WINEDLLOVERRIDES='winemenubuilder.exe,mscoree,mshtml=d'
  export LC_ALL=C.UTF-8
}

# Sets up that Windows and starts it. On a busy machine wine at times does not
# come up: only that is tried again. What fails afterwards is a fault.
start_wine() {
  local attempt
  for ((attempt = 1; attempt <= wine_attempts; attempt++)); do
    try_wine && return
    echo "wine did not start, attempt $attempt of $wine_attempts" >&2
    stop_wine
    rm -rf "$WINEPREFIX"
  done
  fail "wine does not start"
}

# Starts the server and keeps it up until stop_wine, which makes programs start
# quickly. A server that still lingers is no good, it may know no screen. Then
# a program of wine's own has to answer, on the console and as the desktop
# starts it. It also brings up the services, which would otherwise hold on to
# the streams of the first program of a test.
try_wine() {
  local answer=build/wine.answer
  stop_wine
  if [[ ! -e $WINEPREFIX/system.reg ]]; then
    mkdir -p "$WINEPREFIX"
    timeout "$wine_start_s" "$wine" wineboot -i </dev/null >/dev/null 2>&1 || return 1
    timeout "$wine_start_s" "$wineserver" -w || return 1  # programs that start before all is set up may fail
  fi
  "$wineserver" -p || return 1
  timeout "$wine_start_s" "$wine" cmd /c echo ready </dev/null >"$answer" 2>&1 || return 1
  grep -q '^ready' "$answer" || return 1
  timeout "$wine_start_s" "$wine" start /wait cmd /c exit 0 </dev/null >/dev/null 2>&1
}

stop_wine() {
  "$wineserver" -k 2>/dev/null || true
}
