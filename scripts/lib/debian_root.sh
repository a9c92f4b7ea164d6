# SPDX-License-Identifier: MIT
# Makes a new Debian, of the release that the project is built on, in a folder. Entry points:
# make_debian_root, in_debian_root. Needs console.sh, sources.sh, cmake/versions.env, $root and root
# rights.

# Prints the path of the archive with the minimal system, which is made once and stored in the cache.
debian_base() {
    local cache=${RGEN_CACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/strata_repgenlib}
    realpath -m "$cache/debian-$DEBIAN_RELEASE-base.tar"
}

# Prints the mount propagation that hides our mounts from the rest of the machine. Inside a chroot
# the root is not a mount point, so its propagation cannot be changed.
mount_propagation() {
    if unshare --mount --propagation private true 2>/dev/null; then
        echo private
    else
        echo unchanged
    fi
}

# Makes the archive unless it exists. debootstrap mounts file systems and makes devices only in the
# new folder, in a separate mount namespace.
ensure_debian_base() {
    local base work
    base=$(debian_base)
    [[ ! -f $base ]] || return 0
    command -v debootstrap >/dev/null ||
        die "debootstrap is missing." "Run: scripts/setup package"
    mkdir -p "$(dirname "$base")"
    work=$(mktemp -d "$base.XXXXXX")
    step "making a minimal Debian $DEBIAN_RELEASE"
    quietly "$work/log" unshare --mount --propagation "$(mount_propagation)" \
        debootstrap --variant=minbase "$DEBIAN_RELEASE" "$work/root" "$(debian_mirror)"
    rm -rf "$work"/root/var/cache/apt/archives/*.deb "$work"/root/var/lib/apt/lists/*
    tar -cf "$work/base.tar" --one-file-system --numeric-owner -C "$work/root" .
    mv "$work/base.tar" "$base"
    rm -rf --one-file-system "$work"
}

# make_debian_root DIR: unpacks a new system into DIR.
make_debian_root() {
    ensure_debian_base
    mkdir -p "$1"
    tar -xf "$(debian_base)" --numeric-owner -C "$1"
}

# in_debian_root DIR COMMAND...: runs a command in it, in separate process and mount namespaces and
# without this machine's devices.
in_debian_root() {
    local dir=$1
    shift
    unshare --mount --pid --fork --kill-child --propagation "$(mount_propagation)" bash -c '
        dir=$1; shift
        mount -t proc proc "$dir/proc"
        exec chroot "$dir" env -i HOME=/root TERM=dumb LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
            PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"' bash "$dir" "$@" </dev/null
}
