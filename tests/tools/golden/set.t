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
# Bad input is refused with status 2 and the region unchanged.
$ tarvctl snapshot load demo.bin >/dev/null
[exit 0]
$ for line in '0102' 'zz 00' '1302010000 00' '130201000000 0000' '000000000000 0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000'; do printf '%s\n' "$line" >bad.hex; tarvctl set md bad.hex 2>&1; done
tarvctl: 'bad.hex' line 1: expected the key's hex digits, a blank, the record's hex digits
tarvctl: 'bad.hex' line 1: the key is not an even number of hex digits
tarvctl: 'bad.hex' line 1: the key has 5 bytes, class 531 needs 6
tarvctl: 'bad.hex' line 1: the record has 2 bytes, class 531 needs 65
tarvctl: 'bad.hex' line 1: an all-zero key would end the list here
[exit 2]
$ tarvctl get md | sed 's/^130201000000/1302c8000000/' >far.hex; tarvctl set md far.hex
! tarv L1 Tarv__SetConfig code=3 data/swch/api-tarv:98: Class 531 record 1: instance 200 addresses no slot of 1..128
! tarvctl: 'far.hex': the library refused the list, the region is unchanged: a record addresses no slot of md (531) (the trace above names it)
[exit 2]
$ tarvctl get md --json >md.json; for edit in 's/"eMdLevel"/"eMdLevl"/' 's/"opaque52"/"opaque51"/' 's/"opaque52": "00/"opaque52": "/' 's/"wClass": 531,//' 's/"Customer"/"Kunde\\u0100"/' 's/"eMdLevel": 6/"eMdLevel": 4294967296/' 's/"class": 531/"class": 574/' 's/"lId1": 1$/"lId1": -1/' 's/^{/[/'; do sed "$edit" md.json >bad.json; tarvctl set md bad.json 2>&1; done
tarvctl: 'bad.json' record 1: unknown record member "eMdLevl" for class 531
tarvctl: 'bad.json' record 1: "opaque51" gives byte 51 a second time
tarvctl: 'bad.json' record 1: the record does not give byte 64 (of 65)
tarvctl: 'bad.json' record 1: the key lacks "wClass"
tarvctl: 'bad.json' record 1: "acMdName" holds a character above U+00FF
tarvctl: 'bad.json' record 1: "eMdLevel" must be a whole number from 0 to 4294967295, not 4294967296
tarvctl: 'bad.json': holds class 574, not 531
tarvctl: 'bad.json' record 1: "lId1" must be a whole number from 0 to 4294967295, not -1
tarvctl: 'bad.json' is not valid JSON: parse error at line 2, column 10: syntax error while parsing array - unexpected ':'; expected ']'
[exit 2]
$ tarvctl get mep --json | sed 's/"02:54:41:52:57:03"/"02-54-41-52-57-03"/' | tarvctl set mep -
! tarvctl: '-' record 1: "abyMacAddress" must be six hex bytes such as 02:54:41:52:57:03
[exit 2]
$ tarvctl get 519 >two.hex; tarvctl get 519 >>two.hex; tarvctl set 519 two.hex
! tarvctl: 'two.hex' holds 2 records; class 519 takes exactly one
[exit 2]
$ echo 00 >one.hex; tarvctl set 580 one.hex
! tarvctl: 'one.hex' line 1: class 580 stores nothing
[exit 2]
$ for i in $(seq 1 33); do printf '3b02%08x0000000000000000 0000000000000000\n' $((i << 24)); done >many.hex; tarvctl set 571 many.hex
! tarvctl: 'many.hex' line 33: class 571 holds at most 32 records
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
