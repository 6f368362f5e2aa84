#!/usr/bin/env bash
# Makes a Wine prefix whose programs use our property sheet interface: make_prefix.sh DIRECTORY COMPSTUI.DLL
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/../../scripts/lib.sh"
# A copy of the prepared prefix, where there is one, is quicker than a new prefix.
if [ ! -e "$1/.ready" ] && [ -e "$prefixes/base/.ready" ]; then
  rm -rf -- "$1"
  mkdir -p "$(dirname -- "$1")"
  cp -a --reflink=auto -- "$prefixes/base" "$1"
fi
scripts/wine-prefix.sh "$1"
use_own_compstui "$1" "$2"
