# A consistent region and an empty one are clean (status 0).
$ tarvctl --region demo.bin check
no findings in file demo.bin
[exit 0]
$ tarvctl --region empty.bin check
no findings in file empty.bin
[exit 0]
# One line per finding, one fault of each kind (status 1).
$ tarvctl --region faults.bin check
MepMoidArray slot 6: MEP 1/9/7: its MA 1/9 is missing
MepMoidArray slot 7: MEP 9/9/8: its MD 9 is missing
MepDataArray slot 9: record bytes behind an empty key
MepMoidArray slot 10: MEP 1/1/9: belongs in slot 8
MepDataArray slot 10: MEP 1/1/9: its record is all zero bytes
Class571MoidArray slot 1: class 571 object 1/1/1: same key as slot 0
MaNetMoidArray slot 8: MA 9/9: its MD 9 is missing
MaNetMoidArray slot 8: MA 9/9: has MEPs but no MA component
MaNetMoidArray slot 100: MA 1/200: instance 200 has no slot (instances run from 1 to 128)
MaNetDataArray slot 100: MA 1/200: its record is all zero bytes
MipMoidArray slot 5: MIP 1/1/6: key of class 532 in the table of class 575
MipDataArray slot 5: MIP 1/1/6: its record is all zero bytes
ThroughputMoidArray slot 2: throughput test 2/2/9/3: its MEP 2/2/9 is missing
PMSessionMoidArray slot 0: PM session 1/1/2 #0: slot 0 is never used
PMSessionMoidArray slot 4: PM session 1/1/1 #6: session id 6 does not match the slot
BandwidthNotificationMoidArray slot 11: bandwidth notification 1/1/12: its MEP 1/1/12 is missing
16 findings in file faults.bin: duplicateKey 1, emptyRecord 3, missingParent 5, noComponent 1, noSlot 1, recordBehindEmptyKey 1, sessionMismatch 1, slotZero 1, wrongClass 1, wrongSlot 1
[exit 1]
$ tarvctl --region faults.bin check --json | head -n 13
{
  "schema": 1,
  "region": "file faults.bin",
  "total": 16,
  "counts": {
    "duplicateKey": 1,
    "emptyRecord": 3,
    "missingParent": 5,
    "noComponent": 1,
    "noSlot": 1,
    "recordBehindEmptyKey": 1,
    "sessionMismatch": 1,
    "slotZero": 1,
[exit 0]
# Field values the library does not know, one of each kind at its boundary;
# the demo's other values (MD level 7, CCM periods 2 and 4, LAG MEPs) pass.
$ tarvctl --region values.bin check
MdDataArray slot 1: MD 2: level -1 outside 0-7 (level code 0)
MdDataArray slot 2: MD 3: level 8 outside 0-7 (level code 9)
MepDataArray slot 0: MEP 1/1/1: direction 3 is neither Down (1) nor Up (2)
MepDataArray slot 2: MEP 2/2/3: on slot 0, which the chassis does not have
MepDataArray slot 4: MEP 3/3/5: VID 8 is not the VID of its MA's components (7)
MaNetDataArray slot 0: MA 1/1: CCM period 8 is no CCM interval (1 to 7)
MaNetDataArray slot 2: MA 3/3: CCM period 0 is no CCM interval (1 to 7)
MipDataArray slot 0: MIP 1/1/1: on port 0 of slot 1, which the chassis does not have
8 findings in file values.bin: ccmPeriod 2, direction 1, mdLevel 2, place 2, vid 1
[exit 1]
# At most --max-findings lines (0: all); the summary counts every finding.
$ tarvctl --region faults.bin check --max-findings 2
MepMoidArray slot 6: MEP 1/9/7: its MA 1/9 is missing
MepMoidArray slot 7: MEP 9/9/8: its MD 9 is missing
... 14 more not listed (--max-findings)
16 findings in file faults.bin: duplicateKey 1, emptyRecord 3, missingParent 5, noComponent 1, noSlot 1, recordBehindEmptyKey 1, sessionMismatch 1, slotZero 1, wrongClass 1, wrongSlot 1
[exit 1]
$ tarvctl --region faults.bin check --max-findings 0 | wc -l
17
[exit 0]
# Colour only when asked for or on a terminal.
$ tarvctl --color always --region empty.bin check | cat -v
^[[32mno findings in file empty.bin^[[0m
[exit 0]
