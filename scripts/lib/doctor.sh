# SPDX-License-Identifier: MIT
# How the output of "rgen doctor" is judged.

# is_healthy_without_engine LOG: library, reports and data directory are fine, and nothing failed
# but the converter.
is_healthy_without_engine() {
    local check
    for check in library report 'data directory'; do
        grep -q "^ok    $check: " "$1" || return 1
    done
    ! grep '^FAIL' "$1" | grep -qv '^FAIL  converter: '
}
