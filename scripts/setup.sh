#!/usr/bin/env bash
# Installs what building and testing need on Debian 12, builds ICU for Windows and makes the Wine prefixes. Quick when
# all is there.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

packages=(
  # Building
  g++-mingw-w64-x86-64-posix g++ cmake ninja-build git python3
  # Libraries and the test framework
  nlohmann-json3-dev libcli11-dev libspdlog-dev libfmt-dev googletest libicu-dev icu-devtools libexpat1-dev dpkg-dev
  # Pictures of the language libraries
  librsvg2-bin imagemagick
  # Printer descriptions for the importer
  libcups2-dev openprinting-ppds
  # Running Windows programs
  wine64 xvfb fonts-liberation fonts-wine fonts-wqy-microhei
  # Checking
  clang clang-tidy clang-format libclang-rt-14-dev shellcheck
)

missing_packages() {
  local package
  for package in "${packages[@]}"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
      echo "$package"
    fi
  done
}

apt_install() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}

# The package lists of a new machine may be absent or old, so they are fetched first. One more try, for a bad network.
install_packages() {
  as_root apt-get update || { sleep 5 && as_root apt-get update; } || return 1
  apt_install "$@" || { sleep 5 && as_root apt-get update && apt_install "$@"; }
}

make_prefix() {
  scripts/wine-prefix.sh "$prefixes/base" || { cat "$prefixes/base/setup.log"; return 1; }
}

step_total=5
mapfile -t missing < <(missing_packages)
if [ "${#missing[@]}" -eq 0 ]; then
  step setup-packages "packages (all installed)" true
else
  step setup-packages "installing ${#missing[@]} packages" install_packages "${missing[@]}"
fi
step setup-icu "ICU's converters for Windows" scripts/icu.sh
step setup-expat "Expat for Windows" scripts/expat.sh
step setup-prefix "Wine prefix" make_prefix
if [ -e "$prefixes/test/.ready" ]; then
  step setup-test-prefix "Wine prefix of the tests" true
else
  step setup-test-prefix "Wine prefix of the tests" fresh_prefix test
fi
