# set of what get printed gives the same region, for every class, in both
# forms: the number of bytes that differ afterwards. The library derives
# two things anew: a MEP write empties the bandwidth notification records
# (8 bytes of the demo's), a throughput write stores the enable status 1
# where the controller had enabled a test (1 byte).
$ for c in 519 523 526 528 md mep 571 macomp manet mip 576 579 580 581 throughput history 665 666 673 pm bwn; do printf '%s:' $c; for f in hex json; do tarvctl snapshot load demo.bin >/dev/null; tarvctl get $c --$f >c.$f; tarvctl set $c c.$f >/dev/null 2>&1 || printf ' set failed'; tarvctl snapshot save after.bin >/dev/null; printf ' %s %s' $f $(cmp -l demo.bin after.bin | wc -l); done; echo; done
519: hex 0 json 0
523: hex 0 json 0
526: hex 0 json 0
528: hex 0 json 0
md: hex 0 json 0
mep: hex 8 json 8
571: hex 0 json 0
macomp: hex 0 json 0
manet: hex 0 json 0
mip: hex 0 json 0
576: hex 0 json 0
579: hex 0 json 0
580: hex 0 json 0
581: hex 0 json 0
throughput: hex 1 json 1
history: hex 0 json 0
665: hex 0 json 0
666: hex 0 json 0
673: hex 0 json 0
pm: hex 0 json 0
bwn: hex 0 json 0
[exit 0]
# Standard input; an edited list; an empty list empties the class.
$ tarvctl snapshot load demo.bin >/dev/null; tarvctl get mep | tarvctl set mep -
mep (532): 6 records written to /T-kelm-data
! tarvctl: note: a MEP write keys one empty bandwidth notification per MEP; write class bwn after it
[exit 0]
$ tarvctl get mip --json | sed 's/"byPort": 4/"byPort": 9/' | tarvctl set mip - && tarvctl show mips
mip (575): 2 records written to /T-kelm-data
MIP    MA               PORT   MAC
1/1/1  CustomerVPN-100  1/9    02:54:41:52:57:09
2/2/2  Backbone-200     lag 6  02:54:41:52:56:07
[exit 0]
$ : >none.hex; tarvctl set mip none.hex && tarvctl show mips
mip (575): 0 records written to /T-kelm-data
no MIPs
[exit 0]
# Bad input is refused with status 2 and the region unchanged: a malformed
# line or record (every rule is in the unit tests), an instance that the
# library finds no slot for.
$ tarvctl snapshot load demo.bin >/dev/null
[exit 0]
$ printf '\n1302010000 00\n' >bad.hex; tarvctl set md bad.hex
! tarvctl: 'bad.hex' line 2: the key has 5 bytes, class 531 needs 6
[exit 2]
$ tarvctl get mep --json | sed 's/"02:54:41:52:57:03"/"02-54-41-52-57-03"/' | tarvctl set mep -
! tarvctl: '-' record 1: "abyMacAddress" must be six hex bytes such as 02:54:41:52:57:03
[exit 2]
$ tarvctl get md | sed 's/^130201000000/1302c8000000/' >far.hex; TARV_TRACE_LEVEL=0 tarvctl set md far.hex
! tarvctl: 'far.hex': the library refused the list, the region is unchanged: a record addresses no slot of md (531) (--trace shows the library's error trace naming it)
[exit 2]
$ tarvctl snapshot save after.bin >/dev/null; cmp after.bin demo.bin && echo unchanged
unchanged
[exit 0]
$ tarvctl set md missing.hex
! tarvctl: cannot read 'missing.hex'
[exit 4]
$ tarvctl --region demo.bin set md none.hex
! tarvctl: --region: 'set' writes shared memory and cannot run on a region file
[exit 2]
$ tarvctl --prefix other- set md none.hex
! tarvctl: no OAM data region /other-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
