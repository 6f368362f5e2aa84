#!/usr/bin/env bash
# Makes a Wine prefix whose programs use our property sheet interface: make_prefix.sh DIRECTORY COMPSTUI.DLL
# shellcheck source-path=SCRIPTDIR source=../../scripts/lib.sh
source "$(dirname -- "$0")/../../scripts/lib.sh"
scripts/wine-prefix.sh "$1"
use_own_compstui "$1" "$2"
