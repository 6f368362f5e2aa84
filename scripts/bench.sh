#!/usr/bin/env bash
# Builds a benchmark and runs it under Wine: bench.sh [--lib] [ARGUMENT OF THE BENCHMARK ...]
# With --lib the one of the base library, else the module's.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

program=bench
if [ "${1-}" = --lib ]; then
  program=bench_lib
  shift
fi

bash scripts/setup.sh
bash scripts/build.sh mingw-release -- "$program"

trap 'stop_wineserver "$prefixes/bench"' EXIT
fresh_prefix bench
start_wineserver "$prefixes/bench"
repair_documents "$prefixes/bench" mingw-release
export TESSARY_PREFIX="$prefixes/bench"
scripts/wine-run.sh "$build/mingw-release/bin/$program.exe" "$@"
