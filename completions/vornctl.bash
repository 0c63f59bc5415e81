# shellcheck shell=bash
# Completion of vornctl for bash 3.2 and later; bash-completion is not needed.

# The numbers of the planned resets. $1 is vornctl as it was typed.
_vornctl_planned() {
    local number rest
    "${1/#\~/$HOME}" plan list 2>/dev/null | while read -r number rest; do
        [[ $rest == [0-9]*-*:* ]] && echo "$number"
    done
}

# Sets COMPREPLY to those of the words in $1 that begin with $2.
_vornctl_offer() {
    local IFS=$' \t\n'
    # shellcheck disable=SC2207 # the words hold no blanks
    COMPREPLY=($(compgen -W "$1" -- "$2"))
}

# Sets COMPREPLY to files ($1 is -f) or directories (-d) that begin with $2.
_vornctl_offer_paths() {
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    # shellcheck disable=SC2207 # split at line ends only
    COMPREPLY=($(compgen "$1" -- "$2"))
}

_vornctl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    # bash cuts --format=plain into three words.
    if [[ $current == '=' ]]; then
        current=''
    elif [[ $previous == '=' ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()

    case $previous in
        --claude | --output) _vornctl_offer_paths -f "$current"; return ;;
        --root) _vornctl_offer_paths -d "$current"; return ;;
        --format)
            case " ${COMP_WORDS[*]} " in
                *' export '*) _vornctl_offer 'csv json' "$current" ;;
                *) _vornctl_offer 'text plain tmux waybar json' "$current" ;;
            esac
            return ;;
        --demo) _vornctl_offer 'comfortable watch at-risk limited planned-reset' "$current"; return ;;
        --scope) _vornctl_offer 'all session week' "$current"; return ;;
        --since) _vornctl_offer '1h 5h 24h 7d 30d' "$current"; return ;;
        --now | --note) return ;;
    esac

    # Where we are: "plan add", say. A value never counts as a command.
    local place='' word skip='' i
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ -n $skip && $word != '=' ]]; then
            skip=''
            continue
        fi
        case "$place/$word" in
            */--claude | */--root | */--format | */--demo | */--scope | */--since | */--now | */--note | */--output) skip=yes ;;
            /status | /activity | /log | /export | /plan | /connect | /disconnect) place=$word ;;
            /help) place=help ;;
            plan/add | plan/remove | plan/list | plan/bank | plan/redeem | help/status | help/activity | help/log | help/export | help/plan | \
                help/connect | help/disconnect)
                place="$place $word" ;;
        esac
    done

    case $place in
        '') _vornctl_offer 'status activity log export plan connect disconnect help --version --help' "$current" ;;
        help) _vornctl_offer 'status activity log export plan connect disconnect' "$current" ;;
        status)
            _vornctl_offer '--claude --probe --no-probe --rates --json --format --demo --demo-if-empty --now --watch
                --help' "$current" ;;
        activity) _vornctl_offer '--since --root --now --json --help' "$current" ;;
        log) _vornctl_offer '--since --now --json --help' "$current" ;;
        export) _vornctl_offer 'history activity --format --since --root --now --output --help' "$current" ;;
        plan) _vornctl_offer 'add remove list bank redeem --help' "$current" ;;
        'help plan') _vornctl_offer 'add remove list bank redeem' "$current" ;;
        'plan add') _vornctl_offer '--scope --note --help' "$current" ;;
        'plan remove') _vornctl_offer "$(_vornctl_planned "$1") --help" "$current" ;;
        'plan list') _vornctl_offer '--json --now --help' "$current" ;;
        'plan bank') _vornctl_offer '--help' "$current" ;;
        'plan redeem') _vornctl_offer '--scope --help' "$current" ;;
        connect) _vornctl_offer '--dry-run --replace --help' "$current" ;;
        disconnect) _vornctl_offer '--purge --help' "$current" ;;
    esac
}
complete -F _vornctl vornctl
