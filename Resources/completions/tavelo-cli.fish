# SPDX-License-Identifier: MIT
# Completion of tavelo-cli for fish.

set -l commands path show years write append merge search stats random check resolve
set -l days 'today yesterday'

complete -c tavelo-cli -f
complete -c tavelo-cli -l root -r -a '(__fish_complete_directories)' -d "The diary's folder"
complete -c tavelo-cli -l help -d 'Print what there is to know'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the version'

complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a path -d "Print the path of a day's file"
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a show -d "Print a day, or one year's entry"
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a years -d 'Print the years that have an entry'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a write -d "Replace one year's entry by standard input"
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a append -d 'Add a paragraph to an entry'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a merge -d "Print what two versions of a day's file make together"
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a search -d 'Find entries by their words'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a stats -d 'Print how much the diary holds'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a random -d 'Print a day that has an entry, drawn at random'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a check -d 'Tell what is not as it should be in the folder'
complete -c tavelo-cli -n "not __fish_seen_subcommand_from $commands" -a resolve -d 'Merge the conflict copies of sync tools'

complete -c tavelo-cli -n '__fish_seen_subcommand_from path show years write append resolve' -a "$days"
complete -c tavelo-cli -n '__fish_seen_subcommand_from show write' -l year -x -d 'The year of the entry'
complete -c tavelo-cli -n '__fish_seen_subcommand_from merge' -l day -x -d 'The day of both files'
complete -c tavelo-cli -n '__fish_seen_subcommand_from merge' -l marker -x -d 'The line between two texts'
complete -c tavelo-cli -n '__fish_seen_subcommand_from merge' -F
complete -c tavelo-cli -n '__fish_seen_subcommand_from search' -l limit -x -d 'The largest number of results'
complete -c tavelo-cli -n '__fish_seen_subcommand_from search stats' -l json -d 'Print JSON'
