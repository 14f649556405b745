#!/usr/bin/env bash
# Makes what Debian packages hold beside what is installed: changelogs, copyright, tables of symbols, scripts.
#
# usage: prepare.sh BUILD SITE VERSION     BUILD is the build folder, SITE that of the documentation,
#                                          VERSION that of the packages: 2.11.0-1
#
# Everything goes into BUILD/debian/PACKAGE: doc/ becomes /usr/share/doc/PACKAGE, share/ becomes /usr/share,
# other files are those of control.tar. SOURCE_DATE_EPOCH is the time that the changelog names.
set -euo pipefail

here=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")
root=$here/../..
build=$(readlink -f -- "$1")
site=$2
version=$3
out=$build/debian

declare -A library_of=(
    [libkorvane-embedded2]=$build/embedded/libkorvane_embedded.so.2
    [libtessary2]=$build/libtessary.so.2
    [libtessary-mesh2]=$build/mesh/libtessary_mesh.so.2
)
packages=("${!library_of[@]}" libtessary-dev tessary python3-tessary tessary-doc)

changelogs() {
    gzip -9nc "$root/CHANGELOG.md" >"$1/changelog.gz"
    gzip -9nc >"$1/changelog.Debian.gz" <<END
tessary ($version) unstable; urgency=medium

  * Built from the project's own sources; what is new tells changelog.gz.

 -- Tessary maintainers <maintainers@tessary.invalid>  $(date -R -u -d "@$SOURCE_DATE_EPOCH")
END
}

copyright_of() {
    cat "$here/copyright"
    python3 -B "$here/../third_parties.py" notices "$1"
}

# A symbol that a released version had and this one has not is an error: the table of that version is the
# input, and says for each symbol since when it is there.
symbols_of() {
    local package=$1 recorded=$here/$1.symbols input=()
    [[ ! -f $recorded ]] || input=("-I$recorded")
    printf 'activate-noawait ldconfig\n' >"$out/$package/triggers"
    (cd "$build" && dpkg-gensymbols -q -c1 "-p$package" "-v${version%-*}" "${input[@]}" \
        "-e${library_of[$package]}" "-O$out/$package/symbols" -Pdebian)
}

# What lintian warns of and is meant so.
overrides() {
    local folder=$out/$1/share/lintian/overrides
    mkdir -p "$folder"
    {
        printf '# These packages are no part of Debian, which has no bug about them.\n'
        printf '%s: initial-upload-closes-no-bugs\n' "$1"
        if [[ -n ${library_of[$1]-} ]]; then
            printf '# CPack writes both scripts itself. The trigger alone would do.\n'
            printf '%s: maintscript-calls-ldconfig [%s]\n' "$1" postinst "$1" postrm
        fi
        [[ ! -f $here/$1.lintian-overrides ]] || cat "$here/$1.lintian-overrides"
    } >"$folder/$1"
}

manual() {
    mkdir -p "$out/tessary/share/man/man1"
    gzip -9nc "$build/cli/shell/tessary.1" >"$out/tessary/share/man/man1/tessary.1.gz"
}

python_scripts() {
    install -m 755 "$here/python3-tessary.postinst" "$out/python3-tessary/postinst"
    install -m 755 "$here/python3-tessary.prerm" "$out/python3-tessary/prerm"
}

# Those pages of Sphinx that show no source again, as the examples are there as files.
documentation() {
    local doc=$out/tessary-doc/doc
    cp -r "$site" "$doc/html"
    rm -rf "$doc/html/.buildinfo" "$doc/html/objects.inv" "$doc/html/_sources"
    (cd "$root" && git ls-files examples) | while IFS= read -r file; do
        mkdir -p "$doc/$(dirname -- "$file")"
        install -m 644 "$root/$file" "$doc/$file"
    done
    mkdir -p "$out/tessary-doc/share/doc-base"
    cp "$here/tessary-doc.doc-base" "$out/tessary-doc/share/doc-base/tessary-doc.tessary"
}

rm -rf "$out"
for package in "${packages[@]}"; do
    mkdir -p "$out/$package/doc" "$out/$package/share"
    changelogs "$out/$package/doc"
    copyright_of "$package" >"$out/$package/doc/copyright"
    overrides "$package"
done
for package in "${!library_of[@]}"; do
    symbols_of "$package"
done
manual
python_scripts
documentation
