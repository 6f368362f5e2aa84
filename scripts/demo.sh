#!/usr/bin/env bash
# Shows the driver module at work, from nothing: builds it, imports a real printer, installs driver and printers in a
# new Wine prefix, asks Windows' printing functions about them, converts print tickets, and lets a
# user (a program) change the printing preferences in the dialog, of which it takes pictures.
# shellcheck source-path=SCRIPTDIR
source "$(dirname -- "$0")/lib.sh"
[ $# -eq 0 ] || die "takes no arguments"

heading() {
  printf '\n== %s\n\n' "$*"
}

# Shows a command as the reader would type it, then its output.
show_printctl() {
  local argument shown=printctl
  for argument in "$@"; do
    case $argument in *[!A-Za-z0-9=:._-]*) argument="\"$argument\"" ;; esac
    shown+=" $argument"
  done
  printf '> %s\n' "$shown"
  printctl "$@"
}

printctl() {
  scripts/wine-run.sh "$build/mingw-release/bin/printctl.exe" "$@"
}

heading "Set-up and build"
bash scripts/setup.sh
bash scripts/build.sh native-tests -- imported_printers
bash scripts/build.sh mingw-release -- printctl tsyprui tsyprserverapi language_libraries tsydomrepair compstui \
  preferences_user

heading "The printers"
# The imported printer, and the same one with an administrator's lock on two-sided printing.
mapfile -t names < <(python3 scripts/demo_printers.py "$build/native-tests/printers" "$build/demo/printers")
printer=${names[0]} locked=${names[1]} unlike_duplex=${names[2]} unlike_paper=${names[3]} media=${names[4]}
media_name=${names[5]}
echo "\"$printer\" is a real printer, imported from the description that its maker publishes."
echo "\"$locked\" is the same printer with two-sided printing locked."

prefix="$prefixes/demo"
fresh_prefix demo
end() {
  stop_wineserver "$prefix"
  stop_display
}
trap end EXIT
start_wineserver "$prefix"
repair_documents "$prefix" mingw-release
export TESSARY_PREFIX=$prefix
# Everything that the module has to say; without this value the log holds failures and the main events only.
scripts/wine-run.sh reg add 'HKLM\Software\Zelmora\Tessary\PrintRedir' /v LogLevel /d verbose /f >/dev/null

heading "One command installs the driver and its printers"
show_printctl install --profiles "Z:${build//\//\\}\\demo\\printers"
show_printctl printers

heading "What the printer can do"
show_printctl capabilities "$printer"

heading "Its default settings, field by field"
show_printctl devmode "$printer"

heading "An application's settings, merged while two-sided printing is locked"
request=(--set "duplex=$unlike_duplex" --set "paper=$unlike_paper" --set copies=3)
show_printctl devmode "$locked" "${request[@]}"
merged=$(printctl devmode "$locked" "${request[@]}" --json)
# One log for each process; their names sort by time, so the last one is this process's.
log_files=("$prefix"/drive_c/ProgramData/Zelmora/Tessary/logs/print_ui_*.log)
log=${log_files[-1]}
[ -f "$log" ] || die "the module left no log in the prefix"

heading "Settings as a print ticket"
# What print ticket services ask of the module, asked of it directly: its class object, bound to the printer.
job="build/demo"
show_printctl devmode "$printer" --set pagesPerSheet=4 --set nupLayout=psk:RightBottom --set staple=psk:StapleTopLeft \
  --set punch=psk:LeftEdge --set "mediatype=$media" --out "$job/settings.bin" | sed -n 1p
show_printctl ticket from-devmode "$printer" --in "$job/settings.bin"
printctl ticket from-devmode "$printer" --in "$job/settings.bin" --out "$job/job.xml" >/dev/null

heading "The ticket as settings again"
show_printctl ticket to-devmode "$printer" "$job/job.xml"

heading "A ticket that asks for what the printer lacks"
echo "The same ticket, but with a staple at the bottom right, where this printer has no stapler."
sed 's/psk:StapleTopLeft/psk:StapleBottomRight/g' "$job/job.xml" >"$job/lacking.xml"
show_printctl ticket validate "$printer" "$job/lacking.xml" | sed -n '/^>/p; /^Conflicts were/,$p; /^No conflict/,$p'

heading "What the module wrote to its log during that merge"
echo "C:\\ProgramData\\Zelmora\\Tessary\\logs\\${log##*/} begins:"
echo
head -n 8 "$log"
echo
echo "and of the merge it says, among other things (dmIn is what the application asked for, dmOut what it got):"
echo
grep -E "dmIn:|dmOut:|dmPaperSize|dmCopies|dmDuplex|lockedSettings|MergeAndCopyDM" "$log" | sed -n '/dmIn:/,$p'

# The user, who waits for the dialog; the steps stand in tools/preferences_user.
preferences_user() {
  scripts/wine-run.sh "$build/mingw-release/bin/preferences_user.exe" "$@"
}

heading "A user changes the printing preferences"
# From here on the prefix has a display, whose pixels can be seen from outside a program, and our property sheets.
start_display "$job/display" "$logs/demo-display.log"
use_own_compstui "$prefix" >/dev/null
draw_on_display "$prefix"
stop_wineserver "$prefix"
start_wineserver "$prefix"
# Media types are offered once an administrator says so.
scripts/wine-run.sh reg add 'HKLM\Software\Zelmora\Tessary\PrintRedir' /v EnableMediaTypeOnUPD /t REG_DWORD /d 1 \
  /f >/dev/null
rm -f -- "$job"/*.png
preferences_user \
  page=1 choose=1028:"Flip On Short Edge" choose=1042:4 "picture=$job/1-layout.bmp" \
  page=2 "choose=1031:$media_name" "picture=$job/2-paper.bmp" \
  page=3 choose=1048:"Optimized Compression" click=1101 "picture=$job/3-advanced.bmp" \
  page=4 choose=1045:TopLeft choose=1046:LeftEdge "picture=$job/4-finishing.bmp" \
  page=5 choose=1049:Confidential click=1058 "picture=$job/5-watermark.bmp" \
  press=1 &
show_printctl preferences "$printer" --out "$job/preferences.bin" | tee "$job/preferences.txt"
wait $! || die "the user could not do what was wanted"
for choice in 'horizontal' 'pagesPerSheet *1 *4' 'compression *0 *2' "$media_name" \
  'psk:StapleTopLeft' 'psk:LeftEdge' 'Confidential'; do
  grep -q -- "$choice" "$job/preferences.txt" || die "the application did not get $choice"
done

heading "The same dialog in German, cancelled"
preferences_user page=1 "picture=$job/6-layout-german.bmp" press=2 &
status=0
show_printctl preferences "$printer" --language de-de || status=$?
wait $! || die "the user could not do what was wanted"
[ "$status" -eq 5 ] || die "a cancelled dialog ended with $status"
echo "printctl ended with $status."
mogrify-im6.q16 -format png "$job"/*.bmp
rm -f -- "$job"/*.bmp
echo
echo "Pictures of the pages:"
pictures=("$job"/*.png)
printf '  %s\n' "${pictures[@]}"

heading "What was seen"
log_files=("$prefix"/drive_c/ProgramData/Zelmora/Tessary/logs/print_ui_*.log)
python3 scripts/demo_printers.py --verdict "$printer" "$unlike_duplex" "$unlike_paper" "${#log_files[@]}" <<<"$merged"
echo "The user's choices on five pages reached the application that had opened the printing preferences, and Cancel was"
echo "told from OK. ${#pictures[@]} pictures of the pages are in build/demo/."
