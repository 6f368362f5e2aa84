#!/usr/bin/env bash
# Builds ICU's converters for Windows as a static library in build/icu. Quick when they are there.
# The source is Debian's package at the version below, fetched with apt from the machine's own mirrors through lists and
# settings below build/icu-work, so that the machine's own are not touched. Only what the converters need is compiled.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

version=72.1-3+deb12u1
icu="$build/icu"
work="$build/icu-work" # everything is made here and then takes the place of build/icu
cxx=x86_64-w64-mingw32-g++-posix
ar=x86_64-w64-mingw32-gcc-ar-posix
# The tables of the code pages 1252, 932, 936, 949, 950 and 54936, and the ones that three of them build on.
tables=(ibm-5348_P100-1997 ibm-943_P15A-2003 windows-936-2000 ibm-1386_P100-2001 windows-949-2000 ibm-1363_P11B-1998
  windows-950-2000 ibm-1373_P100-2002 gb18030)
flags=(-std=gnu++17 -O2 -g0 -ffunction-sections -fdata-sections -fstack-protector-strong -D_WIN32_WINNT=0x0A00 -DNDEBUG
  -DU_STATIC_IMPLEMENTATION -DU_COMMON_IMPLEMENTATION -DU_ATTRIBUTE_DEPRECATED= -DUCONFIG_NO_FILE_IO=1
  -DUCONFIG_ONLY_HTML_CONVERSION=1)

# apt with everything that it writes in the work folder. Without the word about the sandbox, root would become a user
# who may not look into it.
private_apt() {
  apt-get -q -o Dir::Etc::sourcelist="$work/apt/icu.list" -o Dir::Etc::sourceparts=- \
    -o Dir::State::lists="$work/apt/lists" -o Dir::Cache="$work/apt/cache" -o APT::Sandbox::User=root \
    -o Acquire::Languages=none -o Acquire::Retries=3 "$@"
}

# The machine's mirrors of Debian itself, as lines that offer sources.
list_sources() {
  local codename
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  # shellcheck disable=SC2016 # the fields are apt's
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
    awk -v codename="$codename" '$3 == "main" && ($2 == codename || $2 == codename "-security") &&
      !seen[$0]++ { print "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]", $0 }'
}

fetch() {
  mkdir -p "$work"/apt/{lists,cache/archives}/partial "$work/source"
  list_sources >"$work/apt/icu.list"
  private_apt update
  cd -- "$work/source"
  private_apt source --only-source "icu=$version" ||
    die "no source package icu $version; the mirrors offer: $(private_apt source --print-uris icu | head -n 1)"
  mv -- icu-*/ unpacked
}

make_data() {
  local whole="$work/source/unpacked/source/data/in/icudt72l.dat" name
  mkdir -p "$work/data"
  for name in "${tables[@]}"; do
    icupkg -d "$work/data" -x "$name.cnv" "$whole"
    echo "$name.cnv"
  done >"$work/data/tables.txt"
  icupkg -s "$work/data" -a "$work/data/tables.txt" new "$work/data/icudt72l.dat"
  genccode -q -a gcc-mingw64 -n icudt72 -e icudt72 -d "$work/data" "$work/data/icudt72l.dat"
  "$cxx" -c "$work/data/icudt72l_dat.S" -o "$work/objects/icudt72l_dat.o"
}

compile() {
  local common="$work/source/unpacked/source/common" name
  mkdir -p "$work/objects"
  make_data
  while read -r name; do
    printf '%s\0' "$common/$name.cpp"
  done <scripts/icu/sources.txt >"$work/objects/list"
  printf '%s\0' "$root/scripts/icu/absent.cpp" >>"$work/objects/list"
  (cd -- "$work/objects" &&
    xargs -0 -n 1 -P "$(nproc)" "$cxx" "${flags[@]}" "-I$common" -c <list)
}

install_files() {
  local unpacked="$work/source/unpacked"
  mkdir -p "$work"/icu/{lib,include}
  "$ar" rcs "$work/icu/lib/libicuconverters.a" "$work"/objects/*.o
  cp -r -- "$unpacked/source/common/unicode" "$work/icu/include"
  cp -- "$unpacked/LICENSE" "$work/icu"
  echo "$wanted" >"$work/icu/stamp"
}

# What the result depends on: the package, this script and its files, and the compiler.
stamp() {
  echo "$version"
  cat -- scripts/icu.sh scripts/icu/* | sha256sum
  "$cxx" -dumpfullversion
}

wanted=$(stamp)
if [ "$(cat -- "$icu/stamp" 2>/dev/null)" = "$wanted" ]; then
  echo "ICU $version is there"
  exit 0
fi
rm -rf -- "$work"
(fetch)
(compile)
(install_files)
rm -rf -- "$icu"
mv -- "$work/icu" "$icu"
rm -rf -- "$work"
