#!/usr/bin/env bash
# Runs the programs for Windows under Wine and those for Unix with the same arguments and compares
# what they leave: exit codes, texts on the console, and files, which are the same but for the line
# ends of text mode.
# usage: compare_programs.sh UNIX_BUILD WINDOWS_BUILD SOURCE
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=wine.sh
. "$(dirname -- "${BASH_SOURCE[0]}")/wine.sh"

unix_build=$1
windows_build=$2
source=$3

top=$(mktemp -d)
trap 'rm -rf "$top"' EXIT
checks=0
faults=0

# check WHAT COMMAND... counts a check, which the command's success passes.
check() {
    local what=$1
    shift
    checks=$((checks + 1))
    if ! "$@"; then
        faults=$((faults + 1))
        printf 'FAIL: %s: %s\n' "$name" "$what"
    fi
}

# Fresh folders for a case: "unix" and "windows", alike but for their names.
begin() {
    name=$1
    rm -rf "$top/unix" "$top/windows"
    local side
    for side in unix windows; do
        mkdir -p "$top/$side/my data/Léman" "$top/$side/data"
        cp "$source/examples/rivers_daily.hts" "$top/$side/a.hts"
        cp "$source/examples/rivers_daily_methods.txt" "$top/$side/c.txt"
        cp "$top/$side/a.hts" "$top/$side/my data/Léman/été.hts"
        cp "$top/$side/a.hts" "$top/$side/data/a.hts"
    done
}

run_unix() {
    local program=$1
    shift
    unix_code=0
    (cd "$top/unix" && "$unix_build/$program" "$@" >"$top/unix.out" 2>"$top/unix.err") || unix_code=$?
}

windows_path() {
    printf 'Z:%s' "${1//\//\\}"
}

# With the console's text in a file, by a batch file: the arguments stand in it as they are.
run_windows() {
    local program=$1
    shift
    windows_code=0
    printf '@"%s" %s >out.txt\r\n@exit %%errorlevel%%\r\n' \
        "$(windows_path "$windows_build/$program.exe")" "$*" >"$top/run.bat"
    (cd "$top/windows" && wine cmd /c "$(windows_path "$top/run.bat")") >"$top/wine.out" 2>&1 ||
        windows_code=$?
    mv "$top/windows/out.txt" "$top/windows.out"
}

# The same, without a batch file: no console is needed, and letters go by as they are.
run_windows_directly() {
    local program=$1
    shift
    windows_code=0
    (cd "$top/windows" && wine "$windows_build/$program.exe" "$@") >"$top/windows.out" \
        2>"$top/windows.err" || windows_code=$?
}

# A file in text mode: every line ends with "\r\n".
with_returns() {
    sed 's/$/\r/' "$1"
}

# A log without its date.
without_date() {
    sed '2s/.*/(date)/' "$1"
}

same_result() {
    cmp -s "$top/windows/$2" <(with_returns "$top/unix/$1")
}

same_log() {
    cmp -s <(without_date "$top/windows/$2" | sed 's/\r$//') <(without_date "$top/unix/$1") &&
        [ "$(grep -c $'\r$' "$top/windows/$2")" -eq "$(wc -l <"$top/windows/$2")" ]
}

same_console() {
    cmp -s "$top/windows.out" "$top/unix.out" || {
        printf 'on Unix:\n%s\non Windows:\n%s\n' "$(<"$top/unix.out")" "$(<"$top/windows.out")"
        return 1
    }
}

same_code() {
    [ "$unix_code:$windows_code" != "$1:$1" ] || return 0
    printf 'exit codes %d on Unix, %d on Windows, expected %d\n' "$unix_code" "$windows_code" "$1"
    return 1
}

is_untouched() {
    cmp -s "$top/windows/$1" "$source/examples/rivers_daily.hts"
}

# ---- conversions ----

while IFS=$'\t' read -r example input control month; do
    begin "example $example"
    cp "$source/$input" "$top/unix/a.hts"
    cp "$source/$input" "$top/windows/a.hts"
    cp "$source/$control" "$top/unix/c.txt"
    cp "$source/$control" "$top/windows/c.txt"
    arguments=(-i a.hts -o b.hts -c c.txt -y "$month")
    run_unix app/HtsAnnualizer "${arguments[@]}"
    run_windows_directly app/HtsAnnualizer "${arguments[@]}"
    check "exit code" same_code 0
    check "result" same_result b.hts b.hts
    check "computed result" cmp -s "$top/unix/b.hts" "$source/tests/app/golden/$example.expected"
    check "log" same_log b.log b.log
    check "nothing on the console" test ! -s "$top/windows.out"
done <"$source/tests/app/golden/cases.tsv"

begin "letters, blanks and backslashes"
run_unix app/HtsAnnualizer -i "my data/Léman/été.hts" -o "my data/Léman/né à.hts" -c c.txt
run_windows_directly app/HtsAnnualizer -i 'my data\Léman\été.hts' -o 'my data\Léman/né à.hts' -c c.txt
check "exit code" same_code 0
check "result" same_result "my data/Léman/né à.hts" "my data/Léman/né à.hts"
check "log is there" test -f "$top/windows/my data/Léman/né à.log"

# Of similar letters that the code page has, and a slash of full width, which is none.
begin "letters that the code page does not have"
cp "$top/windows/c.txt" "$top/windows/Lódz.hts"
run_unix app/HtsAnnualizer -i a.hts -o "Łódź.hts" -c c.txt -l "data／湖.log"
run_windows_directly app/HtsAnnualizer -i a.hts -o "Łódź.hts" -c c.txt -l "data／湖.log"
check "exit code" same_code 0
check "result" same_result "Łódź.hts" "Łódź.hts"
check "another file" cmp -s "$top/windows/Lódz.hts" "$top/windows/c.txt"
check "log" test -f "$top/windows/data／湖.log"

begin "variable of the environment"
export HTS_FLOWS="my data"
run_unix app/HtsAnnualizer -i "\$HTS_FLOWS/Léman/été.hts" -o "\${HTS_FLOWS}/b.hts" -c c.txt -l "\$(HTS_FLOWS)/l.txt"
run_windows_directly app/HtsAnnualizer -i "\$hts_flows\\Léman\\été.hts" -o "\${HTS_FLOWS}\\b.hts" \
    -c c.txt -l "\$(HTS_FLOWS)/l.txt"
check "exit code" same_code 0
check "result" same_result "my data/b.hts" "my data/b.hts"
check "log" test -f "$top/windows/my data/l.txt"

begin "variable with letters that the code page does not have"
mkdir "$top/windows/Lód"
HTS_FLOWS=Łód
run_windows app/HtsAnnualizer -i a.hts -o "\$HTS_FLOWS/b.hts" -c c.txt
check "exit code" test "$windows_code" -eq 1
check "text" grep -q 'environment variables could not be substituted' "$top/windows.out"
check "another folder" test -z "$(ls "$top/windows/Lód")"

begin "variable of more than 1023 bytes"
HTS_FLOWS=$(printf 'x%.0s' {1..1024})
run_unix app/HtsAnnualizer -i "\$HTS_FLOWS/a.hts" -o b.hts -c c.txt
run_windows app/HtsAnnualizer -i "\$HTS_FLOWS/a.hts" -o b.hts -c c.txt
check "exit code" same_code 1
check "console" same_console
unset HTS_FLOWS

# ---- failures ----

# fails NAME CODE ARGUMENTS...: the same text and exit code on both.
fails() {
    local case=$1 code=$2
    shift 2
    begin "$case"
    run_unix app/HtsAnnualizer "$@"
    run_windows app/HtsAnnualizer "$@"
    check "exit code" same_code "$code"
    check "console" same_console
}

fails "usage text" 0 -h
fails "version" 0 -v
fails "unknown option" 0 -x
fails "value without option" 0 a.hts
fails "no input" 1 -o b.hts
fails "no output" 1 -i a.hts
fails "no control file" 1 -i a.hts -o b.hts
fails "undefined variable" 1 -i \$HTS_NONE/a.hts -o b.hts -c c.txt
fails "output is the input" 1 -i a.hts -o a.hts -c c.txt
check "input" is_untouched a.hts
fails "output is the input, other spelling" 1 -i a.hts -o ./data/../a.hts -c c.txt
check "input" is_untouched a.hts
fails "log is the control file" 1 -i a.hts -o b.hts -c c.txt -l c.txt

begin "output is a hard link to the input"
ln "$top/unix/a.hts" "$top/unix/link.hts"
ln "$top/windows/a.hts" "$top/windows/link.hts"
run_unix app/HtsAnnualizer -i a.hts -o link.hts -c c.txt
run_windows app/HtsAnnualizer -i a.hts -o link.hts -c c.txt
check "exit code" same_code 1
check "console" same_console
check "input" is_untouched a.hts

begin "output is the input in other letters"
run_windows app/HtsAnnualizer -i a.hts -o A.HTS -c c.txt
check "exit code" test "$windows_code" -eq 1
check "console" grep -q 'The output hts file is the input hts file a.hts' "$top/windows.out"
check "input" is_untouched a.hts

# The reason is the own text of the system, which is Wine here.
begin "missing input"
run_unix app/HtsAnnualizer -i none.hts -o b.hts -c c.txt
run_windows app/HtsAnnualizer -i none.hts -o b.hts -c c.txt
check "exit code" same_code 1
check "message" cmp -s <(head -n 1 "$top/windows.out") <(head -n 1 "$top/unix.out")
check "reason" test "$(sed -n 2p "$top/windows.out")" = "File not found."

begin "month out of range"
run_unix app/HtsAnnualizer -i a.hts -o b.hts -c c.txt -y 13
run_windows_directly app/HtsAnnualizer -i a.hts -o b.hts -c c.txt -y 13
check "exit code" same_code 1
check "log" same_log b.log b.log

begin "engine refuses"
run_unix app/HtsAnnualizer -i c.txt -o b.hts -c a.hts
run_windows_directly app/HtsAnnualizer -i c.txt -o b.hts -c a.hts
check "exit code" same_code 1
check "log" same_log b.log b.log

begin "platform that does not exist"
# Wine keeps the toolkit's variables from programs for Windows, so it is set in a batch file.
printf '@set QT_QPA_PLATFORM=nosuch\r\n@"%s" -v\r\n' \
    "$(windows_path "$windows_build/app/HtsAnnualizer.exe")" >"$top/run.bat"
check "no pseudo-terminal (a devpts at /dev/pts)" script -qec true /dev/null
timeout 60 script -qec "wine cmd /c '$(windows_path "$top/run.bat")'" /dev/null \
    >"$top/windows.out" </dev/null || true
check "console" grep -q 'HtsAnnualizer version 1.0' "$top/windows.out"

# ---- batch file of the help page ----

begin "batch file of the help page"
cp "$windows_build/app/HtsAnnualizer.exe" "$top/windows/"
cp "$top/windows/c.txt" "$top/windows/methods.txt"
mv "$top/windows/data" "$top/windows/daily"
cp "$top/windows/c.txt" "$top/windows/daily/no good.hts"
sed -n '/<pre id="batch-example"/,/<\/code>/p' "$source/Help/HtsAnnualizerHelp.html" |
    sed 's/<[^>]*>//g; s/&lt;/</g; s/&gt;/>/g; s/&amp;/\&/g; s/$/\r/' >"$top/windows/all.bat"
windows_code=0
(cd "$top/windows" && wine cmd /c all.bat) >"$top/windows.out" 2>&1 || windows_code=$?
check "exit code" test "$windows_code" -eq 1
run_unix app/HtsAnnualizer -i data/a.hts -o b.hts -c c.txt -y 9
check "result" same_result b.hts annual/a.hts
check "success is reported" grep -q '^daily\\a.hts: done' "$top/windows.out"
check "failure is reported" grep -q '^daily\\no good.hts: FAILED' "$top/windows.out"
check "its reason is reported" grep -q 'Cannot read package preamble' "$top/windows.out"
rm "$top/windows/daily/no good.hts"
windows_code=0
(cd "$top/windows" && wine cmd /c all.bat) >"$top/windows.out" 2>&1 || windows_code=$?
check "exit code without a failure" test "$windows_code" -eq 0
rm -r "$top/windows/daily"
mkdir "$top/windows/daily"
windows_code=0
(cd "$top/windows" && wine cmd /c all.bat) >"$top/windows.out" 2>&1 || windows_code=$?
check "exit code of an empty folder" test "$windows_code" -eq 1
check "text for an empty folder" grep -q '^no HTS files in daily' "$top/windows.out"

# ---- the tool ----

if [ -e "$windows_build/tool/htstool.exe" ]; then
    for arguments in "--version" "--help" "check a.hts" "check c.txt" "export a.hts" "check"; do
        begin "htstool $arguments"
        # shellcheck disable=SC2086 # words
        run_unix tool/htstool $arguments
        # shellcheck disable=SC2086
        run_windows_directly tool/htstool $arguments
        sed -i 's/\r$//' "$top/windows.out" "$top/windows.err"
        check "exit code" same_code "$unix_code"
        check "output" same_console
        check "errors" cmp "$top/windows.err" "$top/unix.err"
    done
    begin "htstool check with a pattern"
    cp "$top/windows/c.txt" "$top/windows/A[1].HTS"
    cp "$top/windows/c.txt" "$top/unix/A[1].HTS"
    run_unix tool/htstool check a.hts "A[1].HTS"
    run_windows_directly tool/htstool check '*.h?s'
    sed -i 's/\r$//' "$top/windows.out"
    check "exit code" same_code 2
    check "output" same_console
    begin "htstool check with a pattern of no file"
    run_windows_directly tool/htstool check 'none*.hts'
    check "exit code" test "$windows_code" -eq 3
    # Rows of comma-separated values end in "\r\n" on both systems.
    begin "htstool export to the standard output"
    run_unix tool/htstool export a.hts -o -
    run_windows_directly tool/htstool export a.hts -o -
    check "exit code" same_code 0
    check "bytes" cmp "$top/windows.out" "$top/unix.out"
fi

# ---- names that are not what they seem ----

for program in "HtsAnnualizer -i a.hts -c c.txt -l l.txt" "htstool export a.hts"; do
    arguments=${program#* }
    program=${program%% *}
    folder=app
    code=1
    [ "$program" = HtsAnnualizer ] || { folder=tool code=3; }

    begin "$program into the null device"
    run_windows "$folder/$program" "$arguments" -o Nul
    check "exit code" test "$windows_code" -eq 0
    check "no file" test ! -e "$top/windows/Nul"

    for end in " " .; do
        begin "$program into a name that ends with '$end'"
        cp "$top/windows/c.txt" "$top/windows/b.hts"
        run_windows "$folder/$program" "$arguments" -o "\"b.hts$end\"" "2>errors.txt"
        check "exit code" test "$windows_code" -eq "$code"
        check "reason" grep -q 'ends with a blank or a dot' "$top/windows.out" \
            "$top/windows/errors.txt"
        check "file" cmp -s "$top/windows/b.hts" "$top/windows/c.txt"
    done
done

printf '%d checks, %d failed\n' "$checks" "$faults"
[ "$faults" -eq 0 ]
