#!/usr/bin/env bash
# A bounded soak of a live region: `tarvctl simulate` plays the controller at
# a high rate while readers run beside it (show --json in a loop, watch,
# metrics once a round and into a textfile, and, given the SNMP subagent, a
# bulk walk of its MIB tables through a private snmpd). Passes when nothing crashes or
# hangs, every JSON document and line parses, watch saw changes, promtool
# accepts the metrics (when installed) and, once simulate has stopped,
# check finds nothing. Everything runs on a private shared-memory prefix
# and is stopped by its process id; nothing is left in /dev/shm.
#
# Usage: soak.sh TARVCTL [SECONDS] [RATE] [TARV_AGENTX]   (default 60 s, 500 changes/s)
set -u
tarvctl=$1 seconds=${2:-60} rate=${3:-500} agentx=${4:-}

prefix="soak$$x${RANDOM}-"
work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill -TERM "$pid" 2>/dev/null; done
    wait 2>/dev/null
    rm -f /dev/shm/"$prefix"*
    rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "soak: $*" >&2; exit 1; }

export TARV_SHM_PREFIX=$prefix NO_COLOR=1
unset TARV_BASE_MAC TARV_SWITCH_MODE TARV_PORT_TYPES TARV_LAGS
"$tarvctl" demo >/dev/null || fail "demo failed"

"$tarvctl" simulate --seed $$ --rate "$rate" --duration "$seconds" --json >"$work/simulate.jsonl" &
sim=$!
pids+=("$sim")
"$tarvctl" watch --interval 50 >"$work/watch.txt" &
watcher=$!
pids+=("$watcher")
mkdir "$work/textfile"
"$tarvctl" metrics --textfile "$work/textfile" --interval 0.2 &
exporter=$!
pids+=("$exporter")
if [ -n "$agentx" ]; then
    # The master on a free loopback port and a private AgentX socket.
    port=$(python3 -c 'import socket; s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
    printf 'agentaddress udp:127.0.0.1:%s\nmaster agentx\nagentXSocket %s/agentx\nrocommunity public 127.0.0.1\n' \
        "$port" "$work" >"$work/snmpd.conf"
    SNMP_PERSISTENT_DIR=$work/state snmpd -f -Lf "$work/snmpd.log" -C -c "$work/snmpd.conf" -p "$work/snmpd.pid" &
    master=$!
    pids+=("$master")
    for _ in $(seq 100); do [ -S "$work/agentx" ] && break; sleep 0.1; done
    "$agentx" --foreground --agentx-socket "$work/agentx" 2>"$work/agentx.log" &
    subagent=$!
    pids+=("$subagent")
fi
walks=0

# The readers, one round after another until simulate ends (bounded: a
# simulate that does not stop in time is a hang).
deadline=$((SECONDS + seconds + 30))
rounds=0
while kill -0 "$sim" 2>/dev/null; do
    [ $SECONDS -lt $deadline ] || fail "simulate did not stop after $seconds s"
    "$tarvctl" show --json >"$work/show.json" || fail "show --json failed with $?"
    python3 -m json.tool "$work/show.json" >/dev/null || fail "show --json printed what does not parse"
    "$tarvctl" metrics >"$work/metrics.txt" || fail "metrics failed with $?"
    if command -v promtool >/dev/null; then
        promtool check metrics <"$work/metrics.txt" || fail "promtool refused the metrics"
    fi
    if [ -n "$agentx" ]; then
        kill -0 "$subagent" 2>/dev/null || fail "tarv-agentx ended: $(cat "$work/agentx.log")"
        MIBS= snmpbulkwalk -v2c -c public -On -Cr50 -t 5 -r 1 "127.0.0.1:$port" .1.3.111.2.802.1.1.8.1 \
            >"$work/walk.txt" 2>&1 || fail "the walk of the CFM MIB failed: $(tail -3 "$work/walk.txt")"
        walks=$((walks + $(grep -c '^\.1\.3\.111\.2\.802\.1\.1\.8\.1\.' "$work/walk.txt")))
    fi
    rounds=$((rounds + 1))
done
wait "$sim" || fail "simulate ended with $?"
pids=("$watcher" "$exporter")
[ -z "$agentx" ] || pids+=("$subagent" "$master")

# watch and metrics end on SIGTERM with status 0, in bounded time.
for pid in "$watcher" "$exporter"; do
    kill -TERM "$pid"
    for _ in $(seq 50); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
    kill -0 "$pid" 2>/dev/null && fail "process $pid did not stop on SIGTERM"
    wait "$pid" || fail "process $pid ended with $?"
done
pids=(${master:+"$master"})

changes=$(wc -l <"$work/simulate.jsonl")
[ "$changes" -gt 0 ] || fail "simulate made no change"
python3 -c 'import json, sys
for n, line in enumerate(open(sys.argv[1]), 1):
    event = json.loads(line)
    assert event["schema"] == 1 and "time" in event and "event" in event, f"line {n}: {line}"
' "$work/simulate.jsonl" || fail "a simulate --json line does not parse"
grep -qE '^[^ ]+ [-+*] ' "$work/watch.txt" || fail "watch reported no change"
[ -s "$work/textfile/tarv.prom" ] || fail "metrics wrote no textfile"
"$tarvctl" check >/dev/null || fail "check found inconsistencies after simulate stopped: $("$tarvctl" check)"

if [ -n "$agentx" ]; then
    [ "$walks" -gt 0 ] || fail "the walks of the CFM MIB returned nothing"
    kill -TERM "$subagent" && wait "$subagent" || fail "tarv-agentx ended with $? on SIGTERM"
fi
echo "soak: $changes changes in ${seconds} s, $rounds reader rounds, $(grep -cE '^[^ ]+ [-+*] ' "$work/watch.txt") watch lines, $walks MIB values walked"
cleanup
trap - EXIT
leftover=$(ls /dev/shm | grep -c "^$prefix")
[ "$leftover" -eq 0 ] || fail "$leftover shared-memory objects left behind"
