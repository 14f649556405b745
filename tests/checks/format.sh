#!/usr/bin/env bash
# Every C++ file is laid out as .clang-format says; ./dev format makes it so.
set -euo pipefail

find . -path ./build -prune -o \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 clang-format --dry-run -Werror
