# simulate plays the controller on the demo region: the same seed makes the
# same changes, and between changes check finds nothing.
$ tarvctl snapshot load --force demo.bin >/dev/null && tarvctl simulate --seed 7 --changes 40 --rate 100000 | tee a.txt
bandwidth notification 1/1/1: 10 Mbit/s, priority 3
bandwidth notification 2/2/4: 2500 Mbit/s, priority 6
bandwidth notification 2/2/6: 10000 Mbit/s, priority 4
MEP 3/3/5 removed through Tarv__SetConfig, with 0 throughput tests and 0 PM sessions
bandwidth notification 2/2/3: 2500 Mbit/s, priority 5
MEP 2/2/4: alarm bit 2 (MAC status) cleared, text "CCMs from MEP 201 lost"
MEP 1/1/2: alarm bit 1 (loss of continuity) raised, text "CCMs from MEP 101 lost"
MEP 1/1/2: alarm bit 0 (RDI) cleared, text "CCMs from MEP 101 lost"
MEP 2/2/4: alarm bit 4 (cross-connect) raised, text "CCMs of another MA from MEP 201"
MEP 1/1/2: alarm bit 1 (loss of continuity) cleared, text "MAC status defect reported by MEP 101"
MEP 1/1/1: alarm bit 1 (loss of continuity) raised, text "CCMs from MEP 102 lost"
MEP 1/1/1: alarm bit 4 (cross-connect) raised, text "CCMs of another MA from MEP 102"
throughput test 2/2/3/2 started
MEP 3/3/5 put back through Tarv__SetConfig
MEP 2/2/4: alarm bit 4 (cross-connect) cleared, text "CCMs from MEP 201 lost"
throughput test 2/2/3/2 finished, history record 3: 2/2/3 test 2: 405.30 Mbit/s, frame loss 0.00 %
MEP 2/2/4: alarm bit 1 (loss of continuity) cleared
MEP 2/2/4: alarm bit 2 (MAC status) raised, text "MAC status defect reported by MEP 201"
PM session 2/2/3 #2: alarm bit 2 raised
MEP 1/1/2: alarm bit 0 (RDI) raised, text "MAC status defect reported by MEP 101"
throughput test 1/1/1/1 started
MEP 1/1/1: alarm bit 1 (loss of continuity) cleared, text "CCMs of another MA from MEP 102"
MEP 2/2/4: alarm bit 1 (loss of continuity) raised, text "CCMs from MEP 201 lost"
PM session 2/2/3 #2: alarm bit 2 cleared
MEP 1/1/1: alarm bit 4 (cross-connect) cleared
throughput test 1/1/1/1 finished, history record 4: 1/1/1 test 1: 854.52 Mbit/s, frame loss 0.43 %
throughput test 2/2/3/2 started
throughput test 1/1/1/1 started
bandwidth notification 1/1/1: 1000 Mbit/s, priority 0
throughput test 2/2/3/2 finished, history record 5: 2/2/3 test 2: 676.60 Mbit/s, frame loss 1.94 %
MEP 1/1/2: alarm bit 1 (loss of continuity) raised, text "CCMs from MEP 101 lost"
MEP 2/2/6: alarm bit 0 (RDI) raised, text "RDI received from MEP 201"
throughput test 2/2/3/2 started
throughput test 1/1/1/1 finished, history record 6: 1/1/1 test 1: 264.04 Mbit/s, frame loss 0.00 %
bandwidth notification 2/2/4: 1000 Mbit/s, priority 6
MEP 2/2/4: alarm bit 0 (RDI) raised, text "CCMs from MEP 201 lost"
throughput test 2/2/3/2 finished, history record 7: 2/2/3 test 2: 864.77 Mbit/s, frame loss 0.00 %
PM session 1/1/1 #1: alarm bit 0 raised
MEP 2/2/4: alarm bit 0 (RDI) cleared, text "CCMs from MEP 201 lost"
MEP 1/1/2: alarm bit 1 (loss of continuity) cleared, text "MAC status defect reported by MEP 101"
[exit 0]
$ tarvctl check
no findings in /T-kelm-data
[exit 0]
$ tarvctl snapshot load --force demo.bin >/dev/null && tarvctl simulate --seed 7 --changes 40 --rate 100000 --json > a.json && cmp <(tarvctl snapshot load --force demo.bin >/dev/null && tarvctl simulate --seed 7 --changes 40 --rate 100000) a.txt && echo same changes
same changes
[exit 0]
# --json: one object per line, in the same sequence; "time" differs from run to run.
$ python3 -c 'import json,sys; lines=[json.loads(l) for l in open("a.json")]; print(len(lines), {l["schema"] for l in lines}, sorted({l["event"] for l in lines})); assert all(l["time"].endswith("Z") and len(l["time"]) == 24 for l in lines); print(json.dumps({k: v for k, v in lines[0].items() if k != "time"}))'
40 {1} ['bandwidthNotification', 'mepAlarmCleared', 'mepAlarmRaised', 'mepRemoved', 'mepRestored', 'pmAlarmCleared', 'pmAlarmRaised', 'throughputFinished', 'throughputStarted']
{"schema": 1, "event": "bandwidthNotification", "mep": {"md": 1, "ma": 1, "mep": 1, "mepId": 101, "port": {"slot": 1, "port": 3}}, "bitsPerSecond": 10000000, "priority": 3}
[exit 0]
# A longer run removes MEPs with their throughput tests and PM sessions and
# puts them back; the region stays consistent.
$ tarvctl snapshot load --force demo.bin >/dev/null && tarvctl simulate --seed 3 --changes 400 --rate 100000 | grep -E 'removed|put back' | sort | uniq -c; tarvctl check
      3 MEP 1/1/1 put back through Tarv__SetConfig
      3 MEP 1/1/1 removed through Tarv__SetConfig, with 1 throughput test and 1 PM session
      4 MEP 1/1/2 put back through Tarv__SetConfig
      4 MEP 1/1/2 removed through Tarv__SetConfig, with 0 throughput tests and 0 PM sessions
      2 MEP 2/2/3 put back through Tarv__SetConfig
      2 MEP 2/2/3 removed through Tarv__SetConfig, with 1 throughput test and 1 PM session
      5 MEP 2/2/6 put back through Tarv__SetConfig
      5 MEP 2/2/6 removed through Tarv__SetConfig, with 0 throughput tests and 0 PM sessions
      1 MEP 3/3/5 put back through Tarv__SetConfig
      1 MEP 3/3/5 removed through Tarv__SetConfig, with 0 throughput tests and 0 PM sessions
no findings in /T-kelm-data
[exit 0]
# Refusals: the real region, a region without MEPs, a region file.
$ env -u TARV_SHM_PREFIX tarvctl simulate --changes 1
! tarvctl: /kelm-data is the real region, which the OAM controller writes: choose a private one with --prefix or TARV_SHM_PREFIX ('simulate --force' plays the controller there)
[exit 5]
$ tarvctl init >/dev/null; tarvctl snapshot load --force empty.bin >/dev/null; tarvctl simulate --changes 1
! tarvctl: /T-kelm-data holds no MEP, so there is nothing to simulate: write a configuration first ('tarvctl demo' or 'tarvctl snapshot load')
[exit 5]
$ tarvctl --region demo.bin simulate --changes 1
! tarvctl: --region: 'simulate' writes shared memory and cannot run on a region file
[exit 2]
# --duration ends it, and so does SIGTERM, each with status 0; --quiet prints nothing.
$ tarvctl snapshot load --force demo.bin >/dev/null; tarvctl simulate --seed 1 --rate 1000 --duration 0.2 --quiet; echo "ended with $?"
ended with 0
[exit 0]
$ tarvctl simulate --seed 1 --rate 50 > s.txt & pid=$!; until [ -s s.txt ]; do sleep 0.02; done; kill -TERM $pid; wait $pid; echo "ended with $?"; tarvctl check
ended with 0
no findings in /T-kelm-data
[exit 0]
