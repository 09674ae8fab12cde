# SPDX-License-Identifier: MIT
# Completion of tavelo for fish.

complete -c tavelo -f
complete -c tavelo -l today -d 'Show the page of today'
complete -c tavelo -l search -d 'Show the search window'
complete -c tavelo -l self-test -d 'Start on an empty diary, say that it works, and end'
complete -c tavelo -s h -l help -d 'Print a summary of the options'
complete -c tavelo -l version -d 'Print the version'
