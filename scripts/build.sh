#!/usr/bin/env bash
# Configures and builds presets: build.sh PRESET ... [-- TARGET ...]
# The presets are those of CMakePresets.json. Targets, if any, are built in every preset named.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

presets=()
targets=()
while [ $# -gt 0 ]; do
  case $1 in
    --) shift; targets=("$@"); break ;;
    -*) die "unknown option $1" ;;
    *) presets+=("$1") ;;
  esac
  shift
done
[ "${#presets[@]}" -gt 0 ] || die "name at least one preset of CMakePresets.json"

build_preset() {
  local preset=$1 command=(cmake --build --preset "$1")
  [ "${#targets[@]}" -eq 0 ] || command+=(--target "${targets[@]}")
  "${command[@]}" || return 1
  copy_imported_printers "$preset"
}

# The importer runs natively. What it made goes beside the Windows programs, where the printer service looks.
copy_imported_printers() {
  local from="$build/native-tests/printers" to="$build/$1/bin/printers"
  case $1 in mingw-*) ;; *) return 0 ;; esac
  compgen -G "$from/*.json" >/dev/null || return 0
  mkdir -p "$to" && cp -pu -- "$from"/*.json "$to"
}

step_total=$((2 * ${#presets[@]}))
for preset in "${presets[@]}"; do
  step "configure-$preset" "configuring $preset" cmake --preset "$preset"
  step "build-$preset" "building $preset" build_preset "$preset"
done
