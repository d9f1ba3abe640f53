#!/usr/bin/env bash
# Writes the demo region the tarvctl transcripts run on: what `tarvctl demo`
# writes under a shared-memory prefix of its own, saved to DIRECTORY/demo.bin;
# the shared memory is removed again.
# Usage: save_demo.sh TARVCTL DIRECTORY
set -eu
tarvctl=$1 dir=$2
prefix="td$$x${RANDOM}-"
trap 'rm -f /dev/shm/"$prefix"*' EXIT
unset TARV_BASE_MAC TARV_SWITCH_MODE TARV_PORT_TYPES TARV_LAGS
export TARV_SHM_PREFIX=$prefix TARV_TIME=2026-11-25T01:35:00.123Z
"$tarvctl" demo >/dev/null
"$tarvctl" snapshot save "$dir/demo.bin" >/dev/null
