#!/usr/bin/env bash
# demo.sh: installs the Windows build in a fresh Wine prefix, plants a harmless sample
# infection there, scans it with orvex.exe and sets what was planted beside what was found.
# Usage: scripts/demo.sh [BUILD_DIR]   (default build/windows). Exit 0 when every planted
# item was judged as expected and nothing else was found.
# shellcheck disable=SC1003  # Windows paths end in a backslash inside single quotes
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
agent_pid=

cleanup() {
    if [ -n "$agent_pid" ]; then kill "$agent_pid" 2>/dev/null || true; fi
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
cp "$build/apps/SampleAgent.exe" "$winu/system32/keywatch.exe"
# The running process: the sample program under a listed name, sleeping until it is ended;
# it also keeps Wine's server up for the steps below.
(cd "$drive_c" && exec "$root/cmake/wine-run" 'C:\windows\system32\keywatch.exe' 600 \
    >/dev/null 2>&1) &
agent_pid=$!

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
kill "$agent_pid" 2>/dev/null || true
wait "$agent_pid" 2>/dev/null || true
agent_pid=

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
if [ "$failures" -ne 0 ]; then
    echo "demo check FAILED ($failures problems)"
    exit 1
fi
echo "demo check passed"
