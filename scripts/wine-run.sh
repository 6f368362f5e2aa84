#!/bin/sh
# Runs a Windows program in a disposable Wine prefix: wine-run.sh PROGRAM.exe [ARGUMENT ...]
# TESSARY_PREFIX names the prefix; the default is the one the tests use (scripts/setup.sh makes it).
root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
export WINEPREFIX="${TESSARY_PREFIX:-$root/build/prefixes/test}"
export WINEARCH=win64
export WINEDEBUG="${WINEDEBUG:--all}"
# Without winedbg a crash ends the program with a failing exit code instead of sometimes with 0.
export WINEDLLOVERRIDES="winedbg.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
if [ ! -d "$WINEPREFIX" ]; then
  echo "wine-run.sh: no Wine prefix at $WINEPREFIX: run scripts/setup.sh" >&2
  exit 1
fi
# The first program starts Wine's services, and these keep its output open: a test runner that waits for the end of the
# output would hang. So a first program of ours starts them, with no output at all.
if [ -e "$WINEPREFIX/system.reg" ] && ! /usr/lib/wine/wineserver64 -k0 2>/dev/null; then
  /usr/lib/wine/wine64 cmd /c exit </dev/null >/dev/null 2>&1
fi
exec /usr/lib/wine/wine64 "$@"
