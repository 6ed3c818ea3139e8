#!/usr/bin/env bash
# The bash completion of velkorc, run by bash itself: each line of completion_cases.tsv is typed in a
# folder of sample files and the words offered are compared with the expected ones.
# Usage: bash_completion_test.sh COMPLETION_SCRIPT
set -uo pipefail
script=$(realpath "$1")
cases=$(dirname "$(realpath "$0")")/completion_cases.tsv
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
touch a.pas B.PAS c.mis D.SEC e.txt f.iff g.srs notes.md
mkdir sub

# With Debian's bash-completion loaded when it is there (its _init_completion), else on its own.
if [ -f /usr/share/bash-completion/bash_completion ]; then
    # shellcheck disable=SC1091
    . /usr/share/bash-completion/bash_completion
fi
# shellcheck disable=SC1090
. "$script"

failures=0
total=0
while IFS=$'\t' read -r line expected; do
    [[ -z $line || $line == \#* ]] && continue
    total=$((total + 1))
    # The words of the line; a final "" stands for the empty word the cursor is on.
    read -ra COMP_WORDS <<<"$line"
    if [[ ${COMP_WORDS[-1]} == '""' ]]; then COMP_WORDS[-1]=""; fi
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMP_LINE="${line%\"\"}"
    COMP_POINT=${#COMP_LINE}
    COMPREPLY=()
    _velkorc velkorc "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    got=$(printf '%s\n' "${COMPREPLY[@]}" | sed '/^$/d' | LC_ALL=C sort | tr '\n' ' ')
    got=${got% }
    if [ "$got" != "$expected" ]; then
        echo "FAIL: '$line'"
        echo "  expected: $expected"
        echo "  got:      $got"
        failures=$((failures + 1))
    fi
done <"$cases"
echo "$((total - failures)) of $total completions as expected"
((failures == 0))
