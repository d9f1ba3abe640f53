#!/usr/bin/env bash
# The bash completion of tarvctl, called as bash calls it, on rows of a
# command line typed so far: what must be offered for its last word ("-":
# nothing). Then every subcommand `tarvctl --help` lists must be offered.
# Usage: completion.sh TARVCTL COMPLETION_FILE
set -u
tarvctl=$1
# shellcheck source=/dev/null
source "$2"
offered() {
    COMP_WORDS=("$tarvctl" "$@")
    COMP_CWORD=$#
    _tarvctl
    echo " ${COMPREPLY[*]} "
}
fail=0
while read -r expected words; do
    read -ra line <<<"$words"
    [ "${words: -1}" = . ] && line[-1]=""  # a trailing "." is an empty word
    got=$(offered "${line[@]}")
    case $expected in
    -) [ "$got" = "  " ] ;;
    *) [[ $got == *" $expected "* ]] ;;
    esac || { echo "tarvctl $words<TAB>: expected $expected, offered:$got"; fail=1; }
done <<'ROWS'
show sh
snapshot --prefix x sn
meps show me
alarms --region x.bin show al
- show meps m
mep get me
bwn set b
save snapshot s
- snapshot save x y
--json show meps --j
--new-range port 1/4 --n
--trace port 1/4 --tr
--trace --t
4 slot 1 --ccm-period .
never --color n
ROWS
all=$(offered "")
for command in $("$tarvctl" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
    [[ $all == *" $command "* ]] || { echo "subcommand $command not offered:$all"; fail=1; }
done
exit $fail
