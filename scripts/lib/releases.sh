# SPDX-License-Identifier: MIT
# Builds packages from a copy of the sources and recognises folders with releases, for
# scripts/release and scripts/check-release. Needs console.sh and $root.

release_presets=(linux windows-mingw)
release_flavours=(linux windows)
# Debian packages on which the bytes depend, besides the group build of scripts/setup and llvm.
release_tools=(base-files binutils-common cpp-12 g++-12 gcc-12 gcc-12-base libc6 libc6-dev
    libgcc-12-dev libgcc-s1 libstdc++-12-dev libstdc++6 gcc-mingw-w64-x86-64-posix
    gcc-mingw-w64-x86-64-posix-runtime mingw-w64-x86-64-dev liblzma5 zlib1g dpkg
    tar gzip zip)

# Prints the version of the sources, from the public header.
release_version() {
    sed -n 's/^#define RGEN_VERSION_\(MAJOR\|MINOR\|PATCH\) \([0-9]*\).*/\2/p' \
        "$root/include/strata_repgenlib/rgen.h" | paste -sd .
}

# Prints the time stored in packages: SOURCE_DATE_EPOCH, or the time of the last commit.
release_epoch() {
    echo "${SOURCE_DATE_EPOCH:-$(git -C "$root" log -1 --format=%ct)}"
}

# copy_sources DIR: copies the files that git tracks, and new ones that it does not ignore.
copy_sources() {
    mkdir -p "$1"
    (cd "$root" && git ls-files --cached --others --exclude-standard -z |
        while IFS= read -r -d '' file; do [[ ! -e $file ]] || printf '%s\0' "$file"; done |
        tar -cf - --no-recursion --null --files-from=-) | tar -xf - -C "$1"
}

# build_packages WORK OUTPUT: copies the sources to WORK, builds both systems there with the
# settings of their presets, and writes the packages to OUTPUT. The variables of
# scripts/dependencies apply here, too.
build_packages() {
    local work=$1 output=$2 preset log
    copy_sources "$work/source"
    mkdir -p "$output" "$work/packages"
    SOURCE_DATE_EPOCH=$(release_epoch)
    export SOURCE_DATE_EPOCH
    cd "$work/source"
    # A release is never made from cached objects.
    unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
    export CCACHE_DISABLE=1
    for preset in "${release_presets[@]}"; do
        log=$work/$preset.log
        step "building the packages of $preset"
        quietly "$log" cmake --preset "$preset" -DRGEN_BUILD_TESTS=OFF -DRGEN_BUILD_EXAMPLES=OFF \
            -DRGEN_BUILD_BENCHMARKS=OFF
        quietly "$log" cmake --build --preset "$preset"
        quietly "$log" cpack --config "build/$preset/CPackConfig.cmake" -B "$work/packages"
    done
    cd "$root"
    # CPack also writes a description of each run, which contains paths of this machine.
    find "$work/packages" -maxdepth 1 -type f ! -name '*-x64.json' -exec mv -t "$output" {} +
    write_sources >"$output/SOURCES"
}

# Prints what the bytes of the packages depend on besides the sources: archives and versions.
write_sources() {
    local flavour prefix llvm
    llvm=llvm-$(sed -n 's/^CLANG_FUZZER_VERSION=//p' "$root/cmake/versions.env")
    echo "# Flavour, library, SHA-256 and name of each source archive of the third-party libraries."
    for flavour in "${release_flavours[@]}"; do
        prefix=$("$root/scripts/dependencies" --print-prefix "$flavour")
        sed "s/^/$flavour /" "$prefix/sources.txt"
    done
    echo "# Name, version and architecture of the Debian packages that compiled and packed."
    # shellcheck disable=SC2046
    dpkg-query -W -f '${Package} ${Version} ${Architecture}\n' "${release_tools[@]}" "$llvm" \
        $("$root/scripts/setup" --list build) | LC_ALL=C sort -u
    echo "# The Python that packed, and its zlib."
    python3 -c 'import platform, zlib
print("python", platform.python_version(), "zlib", zlib.ZLIB_RUNTIME_VERSION)'
}

is_empty_folder() {
    [[ -d $1 && -z $(ls -A "$1") ]]
}

# unlisted_files FOLDER: compares the files of a folder with its SHA256SUMS, which must list all others.
unlisted_files() {
    diff <(cd "$1" && find . -mindepth 1 ! -path ./SHA256SUMS -printf '%y %P\n' | LC_ALL=C sort) \
        <(sed 's/^[0-9a-f]\{64\}  /f /' "$1/SHA256SUMS" | LC_ALL=C sort)
}

# is_release FOLDER: true if a folder contains a release and nothing else.
is_release() {
    [[ -f $1/RELEASE-NOTES.md && -f $1/SHA256SUMS ]] &&
        [[ $(head -n 1 "$1/RELEASE-NOTES.md") == '# strata_repgenlib '* ]] &&
        unlisted_files "$1" >/dev/null
}

# differing_files RELEASE PACKAGES: prints the files that differ or that only one folder has, except
# the two that scripts/release adds.
differing_files() {
    local name
    { ls -A "$1" && ls -A "$2"; } | LC_ALL=C sort -u |
        { grep -vxF -e RELEASE-NOTES.md -e SHA256SUMS || true; } |
        while IFS= read -r name; do
            cmp -s "$1/$name" "$2/$name" || echo "$name"
        done
}
