# shellcheck shell=bash
# Shell functions that the scripts share. Source it; it sets the shell's strict mode and moves to the repository root.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
cd -- "$root"
build="$root/build"
logs="$build/logs"
prefixes="$build/prefixes"
mkdir -p "$logs"

# The same language and no display on every machine: our Wine prefixes draw with the null driver.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY LANGUAGE LC_MESSAGES

step_number=0
step_total=0

# step LOG TEXT COMMAND [ARGUMENT ...]
# Runs the command as one step: one line on the terminal, everything else in build/logs/LOG.log. On failure the end of
# the log follows, and the step's status is returned.
step() {
  local log="$logs/$1.log" text=$2 status=0 begin=$SECONDS
  shift 2
  step_number=$((step_number + 1))
  printf '[%d/%d] %s ... ' "$step_number" "$step_total" "$text"
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if [ "$status" -eq 0 ]; then
    printf '%d s\n' "$((SECONDS - begin))"
    return 0
  fi
  printf 'FAILED (status %d)\n' "$status"
  echo "The last lines of ${log#"$root"/}:"
  tail -n 40 "$log" | sed 's/^/  | /'
  echo "Step failed: $text"
  return "$status"
}

die() {
  echo "$(basename -- "$0"): $*" >&2
  exit 1
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo -- "$@"
  fi
}

# wineserver PREFIX-DIRECTORY OPTION: -p keeps the prefix's server alive between programs, -k ends it.
wineserver() {
  WINEPREFIX=$1 WINEARCH=win64 WINEDEBUG=-all /usr/lib/wine/wineserver64 "$2"
}

# start_wineserver PREFIX-DIRECTORY: starts a server that stays, which saves every program the half second of starting
# one. The first program, which brings up Wine's services and with them never closes its output, has none.
start_wineserver() {
  wineserver "$1" -p
  TESSARY_PREFIX=$1 scripts/wine-run.sh cmd /c exit </dev/null >/dev/null 2>&1
}

# Ends the prefix's server, if there is one, and waits until its files are written.
stop_wineserver() {
  wineserver "$1" -k || true
  wineserver "$1" -w || true
}

# fresh_prefix NAME: build/prefixes/NAME becomes a new copy of the prepared prefix.
fresh_prefix() {
  local prefix="$prefixes/$1"
  if [ -e "$prefix" ]; then
    stop_wineserver "$prefix"
    rm -rf -- "$prefix"
  fi
  cp -a --reflink=auto -- "$prefixes/base" "$prefix"
}

# repair_documents PREFIX-DIRECTORY PRESET|DLL: has the prefix make XML documents with the preset's tools/domrepair, which
# brings Wine's to Windows' documented behaviour. Prefixes are made before it is built, and Wine sets the value back when
# it updates a prefix, so this comes at every start. Does nothing when the preset has not built it.
repair_documents() {
  local dll=$2
  [[ $dll == *.dll ]] || dll="$build/$2/bin/tsydomrepair.dll"
  [ -e "$dll" ] || return 0
  TESSARY_PREFIX=$1 scripts/wine-run.sh reg add \
    'HKLM\Software\Classes\CLSID\{88D96A05-F192-11D4-A65F-0040963251E5}\InprocServer32' \
    /ve /d "Z:${dll//\//\\}" /f </dev/null >/dev/null
}

# use_own_compstui PREFIX-DIRECTORY [COMPSTUI.DLL]: from here on the prefix's programs, and Windows' printing functions in
# them, show property sheets through our compstui.dll of the test and demo environment. The default is the release build's.
use_own_compstui() {
  local prefix=$1 dll=${2:-$build/mingw-release/bin/environment/compstui.dll}
  local installed="$prefix/drive_c/windows/system32/compstui.dll"
  # A program that runs keeps the file that it has.
  cp -- "$dll" "$installed.new" && mv -f -- "$installed.new" "$installed" &&
    TESSARY_PREFIX=$prefix scripts/wine-run.sh reg add 'HKCU\Software\Wine\DllOverrides' /v compstui /d native /f
}

display_server=

# start_display FILE LOG: starts a display server without a screen, sets DISPLAY, and keeps the display's number in FILE.
start_display() {
  local tries=300
  rm -f -- "$1"
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$1" >"$2" 2>&1 &
  display_server=$!
  # It writes the number when it is ready.
  until [ -s "$1" ] || [ "$tries" -eq 0 ]; do
    tries=$((tries - 1))
    sleep 0.1
  done
  [ -s "$1" ] || die "no display server: see $2"
  DISPLAY=:$(<"$1")
  export DISPLAY
}

stop_display() {
  [ -z "$display_server" ] || kill "$display_server" 2>/dev/null || true
}

# draw_on_display PREFIX-DIRECTORY: the prefix's programs draw on a display without a window manager, from the prefix's
# next server on.
draw_on_display() {
  TESSARY_PREFIX=$1 scripts/wine-run.sh reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d x11 /f >/dev/null &&
    TESSARY_PREFIX=$1 scripts/wine-run.sh reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
}
