#!/usr/bin/env bash
# Lists the pages of the documentation, and checks them: links lead to files, the code of examples is that of
# the file named above it, or a part of it, every ./dev verb exists, and docs/index.md names every page.
set -euo pipefail

faults=0
help=$(./dev help)
fault() {
    printf '%s: %s\n' "$1" "$2" >&2
    faults=$((faults + 1))
}

check_links() {
    local page=$1 link
    while IFS= read -r link; do
        [[ $link =~ ^(https?:|mailto:|#) ]] && continue
        [[ -e $(dirname -- "$page")/${link%%#*} ]] || fault "$page" "link to nothing: $link"
    done < <(grep -oE '\]\([^) ]+\)' "$page" | sed -E 's/^\]\(|\)$//g')
}

# The first code block after a line "<!-- FILE -->".
code_after_mark() {
    awk -v mark="<!-- $2 -->" '
        $0 == mark { marked = 1; next }
        marked && /^```/ { if (inside) exit; inside = 1; next }
        inside { print }' "$1"
}

check_code() {
    local page=$1 file
    while IFS= read -r file; do
        diff -u --label "$page" --label "$file" <(code_after_mark "$page" "$file") "$file" >&2 ||
            fault "$page" "the code differs from $file"
    done < <(sed -nE 's/^<!-- (.*\.cpp) -->$/\1/p' "$page")
}

# Code after "<!-- part of FILE: WORDS -->" stands in the file line by line; the words tell marks apart.
check_parts() {
    local page=$1 mark file code
    while IFS= read -r mark; do
        file=${mark#part of }
        file=${file%%:*}
        code=$(code_after_mark "$page" "$mark")
        [[ -n $code && $(<"$file") == *"$code"* ]] || fault "$page" "no $mark"
    done < <(sed -nE 's/^<!-- (part of .*) -->$/\1/p' "$page")
}

check_verbs() {
    local page=$1 verb
    while IFS= read -r verb; do
        grep -qw -- "^  $verb" <<<"$help" || fault "$page" "./dev has no verb $verb"
    done < <(grep -oE '\./dev [a-z]+' "$page" | sed 's/.* //' | sort -u)
}

for page in docs/*.md; do
    [[ $page == docs/index.md ]] || grep -qF "](${page#docs/})" docs/index.md ||
        fault docs/index.md "does not name $page"
done
mapfile -t pages < <(find . -path ./build -prune -o -name '*.md' -print | sort)
for page in "${pages[@]}"; do
    printf '%-34s %s\n' "${page#./}" "$(sed -n 's/^# //p' "$page" | head -n 1)"
    check_links "$page"
    check_code "$page"
    check_parts "$page"
    check_verbs "$page"
done
[[ $faults == 0 ]]
