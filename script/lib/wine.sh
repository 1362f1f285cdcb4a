# shellcheck shell=bash
# Wine, for running the Windows programs here. Needs common.sh.

readonly wine=/usr/lib/wine/wine64
readonly wineserver=/usr/lib/wine/wineserver64

# Installs wine where it is missing, and sets up a Windows of its own in
# build/wine, without the parts that would ask or write elsewhere.
prepare_wine() {
  install_missing "$wine=wine64"
  export WINEPREFIX=$PWD/build/wine WINEARCH=win64 WINEDEBUG=-all
  export WINEDLLOVERRIDES='winemenubuilder.exe,mscoree,mshtml=d'
  export LC_ALL=C.UTF-8
  if [[ ! -e $WINEPREFIX/system.reg ]]; then
    mkdir -p "$WINEPREFIX"
    "$wine" wineboot -i </dev/null >/dev/null 2>&1
    "$wineserver" -w  # programs that start before all is set up may fail
  fi
}

# keep_wine PROGRAM
# Starts the server of that Windows and keeps it up until stop_wine, which
# makes programs start quickly. A server that still lingers is no good, it may
# know no screen. PROGRAM, run once with --status, brings up the services: they
# would otherwise hold on to the streams of the first program of a test.
keep_wine() {
  stop_wine
  "$wineserver" -p
  "$wine" "$1" --status </dev/null >/dev/null 2>&1
}

stop_wine() {
  "$wineserver" -k 2>/dev/null || true
}
