# The first poll reports the region; later ones what was added or removed.
$ tarvctl snapshot load demo.bin
loaded demo.bin into /T-kelm-data
[exit 0]
$ tarvctl watch --interval 20 --count 200 > w.txt & until grep -q watching w.txt 2>/dev/null; do sleep 0.02; done; tarvctl snapshot load demo2.bin >/dev/null; wait $!; echo "watch ended with $?"; cat w.txt
watch ended with 0
watching /T-kelm-data every 20 ms: 3 MDs, 3 MAs, 6 MEPs, 2 MIPs, 2 throughput tests, 2 PM sessions, 6 bandwidth notifications
+ MEP 1/1/7
- MIP 2/2/2
+ bandwidth notification 1/1/7
* MEP 1/1/1: alarm bit 1 raised
* MEP 1/1/2: alarm bits 0, 2 cleared
* PM session 1/1/1 #1: alarm bit 0 raised
[exit 0]
# SIGINT ends it with status 0.
$ tarvctl watch --interval 20 > w2.txt & pid=$!; until grep -q watching w2.txt 2>/dev/null; do sleep 0.02; done; kill -INT $pid; wait $pid; echo "watch ended with $?"; cat w2.txt
watch ended with 0
watching /T-kelm-data every 20 ms: 3 MDs, 3 MAs, 7 MEPs, 1 MIP, 2 throughput tests, 2 PM sessions, 7 bandwidth notifications
[exit 0]
# A region file does not change.
$ tarvctl --region empty.bin watch --interval 1 --count 3
watching file empty.bin every 1 ms: 0 MDs, 0 MAs, 0 MEPs, 0 MIPs, 0 throughput tests, 0 PM sessions, 0 bandwidth notifications
[exit 0]
