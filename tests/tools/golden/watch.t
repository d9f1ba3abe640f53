# The first poll reports the region; later ones, each after the time, the
# objects added and removed, the fields changed and the alarm bits. The
# region is replaced whole, so that no poll sees it half written.
$ tarvctl snapshot load demo.bin
loaded demo.bin into /T-kelm-data
[exit 0]
$ tarvctl watch --interval 20 --count 200 > w.txt & until grep -q watching w.txt 2>/dev/null; do sleep 0.02; done; (export TARV_SHM_PREFIX=${TARV_SHM_PREFIX}p; tarvctl snapshot load demo2.bin; tarvctl get mep --json | sed 's/"wVid": 200,/"wVid": 201,/' | tarvctl set mep -) >/dev/null; mv /dev/shm/${TARV_SHM_PREFIX}pkelm-data /dev/shm/${TARV_SHM_PREFIX}kelm-data; wait $!; echo "watch ended with $?"; cat w.txt
watch ended with 0
watching /T-kelm-data every 20 ms: 3 MDs, 3 MAs, 6 MEPs, 2 MIPs, 2 throughput tests, 2 PM sessions, 6 bandwidth notifications
2026-11-25T01:35:00.123Z /T-kelm-data replaced
2026-11-25T01:35:00.123Z + MEP 1/1/7
2026-11-25T01:35:00.123Z * MEP 2/2/3: wVid 200 -> 201
2026-11-25T01:35:00.123Z * MEP 2/2/4: wVid 200 -> 201
2026-11-25T01:35:00.123Z * MEP 2/2/6: wVid 200 -> 201
2026-11-25T01:35:00.123Z - MIP 2/2/2
2026-11-25T01:35:00.123Z + bandwidth notification 1/1/7
2026-11-25T01:35:00.123Z * MEP 1/1/1: alarm bit 1 raised
2026-11-25T01:35:00.123Z * MEP 1/1/2: alarm bits 0, 2 cleared
2026-11-25T01:35:00.123Z * PM session 1/1/1 #1: alarm bit 0 raised
2026-11-25T01:35:00.123Z * table Class577MoidArray: 5 bytes differ
2026-11-25T01:35:00.123Z * table Class578MoidArray: 5 bytes differ
2026-11-25T01:35:00.123Z * table MepOldMoidArray: 5 bytes differ
[exit 0]
# A region removed and created again (whole, as a controller creates it) is
# followed; one that stays away ends watch with status 3.
$ tarvctl watch --interval 20 --count 300 --json > w.json & until grep -q start w.json 2>/dev/null; do sleep 0.02; done; rm /dev/shm/${TARV_SHM_PREFIX}kelm-data; until grep -q regionRemoved w.json; do sleep 0.02; done; tarvctl --region demo.bin snapshot save --raw /dev/shm/${TARV_SHM_PREFIX}new 2>/dev/null; mv /dev/shm/${TARV_SHM_PREFIX}new /dev/shm/${TARV_SHM_PREFIX}kelm-data; wait $!; echo "watch ended with $?"; cat w.json
saved file demo.bin to /dev/shm/T-new (raw image, 453075 bytes)
watch ended with 0
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"start","region":"/T-kelm-data","intervalMs":20}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"regionRemoved","region":"/T-kelm-data"}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"regionCreated","region":"/T-kelm-data"}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"removed","class":532,"object":"MEP 1/1/7","key":{"wClass":532,"lId1":1,"lId2":1,"lId3":7},"mep":{"md":1,"ma":1,"mep":7,"mepId":107,"port":{"slot":1,"port":5}}}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"changed","class":532,"object":"MEP 2/2/3","key":{"wClass":532,"lId1":2,"lId2":2,"lId3":3},"mep":{"md":2,"ma":2,"mep":3,"mepId":201,"port":{"slot":4,"port":2}},"fields":{"wVid":{"before":201,"after":200}}}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"changed","class":532,"object":"MEP 2/2/4","key":{"wClass":532,"lId1":2,"lId2":2,"lId3":4},"mep":{"md":2,"ma":2,"mep":4,"mepId":202,"port":{"slot":3,"port":7}},"fields":{"wVid":{"before":201,"after":200}}}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"changed","class":532,"object":"MEP 2/2/6","key":{"wClass":532,"lId1":2,"lId2":2,"lId3":6},"mep":{"md":2,"ma":2,"mep":6,"mepId":203,"port":{"lag":6}},"fields":{"wVid":{"before":201,"after":200}}}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"added","class":575,"object":"MIP 2/2/2","key":{"wClass":575,"lId1":2,"lId2":2,"lId3":2}}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"removed","class":848,"object":"bandwidth notification 1/1/7","key":{"wClass":848,"lId1":1,"lId2":1,"lId3":7}}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"alarm","class":532,"object":"MEP 1/1/1","key":{"wClass":532,"lId1":1,"lId2":1,"lId3":1},"mep":{"md":1,"ma":1,"mep":1,"mepId":101,"port":{"slot":1,"port":3}},"raised":[],"cleared":[1]}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"alarm","class":532,"object":"MEP 1/1/2","key":{"wClass":532,"lId1":1,"lId2":1,"lId3":2},"mep":{"md":1,"ma":1,"mep":2,"mepId":102,"port":{"lag":5}},"raised":[0,2],"cleared":[]}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"alarm","class":674,"object":"PM session 1/1/1 #1","key":{"wClass":674,"lId1":1,"lId2":1,"lId3":1,"bySessionId":1},"raised":[],"cleared":[0]}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"table","table":"Class577MoidArray","bytes":5}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"table","table":"Class578MoidArray","bytes":5}
{"schema":1,"time":"2026-11-25T01:35:00.123Z","event":"table","table":"MepOldMoidArray","bytes":5}
[exit 0]
$ tarvctl watch --interval 20 --gone-limit 1 > w3.txt & until grep -q watching w3.txt 2>/dev/null; do sleep 0.02; done; rm /dev/shm/${TARV_SHM_PREFIX}kelm-data; wait $!; echo "watch ended with $?"; cat w3.txt
watch ended with 3
watching /T-kelm-data every 20 ms: 3 MDs, 3 MAs, 6 MEPs, 2 MIPs, 2 throughput tests, 2 PM sessions, 6 bandwidth notifications
2026-11-25T01:35:00.123Z /T-kelm-data removed
! tarvctl: /T-kelm-data has been gone for 1 s: watch ends
[exit 0]
# SIGINT ends it with status 0.
$ tarvctl snapshot load demo.bin >/dev/null; tarvctl watch --interval 20 > w2.txt & pid=$!; until grep -q watching w2.txt 2>/dev/null; do sleep 0.02; done; kill -INT $pid; wait $pid; echo "watch ended with $?"; cat w2.txt
watch ended with 0
watching /T-kelm-data every 20 ms: 3 MDs, 3 MAs, 6 MEPs, 2 MIPs, 2 throughput tests, 2 PM sessions, 6 bandwidth notifications
[exit 0]
# A region file does not change.
$ tarvctl --region empty.bin watch --interval 1 --count 3
watching file empty.bin every 1 ms: 0 MDs, 0 MAs, 0 MEPs, 0 MIPs, 0 throughput tests, 0 PM sessions, 0 bandwidth notifications
[exit 0]
