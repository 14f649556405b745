#!/usr/bin/env bash
# Tries the packages as a stranger would, in a minimal Debian 12 of its own: installs them, runs the program,
# compiles the examples by CMake and by pkg-config, imports the module, removes everything, and looks for what
# is left. Needs root and debootstrap.
#
# usage: try.sh PACKAGES WORK     PACKAGES holds the .deb files; WORK keeps the minimal system for the next time
#        try.sh --inside          the part that runs in there
set -euo pipefail

step() {
    printf 'try: %s\n' "$*"
}

fail() {
    printf 'try: %s\n' "$*" >&2
    exit 1
}

install_packages() {
    apt-get -q install -y --no-install-recommends "$@" >/tmp/apt.log 2>&1 || {
        cat /tmp/apt.log >&2
        fail "cannot install $*"
    }
}

expect() {
    local wanted=$1 output
    shift
    output=$("$@" 2>&1) || fail "$* failed: $output"
    [[ $output == *"$wanted"* ]] || fail "$* does not say \"$wanted\": $output"
}

# What is in the system, but for what every installation changes: lists, caches, logs and their backups.
listing() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /packages -o -path /var/lib/apt \
        -o -path /var/cache -o -path /var/log -o -path /var/lib/dpkg -o -path /root \) -prune -o -print | sort
    dpkg-query -W -f '${Package} ${Status}\n'
}

try_program() {
    step "install tessary; run it"
    install_packages /packages/tessary_*.deb /packages/lib*2_*.deb
    expect "tessary " tessary --version
    tessary demo --output /tmp/demo --quiet >/dev/null
    tessary triangulate /tmp/demo/demo.obj -o /tmp/triangles.ply --quiet
    tessary sample /tmp/triangles.ply --distance 5% -o /tmp/samples.npz --quiet
    tessary view /tmp/triangles.ply -o /tmp/page.html --quiet
    expect '"genus": 1' tessary info /tmp/triangles.ply --json
    zgrep -q "tessary" /usr/share/man/man1/tessary.1.gz || fail "no manual page"
    bash -n /usr/share/bash-completion/completions/tessary
}

# The examples are those of tessary-doc; two of them stand in the documentation's first page.
try_development() {
    local examples=/usr/share/doc/tessary-doc/examples
    step "install libtessary-dev and tessary-doc; compile the examples by CMake and by pkg-config"
    install_packages /packages/libtessary-dev_*.deb /packages/tessary-doc_*.deb g++ cmake make pkg-config
    cmake -S "$examples" -B /tmp/examples >/tmp/cmake.log || fail "$(cat /tmp/cmake.log)"
    cmake --build /tmp/examples -j2 >/tmp/cmake.log 2>&1 || fail "$(cat /tmp/cmake.log)"
    expect "samples of 2 triangles" /tmp/examples/own_arrays
    expect "triangle 0 2 3, paint 7" /tmp/examples/triangulate
    # The flags are words of their own.
    # shellcheck disable=SC2046
    g++ -std=c++17 "$examples/own_arrays.cpp" -o /tmp/own_arrays $(pkg-config --cflags --libs tessary-mesh)
    # shellcheck disable=SC2046
    g++ -std=c++17 "$examples/triangulate.cpp" -o /tmp/triangulate $(pkg-config --cflags --libs tessary)
    expect "samples of 2 triangles" /tmp/own_arrays
    expect "triangle 0 2 3, paint 7" /tmp/triangulate
    [[ -f /usr/share/doc/tessary-doc/html/index.html ]] || fail "no documentation"
}

try_python() {
    step "install python3-tessary; import it"
    install_packages /packages/python3-tessary_*.deb
    expect "triangles" python3 -c '
import tessary as ts
mesh = ts.read("/tmp/demo/demo.obj").triangulate()
print(mesh.point_count, "points,", mesh.face_count, "triangles")'
}

try_removal() {
    local package packages
    step "remove everything, and look for what is left"
    mapfile -t packages < <(comm -13 /tmp/packages.before <(dpkg-query -W -f '${Package}\n' | sort))
    apt-get -q purge -y "${packages[@]}" >/tmp/apt.log 2>&1 || fail "$(cat /tmp/apt.log)"
    listing >/tmp/listing.after
    diff /tmp/listing.before /tmp/listing.after >/tmp/listing.diff || true
    for package in "${packages[@]}"; do
        [[ $package == *tessary* || $package == *korvane* ]] && step "removed $package"
    done
    ! grep -i -E 'tessary|korvane' /tmp/listing.diff || fail "these files are left"
    step "$(grep -c '^[<>]' /tmp/listing.diff || true) files of other packages are left:"
    cat /tmp/listing.diff
}

inside() {
    export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
    cd /tmp
    dpkg-query -W -f '${Package}\n' | sort >/tmp/packages.before
    listing >/tmp/listing.before
    try_program
    try_development
    try_python
    try_removal
    step "all that was tried works"
}

minimal_system() {
    local mirror
    # apt expands that.
    # shellcheck disable=SC2016
    mirror=$(apt-get indextargets --format '$(SITE) $(RELEASE)' | awk '$2 == "bookworm" { print $1; exit }')
    step "make a minimal Debian 12 in $1"
    debootstrap --variant=minbase bookworm "$1.new" "${mirror:-http://deb.debian.org/debian}" >"$1.log" 2>&1 ||
        fail "debootstrap failed: see $1.log"
    chroot "$1.new" apt-get clean
    mv "$1.new" "$1"
}

outside() {
    local from=$1 work=$2 root=$2/root
    [[ $(id -u) == 0 ]] || fail "making a minimal system needs root"
    mkdir -p "$work"
    [[ -d $work/minimal ]] || minimal_system "$work/minimal"
    rm -rf "$root"
    cp -a "$work/minimal" "$root"
    mkdir "$root/packages"
    cp "$from"/*.deb "$root/packages"
    cp "${BASH_SOURCE[0]}" "$root/packages/try.sh"
    cp /etc/resolv.conf "$root/etc/resolv.conf"
    # A mount namespace of its own: nothing stays mounted, whatever happens.
    unshare --mount --pid --fork chroot "$root" /bin/bash -c \
        'mount -t proc proc /proc && apt-get -q update >/dev/null && bash /packages/try.sh --inside'
    rm -rf "$root"
}

if [[ ${1-} == --inside ]]; then
    inside
else
    outside "$@"
fi
