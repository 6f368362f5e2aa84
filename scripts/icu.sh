#!/usr/bin/env bash
# Builds ICU's converters for Windows as a static library in build/icu. Quick when they are there.
# The source is Debian's package of the version below, with Debian's patches. Only what the converters need is compiled.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"
source scripts/debian_source.sh

version=72.1
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
  cat -- scripts/icu.sh scripts/debian_source.sh scripts/icu/* | sha256sum
  "$cxx" -dumpfullversion
}

wanted=$(stamp)
if [ "$(cat -- "$icu/stamp" 2>/dev/null)" = "$wanted" ]; then
  echo "ICU $version is there"
  exit 0
fi
rm -rf -- "$work"
(fetch_source "$work" icu "$version")
(compile)
(install_files)
rm -rf -- "$icu"
mv -- "$work/icu" "$icu"
rm -rf -- "$work"
