#!/usr/bin/env bash
# Shows that the Help button opens the page in a real browser: the program is in a folder with a
# blank in its name, and the desktop's browser is Chromium without a window, which prints what it
# has loaded. Not part of the tests of the build: a browser is large and starts slowly.
#
#     check_browser.sh PROGRAM
#
# Needs the Debian packages chromium, xdg-utils, xvfb, xdotool and openbox.
set -u

die() {
    echo "FAIL: $*" >&2
    exit 1
}

program=$(realpath "$1")
test_folder=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")

for tool in chromium xdg-mime Xvfb xdotool openbox; do
    command -v "$tool" >/dev/null || die "$tool is missing; see the packages at the top of $0"
done

# shellcheck source-path=SCRIPTDIR source=../xvfb/xserver.sh
. "$test_folder/../xvfb/xserver.sh"

start_x_server 1024x768x24
browser_folder=$folder/browser
installed="$folder/a folder"
mkdir -p "$browser_folder" "$folder/data/applications" "$installed"
cp "$program" "$installed/HtsAnnualizer" || die "no program"
cp -r "$test_folder/../../../Help" "$installed/Help" || die "no help page"

# ---- the browser of this desktop ----

export XDG_DATA_HOME=$folder/data
cat >"$browser_folder/browser" <<END
#!/bin/sh
printf '%s\n' "\$@" >'$browser_folder/arguments'
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \\
    --disable-background-networking --disable-component-update --disable-sync \\
    --user-data-dir='$browser_folder/profile' --dump-dom "\$@" \\
    >'$browser_folder/part' 2>'$folder/chromium.log'
mv '$browser_folder/part' '$browser_folder/page'
END
chmod +x "$browser_folder/browser"
printf '%s\n' '[Desktop Entry]' Type=Application Name=Browser \
    "Exec=$browser_folder/browser %u" 'MimeType=x-scheme-handler/http;' \
    >"$XDG_DATA_HOME/applications/check-browser.desktop"
xdg-mime default check-browser.desktop x-scheme-handler/http || die "no association"

# ---- the Help button ----

start_program "$installed/HtsAnnualizer"
focus_window "HTS Annualizer \(v1\.1\)"
# Three fields with a button each, the list of months, two buttons.
xdotool key Tab Tab Tab Tab Tab Tab Tab Tab Tab space
until_true "the page" test -e "$browser_folder/page"

title=$(grep -o '<title>.*</title>' "$installed/Help/HtsAnnualizerHelp.html")
[[ -n $title ]] || die "the help page has no title"
grep -qF "$title" "$browser_folder/page" || die "the browser shows another page$(print_logs)"
[[ $(<"$browser_folder/arguments") == "file:///$installed/Help/HtsAnnualizerHelp.html" ]] ||
    die "the browser was started with: $(<"$browser_folder/arguments")"
echo "PASS: $(<"$browser_folder/arguments"): $title, $(wc -c <"$browser_folder/page") bytes"
