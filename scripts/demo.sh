#!/usr/bin/env bash
# demo.sh: installs the Windows build in a fresh Wine prefix, plants a harmless sample
# infection there, scans it with orvex.exe and sets what was planted beside what was found.
# Usage: scripts/demo.sh [BUILD_DIR]   (default build/windows). Exit 0 when every planted
# item was judged as expected and nothing else was found.
# shellcheck disable=SC1003  # Windows paths end in a backslash inside single quotes
#
# Then the whole cycle: `orvex.exe clean` removes everything found with backups (a file held
# open waits for the restart), Wine restarts, and `orvex.exe backups restore --all` puts the
# items back; each step is checked item by item against what was planted.
set -euo pipefail
build=${1:-build/windows}
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$build" && pwd)
prefix=$build/demo/prefix
export ORVEX_WINEPREFIX=$prefix
# The memory scan knows the process lists of the NT family up to XP: the prefix reports XP.
export ORVEX_WINE_VERSION=winxp64
wine_run() { "$root/cmake/wine-run" "$@"; }
say() { printf '\n== %s\n' "$*"; }

drive_c=$prefix/drive_c
app_win='C:\Program Files\Orvex Sentry'
app_dir="$drive_c/Program Files/Orvex Sentry"
data_dir="$app_dir/Data"
samples=$root/definitions/samples
agent_pid='' holder_pid=''

cleanup() {
    if [ -n "$agent_pid" ]; then kill "$agent_pid" 2>/dev/null || true; fi
    if [ -n "$holder_pid" ]; then kill "$holder_pid" 2>/dev/null || true; fi
    if [ -d "$prefix" ]; then WINEPREFIX=$prefix wineserver -k 2>/dev/null || true; fi
}
trap cleanup EXIT

# --- The planted items and what the scan must make of each ----------------------------------
# A finding is five columns: name, category, level, location, item.
planted_kind=() planted_what=() planted_row=() planted_note=()
tab=$'\t'

# expect KIND WHAT NAME CATEGORY LEVEL LOCATION ITEM: this exact finding must be reported.
expect() {
    planted_kind+=("$1") planted_what+=("$2") planted_note+=("")
    planted_row+=("$3$tab$4$tab$5$tab$6$tab$7")
}

# decoy KIND WHAT WHY LOCATION ITEM: no finding may have this location and item.
decoy() {
    planted_kind+=("$1") planted_what+=("$2") planted_note+=("$3")
    planted_row+=("$tab$tab$tab$4$tab$5")
}

pf='c:\Program Files'
win='c:\windows'
expect 'file, MD5' "$pf\\ClickBar\\clickbar_config.ini" \
    ClickBar FileSystem Confirmed "$pf\\ClickBar\\" clickbar_config.ini
expect 'file, MD5' "$pf\\SearchWidget\\searchwidget_skin.xml" \
    SearchWidget FileSystem Confirmed "$pf\\SearchWidget\\" searchwidget_skin.xml
expect 'file, MD5' "$pf\\DialMate\\numbers.dat" \
    DialMate FileSystem Confirmed "$pf\\DialMate\\" numbers.dat
expect 'file, MD5' "$win\\temp\\keywatch_buffer.tmp" \
    KeyWatch FileSystem Confirmed "$win\\temp\\" keywatch_buffer.tmp
expect 'file, MD5' "$win\\system32\\drivers\\netspy.sys (its name is listed too: one row)" \
    NetSpyRat FileSystem Confirmed "$win\\system32\\drivers\\" netspy.sys
expect 'file, MD5' "$pf\\ClickBar\\clickbar_prefs.ini (read-only)" \
    ClickBar FileSystem Confirmed "$pf\\ClickBar\\" clickbar_prefs.ini
decoy 'file, MD5' "$pf\\ClickBar\\clickbar_config.txt" "listed bytes, but .txt is never hashed" \
    "$pf\\ClickBar\\" clickbar_config.txt
decoy 'file, MD5' "$pf\\Orvex Sentry\\clickbar_config.ini" "the program's own folder is skipped" \
    "$pf\\Orvex Sentry\\" clickbar_config.ini
expect 'file, name' "$pf\\PopPal\\poppal.exe (rule: threat name)" \
    PopPal FileSystem Confirmed "$pf\\PopPal\\" poppal.exe
expect 'file, name' "$win\\dialmate.exe (rule: in the Windows folder, suspect)" \
    DialMate FileSystem Suspect "$win\\" dialmate.exe
expect 'file, name' "$win\\system32\\keywatch.exe (rule: in the system folder)" \
    KeyWatch FileSystem Confirmed "$win\\system32\\" keywatch.exe
decoy 'file, name' "$pf\\DialMate\\dialmate.exe" "exclusion rule: outside the Windows folder" \
    "$pf\\DialMate\\" dialmate.exe
decoy 'file, name' "$pf\\ShopSpy\\shopspy.exe" "exclusion rule: not in windows\\shopspy" \
    "$pf\\ShopSpy\\" shopspy.exe
expect 'file, name' "$win\\shopspy\\shopspy.exe (rule: in windows\\shopspy; held open, no sharing)" \
    ShopSpy FileSystem Confirmed "$win\\shopspy\\" shopspy.exe
decoy 'file' "$win\\system32\\filehold.exe (the sample program, unlisted name)" "not listed" \
    "$win\\system32\\" filehold.exe
decoy 'process' 'filehold.exe, holding ...\shopspy\shopspy.exe open' "not listed" \
    'C:\windows\system32\' filehold.exe
expect 'process' 'keywatch.exe running from the system folder (the sample program)' \
    KeyWatch 'Memory Resident' Confirmed 'C:\windows\system32\' keywatch.exe

run_key='SOFTWARE\Microsoft\Windows\CurrentVersion\Run'
expect 'Run value' "HKLM Run \"KeyWatch Helper\" = keywatch.exe /hidden (listed file name)" \
    KeyWatch 'Registry(Value)' Confirmed "HKEY_LOCAL_MACHINE\\$run_key" 'KeyWatch Helper'
expect 'Run value' "HKCU Run \"PopPal Agent\" (listed value name)" \
    PopPal 'Registry(Value)' Confirmed "HKEY_CURRENT_USER\\$run_key" 'PopPal Agent'
expect 'Run value' "HKLM Run \"NetSpy Loader\" = rundll32.exe ...netspy.sys,Start (MD5 of target)" \
    NetSpyRat 'Registry(Value)' Confirmed "HKEY_LOCAL_MACHINE\\$run_key" 'NetSpy Loader'

cv='Software\Microsoft\Windows\CurrentVersion'
expect 'Uninstall' 'HKLM Uninstall key "ClickBar Toolbar"' \
    ClickBar 'Registry(Key)' Confirmed "HKEY_LOCAL_MACHINE\\$cv\\Uninstall" 'ClickBar Toolbar'
shared='HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDlls'
expect 'SharedDlls' 'entry for a missing ...\ClickBar\clickbar.dll (listed name)' \
    ClickBar 'Registry(Value)' Confirmed "$shared" 'C:\Program Files\Common Files\ClickBar\clickbar.dll'
expect 'SharedDlls' 'entry for ...\SearchWidget\searchwidget_skin.xml (MD5 of the file)' \
    SearchWidget 'Registry(Value)' Confirmed "$shared" 'C:\Program Files\SearchWidget\searchwidget_skin.xml'
expect 'module usage' 'subkey for a missing .../SearchWidget/SearchWidget.dll (listed name)' \
    SearchWidget 'Registry(Key)' Confirmed "HKEY_LOCAL_MACHINE\\$cv\\moduleusage" \
    'C:/Program Files/SearchWidget/SearchWidget.dll'
expect 'module usage' 'subkey for .../DialMate/numbers.dat (MD5 of the file)' \
    DialMate 'Registry(Key)' Confirmed "HKEY_LOCAL_MACHINE\\$cv\\moduleusage" \
    'C:/Program Files/DialMate/numbers.dat'

sw='{0B9C8D7E-6F5A-4B3C-9D2E-1F0A9B8C7D6E}'
ns='{3E4F5A6B-7C8D-4E9F-A0B1-C2D3E4F5A6B7}'
cb='{6F1A2B3C-0D4E-4F50-8A61-72B3C4D5E6F7}'
ie='Software\Microsoft\Internet Explorer'
expect 'CLSID' "SearchWidget class key, seen as HKCR\\CLSID" \
    SearchWidget 'Registry(Key)' Confirmed 'HKEY_CLASSES_ROOT\CLSID\' "$sw"
expect 'CLSID' "... and as HKLM\\SOFTWARE\\Classes\\CLSID" \
    SearchWidget 'Registry(Key)' Confirmed 'HKEY_LOCAL_MACHINE\SOFTWARE\Classes\CLSID\' "$sw"
expect 'CLSID' 'SearchWidget browser helper object key' \
    SearchWidget 'Registry(Key)' Confirmed \
    "HKEY_LOCAL_MACHINE\\$cv\\explorer\\Browser Helper Objects\\" "$sw"
expect 'CLSID' 'SearchWidget URL search hook value' \
    SearchWidget 'Registry(Value)' Confirmed "HKEY_CURRENT_USER\\$ie\\URLSearchHooks\\" "$sw"
expect 'CLSID' 'NetSpyRat toolbar value (HKLM)' \
    NetSpyRat 'Registry(Value)' Confirmed 'HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Internet Explorer\Toolbar\' "$ns"
expect 'CLSID' 'ClickBar web browser toolbar value (HKCU)' \
    ClickBar 'Registry(Value)' Confirmed "HKEY_CURRENT_USER\\$ie\\Toolbar\\WebBrowser\\" "$cb"
expect 'CLSID' 'ClickBar browser extension key' \
    ClickBar 'Registry(Key)' Confirmed "HKEY_LOCAL_MACHINE\\$ie\\Extensions\\" "$cb"

expect 'registry' 'key HKLM\Software\KeyWatch' \
    KeyWatch 'Registry(Key)' Confirmed 'HKEY_LOCAL_MACHINE\Software\' KeyWatch
expect 'registry' 'key HKCU\Software\ShopSpy\Settings' \
    ShopSpy 'Registry(Key)' Confirmed 'HKEY_CURRENT_USER\Software\ShopSpy\' Settings
expect 'registry' 'key HKCR\DialMate.Connector\CLSID' \
    DialMate 'Registry(Key)' Confirmed 'HKEY_CLASSES_ROOT\DialMate.Connector\' CLSID
expect 'registry' 'HKCU Internet Explorer "Start Page" = http://searchwidget.example/' \
    SearchWidget 'Registry(Value)' Confirmed "HKEY_CURRENT_USER\\$ie\\Main|Start Page" \
    searchwidget.example
expect 'registry' 'the "NetSpy Loader" Run value, by its text netspy.sys' \
    NetSpyRat 'Registry(Value)' Confirmed "HKEY_LOCAL_MACHINE\\$cv\\Run|NetSpy Loader" netspy.sys
decoy 'registry' 'key HKLM\Software\Orvex Sample\First line is never tested' \
    "the first [Registry] definition is never tested" \
    'HKEY_LOCAL_MACHINE\Software\Orvex Sample\' 'First line is never tested'

# --- A fresh prefix with the program installed ----------------------------------------------
say "fresh Wine prefix (reporting Windows XP): $prefix"
# A server left over from an interrupted run would keep the old prefix open.
if [ -d "$prefix" ]; then WINEPREFIX=$prefix wineserver -k 2>/dev/null || true; fi
rm -rf "$build/demo"
mkdir -p "$build/demo"
wine_run cmd /c ver 2>/dev/null | tr -d '\r' | grep -v '^$' || true

mkdir -p "$data_dir"
cp "$build/apps/OrvexSentry.exe" "$build/apps/orvex.exe" "$app_dir/"
cp "$root/lang/English.lng" "$app_dir/"
printf '[Language]\r\nCurrentLanguage=English\r\n' >"$app_dir/LangSetting.ini"
cp "$build/definitions/ovsdef.dat" "$build/definitions/ovsstatic.dat" "$data_dir/"
wine_run reg add 'HKLM\Software\Norvani\Orvex Sentry' /v DataPath /t REG_SZ \
    /d "$app_win\\Data" /f >/dev/null
say "installed $app_win: OrvexSentry.exe, orvex.exe, Data\\ovsdef.dat, Data\\ovsstatic.dat;" \
    "DataPath in HKLM\\Software\\Norvani\\Orvex Sentry"

# --- The planted infection -------------------------------------------------------------------
# Files: copies of the sample files, whose digests the definitions list, and small text
# files under listed names.
plant_copy() { mkdir -p "$(dirname "$2")" && cp "$samples/$1" "$2"; }
plant_text() { mkdir -p "$(dirname "$1")" && printf 'Harmless demo file standing in for %s.\r\n' \
    "$(basename "$1")" >"$1"; }
pfu="$drive_c/Program Files"
winu="$drive_c/windows"
plant_copy clickbar_config.ini "$pfu/ClickBar/clickbar_config.ini"
plant_copy clickbar_config.ini "$pfu/ClickBar/clickbar_config.txt"
plant_copy clickbar_config.ini "$app_dir/clickbar_config.ini"
plant_copy searchwidget_skin.xml "$pfu/SearchWidget/searchwidget_skin.xml"
plant_copy dialmate_numbers.dat "$pfu/DialMate/numbers.dat"
plant_copy keywatch_buffer.tmp "$winu/temp/keywatch_buffer.tmp"
plant_copy netspy_loader.js "$winu/system32/drivers/netspy.sys"
plant_text "$pfu/PopPal/poppal.exe"
plant_text "$winu/dialmate.exe"
plant_text "$pfu/DialMate/dialmate.exe"
plant_text "$pfu/ShopSpy/shopspy.exe"
plant_copy clickbar_config.ini "$pfu/ClickBar/clickbar_prefs.ini"
plant_text "$winu/shopspy/shopspy.exe"
cp "$build/apps/SampleAgent.exe" "$winu/system32/filehold.exe"
cp "$build/apps/SampleAgent.exe" "$winu/system32/keywatch.exe"
# The running process: the sample program under a listed name, sleeping until it is ended;
# it also keeps Wine's server up for the steps below.
(cd "$drive_c" && exec "$root/cmake/wine-run" 'C:\windows\system32\keywatch.exe' 600 \
    >/dev/null 2>&1) &
agent_pid=$!
# A second copy under a name no definition lists holds the listed shopspy.exe open without
# sharing: the removal cannot end it, so that file's delete must wait for the restart.
(cd "$drive_c" && exec "$root/cmake/wine-run" 'C:\windows\system32\filehold.exe' 600 \
    'C:\windows\shopspy\shopspy.exe' >"$build/demo/holder.err" 2>&1) &
holder_pid=$!
wine_run attrib +r 'C:\Program Files\ClickBar\clickbar_prefs.ini' >/dev/null

# Registry: one import.
reg_file=$build/demo/planted.reg
sed 's/$/\r/' >"$reg_file" <<'EOF'
REGEDIT4

[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Run]
"KeyWatch Helper"="C:\\windows\\system32\\keywatch.exe /hidden"
"NetSpy Loader"="rundll32.exe C:\\windows\\system32\\drivers\\netspy.sys,Start"

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run]
"PopPal Agent"="\"C:\\Program Files\\PopPal\\poppal.exe\" -tray"

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Uninstall\ClickBar Toolbar]
"DisplayName"="ClickBar Toolbar"

[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDlls]
"C:\\Program Files\\Common Files\\ClickBar\\clickbar.dll"=dword:00000001
"C:\\Program Files\\SearchWidget\\searchwidget_skin.xml"=dword:00000001

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\moduleusage\C:/Program Files/SearchWidget/SearchWidget.dll]
"SearchWidget"="1"

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\moduleusage\C:/Program Files/DialMate/numbers.dat]
"DialMate"="1"

[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\CLSID\{0B9C8D7E-6F5A-4B3C-9D2E-1F0A9B8C7D6E}]
@="SearchWidget Helper"

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\explorer\Browser Helper Objects\{0B9C8D7E-6F5A-4B3C-9D2E-1F0A9B8C7D6E}]

[HKEY_CURRENT_USER\Software\Microsoft\Internet Explorer\URLSearchHooks]
"{0B9C8D7E-6F5A-4B3C-9D2E-1F0A9B8C7D6E}"="SearchWidget"

[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Internet Explorer\Toolbar]
"{3E4F5A6B-7C8D-4E9F-A0B1-C2D3E4F5A6B7}"="NetSpy Bar"

[HKEY_CURRENT_USER\Software\Microsoft\Internet Explorer\Toolbar\WebBrowser]
"{6F1A2B3C-0D4E-4F50-8A61-72B3C4D5E6F7}"="ClickBar"

[HKEY_LOCAL_MACHINE\Software\Microsoft\Internet Explorer\Extensions\{6F1A2B3C-0D4E-4F50-8A61-72B3C4D5E6F7}]
"ButtonText"="ClickBar"

[HKEY_LOCAL_MACHINE\Software\KeyWatch]
"Mode"="demo"

[HKEY_CURRENT_USER\Software\ShopSpy\Settings]
"Mode"="demo"

[HKEY_CLASSES_ROOT\DialMate.Connector\CLSID]
@="demo"

[HKEY_CURRENT_USER\Software\Microsoft\Internet Explorer\Main]
"Start Page"="http://searchwidget.example/"

[HKEY_LOCAL_MACHINE\Software\Orvex Sample\First line is never tested]
"Mode"="demo"
EOF

# A Winsock protocol catalog of five entries. An entry's PackedCatalogItem starts with its
# provider's path as ANSI text; the made-up tail after the NUL tells the entries apart and
# must come through the renumbering byte for byte. The third provider is a listed file.
winsock='HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services\Winsock2\Parameters'
catalog_providers=('%SystemRoot%\system32\mswsock.dll' '%SystemRoot%\system32\mswsock.dll'
    'C:\windows\system32\drivers\netspy.sys' '%SystemRoot%\system32\rsvpsp.dll'
    '%SystemRoot%\system32\mswsock.dll')
catalog_items=()  # each entry's bytes as "reg query" prints them
for i in "${!catalog_providers[@]}"; do
    catalog_items+=("$(printf '%s\0\1\376\377%s' "${catalog_providers[$i]}" "$((i + 1))" |
        xxd -p -u | tr -d '\n')")
done
catalog_entry() { printf '%012d' "$1"; }
{
    printf '[%s]\r\n"Current_Protocol_Catalog"="Protocol_Catalog9"\r\n\r\n' "$winsock"
    printf '[%s\\Protocol_Catalog9]\r\n"Num_Catalog_Entries"=dword:%08x\r\n\r\n' "$winsock" \
        "${#catalog_items[@]}"
    for i in "${!catalog_items[@]}"; do
        printf '[%s\\Protocol_Catalog9\\Catalog_Entries\\%s]\r\n"PackedCatalogItem"=hex:%s\r\n\r\n' \
            "$winsock" "$(catalog_entry $((i + 1)))" \
            "$(sed 's/../&,/g; s/,$//' <<<"${catalog_items[$i]}" | tr 'A-F' 'a-f')"
    done
} >>"$reg_file"
wine_run regedit /s "$(wine_run winepath -w "$reg_file" 2>/dev/null | tr -d '\r')"

say "planted (harmless text files, registry entries and a sleeping sample program)"
for i in "${!planted_kind[@]}"; do
    IFS=$tab read -r name category level _ <<<"${planted_row[$i]}"
    if [ -n "${planted_note[$i]}" ]; then
        outcome="no finding: ${planted_note[$i]}"
    else
        outcome="$name, $category, $level"
    fi
    printf '  %-12s %s\n  %-12s   -> %s\n' "${planted_kind[$i]}" "${planted_what[$i]}" '' "$outcome"
done
printf '  %-12s %s\n  %-12s   -> %s\n' 'Winsock' \
    "protocol catalog of ${#catalog_items[@]} entries, the third with the provider ...\\netspy.sys" \
    '' 'no finding (the catalog is read by the removal): its third entry goes'

# --- The scan --------------------------------------------------------------------------------
# Wine's z: drive is the whole Linux file system and would be walked as a fixed disk, and
# the user folders link into the Linux home folder: the demo machine has neither.
rm -f "$prefix/dosdevices/z:"
while IFS= read -r -d '' link; do
    rm -f "$link" && mkdir -p "$link"
done < <(find "$drive_c" -type l -print0)
say "removed Wine's z: drive (the Linux root) and replaced the user folders' links into" \
    "the Linux home folder by empty folders, so the scan walks only C:"

# The agent is in the process list once Wine has started it under its Windows name.
for _ in $(seq 100); do
    tr '\0' ' ' <"/proc/$agent_pid/cmdline" 2>/dev/null | grep -qi 'keywatch.exe' && break
    sleep 0.1
done
sleep 1  # and its modules are loaded

say "orvex.exe scan (run from $app_win, definitions from the registry's DataPath)"
out=$build/demo
orvex_scan() { (cd "$app_dir" && wine_run "$app_win\\orvex.exe" scan "$@") 2>>"$out/scan.err"; }
started=$(date +%s)
status=0
orvex_scan >"$out/findings.txt" || status=$?
seconds=$(($(date +%s) - started))
# A second run gives the findings as JSON for the check, and shows the scan is repeatable.
json_status=0
orvex_scan --json >"$out/findings.json" || json_status=$?
tr -d '\r' <"$out/scan.err"

# The findings of the JSON, one per line, columns separated by tabs.
found_rows() {
    tr -d '\r' <"$out/findings.json" | awk '
        /^ *"(category|item|level|location|name)": "/ {
            key = $0; sub(/^ *"/, "", key); sub(/".*/, "", key)
            value = $0; sub(/^ *"[a-z]+": "/, "", value); sub(/",?$/, "", value)
            gsub(/\\\\/, "\001", value); gsub(/\\"/, "\"", value); gsub("\001", "\\", value)
            row[key] = value
        }
        /^ *}/ && ("name" in row) {
            print row["name"] "\t" row["category"] "\t" row["level"] "\t" row["location"] "\t" row["item"]
            delete row
        }'
}

# Tab-separated findings laid out as orvex prints its table.
as_table() {
    awk -F'\t' '
        { for (c = 1; c <= 5; ++c) { cell[NR, c] = $c; if (length($c) > w[c]) w[c] = length($c) } }
        END {
            if (NR == 0) { print "No threats found."; exit }
            split("NAME CATEGORY LEVEL LOCATION ITEM", head, " ")
            for (c = 1; c <= 5; ++c) if (length(head[c]) > w[c]) w[c] = length(head[c])
            for (r = 0; r <= NR; ++r) {
                line = ""
                for (c = 1; c <= 5; ++c) {
                    text = r == 0 ? head[c] : cell[r, c]
                    line = line (c < 5 ? sprintf("%-" (w[c] + 2) "s", text) : text)
                }
                print line
            }
        }'
}

found=()
mapfile -t found < <(found_rows)
items_scanned=$(tr -d '\r' <"$out/findings.json" | sed -n 's/^ *"itemsScanned": \([0-9]*\).*/\1/p')
echo "exit code $status (1: threats found), ${#found[@]} findings, ${items_scanned:-?} items" \
    "scanned, ${seconds}s"
tr -d '\r' <"$out/findings.txt"
repeatable=yes
if [ "$json_status" -ne "$status" ] ||
    ! diff <(tr -d '\r' <"$out/findings.txt") \
        <(if [ ${#found[@]} -gt 0 ]; then printf '%s\n' "${found[@]}"; fi | as_table) >/dev/null; then
    repeatable=no
fi
echo "second run (--json): exit code $json_status, same findings: $repeatable"

# --- Planted against found -------------------------------------------------------------------
say "check: planted against found"
failures=0 expected_found=0 decoys=0
declare -A matched=()
for i in "${!planted_kind[@]}"; do
    row=${planted_row[$i]}
    if [ -z "${planted_note[$i]}" ]; then
        hit=
        for f in "${found[@]}"; do [ "$f" = "$row" ] && hit=1 && matched[$f]=1; done
        if [ -n "$hit" ]; then
            expected_found=$((expected_found + 1))
            printf '  ok       found          %s\n' "${planted_what[$i]}"
        else
            failures=$((failures + 1))
            printf '  FAILED   not found      %s\n           wanted: %s\n' "${planted_what[$i]}" \
                "${row//$tab/ | }"
        fi
    else
        place=${row#"$tab$tab$tab"}
        hit=
        for f in "${found[@]}"; do [ "${f#*"$tab"*"$tab"*"$tab"}" = "$place" ] && hit=$f; done
        if [ -z "$hit" ]; then
            decoys=$((decoys + 1))
            printf '  ok       not found      %s (%s)\n' "${planted_what[$i]}" "${planted_note[$i]}"
        else
            failures=$((failures + 1))
            printf '  FAILED   found          %s\n           as: %s\n' "${planted_what[$i]}" \
                "${hit//$tab/ | }"
        fi
    fi
done
unplanted=0
for f in "${found[@]}"; do
    if [ -z "${matched[$f]:-}" ]; then
        unplanted=$((unplanted + 1))
        printf '  FAILED   not planted    %s\n' "${f//$tab/ | }"
    fi
done
[ "$status" -eq 1 ] || failures=$((failures + 1))
[ "$repeatable" = yes ] || failures=$((failures + 1))
failures=$((failures + unplanted))

say "$expected_found planted finds reported, $decoys planted decoys correctly not reported," \
    "$unplanted findings that were not planted"
scan_failures=$failures
if [ "$scan_failures" -ne 0 ]; then
    echo "scan check FAILED ($scan_failures problems)"
else
    echo "scan check passed"
fi

# --- The whole cycle: clean, restart, restore ------------------------------------------------
# Each check prints one line: ok, FAILED, or "expected" for what the removal cannot undo, with
# the reason; none is skipped without a word.
cycle_ok=0 cycle_failed=0 cycle_expected=0
ok() { cycle_ok=$((cycle_ok + 1)) && printf '  ok       %-15s %s\n' "$1" "$2"; }
failed() { cycle_failed=$((cycle_failed + 1)) && printf '  FAILED   %-15s %s\n' "$1" "$2"; }
expected() {
    cycle_expected=$((cycle_expected + 1))
    printf '  expected %-15s %s\n           because %s\n' "$1" "$2" "$3"
}
# check WORD WHAT COMMAND...: ok when the command succeeds.
check() {
    local word=$1 what=$2
    shift 2
    if "$@"; then ok "$word" "$what"; else failed "$word" "$what"; fi
}

# The planted files the clean must remove, the one it can only queue, and the decoys.
removed_files=("$pfu/ClickBar/clickbar_config.ini" "$pfu/ClickBar/clickbar_prefs.ini"
    "$pfu/SearchWidget/searchwidget_skin.xml" "$pfu/DialMate/numbers.dat"
    "$winu/temp/keywatch_buffer.tmp" "$winu/system32/drivers/netspy.sys" "$pfu/PopPal/poppal.exe"
    "$winu/dialmate.exe" "$winu/system32/keywatch.exe")
held_file=$winu/shopspy/shopspy.exe
kept_files=("$pfu/ClickBar/clickbar_config.txt" "$app_dir/clickbar_config.ini"
    "$pfu/DialMate/dialmate.exe" "$pfu/ShopSpy/shopspy.exe" "$winu/system32/filehold.exe")
win_name() {
    local path=${1#"$drive_c"/}
    printf 'C:\\%s' "${path//\//\\}"
}
digest() { md5sum <"$1" | cut -c1-32; }

# The planted registry items: key, tab, value name (none for a whole key).
reg_items=(
    "HKEY_LOCAL_MACHINE\\$run_key${tab}KeyWatch Helper"
    "HKEY_LOCAL_MACHINE\\$run_key${tab}NetSpy Loader"
    "HKEY_CURRENT_USER\\$run_key${tab}PopPal Agent"
    "HKEY_LOCAL_MACHINE\\$cv\\Uninstall\\ClickBar Toolbar$tab"
    "$shared${tab}C:\\Program Files\\Common Files\\ClickBar\\clickbar.dll"
    "$shared${tab}C:\\Program Files\\SearchWidget\\searchwidget_skin.xml"
    "HKEY_LOCAL_MACHINE\\$cv\\moduleusage\\C:/Program Files/SearchWidget/SearchWidget.dll$tab"
    "HKEY_LOCAL_MACHINE\\$cv\\moduleusage\\C:/Program Files/DialMate/numbers.dat$tab"
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID\\$sw$tab"
    "HKEY_LOCAL_MACHINE\\$cv\\explorer\\Browser Helper Objects\\$sw$tab"
    "HKEY_CURRENT_USER\\$ie\\URLSearchHooks${tab}$sw"
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar${tab}$ns"
    "HKEY_CURRENT_USER\\$ie\\Toolbar\\WebBrowser${tab}$cb"
    "HKEY_LOCAL_MACHINE\\$ie\\Extensions\\$cb$tab"
    "HKEY_LOCAL_MACHINE\\Software\\KeyWatch$tab"
    "HKEY_CURRENT_USER\\Software\\ShopSpy\\Settings$tab"
    "HKEY_CLASSES_ROOT\\DialMate.Connector\\CLSID$tab"
    "HKEY_CURRENT_USER\\$ie\\Main${tab}Start Page"
)
kept_key='HKEY_LOCAL_MACHINE\Software\Orvex Sample\First line is never tested'
reg_has() {
    if [ -n "${2:-}" ]; then
        wine_run reg query "$1" /v "$2" >/dev/null 2>&1
    else
        wine_run reg query "$1" >/dev/null 2>&1
    fi
}
reg_label() { if [ -n "$2" ]; then printf '%s "%s"' "$1" "$2"; else printf '%s' "$1"; fi; }

# The keys that hold the planted items, each exported whole before the clean and after the
# restore (reg export writes them in a stable order).
export_keys=()
declare -A exported=()
for entry in "${reg_items[@]}"; do
    key=${entry%%"$tab"*}
    [ -n "${exported[$key]:-}" ] || export_keys+=("$key")
    exported[$key]=1
done
exports=$drive_c/demo-exports
mkdir -p "$exports"
export_all() {
    for i in "${!export_keys[@]}"; do
        rm -f "$exports/$1-$i.reg"
        wine_run reg export "${export_keys[$i]}" "C:\\demo-exports\\$1-$i.reg" /y >/dev/null 2>&1 ||
            true
    done
}

# The protocol catalog's entries, one line each: entry name, a blank, the bytes in hex.
catalog_now() {
    wine_run reg query "$winsock\\Protocol_Catalog9\\Catalog_Entries" /s 2>/dev/null | tr -d '\r' |
        awk '/^HKEY_/ { n = split($0, part, "\\"); entry = part[n] }
             $1 == "PackedCatalogItem" { print entry " " $3 }'
}
catalog_count() {
    wine_run reg query "$winsock\\Protocol_Catalog9" /v Num_Catalog_Entries 2>/dev/null |
        tr -d '\r' | awk '$1 == "Num_Catalog_Entries" { print $3 }'
}
catalog_expected() {
    local n=0
    for i in "$@"; do
        n=$((n + 1))
        echo "$(catalog_entry $n) ${catalog_items[$i]}"
    done
}
pending_renames() {
    wine_run reg query 'HKLM\System\CurrentControlSet\Control\Session Manager' \
        /v PendingFileRenameOperations 2>/dev/null | tr -d '\r' |
        sed -n 's/^ *PendingFileRenameOperations *REG_MULTI_SZ *//p' | sed 's/\\0/\n/g'
}
# attrib prints the attribute letters before the path.
read_only() { wine_run attrib "$1" 2>/dev/null | tr -d '\r' | sed 's/[A-Za-z]:\\.*//' | grep -q R; }
process_ended() { ! ps -o stat= -p "$1" 2>/dev/null | grep -qv Z; }
# refute WORD WHAT COMMAND...: ok when the command fails.
refute() {
    local word=$1 what=$2
    shift 2
    if "$@"; then failed "$word" "$what"; else ok "$word" "$what"; fi
}

declare -A before_digest=()
for f in "${removed_files[@]}" "$held_file" "${kept_files[@]}"; do before_digest[$f]=$(digest "$f"); done
export_all before
check 'read-only' "$(win_name "$pfu/ClickBar/clickbar_prefs.ini") carries the read-only attribute" \
    read_only "$(win_name "$pfu/ClickBar/clickbar_prefs.ini")"
check 'held open' "$(win_name "$held_file") cannot be read while filehold.exe runs" \
    test -n "$(wine_run cmd /c type 'C:\windows\shopspy\shopspy.exe' 2>&1 >/dev/null | tr -d '\r')"
check 'catalog' "${#catalog_items[@]} entries in $winsock\\Protocol_Catalog9 before the clean" \
    test "$(catalog_now)" = "$(catalog_expected 0 1 2 3 4)"

# --- orvex.exe clean -------------------------------------------------------------------------
say "orvex.exe clean (the scan again, then removal of everything found, with backups)"
started=$(date +%s)
clean_status=0
(cd "$app_dir" && wine_run "$app_win\\orvex.exe" clean --json) >"$out/clean.json" \
    2>>"$out/clean.err" || clean_status=$?
clean_seconds=$(($(date +%s) - started))
tr -d '\r' <"$out/clean.err"
tr -d '\r' <"$out/clean.json" | awk '
    /^ *"(category|item|location|name|outcome)": "/ {
        key = $0; sub(/^ *"/, "", key); sub(/".*/, "", key)
        value = $0; sub(/^ *"[a-z]+": "/, "", value); sub(/",?$/, "", value)
        gsub(/\\\\/, "\\", value); row[key] = value
    }
    /^ *}/ && ("name" in row) {
        place = row["category"] == "FileSystem" || row["category"] == "Memory Resident" \
            ? row["location"] row["item"] : row["location"] "  [" row["item"] "]"
        printf "  %-13s %-16s %-8s %s\n", row["name"], row["category"], row["outcome"], place
        delete row
    }'
restart_needed=$(tr -d '\r' <"$out/clean.json" | sed -n 's/^ *"restartNeeded": \([a-z]*\).*/\1/p')
echo "exit code $clean_status (3: something remains or needs a restart)," \
    "restart needed: ${restart_needed:-?}, ${clean_seconds}s"

say "check: after the clean"
check 'exit code' "clean ended with 3 and \"restartNeeded\": true" \
    test "$clean_status-$restart_needed" = 3-true
for f in "${removed_files[@]}"; do check 'gone' "$(win_name "$f")" test ! -e "$f"; done
check 'still there' "$(win_name "$held_file"), held open: its delete waits for the restart" \
    test -e "$held_file"
pending=$(pending_renames)
check 'queued' "PendingFileRenameOperations names $(win_name "$held_file")" \
    grep -qi 'windows\\shopspy\\shopspy.exe' <<<"$pending"
# reg shows the list up to its first empty string: a last delete comes without its empty
# destination.
awk 'function show(text) { print "                           " text }
     NR % 2 { from = $0; next }
     from != "" { show(length($0) ? "move " from " to " $0 : "delete " from); from = "" }
     END { if (from != "") show("delete " from) }' <<<"$pending"
for f in "${kept_files[@]}"; do
    check 'untouched' "$(win_name "$f") (decoy)" test "$(digest "$f")" = "${before_digest[$f]}"
done
for entry in "${reg_items[@]}"; do
    key=${entry%%"$tab"*} value=${entry#*"$tab"}
    refute 'gone' "$(reg_label "$key" "$value")" reg_has "$key" "$value"
done
check 'untouched' "$kept_key (decoy)" reg_has "$kept_key"
hkcr_outcome=$(tr -d '\r' <"$out/clean.json" |
    grep -A5 -F "\"location\": \"HKEY_CLASSES_ROOT\\\\CLSID\\\\\"" |
    sed -n 's/^ *"outcome": "\(.*\)".*/\1/p')
if [ "$hkcr_outcome" = failed ]; then
    expected 'row failed' "HKEY_CLASSES_ROOT\\CLSID\\$sw" \
        "it is the same key as HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID\\$sw, which the row
           below it removed first; a key that cannot be deleted keeps its row"
else
    failed 'row failed' "HKEY_CLASSES_ROOT\\CLSID\\$sw: outcome ${hkcr_outcome:-none}, not failed"
fi
check 'ended' "keywatch.exe, the sample program" process_ended "$agent_pid"
refute 'running' "filehold.exe (no definition lists it)" process_ended "$holder_pid"
check 'catalog' "4 entries, 000000000001 to 000000000004, the old 1, 2, 4 and 5 in order" \
    test "$(catalog_now)" = "$(catalog_expected 0 1 3 4)"
check 'catalog' "Num_Catalog_Entries 4" test "$(catalog_count)" = 0x4

backup_dat=$app_dir/Backup.Dat
backup_lines() { if [ -f "$backup_dat" ]; then tr -d '\r' <"$backup_dat" | grep -v '^$'; fi; }
backups=$(backup_lines)
check 'Backup.Dat' "$(grep -c . <<<"$backups") lines: $(grep -c '^File\*' <<<"$backups") files, $(
    grep -c '^Registry\*' <<<"$backups") registry keys" test -n "$backups"
missing_asw=0
while IFS='*' read -r _ _ _ _ _ new_name _; do
    [ -f "$app_dir/Backup/$new_name" ] || missing_asw=$((missing_asw + 1))
done <<<"$backups"
check '.asw' "$(find "$app_dir/Backup" -name '*.asw' | wc -l) in Backup\\, every one Backup.Dat names" \
    test "$missing_asw" -eq 0
# The File line of a path, by its folder and name in any case.
backup_line_of() {
    FOLDER=$(win_name "$(dirname "$1")")\\ NAME=$(basename "$1") awk -F'*' '$1 == "File" &&
        tolower($3) == tolower(ENVIRON["FOLDER"]) && tolower($4) == tolower(ENVIRON["NAME"])' \
        <<<"$backups"
}
for f in "${removed_files[@]}"; do
    check 'backed up' "$(win_name "$f") as File in Backup.Dat" test -n "$(backup_line_of "$f")"
done
# The name of an ".asw" is made of the tick count: two backups in the same millisecond share
# one, and the later copy takes the earlier one's place.
while read -r name; do
    [ -n "$name" ] && expected 'same name' "two lines of Backup.Dat name $name" \
        "they were made in the same millisecond; the earlier backup was overwritten"
done < <(cut -d'*' -f6 <<<"$backups" | sort | uniq -d)
expected 'no backup' "$(win_name "$held_file") has no .asw and no line in Backup.Dat" \
    "it is in use: its copy fails, and it is moved into Backup\\ at the next start instead"

# --- Wine's restart --------------------------------------------------------------------------
say "restart: wineboot --kill --restart (ends every program, runs the queued moves and deletes)"
started=$(date +%s)
wine_run wineboot --kill --restart >/dev/null 2>&1 || true
wine_run cmd /c ver >/dev/null 2>&1 || true
restart_seconds=$(($(date +%s) - started))
check 'ended' "filehold.exe" process_ended "$holder_pid"
check 'gone' "$(win_name "$held_file")" test ! -e "$held_file"
moved=$(find "$app_dir/Backup" -iname '*shopspy.exe' | head -1)
check 'moved' "it lies in Backup\\ as $(basename "${moved:-?}"), no .asw" \
    test -n "$moved" -a "$(digest "${moved:-/dev/null}")" = "${before_digest[$held_file]}"
check 'cleared' "PendingFileRenameOperations" test -z "$(pending_renames | grep -v '^$')"

# --- orvex.exe backups restore --all ---------------------------------------------------------
say "orvex.exe backups restore --all"
started=$(date +%s)
restore_status=0
(cd "$app_dir" && wine_run "$app_win\\orvex.exe" backups restore --all) 2>&1 | tr -d '\r' ||
    restore_status=$?
restore_seconds=$(($(date +%s) - started))
echo "exit code $restore_status, ${restore_seconds}s"

say "check: after the restore"
check 'exit code' "backups restore --all ended with 0" test "$restore_status" -eq 0
for f in "${removed_files[@]}"; do
    check 'back' "$(win_name "$f"), byte for byte" \
        test "$(digest "$f" 2>/dev/null)" = "${before_digest[$f]}"
done
expected 'not back' "$(win_name "$held_file")" \
    "a file moved at the next start has no Backup.Dat line; its copy stays in Backup\\"
export_all after
# A "Registry(Value)" row whose location names the value behind a "|" is restored as a key of
# that whole name, holding the key as it was; the value's own key comes back from the later
# backups of it, which no longer held the value. Key, tab, value, tab, the key it lands in.
pipe_restores=(
    "HKEY_LOCAL_MACHINE\\$run_key${tab}NetSpy Loader${tab}HKEY_LOCAL_MACHINE\\$cv\\Run|NetSpy Loader"
    "HKEY_CURRENT_USER\\$ie\\Main${tab}Start Page${tab}HKEY_CURRENT_USER\\$ie\\Main|Start Page"
)
reg_text() { iconv -f UTF-16 -t UTF-8 "$1" 2>/dev/null | tr -d '\r'; }
for i in "${!export_keys[@]}"; do
    key=${export_keys[$i]} lost=
    for entry in "${pipe_restores[@]}"; do
        if [ "${entry%%"$tab"*}" = "$key" ]; then
            lost=${entry#*"$tab"} pipe_key=${entry##*"$tab"}
            lost=${lost%%"$tab"*}
        fi
    done
    if [ -z "$lost" ]; then
        check 'back' "$key, as reg export shows it" \
            cmp -s "$exports/before-$i.reg" "$exports/after-$i.reg"
        continue
    fi
    check 'back' "$key, as reg export shows it, but for \"$lost\"" test "$(
        reg_text "$exports/before-$i.reg" | grep -vF "\"$lost\"=")" = "$(reg_text "$exports/after-$i.reg")"
    expected 'not back' "$(reg_label "$key" "$lost"): it is in the new key $pipe_key" \
        "its row's location names the value behind a \"|\", and the restore uses that text whole
           as the key's name"
    check 'new key' "$(reg_label "$pipe_key" "$lost")" reg_has "$pipe_key" "$lost"
done
expected 'not back' "Winsock entry 3 (...\\netspy.sys); the catalog keeps 4 entries" \
    "the catalog repair makes no backup"
check 'catalog' "still the 4 renumbered entries" \
    test "$(catalog_now)" = "$(catalog_expected 0 1 3 4)"
check 'Backup.Dat' "empty: every backup was restored and its line dropped" \
    test -z "$(backup_lines)"

say "cycle: $cycle_ok ok, $cycle_failed FAILED, $cycle_expected expected exceptions;" \
    "scan ${seconds}s, clean ${clean_seconds}s, restart ${restart_seconds}s, restore ${restore_seconds}s"
echo "scan check: $([ "$scan_failures" -eq 0 ] && echo passed || echo "FAILED ($scan_failures problems)")"
if [ "$scan_failures" -ne 0 ] || [ "$cycle_failed" -ne 0 ]; then
    echo "demo check FAILED"
    exit 1
fi
echo "demo check passed"
