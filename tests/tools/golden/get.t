# The named fields of every record the library interprets (the first
# record of each class), the rest as hex.
$ tarvctl --region demo.bin get md --json | head -n 17
{
  "schema": 1,
  "class": 531,
  "records": [
    {
      "key": {
        "wClass": 531,
        "lId1": 1
      },
      "record": {
        "opaque0": "00000000",
        "acMdName": "Customer",
        "opaque24": "000000000000000000000000000000000000000000000000",
        "eMdLevel": 6,
        "opaque52": "00000000000000000000000000"
      }
    },
[exit 0]
$ tarvctl --region demo.bin get manet --json | head -n 18
{
  "schema": 1,
  "class": 574,
  "records": [
    {
      "key": {
        "wClass": 574,
        "lId1": 1,
        "lId2": 1
      },
      "record": {
        "opaque0": "01000000",
        "acMaName": "CustomerVPN-100",
        "opaque28": "00000000000000000000000000000000000000000000",
        "dwCcmPeriod": 4,
        "opaque54": "000000"
      }
    },
[exit 0]
$ tarvctl --region demo.bin get macomp --json | head -n 18
{
  "schema": 1,
  "class": 573,
  "records": [
    {
      "key": {
        "wClass": 573,
        "lId1": 1,
        "lId2": 1,
        "lId3": 1
      },
      "record": {
        "opaque0": "00000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000",
        "eTagging": 1,
        "wVid": 100,
        "opaque91": "00000000000000000000"
      }
    },
[exit 0]
$ tarvctl --region demo.bin get mep --json | head -n 27
{
  "schema": 1,
  "class": 532,
  "records": [
    {
      "key": {
        "wClass": 532,
        "lId1": 1,
        "lId2": 1,
        "lId3": 1
      },
      "record": {
        "wMepId": 101,
        "eDirection": 1,
        "wVid": 100,
        "opaque8": "0000",
        "abyMacAddress": "02:54:41:52:57:03",
        "opaque16": "0000000000",
        "bAlarmBit2Enabled": 1,
        "lStored1": 1,
        "wAlarmBits": 0,
        "lStored2": 1,
        "opaque32": "0000000000000000000000000000",
        "bySlot": 1,
        "byPort": 3
      }
    },
[exit 0]
$ tarvctl --region demo.bin get mip --json | head -n 18
{
  "schema": 1,
  "class": 575,
  "records": [
    {
      "key": {
        "wClass": 575,
        "lId1": 1,
        "lId2": 1,
        "lId3": 1
      },
      "record": {
        "abyMacAddress": "02:54:41:52:57:04",
        "opaque6": "000000000000",
        "bySlot": 1,
        "byPort": 4
      }
    },
[exit 0]
$ tarvctl --region demo.bin get throughput --json | head -n 22
{
  "schema": 1,
  "class": 638,
  "records": [
    {
      "key": {
        "wClass": 638,
        "lId1": 1,
        "lId2": 1,
        "lId3": 1,
        "lId4": 1
      },
      "record": {
        "opaque0": "000000000000000000",
        "eEnableStatus": 2,
        "opaque13": "00000000000000000000",
        "lOperandA": 2,
        "wOperandB": 125,
        "wOperandC": 4,
        "wDerived": 4
      }
    },
[exit 0]
$ tarvctl --region demo.bin get history --json | head -n 13
{
  "schema": 1,
  "class": 652,
  "records": [
    {
      "key": {
        "lHistoryId": 1
      },
      "record": {
        "opaque0": "0100000001000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000",
        "acResult": "1/1/1 test 1: 96.40 Mbit/s, frame loss 0.00 %"
      }
    },
[exit 0]
# Opaque records, PM keys, singletons and a class without storage.
$ tarvctl --region demo.bin get 665 --json
{
  "schema": 1,
  "class": 665,
  "records": [
    {
      "key": {
        "wClass": 665,
        "lId1": 1,
        "lId2": 1,
        "lId3": 1,
        "bySessionId": 1
      },
      "record": {
        "opaque0": "070000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
      }
    }
  ]
}
[exit 0]
$ tarvctl --region demo.bin get 519 --json
{
  "schema": 1,
  "class": 519,
  "records": [
    {
      "record": {
        "opaque0": "01000000050000002a0000000000"
      }
    }
  ]
}
[exit 0]
$ tarvctl --region demo.bin get 580 --json
{
  "schema": 1,
  "class": 580,
  "records": []
}
[exit 0]
# Hex: one line per object, key and record; a singleton's record alone.
$ tarvctl --region demo.bin get mep
1402010000000100000001000000 650001000000640000000254415257030000000000010100000000000100000000000000000000000000000000000103
1402010000000100000002000000 660002000000640000000254415256060000000000010100000005000100000000000000000000000000000000000205
1402020000000200000003000000 c90001000000c8000000025441525a020000000000010100000000000100000000000000000000000000000000000402
1402020000000200000004000000 ca0002000000c80000000254415259010000000000000100000006000100000000000000000000000000000000000307
1402030000000300000005000000 2d0101000000070000000254415257040000000000010100000000000100000000000000000000000000000000000104
1402020000000200000006000000 cb0001000000c80000000254415256070000000000010100000000000100000000000000000000000000000000000206
[exit 0]
$ tarvctl --region demo.bin get 581 --hex
450201000000 deadbeef000000000000000000000000
450200100000 00000000000000000000000000000001
[exit 0]
$ tarvctl --region demo.bin get pm
a20201000000010000000100000001 020000000a0100000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000
a20202000000020000000300000002 020000000a0200000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000
[exit 0]
$ tarvctl --region demo.bin get 673
0300000001
[exit 0]
$ tarvctl --region demo.bin get 526
[exit 0]
$ tarvctl --region empty.bin get history
[exit 0]
