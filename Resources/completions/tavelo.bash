# SPDX-License-Identifier: MIT
# Completion of tavelo for bash.

_tavelo() {
    local word=${COMP_WORDS[COMP_CWORD]}
    mapfile -t COMPREPLY < <(compgen -W "--today --search --self-test --help --version" -- "$word")
}
complete -F _tavelo tavelo
