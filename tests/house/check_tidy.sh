#!/usr/bin/env bash
# usage: check_tidy.sh BUILD_FOLDER
# The sources of the library and of the embedded host hold what .clang-tidy asks for.
set -euo pipefail
command -v clang-tidy >/dev/null || exit 77

find src embedded/src -name '*.cpp' -print0 |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet --warnings-as-errors='*' -p "$1"
