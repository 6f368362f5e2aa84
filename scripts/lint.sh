#!/usr/bin/env bash
# Checks sources and built files without running the tests: lint.sh [--changed | --all | --no-tidy]
# clang-tidy, the slow part, looks at the code that runs in users' processes; with --all also at tools, tests and
# benchmarks, with --changed only at what differs from the last commit, with --no-tidy at nothing. Every check runs, whatever failed before it; the
# status is non-zero unless all passed.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

tidy=()
with_tidy=1
while [ $# -gt 0 ]; do
  case $1 in
    --changed | --all) tidy=("$1") ;;
    --no-tidy) with_tidy=0 ;;
    *) die "unknown argument $1 (lint.sh [--changed | --all | --no-tidy])" ;;
  esac
  shift
done

# Files of the working tree that git tracks or would track.
mapfile -d '' -t files < <(git ls-files -z --cached --others --exclude-standard --deduplicate)
sources=()
pythons=()
shells=()
for file in "${files[@]}"; do
  [ -f "$file" ] || continue
  case $file in
    *.h | *.cpp) sources+=("$file") ;;
    *.py) pythons+=("$file") ;;
    *.sh | .ci/run) shells+=("$file") ;;
  esac
done

check_python() {
  local file
  for file in "${pythons[@]}"; do
    # Parsing alone leaves no byte code behind.
    python3 -c 'import ast, sys; ast.parse(open(sys.argv[1], encoding="utf-8").read(), sys.argv[1])' "$file" || return 1
  done
}

failed=0
check() {
  step "$@" || failed=$((failed + 1))
}

step_total=$((6 + with_tidy))
check lint-text "text rules of ${#files[@]} files" python3 scripts/lint_text.py "${files[@]}"
check lint-format "format of ${#sources[@]} C++ files" clang-format --dry-run --Werror "${sources[@]}"
check lint-shell "${#shells[@]} shell scripts" shellcheck -x "${shells[@]}"
check lint-python "${#pythons[@]} Python scripts" check_python
# The rest looks at what the builds made.
if bash scripts/build.sh native-tests mingw-release; then
  check lint-pe "built Windows files" python3 scripts/lint_pe.py "$build/mingw-release/bin" module/tsyprui.def
  check lint-templates "dialog templates" python3 -B language/check_templates.py --header language/resource_ids.h \
    --controls language/template_controls.txt "$build"/mingw-release/bin/tsyprUI_*.dll
  [ "$with_tidy" -eq 0 ] || check lint-tidy "clang-tidy" python3 scripts/lint_tidy.py "${tidy[@]}"
else
  failed=$((failed + 1))
fi
[ "$failed" -eq 0 ] || echo "$failed checks failed; everything they said is in build/logs/lint-*.log"
[ "$failed" -eq 0 ]
