# SPDX-License-Identifier: MIT
# The presets of CMakePresets.json, for the scripts that build them. Needs console.sh and $root.
# The preset coverage is only for scripts/coverage.

all_presets=(linux windows-mingw sanitizers threads)

# preset_flavour PRESET: prints the flavour of the third-party libraries that a preset uses.
preset_flavour() {
    case $1 in
        linux | coverage) echo linux ;;
        windows-mingw) echo windows ;;
        sanitizers) echo linux-asan ;;
        threads) echo linux-tsan ;;
        fuzz) echo linux-fuzz ;;
        *) die "There is no preset \"$1\"." "Presets: ${all_presets[*]}" ;;
    esac
}

# Lets a new build folder take compiled objects of earlier builds from the cache folder, where ccache
# is installed. Precompiled headers need the settings; the clone's own place does not matter.
use_compiler_cache() {
    command -v ccache >/dev/null || return 0
    CCACHE_DIR=$(realpath -m "${RGEN_CACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/strata_repgenlib}")
    export CCACHE_DIR=$CCACHE_DIR/compiler
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_MAXSIZE=5G
    export CCACHE_SLOPPINESS=pch_defines,time_macros
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
}

# build_preset PRESET [TARGET...]: configures and builds; the compiler's output is shown only when it
# fails.
build_preset() {
    local preset=$1 log=$root/build/$1.log targets=()
    shift
    (($# == 0)) || targets=(--target "$@")
    mkdir -p "$root/build"
    use_compiler_cache
    step "building $preset"
    cd "$root"
    quietly "$log" cmake --preset "$preset"
    quietly "$log" cmake --build --preset "$preset" "${targets[@]}"
}
