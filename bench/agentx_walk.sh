#!/usr/bin/env bash
# Time of a full snmpbulkwalk of dot1agCfmMepTable through snmpd and
# tarv-agentx on loopback, on a full region (32 MEPs), next to 'tarvctl show
# meps --json' on the same region. Usage: bench/agentx_walk.sh [BUILD_DIR] [RUNS]
set -euo pipefail
build=${1:-build/default}
runs=${2:-50}
tarvctl=$build/tools/tarvctl/tarvctl
agentx=$build/tools/agentx/tarv-agentx
dir=$(mktemp -d)
export TARV_SHM_PREFIX="agxbench$$-" MIBS= SNMP_PERSISTENT_DIR=$dir/state
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -f "/dev/shm/${TARV_SHM_PREFIX}kelm-data" "/dev/shm/${TARV_SHM_PREFIX}kelm-chkp-data"
    rm -rf "$dir"
}
trap cleanup EXIT

# The demo's configuration, its MEP class replaced by 32 MEPs in its MAs.
"$tarvctl" demo > /dev/null
"$tarvctl" get mep --json | python3 -c '
import json, sys
c = json.load(sys.stdin)
first = c["records"][0]
mas = [(1, 1), (2, 2), (3, 3)]
records = []
for n in range(1, 33):
    md, ma = mas[n % 3]
    record = dict(first["record"], wMepId=1000 + n, bySlot=1 + n % 4 if n % 4 != 1 else 3, byPort=n % 8 + 1)
    records.append({"key": dict(first["key"], lId1=md, lId2=ma, lId3=n), "record": record})
c["records"] = records
json.dump(c, sys.stdout)' | "$tarvctl" set mep - 2> /dev/null

port=$(python3 -c 'import socket; s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
printf 'agentaddress udp:127.0.0.1:%s\nmaster agentx\nagentXSocket %s/agentx\nrocommunity public 127.0.0.1\n' \
    "$port" "$dir" > "$dir/snmpd.conf"
snmpd -f -Lf "$dir/snmpd.log" -C -c "$dir/snmpd.conf" -p "$dir/snmpd.pid" & pids+=($!)
for _ in $(seq 50); do [ -S "$dir/agentx" ] && break; sleep 0.1; done
"$agentx" --foreground --agentx-socket "$dir/agentx" 2> "$dir/agentx.log" & pids+=($!)
sleep 1

mep_table=.1.3.111.2.802.1.1.8.1.7.1
rows=$(snmpbulkwalk -v2c -c public -On -Cr50 "127.0.0.1:$port" "$mep_table" | wc -l)
meps=$("$tarvctl" show meps --json | python3 -c 'import json, sys; j = json.load(sys.stdin); print(len(j["meps"] if isinstance(j, dict) else j))')
echo "dot1agCfmMepTable: $rows lines of snmpbulkwalk output, $meps MEPs in the region"

time_runs() {  # label, command...
    local label=$1; shift
    local start end
    start=$(date +%s%N)
    for _ in $(seq "$runs"); do "$@" > /dev/null; done
    end=$(date +%s%N)
    printf '%-52s %8.2f ms per run (%d runs)\n' "$label" "$(echo "($end - $start) / $runs / 1000000" | bc -l)" "$runs"
}
time_runs "snmpbulkwalk -Cr50 of dot1agCfmMepTable" snmpbulkwalk -v2c -c public -On -Cr50 "127.0.0.1:$port" "$mep_table"
time_runs "snmpbulkwalk -Cr10 of dot1agCfmMepTable" snmpbulkwalk -v2c -c public -On -Cr10 "127.0.0.1:$port" "$mep_table"
time_runs "snmpwalk (GETNEXT) of dot1agCfmMepTable" snmpwalk -v2c -c public -On "127.0.0.1:$port" "$mep_table"
time_runs "tarvctl show meps --json" "$tarvctl" show meps --json
