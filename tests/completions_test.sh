#!/usr/bin/env bash
# The completions and the man page know the commands, options and values that vornctl has, and no others.
# completions_test.sh VORNCTL PROJECT_DIRECTORY
set -euo pipefail
vornctl=$1
cd "$2"
VORN_HOME=$(mktemp -d)
export VORN_HOME
trap 'rm -rf "$VORN_HOME"' EXIT
failures=0

# expect_same WHAT EXPECTED ACTUAL: compares words, whatever their order.
expect_same() {
    local expected actual
    expected=$(tr -s ' \n' '\n' <<<"$2" | sed '/^$/d' | sort -u)
    actual=$(tr -s ' \n' '\n' <<<"$3" | sed '/^$/d' | sort -u)
    if [[ $expected != "$actual" ]]; then
        echo "$1: < vornctl has it, > it is written there"
        diff <(echo "$expected") <(echo "$actual") | grep '^[<>]' || true
        failures=$((failures + 1))
    fi
}

options() { "$vornctl" "$@" --help | sed -nE 's/^  (-h,)?(--[a-z-]+).*/\2/p'; }
commands() { "$vornctl" "$@" --help | sed -n '/^Subcommands:/,$s/^  \([a-z][a-z-]*\) .*/\1/p'; }
# The words that an option accepts, as the refusal of a wrong one lists them.
values() { "$vornctl" "$@" no-such-value 2>&1 | sed -nE 's/.*not in \{(.*)\}.*/\1/p' | tr ',' ' '; }

# shellcheck source=/dev/null
source completions/vornctl.bash
# bash_offers WORD …: what bash offers for the last of the words.
bash_offers() {
    COMP_WORDS=("$vornctl" "$@")
    COMP_CWORD=$#
    _vornctl "$vornctl"
    echo "${COMPREPLY[*]}"
}

expect_same "bash, commands" "$(commands) help $(options)" "$(bash_offers '')"
expect_same "bash, commands of plan" "$(commands plan) --help" "$(bash_offers plan '')"
every_option=$(options)
while read -ra words; do
    every_option+=" $(options "${words[@]}")"
    expect_same "bash, options of ${words[*]}" "$(options "${words[@]}")" "$(bash_offers "${words[@]}" --)"
done < <(commands && commands plan | sed 's/^/plan /')
every_value=''
for option in "export --format" "status --format" "status --demo" "plan add --scope" "plan redeem --scope"; do
    read -ra words <<<"$option"
    accepted=$(values "${words[@]}" 2>&1 || true)
    every_value+=" $accepted"
    expect_same "bash, $option" "$accepted" "$(bash_offers "${words[@]}" '')"
    expect_same "bash, $option=" "$accepted" "$(bash_offers "${words[@]}" =)"
done

"$vornctl" plan add 2100-01-01T00:00:00Z --note '9  2100-01-01T00:00:00Z' >/dev/null
"$vornctl" plan add 2100-01-02T00:00:00Z >/dev/null
expect_same "bash, numbers of planned resets" "1 2 --help" "$(bash_offers plan remove '')"

# The others are read, since their shells need not be here.
expect_same "zsh, options" "$every_option" "$(grep -v '^#' completions/_vornctl | grep -oE -- '--[a-z][a-z-]+')"
expect_same "fish, options" "$every_option" "$(grep -oE -- ' -l [a-z-]+ -' completions/vornctl.fish | sed -E 's/ -l (.*) -/--\1/')"
expect_same "man, options" "$every_option" "$(grep -oE -- 'Fl -[a-z-]+' docs/man/vornctl.1 | sed 's/Fl -/--/')"
for file in completions/_vornctl completions/vornctl.fish docs/man/vornctl.1; do
    for word in $(commands) $(commands plan) $every_value; do
        if ! grep -qwF -- "$word" "$file"; then
            echo "$file lacks $word"
            failures=$((failures + 1))
        fi
    done
done

exit $((failures > 0))
