# shellcheck shell=bash
# What the scripts of this tree share; sourced by them, from any current directory. The comment at
# the head of a script is its help, and says which options it has, one a line:
#
#     # usage: scripts/NAME [--check] [--only WORD] [FILE...]
#     #   --check      an option without a value
#     #   --only WORD  and one with
#
# Sourcing this file takes the script's arguments: --help shows the comment, what it does not name ends
# the script. The others are in `given`, by option, and in `operands`; what follows "--" is one, too.

script=$(realpath -- "$0")
root=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit

# Names of Debian packages; "package=command" is also satisfied by the command from elsewhere.
# shellcheck disable=SC2034 # used by the scripts that source this file
build_packages=("cmake=cmake" "g++=g++" "ninja-build=ninja" "pkg-config=pkg-config" "qtbase5-dev"
    "libglib2.0-dev")
oldest_cmake=3.21 # the first that reads this version of CMakePresets.json

say() {
    printf '==> %s\n' "$*"
}

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

refuse_arguments() {
    printf '%s: %s; see --help\n' "${0##*/}" "$*" >&2
    exit 2
}

declare -A given=() # an option without a value has "yes"
operands=()

# take_arguments ARGUMENT...
# shellcheck disable=SC2034 # scripts that source this file use `given`
take_arguments() {
    local help usage
    help=$(sed -En '2,/^([^#]|$)/s/^# ?//p' "$script")
    usage=$(grep '^usage: ' <<<"$help")
    while [ "$#" -gt 0 ]; do
        case $1 in
        -h | --help)
            printf '%s\n' "$help"
            exit
            ;;
        --)
            operands+=("${@:2}")
            break
            ;;
        -?*)
            [[ $help =~ $'\n  '"$1"( [A-Z]+)?'  ' ]] || refuse_arguments "no option $1"
            given[$1]=yes
            if [ -n "${BASH_REMATCH[1]}" ]; then
                [ -n "${2-}" ] || refuse_arguments "$1 needs a value,${BASH_REMATCH[1]}"
                given[$1]=$2
                shift
            fi
            ;;
        *) operands+=("$1") ;;
        esac
        shift
    done
    # Capitals that no option comes before are operands.
    [ "${#operands[@]}" -eq 0 ] || [[ $(sed -E 's/--[a-z-]+ [A-Z]+//g' <<<"$usage") =~ [A-Z]{2} ]] ||
        refuse_arguments "takes no argument ${operands[0]}"
}
take_arguments "$@"

# How root becomes a user with no rights.
as_nobody=(setpriv --reuid=nobody --regid=nogroup --clear-groups)

# Whether such a one can read this tree, by its whole path, and make temporary files.
nobody_can_test() {
    "${as_nobody[@]}" test -r "$root/scripts" -a -w "${TMPDIR:-/tmp}"
}

# Passes on the counters of ninja's lines, "[12/345] Building ...", each over the one before.
show_counter() {
    local line shown=
    while IFS= read -r line; do
        if [[ $line =~ ^(\[[0-9]+/[0-9]+\])\  ]]; then
            shown=${BASH_REMATCH[1]}
            printf '\r%s' "$shown"
        fi
    done
    [ -z "$shown" ] || printf '\r%*s\r' "${#shown}" ''
}

# quietly WHAT COMMAND...: announces the step, and shows on a terminal how far a build is; shows the
# command's output only when it fails.
quietly() {
    local what=$1 output status=0
    shift
    say "$what"
    output=$(mktemp)
    if [ -t 1 ]; then
        "$@" 2>&1 </dev/null | tee "$output" | show_counter || status=${PIPESTATUS[0]}
    else
        "$@" >"$output" 2>&1 </dev/null || status=$?
    fi
    if [ "$status" -ne 0 ]; then
        cat "$output" >&2
        rm -f "$output"
        printf '%s: failed: %s\n' "${0##*/}" "$what" >&2
        exit "$status"
    fi
    rm -f "$output"
}

is_installed() {
    local package=${1%%=*} command=
    [ "$package" = "$1" ] || command=${1#*=}
    if [ -n "$command" ] && command -v "$command" >/dev/null; then
        return 0
    fi
    command -v dpkg-query >/dev/null &&
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ]
}

# Asks for a password only where somebody can type it.
sudo_works() {
    command -v sudo >/dev/null || return 1
    sudo -n true 2>/dev/null || { [ -t 0 ] && sudo -v; }
}

# require_packages PACKAGE[=COMMAND]...: installs those that are missing.
require_packages() {
    local missing=() as_root=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("${package%%=*}")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0

    command -v apt-get >/dev/null ||
        die "these are missing, and there is no apt-get here to install them" \
            "(names of Debian packages): ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        sudo_works || die "packages are missing, and installing them needs root or a working sudo;" \
            "as root: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    # A new machine may still be installing its own updates; wait for them.
    as_root+=(env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600)
    quietly "Updating the package lists" "${as_root[@]}" update
    quietly "Installing ${missing[*]}" \
        "${as_root[@]}" install -y --no-install-recommends "${missing[@]}"
}

# mirror_of RELEASE: prints the address of the first source of its packages in this system's lists.
mirror_of() {
    local address
    # shellcheck disable=SC2016 # apt-get replaces these
    address=$(apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(SITE)' 'Created-By: Packages' |
        awk -v release="$1" '!found && $1 == release && $2 == "main" { print $3; found = 1 }')
    [ -n "$address" ] || die "apt-get has no source of packages for $1"
    printf '%s\n' "$address"
}

require_cmake_version() {
    local version
    version=$(cmake --version)
    version=${version#cmake version }
    version=${version%%[!0-9.]*}
    printf '%s\n' "$oldest_cmake" "$version" | sort -V -C ||
        die "cmake $version is too old, $oldest_cmake or newer is needed"
}

# target_of_test NAME: prints the target that builds the test and what it runs, if it is one of a program.
target_of_test() {
    local file
    for file in {tests,fuzz}/*/"$1".cpp; do
        [ ! -f "$file" ] || printf 'tests_%s\n' "$(sed 's|fuzz/replay|fuzz|; s|tests/||; s|/.*||' <<<"$file")"
    done
}

# build_preset PRESET [TARGET...]: configures the first time only, then builds what is out of date.
build_preset() {
    local preset=$1 targets=()
    shift
    [ "$#" -eq 0 ] || targets=(--target "$@")
    require_cmake_version
    if [ ! -f "build/$preset/build.ninja" ]; then
        quietly "Configuring build/$preset" cmake --preset "$preset"
    fi
    quietly "Building build/$preset" cmake --build --preset "$preset" "${targets[@]}"
}

# The optimised build with the benchmarks, which an earlier configuration may have left out.
build_with_benchmarks() {
    require_packages "libbenchmark-dev"
    if ! grep -qs '^BUILD_BENCHMARKS:BOOL=ON' build/release/CMakeCache.txt; then
        require_cmake_version
        quietly "Configuring build/release" cmake --preset release -DBUILD_BENCHMARKS=ON
    fi
    build_preset release
}

# install_node_modules FOLDER: what bench/peers/package.json names, into FOLDER/node_modules; again when it
# has changed.
install_node_modules() {
    cmp -s bench/peers/package-lock.json "$1/installed.json" && return
    mkdir -p "$1"
    cp bench/peers/package.json bench/peers/package-lock.json "$1"
    quietly "Installing polars and DuckDB in $1" npm ci --prefix "$1"
    cp bench/peers/package-lock.json "$1/installed.json"
}
