#!/usr/bin/env bash
# Builds the benchmark and runs it under Wine: bench.sh [ARGUMENT OF THE BENCHMARK ...]
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

bash scripts/setup.sh
bash scripts/build.sh mingw-release -- bench

trap 'stop_wineserver "$prefixes/bench"' EXIT
fresh_prefix bench
start_wineserver "$prefixes/bench"
export TESSARY_PREFIX="$prefixes/bench"
scripts/wine-run.sh "$build/mingw-release/bin/bench.exe" "$@"
