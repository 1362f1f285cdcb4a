# shellcheck shell=bash
# Runs Windows programs under wine. Needs common.sh.

readonly wine_attempts=3
readonly wine_start_s=120

# find_wine NAME
# Prints the path of one of wine's programs: Debian does not put them in PATH.
find_wine() {
  command -v "$1" || dpkg -L wine64 2>/dev/null | grep -m 1 "/$1\$"
}

# Installs wine if it is missing and sets its environment. The Windows folder is
# build/wine; parts that would ask questions or write elsewhere are disabled.
prepare_wine() {
  install_missing "$(find_wine wine64)=wine64"
  wine=$(find_wine wine64)
  wineserver=$(find_wine wineserver64)
  export WINEPREFIX=$PWD/build/wine WINEARCH=win64 WINEDEBUG=-all
  export WINEDLLOVERRIDES='winemenubuilder.exe,mscoree,mshtml=d'
  export LC_ALL=C.UTF-8
}

# Sets up that folder and starts wine. On a busy machine wine sometimes fails to
# start: only this is retried. Any later failure is a real one.
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

# Starts the server and keeps it running until stop_wine, so that programs start
# quickly. A server left over from before is stopped first: it may not have a
# screen. Then one of wine's own programs has to answer, on the console and as
# the desktop starts it. This also starts the services, which would otherwise
# keep the streams of a test's first program open.
try_wine() {
  local answer=build/wine.answer
  stop_wine
  if [[ ! -e $WINEPREFIX/system.reg ]]; then
    mkdir -p "$WINEPREFIX"
    timeout "$wine_start_s" "$wine" wineboot -i </dev/null >/dev/null 2>&1 || return 1
    timeout "$wine_start_s" "$wineserver" -w || return 1  # programs started before setup ends may fail
  fi
  "$wineserver" -p || return 1
  timeout "$wine_start_s" "$wine" cmd /c echo ready </dev/null >"$answer" 2>&1 || return 1
  grep -q '^ready' "$answer" || return 1
  timeout "$wine_start_s" "$wine" start /wait cmd /c exit 0 </dev/null >/dev/null 2>&1
}

stop_wine() {
  "$wineserver" -k 2>/dev/null || true
}
