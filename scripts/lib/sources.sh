# SPDX-License-Identifier: MIT
# Finds, downloads and unpacks the third-party source packages. Entry points: resolve_sources (uses
# archives that are already downloaded), download_sources (from the Debian archive), unpack_sources;
# list_sources and collect_licences write what the packages say about their parts.
# The chosen versions are stored in the associative array source_version, by library name.

declare -A source_version=()
libraries=(libxml2 libxslt boost benchmark httplib)

# setting LIBRARY WHAT: prints a value of cmake/versions.env. The environment variables
# RGEN_<LIBRARY>_SERIES and RGEN_<LIBRARY>_MINIMUM override it, for trying another release.
setting() {
    local name="${1^^}_$2" override="RGEN_${1^^}_$2"
    echo "${!override:-${!name}}"
}

# highest_version LIBRARY: prints the highest accepted one of the versions on standard input.
highest_version() {
    local series minimum version best='' upstream
    series=$(setting "$1" SERIES)
    minimum=$(setting "$1" MINIMUM)
    while read -r version; do
        upstream=${version#*:}
        [[ $upstream == "$series".* ]] || continue
        dpkg --compare-versions "$version" ge "$minimum" || continue
        [[ -z $best ]] || dpkg --compare-versions "$version" gt "$best" || continue
        best=$version
    done
    echo "$best"
}

# dsc_name LIBRARY VERSION: prints the name of the .dsc file (without the epoch).
dsc_name() {
    echo "$(setting "$1" SOURCE)_${2#*:}.dsc"
}

# dsc_files DSC: prints the files that a .dsc lists, as lines "sha256 name".
dsc_files() {
    awk '/^Checksums-Sha256:/ { on = 1; next } /^[^ ]/ { on = 0 } on && NF == 3 { print $1, $3 }' \
        "$1"
}

# resolve_sources DIR: chooses a version of each library among the archives in DIR. Fails when an
# archive of a library is missing.
resolve_sources() {
    local dir=$1 library prefix file
    source_version=()
    for library in "${libraries[@]}"; do
        prefix=$(setting "$library" SOURCE)_
        source_version[$library]=$(
            for file in "$dir/$prefix"*.dsc; do
                file=${file##*/"$prefix"}
                echo "${file%.dsc}"
            done | highest_version "$library"
        )
        [[ -n ${source_version[$library]} ]] || return 1
        file=$dir/$(dsc_name "$library" "${source_version[$library]}")
        while read -r _ file; do
            [[ -f $dir/$file ]] || return 1
        done < <(dsc_files "$file")
    done
}

# Prints the address of the Debian archive that this system uses.
debian_mirror() {
    local site origin label
    if [[ -n ${RGEN_DEBIAN_MIRROR:-} ]]; then
        echo "$RGEN_DEBIAN_MIRROR"
        return
    fi
    while IFS='|' read -r site origin label; do
        if [[ $origin == Debian && $label == Debian ]]; then
            echo "$site"
            return
        fi
    done < <(apt-get indextargets --format '$(SITE)|$(ORIGIN)|$(LABEL)' 'Identifier: Packages')
    while read -r site; do
        if [[ ${site%/} == */debian ]]; then
            echo "$site"
            return
        fi
    done < <(apt-get indextargets --format '$(SITE)' 'Identifier: Packages')
    die "apt's sources name no Debian archive." \
        "Set RGEN_DEBIAN_MIRROR to the address of one, or RGEN_SOURCE_ARCHIVES to a folder with" \
        "the source packages."
}

# private_apt DIR: writes an apt configuration into DIR that shares nothing with the system's but
# the proxy settings.
private_apt() {
    local dir=$1 mirror suite keyring=/usr/share/keyrings/debian-archive-keyring.gpg
    mirror=$(debian_mirror)
    mkdir -p "$dir"/{lists/partial,cache/archives/partial,trusted}
    cat >"$dir/apt.conf" <<END
Dir::State "$dir";
Dir::State::lists "$dir/lists";
Dir::State::status "/dev/null";
Dir::Cache "$dir/cache";
Dir::Etc::sourcelist "$dir/sources.list";
Dir::Etc::sourceparts "-";
Dir::Etc::preferencesparts "-";
Dir::Etc::preferences "-";
Acquire::Languages "none";
APT::Sandbox::User "root";
END
    for suite in "$DEBIAN_RELEASE" $DEBIAN_LATER_SUITES; do
        echo "deb-src [signed-by=$keyring] $mirror $suite main"
    done >"$dir/sources.list"
}

# offered_versions APT_CONF SOURCE: prints every version that the suites offer.
offered_versions() {
    apt-cache -c "$1" showsrc --only-source "$2" 2>/dev/null | sed -n 's/^Version: //p' | sort -u
}

no_version() {
    local library=$1 offered=$2 upper=${1^^}
    die "No Debian suite offers a usable $(setting "$library" SOURCE)." \
        "Wanted:  $(setting "$library" MINIMUM) or later in the series $(setting "$library" SERIES)" \
        "Offered: ${offered:-nothing} (suites: $DEBIAN_RELEASE $DEBIAN_LATER_SUITES)" \
        "Set RGEN_SOURCE_ARCHIVES to a folder that holds the wanted source packages, or use the" \
        "next release with RGEN_${upper}_SERIES (and RGEN_${upper}_MINIMUM); then all tests must pass."
}

# download_sources DIR: downloads the highest accepted version of each library into DIR. apt checks
# the archive's signature and every checksum.
download_sources() {
    local dir=$1 library source version conf offered staging
    staging=$dir.part.$$
    rm -rf "$staging"
    mkdir -p "$staging"
    private_apt "$staging/apt"
    conf=$staging/apt/apt.conf
    step "reading the source lists of $DEBIAN_RELEASE $DEBIAN_LATER_SUITES"
    quietly "$staging/update.log" apt-get -c "$conf" -o APT::Update::Error-Mode=any update
    for library in "${libraries[@]}"; do
        source=$(setting "$library" SOURCE)
        offered=$(offered_versions "$conf" "$source")
        version=$(highest_version "$library" <<<"$offered")
        [[ -n $version ]] || no_version "$library" "${offered//$'\n'/ }"
        step "downloading $source $version"
        (cd "$staging" && quietly "$staging/$source.log" \
            apt-get -c "$conf" source --download-only --only-source "$source=$version")
    done
    rm -rf "$staging/apt" "$staging"/*.log
    mkdir -p "$dir"
    mv "$staging"/* "$dir/"
    rmdir "$staging"
}

# unpack_sources ARCHIVES DIR: unpacks each library to DIR/<library> and applies Debian's patches
# and then this project's.
unpack_sources() {
    local archives=$1 dir=$2 library dsc
    mkdir -p "$dir"
    for library in libxml2 libxslt benchmark httplib; do
        dsc=$archives/$(dsc_name "$library" "${source_version[$library]}")
        quietly "$dir/$library.log" dpkg-source -x "$dsc" "$dir/$library"
        apply_patches "$library" "$dir/$library"
    done
    unpack_boost "$archives" "$dir"
}

# apply_patches LIBRARY TREE: applies this project's own changes of a library, the files
# cmake/third_party/LIBRARY-*.patch. Each says at its top why it is there. A patch has to match
# exactly, but for line numbers.
apply_patches() {
    local library=$1 tree=$2 patch output
    for patch in "$root/cmake/third_party/$library"-*.patch; do
        [[ -f $patch ]] || continue
        output=$(patch --batch --directory "$tree" --strip 1 --fuzz 0 --forward --no-backup-if-mismatch \
            --reject-file - --input "$patch" 2>&1) ||
            die "The patch ${patch##*/} does not fit $library ${source_version[$library]}." \
                "Adapt it to this release, or remove it if the release no longer needs it." \
                "$output"
    done
    check_patched "$library" "$tree"
}

# check_patched LIBRARY TREE: a patch changes one place. Another release may have a second place of the
# same kind, which a patch that still applies would leave as it is.
check_patched() {
    local tree=$2
    case $1 in
        libxml2) ! grep -q 'exit(1)' "$tree/timsort.h" ;;
        libxslt)
            (($(grep -c -- '->content = inst->children->content' "$tree/libxslt/attributes.c") == 1)) &&
                ! grep -q '^[[:space:]]*xmlNodeAddContent(' "$tree/libxslt/transform.c"
            ;;
        *) true ;;
    esac || die "$1 ${source_version[$1]} has more places than its patch in cmake/third_party changes." \
        "Find them by the text at the top of the patch, and change them all."
}

# unpack_boost ARCHIVES DIR: unpacks Boost.Filesystem and the header libraries that it includes. The
# whole of Boost would take half a minute and a gigabyte.
unpack_boost() {
    local archives=$1 dir=$2 dsc name library patch
    local header_libraries=(assert atomic config container_hash core detail io iterator mpl predef
        preprocessor smart_ptr static_assert system throw_exception type_traits winapi)
    dsc=$archives/$(dsc_name boost "${source_version[boost]}")
    (cd "$archives" && dsc_files "$dsc" | awk '{ print $1 "  " $2 }' | sha256sum --quiet --check -) ||
        die "A Boost archive in $archives does not match its checksum."
    local members=(--wildcards --no-wildcards-match-slash "*/LICENSE_1_0.txt" "*/libs/filesystem/src"
        "*/libs/filesystem/include")
    for library in "${header_libraries[@]}"; do
        members+=("*/libs/$library/include")
    done
    mkdir -p "$dir/boost" "$dir/boost-debian"
    while read -r _ name; do
        case $name in
            *.orig.tar.*) tar -xf "$archives/$name" -C "$dir/boost" --strip-components=1 \
                "${members[@]}" ;;
            *.debian.tar.*) tar -xf "$archives/$name" -C "$dir/boost-debian" ;;
        esac
    done < <(dsc_files "$dsc")
    apply_boost_patches "$dir/boost" "$dir/boost-debian/debian/patches"
}

# Applies those of Debian's patches that change an unpacked file.
apply_boost_patches() {
    local tree=$1 patches=$2 patch file
    while read -r patch _; do
        [[ -n $patch && $patch != \#* ]] || continue
        for file in $(sed -n 's/^+++ [^/]*\/\([^ \t]*\).*/\1/p' "$patches/$patch"); do
            [[ -f $tree/$file ]] || continue
            quietly "$tree/patch.log" patch -d "$tree" -p1 -i "$patches/$patch"
            break
        done
    done <"$patches/series"
}

# list_sources ARCHIVES: prints the source archives of all libraries as lines "library sha256 file".
list_sources() {
    local library
    for library in "${libraries[@]}"; do
        dsc_files "$1/$(dsc_name "$library" "${source_version[$library]}")" |
            sed "s/^/$library /"
    done
}

# collect_licences SOURCES DIR: writes the licences of the libraries that are part of a release to
# DIR/<library>.txt: upstream's text, and for libxml2 also the notices of single files.
collect_licences() {
    local sources=$1 dir=$2
    mkdir -p "$dir"
    cat "$sources/libxml2/Copyright" - "$sources/libxml2/debian/copyright" >"$dir/libxml2.txt" <<END

----------------------------------------------------------------------
The notices of single files, as Debian has collected them:

END
    cat "$sources/libxslt/Copyright" >"$dir/libxslt.txt"
    cat "$sources/boost/LICENSE_1_0.txt" >"$dir/boost-filesystem.txt"
    cat "$sources/httplib/LICENSE" >"$dir/cpp-httplib.txt"
}
