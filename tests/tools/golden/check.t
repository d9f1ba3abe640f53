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
Class571MoidArray slot 1: class 571 object 1/1/1: same key as slot 0
MaNetMoidArray slot 8: MA 9/9: its MD 9 is missing
MaNetMoidArray slot 8: MA 9/9: has MEPs but no MA component
MaNetMoidArray slot 100: MA 1/200: instance 200 has no slot (instances run from 1 to 128)
MipMoidArray slot 5: MIP 1/1/6: key of class 532 in the table of class 575
ThroughputMoidArray slot 2: throughput test 2/2/9/3: its MEP 2/2/9 is missing
PMSessionMoidArray slot 0: PM session 1/1/2 #0: slot 0 is never used
PMSessionMoidArray slot 4: PM session 1/1/1 #6: session id 6 does not match the slot
BandwidthNotificationMoidArray slot 11: bandwidth notification 1/1/12: its MEP 1/1/12 is missing
13 findings in file faults.bin
[exit 1]
$ tarvctl --region faults.bin check --json | head -n 13
{
  "region": "file faults.bin",
  "findings": [
    {
      "table": "MepMoidArray",
      "slot": 6,
      "problem": "MEP 1/9/7: its MA 1/9 is missing"
    },
    {
      "table": "MepMoidArray",
      "slot": 7,
      "problem": "MEP 9/9/8: its MD 9 is missing"
    },
[exit 0]
# Colour only when asked for or on a terminal.
$ tarvctl --color always --region empty.bin check | cat -v
^[[32mno findings in file empty.bin^[[0m
[exit 0]
