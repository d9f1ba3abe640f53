# The library's trace lines are for whoever debugs it: none on stderr from
# any subcommand, even where the library traces errors (faults.bin has MEPs
# without their MA component), unless --trace or TARV_TRACE_LEVEL asks.
$ for c in show 'show alarms' check 'get mep' 'port 1/3' 'vlan 100' 'vfi 7' 'lag 5' 'slot 1 --ccm-period 2' 'watch --count 1' 'snapshot save copy.bin'; do tarvctl --region faults.bin $c 2>&1 >/dev/null; done | grep -c '^tarv ' || true
0
[exit 0]
$ for c in 'port 1/3' 'slot 1 --ccm-period 2' ; do tarvctl --region faults.bin $c --trace 2>&1 >/dev/null | grep '^tarv ' | sort -u; done | sed 's/api-tarv:[0-9]*:/api-tarv:LINE:/'
tarv L1 Tarv__IsEndpointCTagged code=0 data/swch/api-tarv:LINE: MEP exists without it's parent MAComp
tarv L1 Tarv__IsEndpointSTagged code=0 data/swch/api-tarv:LINE: MEP exists without it's parent MAComp
tarv L1 Tarv__IsEndpointVfi code=0 data/swch/api-tarv:LINE: MEP exists without it's parent MAComp
tarv L1 Tarv__ReadMANet code=3 data/swch/api-tarv:LINE: Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: Class 574 Md 1 MaNet 9
[exit 0]
$ (tarvctl --region faults.bin port 1/3 2>&1 >/dev/null | sort -u; TARV_TRACE_LEVEL=1 tarvctl --region faults.bin port 1/3 2>&1 >/dev/null | sort -u) | sed 's/api-tarv:[0-9]*:/api-tarv:LINE:/'
tarv L1 Tarv__IsEndpointCTagged code=0 data/swch/api-tarv:LINE: MEP exists without it's parent MAComp
tarv L1 Tarv__IsEndpointSTagged code=0 data/swch/api-tarv:LINE: MEP exists without it's parent MAComp
tarv L1 Tarv__IsEndpointVfi code=0 data/swch/api-tarv:LINE: MEP exists without it's parent MAComp
[exit 0]
$ tarvctl demo >/dev/null; tarvctl get md | sed 's/^130201000000/1302c8000000/' >far.hex; tarvctl set md far.hex; tarvctl --trace set md far.hex 2>&1 | grep -c '^tarv L1'
0
! tarvctl: 'far.hex' line 1: MD 200 addresses no slot of the 128 the class has; the region is unchanged
[exit 1]
# A region that cannot be mapped says why, before the host platform tries.
$ d=/dev/shm/${TARV_SHM_PREFIX}kelm-data; rm $d; mkdir $d; tarvctl show; tarvctl demo; rmdir $d
! tarvctl: cannot map /T-kelm-data: it is not a regular file
! tarvctl: cannot map /T-kelm-data for writing: Invalid argument
[exit 0]
$ truncate -s 100 /dev/shm/${TARV_SHM_PREFIX}kelm-data; tarvctl show; tarvctl demo
! tarvctl: cannot map /T-kelm-data: it has 100 bytes, fewer than the region's 453075
! tarvctl: cannot map /T-kelm-data for writing: it has 100 bytes, fewer than the region's 453075
[exit 4]
