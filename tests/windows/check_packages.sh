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

# check_program FILE SUBSYSTEM VERSION DESCRIPTION: how the system starts the program, its icon, and
# what it says of itself: not when it was built.
check_program() {
    local subsystem text copyright
    subsystem=$(x86_64-w64-mingw32-objdump -p "$1" | grep '^Subsystem')
    [[ $subsystem == *"($2)" ]] || fail "$1: another subsystem: $subsystem"
    wrestool --list --type=group_icon "$1" | grep -q . || fail "$1: no icon"
    copyright=$(grep '^Copyright' "$source/LICENSE")
    text=$(wrestool --extract --raw --type=version "$1" | strings --encoding=l --bytes=2 |
        grep -A1 -x -E 'CompanyName|FileDescription|FileVersion|LegalCopyright|ProductVersion' |
        grep -v -x -e --) || true
    [ "$text" = "CompanyName
The HtsAnnualizer developers
FileDescription
$4
FileVersion
$3
LegalCopyright
$copyright
ProductVersion
$3" ] || fail "$1: another description: $text"
}

# check_own_program FILE: what is not so in an installer.
check_own_program() {
    wrestool --extract --raw --type=24 "$1" | cmp - "$source/packaging/windows/program.manifest" ||
        fail "$1: another manifest"
    x86_64-w64-mingw32-objdump -p "$1" | grep '^Time/Date.*Thu Jan  1 00:00:00 1970' >/dev/null ||
        fail "$1: says when it was built"
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
check_program "${unpacked[0]}/HtsAnnualizer.exe" "Windows GUI" "$version" \
    "Annual HTS files from files of shorter timesteps"
check_program "${unpacked[0]}/htstool.exe" "Windows CUI" "$version" "Checks and exports HTS files"
check_own_program "${unpacked[0]}/HtsAnnualizer.exe"
check_own_program "${unpacked[0]}/htstool.exe"
run_programs "${unpacked[0]}"

# ---- installer ----

check_program "${setups[0]}" "Windows GUI" "$version" "Setup of HtsAnnualizer"
uninstall_key='Software\Microsoft\Windows\CurrentVersion\Uninstall\HtsAnnualizer'

# set_up CODE OPTIONS...: the installer ends with the exit code.
set_up() {
    local expected=$1 code=0
    shift
    wine "${setups[0]}" /S "$@" || code=$?
    [ "$code" -eq "$expected" ] || fail "the installer ended with $code"
}

# check_installed FOLDER START_MENU ROOT_KEY
check_installed() {
    local value
    [ "$(list "$1")" = "$(printf '%s\nuninstall.exe' "$files")" ] || fail "installed is $(list "$1")"
    strings --encoding=l "$2" | grep -x -F '%USERPROFILE%\Documents' >/dev/null ||
        fail "the entry in the Start menu starts in another folder"
    for value in DisplayVersion EstimatedSize; do
        wine reg query "$3\\$uninstall_key" /v "$value" >/dev/null 2>&1 ||
            fail "no $value in the list of programs"
    done
    run_programs "$1"
}

# check_uninstalled FOLDER START_MENU ROOT_KEY: with two files of the user's own, which stay. The
# uninstaller works as a copy of itself, for which it doesn't wait.
check_uninstalled() {
    printf 'mine\n' | tee "$1/examples/mine.hts" >"$1/licenses/mine.txt"
    wine "$1/uninstall.exe" /S || fail "the uninstaller ended with $?"
    until [ ! -e "$1/uninstall.exe" ] && ! wine reg query "$3\\$uninstall_key" >/dev/null 2>&1; do
        ((SECONDS < deadline_seconds)) || fail "the uninstaller hangs"
        sleep 0.1
    done
    [ "$(list "$1" | tr '\n' ' ')" = "examples/mine.hts licenses/mine.txt " ] ||
        fail "left over is $(list "$1")"
    [ ! -e "$2" ] || fail "the entry in the Start menu is left over"
    rm -r "$1"
}

installed="$WINEPREFIX/drive_c/Program Files/HtsAnnualizer"
menu="$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/HtsAnnualizer.lnk"
rm -rf "$installed" "$menu"
set_up 0
check_installed "$installed" "$menu" HKLM

# While a program runs, here until its input ends, neither changes anything.
mkfifo "$top/input"
(cd "$top" && exec wine "$installed/htstool.exe" check --counts counts.csv - <"$top/input") \
    >/dev/null 2>&1 &
exec 3>"$top/input"
until compgen -G "$top/counts.csv*" >/dev/null; do # which is written under another name at first
    ((SECONDS < deadline_seconds)) || fail "htstool doesn't start"
    sleep 0.1
done
printf 'old\n' >"$installed/LICENSE.txt"
set_up 2
# Without a copy of itself, and so with an exit code; the folder has no quotes.
printf '@"%%ProgramFiles%%\\HtsAnnualizer\\uninstall.exe" /S _?=%%ProgramFiles%%\\HtsAnnualizer\r\n@exit %%errorlevel%%\r\n' \
    >"$top/uninstall.bat"
code=0
(cd "$top" && wine cmd /c uninstall.bat) >/dev/null 2>&1 || code=$?
[ "$code" -eq 2 ] || fail "the uninstaller of a running program ended with $code"
[ "$(list "$installed")" = "$(printf '%s\nuninstall.exe' "$files")" ] ||
    fail "of a running program there is $(list "$installed")"
[ "$(<"$installed/LICENSE.txt")" = old ] || fail "a file of a running program was replaced"
exec 3>&-
wait || true # htstool finds no HTS file there
set_up 0
check_installed "$installed" "$menu" HKLM
check_uninstalled "$installed" "$menu" HKLM

# ---- for one user, and on the search path ----

user="$WINEPREFIX/drive_c/users/$(id -un)/AppData"
installed="$user/Local/Programs/HtsAnnualizer"
menu="$user/Roaming/Microsoft/Windows/Start Menu/Programs/HtsAnnualizer.lnk"
rm -rf "$installed" "$menu"

search_path() {
    wine reg query 'HKCU\Environment' /v Path 2>/dev/null | tr -d '\r' | sed -n 's/^ *Path *//p'
}

# Longer than a text of the installer may be.
old_path="%USERPROFILE%\\bin$(printf ';C:\\tools\\%d' {1..200})"
wine reg add 'HKCU\Environment' /v Path /t REG_EXPAND_SZ /d "$old_path" /f >/dev/null 2>&1
set_up 0 /CurrentUser /AddToPath
set_up 0 /CurrentUser /AddToPath # not twice
check_installed "$installed" "$menu" HKCU
new_path="REG_EXPAND_SZ    $old_path;C:\\users\\$(id -un)\\AppData\\Local\\Programs\\HtsAnnualizer"
[ "$(search_path)" = "$new_path" ] || fail "the search path is $(search_path)"
check_uninstalled "$installed" "$menu" HKCU
[ "$(search_path)" = "REG_EXPAND_SZ    $old_path" ] || fail "the search path is $(search_path)"
wine reg delete 'HKCU\Environment' /v Path /f >/dev/null 2>&1
printf 'zip and installer work\n'
