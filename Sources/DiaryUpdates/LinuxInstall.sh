#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Puts a new application bundle in the place of the installed one, after the program has ended.
#   $1 the process to wait for   $2 the new bundle   $3 the installed one   $4 the staging folder
#
# The new bundle is copied beside the installed one and tried. Then the two are exchanged in one step, so
# that at every moment the old program or the new one is there and whole, whenever this is killed. Where the
# file system cannot exchange, there are two renames, and whoever comes next completes what was interrupted
# between them. When anything goes wrong the old program stays.
#
# One line in `update-outcome` beside the staging folder tells what happened:
#   installed VERSION
#   kept VERSION REASON

# How long to wait, in fifths of a second for the process and in seconds for the new program.
patience=3000
trial=60

absolute() {
    case $1 in
    /*) printf %s "$1" ;;
    *) printf %s "./$1" ;;
    esac
}

# Since when the process runs, or nothing when it is gone: another one may get its number.
birth() {
    stat=$(cat "/proc/$1/stat" 2>/dev/null) || return 0
    # The second word is the program's name, which may hold anything.
    # shellcheck disable=SC2086
    set -- ${stat##*)}
    [ "$1" = Z ] || [ "$1" = X ] || printf %s "${20}"
}

still_runs() {
    kill -0 "$1" 2>/dev/null || return 1
    [ ! -e /proc/self/stat ] || [ "$(birth "$1")" = "$2" ]
}

wait_for_end() {
    born=$(birth "$1")
    [ -n "$born" ] || [ ! -e /proc/self/stat ] || return 0
    while still_runs "$1" "$born"; do
        [ "$patience" -gt 0 ] || return 1
        patience=$((patience - 1))
        sleep 0.2
    done
}

tell() {
    printf '%s\n' "$1" >"$outcome.$$" && mv -f -- "$outcome.$$" "$outcome" || rm -f -- "$outcome.$$"
}

keep() {
    rm -rf -- "$new"
    tell "kept $version $1"
    rm -rf -- "$staging"
    exit 1
}

# Whether another run of this script may still need what bears its number.
is_of_other_run() {
    [ "$1" != $$ ] && { kill -0 "$1" 2>/dev/null || [ -e "/proc/$1" ]; }
}

# What killed runs left beside the bundle. An old bundle comes back when there is no other.
clear_remains() {
    for rest in "$parent/.$name".old.*; do
        [ -e "$rest" ] || continue
        ! is_of_other_run "${rest##*.}" || continue
        [ -e "$target" ] || [ -L "$target" ] || mv -T -- "$rest" "$target"
    done
    for rest in "$parent/.$name".old.* "$parent/.$name".new.*; do
        is_of_other_run "${rest##*.}" || rm -rf -- "$rest"
    done
}

# Starts off screen in folders of its own, paints its window once and says so.
runs_well() {
    home=$staging/trial
    mkdir -p -- "$home/run" && chmod 700 "$home/run" || return 1
    (
        trap - HUP INT TERM
        unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME XDG_CACHE_HOME DIARY_ROOT
        export HOME="$home" TMPDIR="$home" XDG_RUNTIME_DIR="$home/run" QT_QPA_PLATFORM=offscreen
        exec timeout -k 5 "$trial" "$new/bin/tavelo" --self-test 9<&-
    ) >"$home/output" 2>/dev/null </dev/null && grep -qFx -e "ready $version" "$home/output"
}

# Afterwards the old bundle stands at `$new`.
swap() {
    "$new/lib/tavelo/tavelo-exchange" "$new" "$target" 2>/dev/null && return 0
    mv -T -- "$target" "$old" || return 1
    if mv -T -- "$new" "$target"; then
        new=$old
        return 0
    fi
    mv -T -- "$old" "$target"
    return 1
}

main() {
    process=$1
    staged=$(absolute "$2" && echo .) && staged=${staged%.}
    target=$(absolute "$3" && echo .) && target=${target%.}
    staging=$(absolute "$4" && echo .) && staging=${staging%.}
    target=${target%/}
    staging=${staging%/}
    parent=${target%/*}
    name=${target##*/}
    new=$parent/.$name.new.$$
    old=$parent/.$name.old.$$
    outcome=${staging%/*}/update-outcome
    umask 022
    # Logging out ends everything, and this is what was to happen then.
    trap '' HUP INT TERM

    version=$(sed -n 's/^version \([0-9A-Za-z.+_-]*\)$/\1/p;3q' "$staged/seal/contents" 2>/dev/null)
    [ -n "$version" ] || version=unknown
    wait_for_end "$process" || keep "the program did not end"

    # One at a time. The next finds that there is nothing left to do.
    command exec 9<"$parent/" || keep "the folder of the program cannot be read"
    ! command -v flock >/dev/null || flock 9
    [ -d "$staged" ] || exit 0
    clear_remains
    [ -d "$target" ] && [ ! -L "$target" ] || keep "the program is not where it was"

    cp -RPp -- "$staged" "$new" 2>/dev/null && sync -f "$new" 2>/dev/null || keep "it could not be copied"
    runs_well || keep "it did not start"
    swap || keep "it could not be put in place"
    sync "$parent/" 2>/dev/null
    tell "installed $version"
    rm -rf -- "$new"
    rm -rf -- "$staging"
}

main "$@"
exit
