#!/usr/bin/env bash
# Installs the Windows build into a fresh Wine prefix, runs the program's start-up in it and
# shows what start-up wrote: registry values, folders and the error log.
set -euo pipefail
build=${1:-build/windows}
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$build" && pwd)
prefix=$build/demo/prefix
export ORVEX_WINEPREFIX=$prefix
wine_run() { "$root/cmake/wine-run" "$@"; }

echo "== fresh Wine prefix: $prefix"
rm -rf "$build/demo"
mkdir -p "$build/demo"
wine_run cmd /c ver 2>/dev/null | tr -d '\r' | grep -v '^$' || true

drive_c=$prefix/drive_c
app_dir="$drive_c/Program Files/Orvex Sentry"
data_dir="$app_dir/Data"
mkdir -p "$data_dir"
cp "$build/apps/OrvexSentry.exe" "$app_dir/"
cp "$root/lang/English.lng" "$app_dir/"
printf '[Language]\r\nCurrentLanguage=English\r\n' >"$app_dir/LangSetting.ini"
for dat in ovsdef.dat ovsstatic.dat; do
    [ -f "$build/definitions/$dat" ] && cp "$build/definitions/$dat" "$data_dir/"
done

key='HKLM\Software\Norvani\Orvex Sentry'
echo "== installed C:\\Program Files\\Orvex Sentry, definitions folder configured"
wine_run reg add "$key" /v DataPath /t REG_SZ /d 'C:\Program Files\Orvex Sentry\Data' /f >/dev/null

echo "== running OrvexSentry.exe (start-up)"
(cd "$app_dir" && wine_run "C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe")
WINEPREFIX=$prefix wineserver -w

echo "== registry values start-up wrote"
wine_run reg query "$key" 2>/dev/null | tr -d '\r' | sed -n '/REG_/p'
echo "== folders"
(cd "$app_dir" && find . -maxdepth 2 | sort)
if [ -f "$data_dir/ovs.ph" ]; then
    echo "== error log (ovs.ph)"
    tr -d '\r' <"$data_dir/ovs.ph"
else
    echo "== error log: none written (no failures)"
fi
