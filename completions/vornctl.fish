# Completion of vornctl for fish.

# The command words typed so far, without options and their values.
function __vornctl_words
    set -l skip no
    for token in (commandline -opc)[2..-1]
        if test $skip = yes
            set skip no
            continue
        end
        switch $token
            case --claude --root --format --demo --scope --since --now --note --output
                set skip yes
            case '-*'
            case '*'
                echo -- $token
        end
    end
end

# Whether exactly these command words have been typed.
function __vornctl_at
    set -l words (__vornctl_words)
    test "$words" = "$argv"
end

# Whether the command words typed begin with these.
function __vornctl_in
    set -l words (__vornctl_words)
    string match -q -- "$argv *" "$words "
end

# The numbers of the planned resets, each with its date and text.
function __vornctl_planned
    set -l vornctl (string replace -r '^~' $HOME -- (commandline -opc)[1])
    $vornctl plan list 2>/dev/null | string replace -rf '^ *(\d+)  (\d\S+ \d\d:\d\d  .*?) *$' '$1\t$2'
end

complete -c vornctl -f
complete -c vornctl -n __vornctl_at -l version -d 'Show the version'
complete -c vornctl -s h -l help -d 'Show this help'

for at in '' help
    complete -c vornctl -n "__vornctl_at $at" -a status -d 'How much of each limit is used, and where that leads'
    complete -c vornctl -n "__vornctl_at $at" -a activity -d 'What Claude Code did on this machine'
    complete -c vornctl -n "__vornctl_at $at" -a log -d 'What happened to each limit'
    complete -c vornctl -n "__vornctl_at $at" -a export -d 'The readings or the activity as a table'
    complete -c vornctl -n "__vornctl_at $at" -a plan -d 'Resets that you expect ahead of schedule, or hold'
    complete -c vornctl -n "__vornctl_at $at" -a connect -d "Have Claude Code's status line report to Vorn"
    complete -c vornctl -n "__vornctl_at $at" -a disconnect -d 'Put your own status line back as it was'
end
complete -c vornctl -n __vornctl_at -a help -d 'Tell more about a command'

set -l in_status '__vornctl_in status'
complete -c vornctl -n $in_status -l claude -rF -d 'The claude executable to ask'
complete -c vornctl -n $in_status -l probe -d 'Ask Claude Code now, however fresh the figures are'
complete -c vornctl -n $in_status -l no-probe -d 'Never ask Claude Code, show what is known'
complete -c vornctl -n $in_status -l rates -d 'Add the burn rate over five horizons'
complete -c vornctl -n $in_status -l json -d 'Print one JSON object'
complete -c vornctl -n $in_status -l format -x -a 'text plain tmux waybar json' -d 'How to print it'
complete -c vornctl -n $in_status -l demo -x -a 'comfortable watch at-risk limited planned-reset' -d 'Show invented figures'
complete -c vornctl -n $in_status -l demo-if-empty -d 'Add a demonstration when there is no reading'
complete -c vornctl -n $in_status -l now -x -d 'Take this moment as now, and write nothing'
complete -c vornctl -n $in_status -l watch -d 'Redraw every few seconds until interrupted'

set -l in_activity '__vornctl_in activity'
complete -c vornctl -n $in_activity -l since -x -a '1h 5h 24h 7d 30d' -d 'How far back to look'
complete -c vornctl -n $in_activity -l root -x -a '(__fish_complete_directories)' -d "Claude Code's configuration directory"
complete -c vornctl -n $in_activity -l now -x -d 'Take this moment as now'
complete -c vornctl -n $in_activity -l json -d 'Print one JSON object'

set -l in_log '__vornctl_in log'
complete -c vornctl -n $in_log -l since -x -a '24h 7d 30d 365d' -d 'How far back to look'
complete -c vornctl -n $in_log -l now -x -d 'Take this moment as now'
complete -c vornctl -n $in_log -l json -d 'Print one JSON object'

set -l in_export '__vornctl_in export'
complete -c vornctl -n '__vornctl_at export' -a 'history activity'
complete -c vornctl -n $in_export -l format -x -a 'csv json' -d 'How to write it'
complete -c vornctl -n $in_export -l since -x -a '1h 5h 24h 7d' -d 'How far back to look'
complete -c vornctl -n $in_export -l root -x -a '(__fish_complete_directories)' -d "Claude Code's configuration directory"
complete -c vornctl -n $in_export -l now -x -d 'Take this moment as now'
complete -c vornctl -n $in_export -l output -rF -d 'Replace this file instead of printing'

for at in plan 'help plan'
    complete -c vornctl -n "__vornctl_at $at" -a add -d 'Plan a reset'
    complete -c vornctl -n "__vornctl_at $at" -a remove -d 'Remove a planned reset'
    complete -c vornctl -n "__vornctl_at $at" -a list -d 'Show the plan'
    complete -c vornctl -n "__vornctl_at $at" -a bank -d 'Note how many resets you hold'
    complete -c vornctl -n "__vornctl_at $at" -a redeem -d 'Say that you redeem a banked reset now'
end
complete -c vornctl -n '__vornctl_in plan add' -l note -x -d 'A text of your own'
for action in add redeem
    complete -c vornctl -n "__vornctl_in plan $action" -l scope -x -a 'all session week' -d 'What it resets'
end
complete -c vornctl -n '__vornctl_at plan remove' -a '(__vornctl_planned)'
complete -c vornctl -n '__vornctl_in plan list' -l json -d 'Print the plan as JSON'
complete -c vornctl -n '__vornctl_in plan list' -l now -x -d 'Take this moment as now'

complete -c vornctl -n '__vornctl_in connect' -l dry-run -d 'Show what would change, and change nothing'
complete -c vornctl -n '__vornctl_in connect' -l replace -d 'Also in place of a command around a relay'
complete -c vornctl -n '__vornctl_in disconnect' -l purge -d 'Then remove everything that Vorn keeps'
