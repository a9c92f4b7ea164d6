# SPDX-License-Identifier: MIT
# Console output shared by the scripts: progress lines with the seconds that have passed, and errors.
# Colour is used on a terminal only.

if [[ -t 2 && -z ${NO_COLOR:-} ]]; then
    bold=$'\e[1m' red=$'\e[31m' plain=$'\e[0m'
else
    bold='' red='' plain=''
fi

program=${0##*/}

# step TEXT: one progress line.
step() {
    printf '%s[%s %3ds]%s %s\n' "$bold" "$program" "$SECONDS" "$plain" "$*" >&2
}

# die TEXT...: an error message of one line per argument, then the end.
die() {
    printf '%s%s:%s %s\n' "$red" "$program" "$plain" "$1" >&2
    shift
    (($# == 0)) || printf '    %s\n' "$@" >&2
    exit 1
}

# quietly LOG COMMAND...: runs COMMAND with its output in LOG; shows the end of LOG when it fails.
quietly() {
    local log=$1
    shift
    if ! "$@" >"$log" 2>&1 </dev/null; then
        tail -n 40 "$log" >&2
        die "This command failed: $*" "Its whole output is in $log"
    fi
}
