# shellcheck shell=bash
# How tests run a program for Windows; sourced. The Wine prefix is always the one in the build tree,
# so that nothing of the user's own is used, changed, or ended with the tests.
WINEPREFIX=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)/build/windows/wineprefix
export WINEPREFIX
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml="
export LC_ALL=C.UTF-8
