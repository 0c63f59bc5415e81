#!/usr/bin/env bash
# A home that version 0.1.0 left, opened by vornctl: nothing is lost, asked twice or told again. update_test.sh VORNCTL
set -euo pipefail
vornctl=$1
here=$(cd "$(dirname "$0")" && pwd)
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
"$here/support/home_of_0_1_0.py" "$home" >"$home/now"
failures=0

# expect WHAT COMMAND …: the command succeeds.
expect() {
    local what=$1
    shift
    if ! "$@"; then
        echo "update: $what" >&2
        failures=$((failures + 1))
    fi
}
# json FILE EXPRESSION: the expression holds of the document `it`.
# shellcheck disable=SC2317  # `expect` runs it
json() { python3 -c 'import json, sys; it = json.load(open(sys.argv[1])); assert eval(sys.argv[2]), it' "$1" "$2"; }

mkdir "$home/bin" "$home/home"
printf '#!/bin/sh\necho asked >>"%s/asked"\nexit 1\n' "$home" >"$home/bin/claude"
chmod +x "$home/bin/claude"
cp -r "$home/vorn" "$home/before"
export HOME=$home/home VORN_HOME=$home/vorn CLAUDE_CONFIG_DIR=$home/claude XDG_CONFIG_HOME=$home/config
export PATH=$home/bin:/usr/bin:/bin

for run in 1 2; do
    expect "status fails" "$vornctl" status --format json >"$home/status.$run" 2>"$home/notes"
done
expect "the client is asked although it failed twice a minute ago" test ! -e "$home/asked"
for run in 1 2; do
    expect "a limit is missing" json "$home/status.$run" \
        'sorted(w["kind"] for w in it["windows"]) == ["session", "week", "week:Sonnet"]'
    expect "the latest reading of the session is not used" json "$home/status.$run" \
        '[w["usedPercent"] for w in it["windows"] if w["kind"] == "session"] == [43.7]'
    expect "the fall that was seen once is believed" json "$home/status.$run" \
        '[w["usedPercent"] for w in it["windows"] if w["kind"] == "week"] == [61.2]'
done
lines=$(wc -l <"$home/before/history.jsonl")
expect "the history lost lines" cmp -n "$(wc -c <"$home/before/history.jsonl")" "$home/before/history.jsonl" "$VORN_HOME/history.jsonl"
expect "the status line's two readings are recorded once" test "$(wc -l <"$VORN_HOME/history.jsonl")" -eq $((lines + 2))
expect "the failures are forgotten" json "$VORN_HOME/probe.json" \
    'it["consecutiveFailures"] == 2 and it["lastError"].startswith("claude /usage failed: ")'
for file in reset-plan integration statusline choices insights; do
    expect "$file.json is not as it was" cmp "$home/before/$file.json" "$VORN_HOME/$file.json"
done

# The first change of the plan keeps the rest of it.
expect "the plan cannot be changed" "$vornctl" plan add 2099-01-01T00:00:00Z --note "after the update" >/dev/null
expect "the plan lost an entry" json "$VORN_HOME/reset-plan.json" 'it["banked"] == 2 and len(it["planned"]) == 3'
exit "$((failures > 0))"
