#!/usr/bin/env bash
# Runs a Qt Test program for Windows under Wine and shows its report. A program of the desktop has
# no standard output there, so the report goes through a file.
# usage: run_test.sh PROGRAM [ARGUMENTS]
set -uo pipefail
# shellcheck source-path=SCRIPTDIR source=wine.sh
. "$(dirname -- "${BASH_SOURCE[0]}")/wine.sh"

folder=$(mktemp -d) || exit
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit

status=0
wine "$@" -o report.txt,txt >output 2>&1 || status=$?
cat output report.txt
# An exit code keeps only the last eight bits of the number of failures.
if [ "$status" -eq 0 ]; then
    grep -q '^Totals: [0-9]* passed, 0 failed, 0 skipped' report.txt || status=1
fi
exit "$status"
