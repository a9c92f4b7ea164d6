# SPDX-License-Identifier: MIT
# The presets of CMakePresets.json, for the scripts that build them. Needs console.sh and $root.
# The preset coverage is for scripts/coverage alone.

all_presets=(linux windows-mingw sanitizers threads)

# The flavour of the third-party libraries that a preset takes.
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

# build_preset PRESET [TARGET...]: configures and builds; the compiler is heard only when it fails.
build_preset() {
    local preset=$1 log=$root/build/$1.log targets=()
    shift
    (($# == 0)) || targets=(--target "$@")
    mkdir -p "$root/build"
    step "building $preset"
    cd "$root"
    quietly "$log" cmake --preset "$preset"
    quietly "$log" cmake --build --preset "$preset" "${targets[@]}"
}
