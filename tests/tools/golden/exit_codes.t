# What scripts rely on: output that cannot be written is never status 0, on
# a full disk status 4 with one line saying so, for every kind of output.
$ for c in 'get mep' 'show meps' 'get mep --json' 'port 1/4 --json' 'check' 'watch --count 2 --interval 1' '--help' 'show --help' '--version'; do tarvctl --region demo.bin $c >/dev/full; echo "$c: $?"; done
get mep: 4
show meps: 4
get mep --json: 4
port 1/4 --json: 4
check: 4
watch --count 2 --interval 1: 4
--help: 4
show --help: 4
--version: 4
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
! tarvctl: cannot write standard output: No space left on device
[exit 0]
# A closed standard output is lost output too; a reader that went away ends
# tarvctl quietly (SIGPIPE, or status 4 when SIGPIPE is ignored).
$ tarvctl --region demo.bin show meps >&-
! tarvctl: cannot write standard output: Bad file descriptor
[exit 4]
$ trap '' PIPE; { sleep 0.3; tarvctl --region demo.bin show meps; echo "status $?" >&2; } | true
! status 4
[exit 0]
# Usage errors (status 2) before anything is read: an unknown subcommand
# with the nearest one, a reversed range, a CCM period code out of 1 to 7,
# a TARV_LAGS the host platform would ignore.
$ for c in shwo 'sanpshot save x' wtach frobnicate; do tarvctl --color never $c; done
! tarvctl: unknown subcommand 'shwo': did you mean 'show'?
! Run 'tarvctl --help' for more information.
! tarvctl: unknown subcommand 'sanpshot': did you mean 'snapshot'?
! Run 'tarvctl --help' for more information.
! tarvctl: unknown subcommand 'wtach': did you mean 'watch'?
! Run 'tarvctl --help' for more information.
! tarvctl: unknown subcommand 'frobnicate': give one of init, demo, show, check, get, set, port, vlan, vfi, lag, slot, snapshot, watch, simulate, metrics
! Run 'tarvctl --help' for more information.
[exit 2]
$ for r in 5-5 0-65535 10-5 4094-1; do tarvctl --region demo.bin port 1/4 --range $r --new-range 5-5 >/dev/null; echo "$r: $?"; done
5-5: 0
0-65535: 0
10-5: 2
4094-1: 2
! tarvctl: reversed --range '10-5': LOW must not be above HIGH
! tarvctl: reversed --range '4094-1': LOW must not be above HIGH
[exit 0]
$ tarvctl --region demo.bin port 1/4 --new-range 9-8
! tarvctl: reversed --new-range '9-8': LOW must not be above HIGH
[exit 2]
$ for n in 0 1 7 8 -1 2x; do tarvctl --region demo.bin slot 1 --ccm-period $n >/dev/null 2>&1; echo "$n: $?"; done; tarvctl --region demo.bin slot 1 --ccm-period 8
0: 2
1: 0
7: 0
8: 2
-1: 2
2x: 2
! tarvctl: --ccm-period: '8' is no CCM period code: expected 1 to 7 (3.33 ms to 10 min)
! Run 'tarvctl --help' for more information.
[exit 2]
$ for v in '' '7=' '5=1/1,4/1;6=1/2' '7=;8=255/255' '5=1/1,1/2,1/3,1/4,1/5,1/6,1/7,1/8,1/9' '5=1/1,1/2,1/3,1/4,1/5,1/6,1/7,1/8,1/9,2/1' '256=1/1' '5=1/256' '5=1/1;' '5' '5=1' '5=1/1,' 'x'; do TARV_LAGS=$v tarvctl --region demo.bin lag 5 >/dev/null 2>&1; echo "'$v': $?"; done
'': 0
'7=': 0
'5=1/1,4/1;6=1/2': 0
'7=;8=255/255': 0
'5=1/1,1/2,1/3,1/4,1/5,1/6,1/7,1/8,1/9': 0
'5=1/1,1/2,1/3,1/4,1/5,1/6,1/7,1/8,1/9,2/1': 2
'256=1/1': 2
'5=1/256': 2
'5=1/1;': 2
'5': 2
'5=1': 2
'5=1/1,': 2
'x': 2
[exit 0]
$ TARV_LAGS='5=1/1;x' tarvctl --region demo.bin lag 5
! tarv-host: ignoring TARV_LAGS="5=1/1;x": expected lag=slot/port[,slot/port...][;lag=...] with numbers 0..255
! tarvctl: invalid TARV_LAGS '5=1/1;x': expected LAG=SLOT/PORT[,SLOT/PORT...][;LAG=...] with numbers 0 to 255, at most 9 members a LAG
[exit 2]
# The prefix: '' is none (the real regions, which no test creates), whatever
# TARV_SHM_PREFIX says; an empty NO_COLOR does not count.
$ tarvctl --prefix '' show
! tarvctl: no OAM data region /kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
$ for n in '' 1; do NO_COLOR=$n TERM=xterm script -qec 'tarvctl --region demo.bin check' /dev/null | grep -c $'\e'; done
1
0
[exit 1]
