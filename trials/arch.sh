#!/usr/bin/env bash
# usage: arch.sh ARCHITECTURE...
#        arch.sh --here|--record BUILD_FOLDER
# Builds libraries, program and the driver of hashes for other architectures, with Debian's cross compilers and
# packages that are unpacked below build/arch, runs them under qemu's emulation of a processor, and compares every
# hash and every file with what build/dev makes on this machine. The system's own list of packages stays as it is.
# --here compares what the kernels of a build for this machine make with trials/hashes.txt, --record records it.
set -euo pipefail

# What the libraries need of an architecture. Headers of packages for all of them come along: those of the
# machine would bring its C library's.
packages=(libtbb-dev libtbb12 libtbbmalloc2 libtbbbind-2-5 libminizip-dev libminizip1 zlib1g-dev zlib1g libbz2-1.0
    libfast-float-dev libcli11-dev nlohmann-json3-dev libtinygltf-dev)

# compiler_of ARCHITECTURE: Debian's name of it, and qemu's
triplet_of() {
    case $1 in
        aarch64) echo aarch64-linux-gnu arm64 aarch64 ;;
        i386) echo i686-linux-gnu i386 i386 ;;
        s390x) echo s390x-linux-gnu s390x s390x ;;
        ppc64el) echo powerpc64le-linux-gnu ppc64el ppc64le ;;
        armhf) echo arm-linux-gnueabihf armhf arm ;;
        *) echo "arch.sh: there is no rule for $1; there are aarch64, i386, s390x, ppc64el and armhf" >&2 && exit 2 ;;
    esac
}

# An apt of its own, with nothing installed, for packages of one architecture.
private_apt() {
    local root=$1 debian=$2
    mkdir -p "$root"/{lists/partial,cache/archives/partial,packages}
    : >"$root/status"
    (cd "$root/packages" && apt-get -qq -o Dir::State="$root" -o Dir::State::lists="$root/lists" \
        -o Dir::State::status="$root/status" -o Dir::Cache="$root/cache" -o APT::Architecture="$debian" \
        -o APT::Architectures::="$debian" -o Acquire::Languages=none -o APT::Sandbox::User=root "${@:3}")
}

# unpack FOLDER DEBIAN: foreign packages into FOLDER/root, once.
unpack() {
    local folder=$1 debian=$2 package
    [[ -e $folder/root/complete ]] && return
    private_apt "$folder/apt" "$debian" update
    private_apt "$folder/apt" "$debian" download "${packages[@]/%/:$debian}" 2>/dev/null ||
        for package in "${packages[@]}"; do
            private_apt "$folder/apt" "$debian" download "$package:$debian" ||
                private_apt "$folder/apt" "$debian" download "$package"
        done
    for package in "$folder"/apt/packages/*.deb; do
        dpkg -x "$package" "$folder/root"
    done
    # Of a system that keeps /lib apart from /usr/lib.
    [[ ! -d $folder/root/lib ]] || cp -r "$folder/root/lib" "$folder/root/usr/"
    touch "$folder/root/complete"
}

# build FOLDER TRIPLET EMULATOR
build() {
    local folder=$1 triplet=$2 multiarch=${2/i686/i386}
    cat >"$folder/toolchain.cmake" <<END
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${triplet%%-*})
set(CMAKE_CXX_COMPILER $triplet-g++)
set(CMAKE_LIBRARY_ARCHITECTURE $multiarch)
set(CMAKE_FIND_ROOT_PATH $folder/root)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,$folder/root/usr/lib/$multiarch")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-Wl,-rpath-link,$folder/root/usr/lib/$multiarch")
END
    PKG_CONFIG_SYSROOT_DIR=$folder/root PKG_CONFIG_LIBDIR=$folder/root/usr/lib/$multiarch/pkgconfig \
        cmake -S trials -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$folder/toolchain.cmake" "${cmake_options[@]}" >"$folder/configure.log" ||
        { tail -20 "$folder/configure.log" >&2 && exit 1; }
    cmake --build "$folder/build" --parallel "$(nproc)" --target trial_hashes tessary_program
}

# outputs PREFIX...: what the driver and the program make, run by a command that begins so.
outputs() {
    local work
    work=$(mktemp -d)
    mkdir "$work/files"
    "$@" "$binaries/trial_hashes" "$work/files"
    rm -r "$work/files"
    (cd "$work" && "$@" "$binaries/tessary/cli/tessary" demo --resolution 24 --output demo --quiet >report)
    (cd "$work/demo" && sha256sum -- *)
    rm -r "$work"
}

try() {
    local architecture=$1 triplet debian emulator folder=$PWD/build/arch/$1 multiarch
    read -r triplet debian emulator < <(triplet_of "$architecture")
    [[ -n $emulator ]] || exit 2
    multiarch=${triplet/i686/i386}
    mkdir -p "$folder"
    unpack "$folder" "$debian"
    build "$folder" "$triplet"
    binaries=$folder/build
    outputs env "LD_LIBRARY_PATH=$folder/root/usr/lib/$multiarch:$binaries/tessary:$binaries/tessary/mesh:$binaries/tessary/embedded" \
        "qemu-$emulator" -L "/usr/$triplet" >"$folder/hashes.txt"
    diff build/arch/here/hashes.txt "$folder/hashes.txt" ||
        { echo "arch.sh: $architecture makes other bits" >&2 && exit 1; }
    echo "$architecture: $(wc -l <"$folder/hashes.txt") hashes are those of this machine"
}

# here BUILD_FOLDER: what the driver and the program of this machine make.
here() {
    local build
    build=$(realpath "$1")
    binaries=$PWD/build/arch/here
    mkdir -p "$binaries/tessary/cli"
    ln -sf "$build/tests/trials/trial_hashes" "$binaries/trial_hashes"
    ln -sf "$build/cli/tessary" "$binaries/tessary/cli/tessary"
    outputs env
}

# The hashes that stay for good.
lasting() {
    grep -E '^[0-9a-f]{16} kernel '
}

cmake_options=()
case ${1-} in
    --packages)  # of Debian that building and running for these takes
        printf '%s\n' qemu-user
        for architecture in "${@:2}"; do
            read -r triplet debian emulator < <(triplet_of "$architecture")
            printf 'g++-%s\n' "${triplet/x86_64/x86-64}"
        done
        exit
        ;;
    --here)
        here "$2" | lasting | diff trials/hashes.txt -
        exit
        ;;
    --record)
        here "$2" | lasting >build/hashes.txt
        mv build/hashes.txt trials/hashes.txt
        exit
        ;;
esac
[[ $# -gt 0 ]] || set -- aarch64
mkdir -p build/arch/here
here build/dev >build/arch/here/hashes.txt
for architecture in "$@"; do
    try "$architecture"
done
