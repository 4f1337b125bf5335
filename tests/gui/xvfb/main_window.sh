#!/usr/bin/env bash
# Drives the built program by keyboard on an X server of its own: one conversion of the daily
# example with water years, its diagnostics saved to a file, then the main window is closed while
# the diagnostics window is open.
#
#     main_window.sh PROGRAM SOURCE_FOLDER
#
# Needs the Debian packages xvfb, xdotool and openbox.
set -u

die() {
    echo "FAIL: $*" >&2
    exit 1
}

program=$(realpath "$1")
source_folder=$(realpath "$2")
test_folder=$source_folder/tests/gui/xvfb

for tool in Xvfb xdotool openbox; do
    command -v "$tool" >/dev/null ||
        die "$tool is missing; install the packages xvfb, xdotool and openbox"
done

# shellcheck source-path=SCRIPTDIR source=xserver.sh
. "$test_folder/xserver.sh"

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

start_x_server 1024x768x24

mkdir "$folder/in" "$folder/out"
cp "$source_folder/examples/rivers_daily.hts" "$folder/in/rivers.hts" || die "no example"
cp "$source_folder/examples/rivers_daily_methods.txt" "$folder/in/methods.txt" || die "no example"

cd "$folder" || die "cannot enter $folder"
start_program "$program"

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
[[ $box_title == "Annualize HTS" ]] || die "the box is titled '$box_title'"
cmp "$folder/out/annual.hts" "$source_folder/tests/app/golden/rivers_september.expected" ||
    die "the annual file is not as expected"
[[ $(ls "$folder/out") == annual.hts ]] || die "more than the annual file was written"

focus_window "Annualize HTS"
xdotool key Return
until_true "the box to close" has_no_window "Annualize HTS"

# From the button that was pressed the next one is "Show Diagnostics".
focus_window "HTS Annualizer \(v1\.1\)"
[[ $window_id == "$main_window_id" ]] || die "the main window is another one"
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
window_id=$diagnostics_id
until_true "the keyboard in the diagnostics window" is_focused

# The file holds the lines of the conversion, as in the window: with their level and without
# their time.
focus_window "HTS Annualizer Diagnostics"
xdotool key ctrl+shift+s
focus_window "Save Diagnostic Output"
xdotool type "diagnostics.txt"
xdotool key Return
until_true "the dialog to close" has_no_window "Save Diagnostic Output"
until_true "the saved diagnostics" test -s "$folder/diagnostics.txt" # written after that
diff "$test_folder/main_window.expected" "$folder/diagnostics.txt" ||
    die "the diagnostics are not as expected"

focus_window "HTS Annualizer \(v1\.1\)"
xdotool key alt+F4
must_run=() # the program may end from now on
until_true "the program to end" has_ended "$program_id"
wait "$program_id"
exit_code=$?
[[ $exit_code == 0 ]] || die "the exit code is $exit_code: $(cat "$folder/program.log")"
echo "PASS"
