#!/usr/bin/env bash
# Runs a Windows program in a prefix of make_prefix.sh and gives it a display: run_on_display.sh PREFIX PROGRAM.exe ...
# Fails as well when a program of the prefix has used property sheets against their contract.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/../../scripts/lib.sh"
prefix=$1
faults=$prefix/contract_faults.log
export TESSARY_PREFIX=$prefix TESSARY_APPLICATIONS="Z:$prefix" TESSARY_COMPSTUI_LOG="Z:$faults"

end() {
  stop_wineserver "$prefix"
  stop_display
}
trap end EXIT
rm -f -- "$faults"
start_display "$prefix/display" "$prefix/display.log"
# A server that is left from before has another display, and one that is left behind must not hold the output.
stop_wineserver "$prefix"
start_wineserver "$prefix" >/dev/null 2>&1
scripts/wine-run.sh "${@:2}"
[ ! -s "$faults" ] || { cat -- "$faults"; exit 1; }
