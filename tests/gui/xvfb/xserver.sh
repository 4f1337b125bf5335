# shellcheck shell=bash
# An X server with a window manager, for scripts that drive the program by keyboard. Sourced, not
# run. Any number may run at a time: each takes the next free display and a temporary folder.
#
# The script that sources this file has a function `die MESSAGE...`, which ends it. It may run under
# `set -e` and `set -u`.
#
#     start_x_server 1024x768x24
#     start_program build/release/app/HtsAnnualizer
#     focus_window "HTS Annualizer \(v1\.1\)"
#
# Needs the Debian packages of `x_server_packages`.

# shellcheck disable=SC2034 # used by the scripts that source this file
x_server_packages=("xvfb=Xvfb" "openbox=openbox" "xdotool=xdotool")

folder=$(mktemp -d) || die "no temporary folder"
deadline_seconds=90 # for the whole run; a slow instrumented build takes a few
started=()          # process ids
must_run=()         # those of them without which waiting is in vain
window_id=          # of the last window that was found
program_id=         # of the last program that was started

# Ends what is still running, latest first: the program before its server.
clean_up() {
    local i
    for ((i = ${#started[@]} - 1; i >= 0; --i)); do
        kill "${started[i]}" 2>/dev/null || true
        wait "${started[i]}" 2>/dev/null || true
    done
    rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 1' INT TERM HUP

# start_process NAME COMMAND... starts the command; its output goes to NAME.log.
start_process() {
    local name=$1
    shift
    "$@" >"$folder/$name.log" 2>&1 &
    started+=($!)
    must_run+=($!)
}

all_run() {
    local id
    for id in "${must_run[@]}"; do
        kill -0 "$id" 2>/dev/null || return 1
    done
}

# What the server, the window manager and the program have written.
print_logs() {
    local log
    for log in "$folder"/*.log; do
        [[ ! -s $log ]] || printf '\n%s:\n%s\n' "${log##*/}" "$(<"$log")"
    done
}

# until_true WHAT COMMAND... repeats the command until it succeeds.
until_true() {
    local what=$1
    shift
    until "$@"; do
        ((SECONDS < deadline_seconds)) || die "waited in vain for $what$(print_logs)"
        all_run || die "a process ended while waiting for $what$(print_logs)"
        sleep 0.02
    done
}

# Answered by a window manager alone.
has_window_manager() {
    xdotool get_num_desktops >/dev/null 2>&1
}

# start_x_server SCREEN makes a screen of that size, WIDTHxHEIGHTxDEPTH, the display of what is
# started from then on. Nothing of the caller's desktop shows on it: settings, scaling, styles.
start_x_server() {
    export HOME=$folder XDG_RUNTIME_DIR=$folder XDG_CONFIG_HOME=$folder XDG_CACHE_HOME=$folder
    chmod 700 "$folder"
    unset WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER XDG_CURRENT_DESKTOP DESKTOP_SESSION
    unset QT_SCALE_FACTOR QT_FONT_DPI QT_STYLE_OVERRIDE QT_QPA_PLATFORMTHEME
    export DBUS_SESSION_BUS_ADDRESS=disabled: # else the display would get a bus that stays

    # A server that resets after its last client refuses the next one meanwhile.
    start_process xvfb Xvfb -noreset -displayfd 3 -screen 0 "$1" -dpi 96 -nolisten tcp \
        3>"$folder/display"
    until_true "the X server" test -s "$folder/display"
    DISPLAY=:$(<"$folder/display")
    export DISPLAY
    start_process openbox openbox --sm-disable
    until_true "the window manager" has_window_manager
}

start_program() {
    start_process program env QT_QPA_PLATFORM=xcb QT_XCB_GL_INTEGRATION=none "$@"
    # shellcheck disable=SC2034 # used by the scripts that source this file
    program_id=${started[-1]}
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
    xdotool windowactivate "$window_id" || die "cannot activate '$1'"
    until_true "the keyboard in '$1'" is_focused
}
