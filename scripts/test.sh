#!/usr/bin/env bash
# Sets the machine up, builds every preset and runs its tests: test.sh [--preset PRESET] ... [-R REGEX]
# --preset limits the run to a preset, -R to the test programs whose names match. A failure in one preset does not keep
# the others from running. The last line counts the single tests; the status is non-zero unless all passed.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

presets=()
filter=()
while [ $# -gt 0 ]; do
  case $1 in
    --preset) [ $# -ge 2 ] || die "--preset needs a name"; presets+=("$2"); shift ;;
    -R) [ $# -ge 2 ] || die "-R needs a regular expression"; filter=(-R "$2"); shift ;;
    *) die "unknown argument $1 (test.sh [--preset PRESET] ... [-R REGEX])" ;;
  esac
  shift
done
# The native build comes first: its importer makes printer profiles that the Windows tests read.
[ "${#presets[@]}" -gt 0 ] || presets=(native-tests native-tests-tsan native-fuzz mingw-release mingw-debug)

export ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS=second_deadlock_stack=1

results_of() {
  echo "$build/$1/test-results"
}

# Every test program leaves a report of its own in the results folder, and CTest one about the programs.
run_tests() {
  local preset=$1 results report
  results=$(results_of "$preset")
  report=$results/programs
  # Windows programs take a path to be absolute only when it has a drive; Z: is the root of the file system.
  case $preset in mingw-*) report=Z:$report ;; esac
  # Where processes start and die quickly, they are killed more often.
  case $preset in native-*) export TESSARY_KILLS=200 ;; *) unset TESSARY_KILLS ;; esac
  ctest --preset "$preset" "${filter[@]}" --show-only=json-v1 >"$results/listing.json" || return 1
  # The tests that go over all printers want these among theirs.
  export TESSARY_IMPORTED_PRINTERS=0
  local printer
  for printer in "$build/native-tests/printers"/*.json; do
    [ ! -e "$build/$preset/bin/printers/${printer##*/}" ] || TESSARY_IMPORTED_PRINTERS=$((TESSARY_IMPORTED_PRINTERS + 1))
  done
  GTEST_OUTPUT="json:$report/" ctest --preset "$preset" "${filter[@]}" --output-junit "$results/ctest.xml"
}

# Builds the presets one after the other. That runs beside the tests, and gives way to them: the tests of one preset leave
# much of the processors idle, and the build of the next one can use it.
build_presets() {
  local preset outcome results
  for preset in "${presets[@]}"; do
    results=$(results_of "$preset")
    outcome=built
    nice -n 10 bash scripts/build.sh "$preset" >"$results/build.log" 2>&1 || outcome=failed
    # Renamed: whoever sees the file can read it.
    echo "$outcome" >"$results/outcome.new"
    mv -- "$results/outcome.new" "$results/outcome"
  done
}

wait_for_build() {
  local results
  results=$(results_of "$1")
  while [ ! -e "$results/outcome" ] && [ -n "$(jobs -pr)" ]; do
    sleep 0.2
  done
  cat "$results/build.log"
  [ "$(cat "$results/outcome")" = built ]
}

test_preset() {
  local preset=$1
  if ! step "wait-$preset" "building $preset" wait_for_build "$preset"; then
    touch "$(results_of "$preset")/build-failed"
    return 1
  fi
  case $preset in mingw-*) repair_documents "$prefixes/test" "$preset" ;; esac
  step "test-$preset" "testing $preset" run_tests "$preset"
}

clean_up() {
  stop_wineserver "$prefixes/test"
  # The build's whole process group, unless it has ended: its number may be somebody else's by now.
  [ -z "$(jobs -pr)" ] || kill -- "-$builder" 2>/dev/null || true
}

bash scripts/setup.sh
for preset in "${presets[@]}"; do
  results=$(results_of "$preset")
  rm -rf -- "$results"
  mkdir -p "$results/programs"
done
fresh_prefix test
# With job control on, the build gets a process group of its own.
set -m
build_presets </dev/null &
builder=$!
set +m
trap clean_up EXIT
start_wineserver "$prefixes/test"

step_total=$((2 * ${#presets[@]}))
for preset in "${presets[@]}"; do
  test_preset "$preset" || true
done
clean_up
trap - EXIT

report=()
for preset in "${presets[@]}"; do
  report+=("$preset=$(results_of "$preset")")
done
# With a filter a preset may have nothing to run; without one that is a fault.
[ "${#filter[@]}" -gt 0 ] || report=(--expect-tests "${report[@]}")
exec python3 scripts/test_report.py "${report[@]}"
