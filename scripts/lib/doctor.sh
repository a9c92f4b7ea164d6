# SPDX-License-Identifier: MIT
# Evaluates the output of "rgen doctor".

# is_healthy_without_engine LOG: true if library, report and data directory are fine and at most the
# converter failed.
is_healthy_without_engine() {
    local check
    for check in library report 'data directory'; do
        grep -q "^ok    $check: " "$1" || return 1
    done
    ! grep '^FAIL' "$1" | grep -qv '^FAIL  converter: '
}
