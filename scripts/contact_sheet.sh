#!/usr/bin/env bash
# Shows every page of the printing preferences in every language, at 100 and at 150 %, in one picture:
# build/contact_sheet.png. A row is a language, a column a page; the single pictures are in build/page_pictures.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"

pictures="$build/page_pictures"
bin="$build/mingw-release/bin"
export TESSARY_PREFIX="$prefixes/pictures"

take_pictures() {
  local folder=$1 texts code locale
  for texts in language/strings/*.txt; do
    code=$(basename -- "$texts" .txt)
    # The user's language, which the system's own buttons are in: de_DE for de_de_407.
    locale=${code%_*}
    locale=${locale%_*}_$(tr '[:lower:]' '[:upper:]' <<<"${locale#*_}")
    mkdir -p "$folder/$code"
    LC_ALL=$locale.UTF-8 scripts/wine-run.sh "$bin/page_pictures.exe" "Z:$bin/tsyprUI_$code.dll" "Z:$folder/$code" ||
      return 1
  done
}

# Changes take effect with the next server.
set_resolution() {
  scripts/wine-run.sh reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$1" /f || return 1
  stop_wineserver "$TESSARY_PREFIX"
}

# All rows of a resolution are as wide as the widest page: fonts differ.
join_pictures() {
  local scale
  for scale in 100 150; do
    montage-im6.q16 -background gray50 -geometry +4+4 -tile 5x "$pictures/$scale"/*/[1-5].bmp "$pictures/$scale.png" ||
      return 1
  done
  convert-im6.q16 -background gray50 "$pictures/100.png" "$pictures/150.png" -append "$build/contact_sheet.png"
}

step_total=5
bash scripts/setup.sh
bash scripts/build.sh mingw-release -- page_pictures language_libraries
rm -rf -- "$pictures"
step contact-prefix "Wine prefix of the pictures" fresh_prefix pictures
trap 'stop_wineserver "$TESSARY_PREFIX"' EXIT
step contact-100 "pictures at 100 %" take_pictures "$pictures/100"
step contact-resolution "resolution of 150 %" set_resolution 144
step contact-150 "pictures at 150 %" take_pictures "$pictures/150"
step contact-sheet "contact sheet" join_pictures
echo "The contact sheet is ${build#"$root"/}/contact_sheet.png"
