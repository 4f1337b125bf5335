#!/usr/bin/env bash
# Unpacks the zip, installs with the installer, runs the programs of both under Wine, and uninstalls.
# usage: check_packages.sh PACKAGES SOURCE
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=wine.sh
. "$(dirname -- "${BASH_SOURCE[0]}")/wine.sh"

packages=$1
source=$2
deadline_seconds=120

fail() {
    printf 'FAIL: %s\n' "$*"
    exit 1
}

top=$(mktemp -d)
trap 'rm -rf "$top"' EXIT

files="Help/HtsAnnualizerHelp.html
HtsAnnualizer.exe
LICENSE.txt
examples/basins_monthly.hts
examples/basins_monthly_methods.txt
examples/rivers_daily.hts
examples/rivers_daily_methods.txt
htstool.exe
licenses/GCC.txt
licenses/GPL-3.txt
licenses/LGPL-3.txt
licenses/Qt.txt
licenses/README.txt
licenses/mingw-w64.txt"

list() {
    (cd "$1" && find . -type f -printf '%P\n' | LC_ALL=C sort)
}

# The programs in the folder work, with the example beside them.
run_programs() {
    local folder=$1 golden=$source/tests/app/golden/rivers_december.expected
    (cd "$folder" && wine ./HtsAnnualizer.exe -i 'examples\rivers_daily.hts' \
        -c 'examples\rivers_daily_methods.txt' -o "Z:$top/annual.hts") ||
        fail "$folder: the conversion failed"
    cmp <(sed 's/\r$//' "$top/annual.hts") "$golden" || fail "$folder: another result"
    rm "$top/annual.hts"
    (cd "$folder" && wine ./htstool.exe check 'examples\rivers_daily.hts') >"$top/check" 2>&1 ||
        fail "$folder: the check failed"
    grep -q '0 errors, 0 warnings' "$top/check" || fail "$folder: another check: $(<"$top/check")"
}

# check_program FILE SUBSYSTEM VERSION: how the system starts the program, its icon, and what it says
# of itself.
check_program() {
    local subsystem text
    subsystem=$(x86_64-w64-mingw32-objdump -p "$1" | grep '^Subsystem')
    [[ $subsystem == *"($2)" ]] || fail "$1: another subsystem: $subsystem"
    wrestool --list --type=group_icon "$1" | grep -q . || fail "$1: no icon"
    text=$(wrestool --extract --raw --type=version "$1" | strings --encoding=l --bytes=1 |
        grep -A1 -x -e FileVersion -e ProductVersion | tr '\n' ' ')
    [ "$text" = "FileVersion $3 -- ProductVersion $3 " ] || fail "$1: another version: $text"
}

shopt -s nullglob
zips=("$packages"/*-win64.zip)
setups=("$packages"/*-win64-setup.exe)
[ "${#zips[@]}:${#setups[@]}" = 1:1 ] || fail "no packages in $packages"

# ---- zip ----

mkdir "$top/My Conv"
(cd "$top/My Conv" && unzip -q "${zips[0]}")
unpacked=("$top/My Conv"/*)
[ "${#unpacked[@]}" -eq 1 ] || fail "the zip holds more than a folder"
[ "$(list "${unpacked[0]}")" = "$files" ] || fail "the zip holds $(list "${unpacked[0]}")"
version=${zips[0]%-win64.zip}
version=${version##*-}
check_program "${unpacked[0]}/HtsAnnualizer.exe" "Windows GUI" "$version"
check_program "${unpacked[0]}/htstool.exe" "Windows CUI" "$version"
run_programs "${unpacked[0]}"

# ---- installer ----

installed="$WINEPREFIX/drive_c/Program Files/HtsAnnualizer"
menu="$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/HtsAnnualizer.lnk"
key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\HtsAnnualizer'
rm -rf "$installed" "$menu"

wine "${setups[0]}" /S || fail "the installer ended with $?"
[ "$(list "$installed")" = "$(printf '%s\nuninstall.exe' "$files")" ] ||
    fail "installed is $(list "$installed")"
[ -f "$menu" ] || fail "no entry in the Start menu"
wine reg query "$key" /v DisplayVersion >/dev/null 2>&1 || fail "not listed among the programs"
run_programs "$installed"

# The uninstaller works as a copy of itself, for which it doesn't wait.
printf 'mine\n' >"$installed/examples/mine.hts"
wine "$installed/uninstall.exe" /S || fail "the uninstaller ended with $?"
until [ ! -e "$installed/uninstall.exe" ] && ! wine reg query "$key" >/dev/null 2>&1; do
    ((SECONDS < deadline_seconds)) || fail "the uninstaller hangs"
    sleep 0.1
done
[ "$(list "$installed")" = examples/mine.hts ] || fail "left over is $(list "$installed")"
[ ! -e "$menu" ] || fail "the entry in the Start menu is left over"
rm -r "$installed"
printf 'zip and installer work\n'
