#!/usr/bin/env bash
# The configured man page renders without a warning, names every subcommand
# that `tarvctl --help` lists, and keeps each entry's heading on one line
# (a heading cut short leaves a bracket open).
# Usage: man_page.sh TARVCTL PAGE
set -u
tarvctl=$1 page=$2
warnings=$(groff -man -Tutf8 -ww -z "$page" 2>&1)
[ -z "$warnings" ] || { echo "warnings: $warnings"; exit 1; }
headings=$(groff -man -Tascii -P-cbou -rLL=200n "$page" | sed -n '/^SUBCOMMANDS/,/^[A-Z]/p' | grep -E '^ {7}[^ ]')
fail=0
while IFS= read -r h; do
    [ "$(tr -cd '[' <<<"$h" | wc -c)" = "$(tr -cd ']' <<<"$h" | wc -c)" ] || { echo "heading cut short: $h"; fail=1; }
done <<<"$headings"
for command in $("$tarvctl" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
    grep -qE "^ {7}$command( |$)|, $command " <<<"$headings" || { echo "no entry for $command"; fail=1; }
done
exit $fail
