#!/usr/bin/env bash
# Makes a Wine prefix with our property sheets, a display to draw on, and the driver with printers that print to the
# prefix's printed.ps: make_prefix.sh DIRECTORY BIN-DIRECTORY
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/../../scripts/lib.sh"
prefix=$1 bin=$2
export TESSARY_PREFIX=$prefix

tests/compstui/make_prefix.sh "$prefix" "$bin/environment/compstui.dll"
repair_documents "$prefix" "$bin/tsydomrepair.dll"
draw_on_display "$prefix"
# The spooler keeps the driver of an earlier build that has the same version.
scripts/wine-run.sh "$bin/printctl.exe" remove
scripts/wine-run.sh "$bin/printctl.exe" install --port "$prefix/printed.ps"
stop_wineserver "$prefix"
