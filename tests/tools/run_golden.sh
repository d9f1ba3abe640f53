#!/usr/bin/env bash
# Runs one tarvctl transcript and compares it with the committed one.
#
# A transcript is a file of commands, each on a line starting with "$ ",
# every other line being what the command before it printed: standard
# output, then standard error with "! " before each line, then "[exit N]".
# Lines starting with "# " are comments and kept as they are. Commands run
# in bash, in a fresh directory holding the fixture's saved regions, with
# "tarvctl" on the PATH and a shared-memory prefix of their own, which the
# transcript shows as "T-"; whatever the commands create there is removed.
# The time is fixed (TARV_TIME) and backups go to backups/ in that directory.
#
# Usage: run_golden.sh TARVCTL TRANSCRIPT FIXTURES
# With TARV_UPDATE_GOLDEN=1 a differing transcript is rewritten instead.
set -u
tarvctl=$1 transcript=$2 fixtures=$3

name=$(basename "$transcript" .t)
work=$fixtures/run-$name
rm -rf "$work"
mkdir -p "$work/bin"
ln -s "$tarvctl" "$work/bin/tarvctl"
for f in "$fixtures"/*.bin "$fixtures"/*.raw; do ln -s "$f" "$work/"; done

prefix="tt$$x${RANDOM}-"
cleanup() { rm -f /dev/shm/"$prefix"*; }
trap cleanup EXIT

actual=$work/transcript.actual
: >"$actual"
while IFS= read -r line || [ -n "$line" ]; do
    case $line in
    '# '* | '#')
        printf '%s\n' "$line" >>"$actual"
        ;;
    '$ '*)
        printf '%s\n' "$line" >>"$actual"
        (
            cd "$work" || exit 99
            export PATH="$work/bin:$PATH" TARV_SHM_PREFIX="$prefix" NO_COLOR=1 TERM=dumb
            export TARV_TIME=2026-11-25T01:35:00.123Z TARV_BACKUP_DIR=backups
            unset TARV_DEBUG_LEVEL TARV_TRACE_LEVEL TARV_BASE_MAC TARV_SWITCH_MODE TARV_PORT_TYPES TARV_LAGS
            bash -c "${line#'$ '}" >"$work/stdout" 2>"$work/stderr"
            echo "$?" >"$work/status"
        )
        sed -e '$a\' "$work/stdout" >>"$actual"
        sed -e 's/^/! /' -e '$a\' "$work/stderr" >>"$actual"
        echo "[exit $(cat "$work/status")]" >>"$actual"
        ;;
    esac
done <"$transcript"
sed -i "s/$prefix/T-/g" "$actual"

if diff -u "$transcript" "$actual"; then
    exit 0
fi
if [ "${TARV_UPDATE_GOLDEN:-0}" = 1 ]; then
    cp "$actual" "$transcript"
    echo "updated $transcript"
fi
exit 1
