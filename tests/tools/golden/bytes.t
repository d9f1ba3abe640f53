# Names are bytes of the region. Text views escape control bytes, bytes from
# 0x7f up and the backslash; JSON keeps valid UTF-8 as it is and gives a name
# that is not UTF-8 with U+FFFD for each bad byte, and all its bytes in hex.
$ tarvctl --region values.bin show | head -n 3
MD 1 "Caf\xe9", level 5
  MA 1/1 "CustomerVPN-100": C-VLAN 100, CCM period 8
    MEP 1/1/1  id 101  1/3    VLAN 100  direction 3  02:54:41:52:57:03
[exit 0]
$ tarvctl --region values.bin show mds --json | python3 -c 'import json,sys; print(json.dumps(json.load(sys.stdin)["mds"][0]))'
{"md": 1, "name": "Caf\ufffd", "nameHex": "436166e9", "level": 5, "mas": 1, "meps": 2}
[exit 0]
$ tarvctl --region values.bin show mas --json | python3 -c 'import json,sys; print(json.dumps(json.load(sys.stdin)["mas"][1]))'
{"md": 2, "ma": 2, "name": "K\u00f6ln\u0001\\200", "ccmPeriod": 2, "components": [{"component": 2, "tagging": "S-VLAN", "vid": 200}], "meps": 3, "mips": 1}
[exit 0]
$ tarvctl --region values.bin show alarms | grep '#1'
1/1/1 #1    1      0x0000  -     S1,P3,Svid100,Up,L5,Id101,MAID:Caf\xe9/CustomerVPN-100
[exit 0]
# A region of random bytes: every view and query, as text and as JSON, ends
# normally; the text holds printable ASCII only, the JSON is valid.
$ n=0; for cmd in 'show tree' 'show mds' 'show mas' 'show meps' 'show mips' 'show throughput' 'show pm' 'show bwn' 'show alarms' 'port 1/1' 'port 2/5' 'vlan 100' 'vfi 7' 'lag 5' 'slot 1 --ccm-period 2' 'get md' 'get mep' check; do n=$((n+1)); tarvctl --region random.bin $cmd >out; s=$?; [ $s -le 1 ] || echo "$cmd: exit $s"; LC_ALL=C grep -q '[^ -~]' out && echo "$cmd: raw bytes"; tarvctl --region random.bin $cmd --json >$n.json; s=$?; [ $s -le 1 ] || echo "$cmd --json: exit $s"; done; python3 -c 'import json,sys; [json.load(open(f, encoding="utf-8")) for f in sys.argv[1:]]; print(len(sys.argv) - 1, "valid")' *.json
18 valid
[exit 0]
# check lists the first findings and counts them all by kind.
$ tarvctl --region random.bin check --max-findings 3
Class526MoidArray slot 0: class 526 object 3570001284/343450107/1002047622/3479354304: key of class 43745 in the table of class 526
Class526MoidArray slot 0: class 526 object 3570001284/343450107/1002047622/3479354304: instance 48064 has no slot (instances run from 1 to 32)
Class526MoidArray slot 1: class 526 object 1424564832/4117423448/2274639523/1301452418: key of class 59805 in the table of class 526
... 10361 more not listed (--max-findings)
10364 findings in file random.bin: ccmPeriod 128, direction 32, mdLevel 128, missingParent 352, noSlot 4556, place 1, sessionMismatch 24, slotZero 3, wrongClass 4864, wrongSlot 276
[exit 1]
$ tarvctl --region random.bin check --json | python3 -c 'import json,sys; d=json.load(sys.stdin); print(d["schema"], d["total"] == sum(d["counts"].values()), len(d["findings"]))'
1 True 20
[exit 0]
