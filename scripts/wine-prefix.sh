#!/bin/sh
# Makes a disposable Wine prefix ready for our programs: wine-prefix.sh DIRECTORY
# Does nothing when the prefix is there already and no older than this script. Programs in it need no display.
# What Wine says while it sets up is in DIRECTORY/setup.log.
set -eu
prefix=$1
[ -n "$(find "$prefix/.ready" -newer "$0" 2>/dev/null)" ] && exit 0
rm -rf -- "$prefix"
mkdir -p "$prefix"
root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
export TESSARY_PREFIX="$prefix" WINEPREFIX="$prefix"
run() { WINEDLLOVERRIDES='mscoree=d;mshtml=d' "$root/scripts/wine-run.sh" "$@" >>"$prefix/setup.log" 2>&1; }
run wineboot -i
# No display needed, and Windows 10 reported as the version.
run reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
run reg add 'HKCU\Software\Wine' /v Version /d win10 /f
# The serif face of the real fonts instead of whatever Wine finds first.
run reg add 'HKCU\Software\Wine\Fonts\Replacements' /v 'Times New Roman' /d 'Liberation Serif' /f
# The fonts of dialogs and of window buttons: Debian's Wine does not find its own.
cp /usr/share/wine/fonts/tahoma.ttf /usr/share/wine/fonts/tahomabd.ttf /usr/share/wine/fonts/marlett.ttf \
  "$prefix/drive_c/windows/Fonts"
# Chinese, Japanese and Korean: one font for the four that dialogs have in these languages. In all others Windows takes
# characters that the dialogs' font lacks from the Japanese font's file.
for face in 'MS UI Gothic' SimSun PMingLiU Gulim; do
  run reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$face" /d 'WenQuanYi Micro Hei' /f
done
ln -s /usr/share/fonts/truetype/wqy/wqy-microhei.ttc "$prefix/drive_c/windows/Fonts/msgothic.ttc"
/usr/lib/wine/wineserver64 -k || true
/usr/lib/wine/wineserver64 -w || true
touch "$prefix/.ready"
