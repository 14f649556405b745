#!/usr/bin/env bash
# usage: tidy.sh BUILD_FOLDER
# The sources that are built hold what .clang-tidy asks for, there and in their own folder.
set -euo pipefail

# The program is built with a precompiled header, which only the compiler that made it can read.
commands=$1/tidy
mkdir -p "$commands"
sed -E 's/-Winvalid-pch -include [^ "]+//' "$1/compile_commands.json" >"$commands/compile_commands.json"

# The program's sources take longest.
for folder in cli python src embedded mesh; do
    sed -nE "s|^ *\"file\": \"($PWD/$folder/.*\\.cpp)\",?\$|\\1|p" "$commands/compile_commands.json"
done | awk '!seen[$0]++' |
    xargs -n 1 -P "$(nproc)" clang-tidy --quiet --warnings-as-errors='*' -p "$commands"
