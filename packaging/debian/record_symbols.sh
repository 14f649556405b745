#!/usr/bin/env bash
# Keeps the tables of symbols of the packages as those of a version: ./dev package holds later ones to them.
#
# usage: record_symbols.sh     after ./dev package
set -euo pipefail

here=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")
for table in "$here"/../../build/debian/debian/*/symbols; do
    package=$(basename -- "$(dirname -- "$table")")
    cp "$table" "$here/$package.symbols"
done
