# SPDX-License-Identifier: MIT
# Completion of tavelo-cli for bash.

# The command in front of the cursor; nothing before there is one.
_tavelo_cli_command() {
    local index
    for ((index = 1; index < COMP_CWORD; ++index)); do
        case ${COMP_WORDS[index]} in
            --root) ((++index)) ;;
            -*) ;;
            *)
                echo "${COMP_WORDS[index]}"
                return
                ;;
        esac
    done
}

_tavelo_cli() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command words
    COMPREPLY=()
    case $before in
        --root)
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            compopt -o filenames 2>/dev/null
            return
            ;;
        --year)
            mapfile -t COMPREPLY < <(compgen -W "$(tavelo-cli years 2>/dev/null)" -- "$word")
            return
            ;;
        --day | --marker | --limit) return ;;
    esac

    command=$(_tavelo_cli_command)
    case $command in
        "") words="path show years write append merge search stats random check resolve --root --help --version" ;;
        show | write) words="today yesterday --year --root --help" ;;
        path | years | append | resolve) words="today yesterday --root --help" ;;
        merge)
            words="--day --marker --root --help"
            [[ $word == -* ]] || {
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
                compopt -o filenames 2>/dev/null
                return
            }
            ;;
        search) words="--limit --json --root --help" ;;
        stats) words="--json --root --help" ;;
        random | check) words="--root --help" ;;
        *) return ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _tavelo_cli tavelo-cli
