#!/usr/bin/env bash
# Drives the built program by keyboard on an X server of its own: one conversion of the daily
# example with water years, then the main window is closed while the diagnostics window is open.
#
#     main_window.sh PROGRAM SOURCE_FOLDER
#
# Needs the Debian packages xvfb, xdotool and openbox. Any number may run at a time: each takes the
# next free display and a temporary folder.
set -u

program=$(realpath "$1")
source_folder=$(realpath "$2")
deadline_seconds=90 # for the whole run; a slow instrumented build takes a few

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

for tool in Xvfb xdotool openbox; do
    command -v "$tool" >/dev/null ||
        fail "$tool is missing; install the packages xvfb, xdotool and openbox"
done

folder=$(mktemp -d) || fail "no temporary folder"
started=()

# Ends what is still running, latest first: the program before its server.
clean_up() {
    for ((i = ${#started[@]} - 1; i >= 0; --i)); do
        kill "${started[i]}" 2>/dev/null
        wait "${started[i]}" 2>/dev/null
    done
    rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 1' INT TERM HUP

# until_true WHAT COMMAND... repeats the command until it succeeds.
until_true() {
    local what=$1
    shift
    until "$@"; do
        ((SECONDS < deadline_seconds)) || fail "waited in vain for $what"
        [[ -z ${program_id:-} ]] || kill -0 "$program_id" 2>/dev/null ||
            fail "the program ended while waiting for $what: $(cat "$folder/program.log")"
        sleep 0.02
    done
}

# Sets window_id to the one visible window with exactly this title.
find_window() {
    local ids
    ids=$(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null) || return 1
    [[ $ids =~ ^[0-9]+$ ]] || return 1
    window_id=$ids
}

has_no_window() {
    [[ -z $(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null) ]]
}

is_focused() {
    [[ $(xdotool getwindowfocus 2>/dev/null) == "$window_id" ]]
}

# Waits for the window and gives it the keyboard.
focus_window() {
    until_true "the window '$1'" find_window "$1"
    xdotool windowactivate "$window_id" || fail "cannot activate '$1'"
    until_true "the keyboard in '$1'" is_focused
}

# Prints the window manager's frame of the window in front, at the corner where all windows are put.
frame_in_front() {
    xdotool mousemove 200 200 getmouselocation --shell | grep '^WINDOW='
}

is_in_front() {
    [[ $(frame_in_front) == "$1" ]]
}

is_behind() {
    ! is_in_front "$1"
}

has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

# ---- server and window manager ----

export HOME=$folder XDG_RUNTIME_DIR=$folder XDG_CONFIG_HOME=$folder XDG_CACHE_HOME=$folder
chmod 700 "$folder"
unset WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER
export DBUS_SESSION_BUS_ADDRESS=disabled: # else the display would get a bus that stays

Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$folder/display" 2>"$folder/xvfb.log" &
started+=($!)
until_true "the X server" test -s "$folder/display"
DISPLAY=:$(<"$folder/display")
export DISPLAY

openbox --sm-disable >"$folder/openbox.log" 2>&1 &
started+=($!)
has_window_manager() {
    # Answered by a window manager alone.
    xdotool get_num_desktops >/dev/null 2>&1
}
until_true "the window manager" has_window_manager

# ---- the program ----

mkdir "$folder/in" "$folder/out"
cp "$source_folder/examples/rivers_daily.hts" "$folder/in/rivers.hts" || fail "no example"
cp "$source_folder/examples/rivers_daily_methods.txt" "$folder/in/methods.txt" || fail "no example"

cd "$folder" || fail "cannot enter $folder"
env -u QT_SCALE_FACTOR -u QT_FONT_DPI -u QT_STYLE_OVERRIDE QT_QPA_PLATFORM=xcb \
    QT_XCB_GL_INTEGRATION=none "$program" >"$folder/program.log" 2>&1 &
program_id=$!
started+=("$program_id")

# The keyboard starts in the first field; two steps lead past each button to the next field, and
# in the list of months the S stands for September alone.
focus_window "HTS Annualizer \(v1\.1\)"
main_window_id=$window_id
xdotool type "in/rivers.hts"
xdotool key Tab Tab
xdotool type "in/methods.txt"
xdotool key Tab Tab
xdotool type "out/annual.hts"
xdotool key Tab Tab s Tab space

find_box() {
    find_window "Annualize HTS" || find_window "Annualize HTS Error" ||
        find_window "Annualizer Configuration Error" || find_window "Incomplete Information" ||
        find_window "Information Error"
}
until_true "a message box" find_box
box_title=$(xdotool getwindowname "$window_id")
[[ $box_title == "Annualize HTS" ]] || fail "the box is titled '$box_title'"
cmp "$folder/out/annual.hts" "$source_folder/tests/app/golden/rivers_september.expected" ||
    fail "the annual file is not as expected"
[[ $(ls "$folder/out") == annual.hts ]] || fail "more than the annual file was written"

focus_window "Annualize HTS"
xdotool key Return
until_true "the box to close" has_no_window "Annualize HTS"

# From the button that was pressed the next one is "Show Diagnostics".
focus_window "HTS Annualizer \(v1\.1\)"
[[ $window_id == "$main_window_id" ]] || fail "the main window is another one"
xdotool key Tab space
until_true "the diagnostics window" find_window "HTS Annualizer Diagnostics"
diagnostics_id=$window_id

# Pressed again, the button brings the diagnostics window back to the front.
xdotool windowmove --sync "$diagnostics_id" 0 0 windowmove --sync "$main_window_id" 0 0
diagnostics_frame=$(frame_in_front)
focus_window "HTS Annualizer \(v1\.1\)"
until_true "the main window in front" is_behind "$diagnostics_frame"
xdotool key space
until_true "the diagnostics window in front" is_in_front "$diagnostics_frame"

focus_window "HTS Annualizer \(v1\.1\)"
xdotool key alt+F4
main_id=$program_id
program_id= # may end from now on
until_true "the program to end" has_ended "$main_id"
wait "$main_id"
exit_code=$?
[[ $exit_code == 0 ]] || fail "the exit code is $exit_code: $(cat "$folder/program.log")"
echo "PASS"
