#!/bin/sh
# Makes a disposable Wine prefix ready for our programs: wine-prefix.sh DIRECTORY
# Does nothing when the prefix is there already. Programs in it need no display.
# What Wine says while it sets up is in DIRECTORY/setup.log.
set -eu
prefix=$1
[ -e "$prefix/.ready" ] && exit 0
rm -rf -- "$prefix"
mkdir -p "$prefix"
root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
export TESSARY_PREFIX="$prefix" WINEPREFIX="$prefix"
run() { WINEDLLOVERRIDES='mscoree=d;mshtml=d' "$root/scripts/wine-run.sh" "$@" >>"$prefix/setup.log" 2>&1; }
run wineboot -i
# No display needed, and Windows 10 reported as the version.
run reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
run reg add 'HKCU\Software\Wine' /v Version /d win10 /f
# The serif face of the real fonts instead of whatever Wine finds first.
run reg add 'HKCU\Software\Wine\Fonts\Replacements' /v 'Times New Roman' /d 'Liberation Serif' /f
/usr/lib/wine/wineserver64 -k || true
/usr/lib/wine/wineserver64 -w || true
touch "$prefix/.ready"
