# set of what get printed gives the same region, for every class, in both
# forms: the number of bytes that differ from demo.bin afterwards (a class
# that changed something shows in every count after it). A MEP write carries the
# bandwidth notifications over; a throughput write over a running test is
# refused (the library would store eEnableStatus 1 and stop it).
$ tarvctl snapshot load demo.bin >/dev/null; for c in 519 523 526 528 md mep 571 macomp manet mip 576 579 580 581 throughput history 665 666 673 pm bwn; do printf '%s:' $c; for f in hex json; do tarvctl get $c --$f >c.$f; tarvctl set $c c.$f --backup b.snap >/dev/null 2>&1 || printf ' refused %s' $?; tarvctl snapshot save after.bin >/dev/null; printf ' %s %s' $f $(cmp -l demo.bin after.bin | wc -l); done; echo; done
519: hex 0 json 0
523: hex 0 json 0
526: hex 0 json 0
528: hex 0 json 0
md: hex 0 json 0
mep: hex 0 json 0
571: hex 0 json 0
macomp: hex 0 json 0
manet: hex 0 json 0
mip: hex 0 json 0
576: hex 0 json 0
579: hex 0 json 0
580: hex 0 json 0
581: hex 0 json 0
throughput: refused 5 hex 0 refused 5 json 0
history: hex 0 json 0
665: hex 0 json 0
666: hex 0 json 0
673: hex 0 json 0
pm: hex 0 json 0
bwn: hex 0 json 0
[exit 0]
# Standard input; an edited list; an empty list needs --allow-empty. Every
# write leaves a backup and prints the command that undoes it.
$ tarvctl snapshot load --force demo.bin >/dev/null; tarvctl get mep | tarvctl set mep -
mep (532): 6 records written to /T-kelm-data
bandwidth notifications: 6 carried over
backup: backups/T-kelm-data-20261125T013500.123Z-2.snap
undo: tarvctl snapshot load --force backups/T-kelm-data-20261125T013500.123Z-2.snap
[exit 0]
$ tarvctl get mip --json | sed 's/"byPort": 4/"byPort": 9/' | tarvctl set mip - --backup mip.snap && tarvctl show mips
mip (575): 2 records written to /T-kelm-data
backup: mip.snap
undo: tarvctl snapshot load --force mip.snap
MIP    MA               PORT   MAC
1/1/1  CustomerVPN-100  1/9    02:54:41:52:57:09
2/2/2  Backbone-200     lag 6  02:54:41:52:56:07
[exit 0]
$ printf ' \n\n' >none.hex; tarvctl set mip none.hex; tarvctl set mip none.hex --allow-empty --backup none.snap >/dev/null && tarvctl show mips
no MIPs
! tarvctl: 'none.hex' holds no records: the write would remove all 2 mip (575) objects of the region; give --allow-empty to empty the class
[exit 0]
$ undo=$(tarvctl set bwn none.hex --allow-empty | sed -n 's/^undo: //p'); $undo >/dev/null; tarvctl snapshot load --force mip.snap >/dev/null; tarvctl snapshot save after.bin >/dev/null; cmp after.bin demo.bin && echo restored
restored
[exit 0]
# --dry-run runs the write on a private copy and names what would change.
$ tarvctl get mep --json | sed 's/"wVid": 100,/"wVid": 101,/; s/"bySlot": 1,/"bySlot": 5,/' | tarvctl set mep - --dry-run; ls /dev/shm | grep dry-run | wc -l
* MEP 1/1/1: wVid 100 -> 101, abyMacAddress 02:54:41:52:57:03 -> 02:54:41:52:5b:03, bySlot 1 -> 5
* MEP 1/1/2: wVid 100 -> 101
* MEP 3/3/5: abyMacAddress 02:54:41:52:57:04 -> 02:54:41:52:5b:04, bySlot 1 -> 5
dry run: 3 changes from mep (532); nothing written
0
[exit 0]
$ tarvctl get throughput | tarvctl set throughput - --dry-run --stop-running-tests
* throughput test 1/1/1/1: eEnableStatus 2 -> 1
dry run: 1 change from throughput (638); nothing written
[exit 0]
# Refused with the region byte for byte as it was: a malformed line or
# record (every rule is in the unit tests), keys of another class, a key or
# a slot given twice, more records than slots, an id for no slot, a write
# that would stop a running test.
$ printf '\n1302010000 00\n' >bad.hex; tarvctl set md bad.hex
! tarvctl: 'bad.hex' line 2: the key has 5 bytes, class 531 needs 6
[exit 2]
$ tarvctl get mep --json | sed 's/"02:54:41:52:57:03"/"02-54-41-52-57-03"/' | tarvctl set mep -
! tarvctl: '-' record 1: "abyMacAddress" must be six hex bytes such as 02:54:41:52:57:03
[exit 2]
$ tarvctl get mep --json | sed 's/"wClass": 532/"wClass": 531/' | tarvctl set md -
! tarvctl: '-': holds class 532, not 531
[exit 2]
$ tarvctl get md | sed 's/^1302/1402/' | tarvctl set md -
! tarvctl: '-' line 1: the key is of class 532, not 531; the region is unchanged
[exit 2]
$ tarvctl get md >twice.hex; tarvctl get md | sed -n 2p >>twice.hex; tarvctl set md twice.hex
! tarvctl: 'twice.hex' line 4: the same key as line 2; the region is unchanged
[exit 2]
$ tarvctl get mep | sed 's/^1402020000000200000003000000/1402020000000200000001000000/' | tarvctl set mep -
! tarvctl: '-' line 3: MEP 2/2/1 takes slot 0 as line 1 does: the library would keep only the later; the region is unchanged
[exit 2]
$ for i in $(seq 1 33); do printf '14020100000001000000%02x000000 %096d\n' $i 0; done | tarvctl set mep -
! tarvctl: '-' line 33: class 532 holds at most 32 records; the region is unchanged
[exit 2]
$ tarvctl get md | sed 's/^130201000000/1302c8000000/' | tarvctl set md -
! tarvctl: '-' line 1: MD 200 addresses no slot of the 128 the class has; the region is unchanged
[exit 2]
$ tarvctl get throughput | tarvctl set throughput -
! tarvctl: '-' line 1: throughput test 1/1/1/1 has eEnableStatus 2 in the region and a write stores 1, which stops the running test; give --stop-running-tests to write anyway; the region is unchanged
[exit 5]
$ tarvctl snapshot save after.bin >/dev/null; cmp after.bin demo.bin && echo unchanged; ls backups | wc -l
unchanged
5
[exit 0]
$ tarvctl set md missing.hex
! tarvctl: cannot read 'missing.hex'
[exit 4]
$ tarvctl --region demo.bin set md none.hex
! tarvctl: --region: 'set' writes shared memory and cannot run on a region file
[exit 2]
$ tarvctl --prefix other- set mip none.hex --allow-empty
! tarvctl: no OAM data region /other-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
