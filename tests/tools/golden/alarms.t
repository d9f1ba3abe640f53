# Alarm words by bit number with their texts (a word reported otherwise than
# stored shows both); PM alarms with where their session runs; the text of a
# removed MEP, named by its old MOID; a PM alarm whose session is gone.
$ tarvctl --region faults.bin show alarms
MEP     INDEX  ALARMS                  BITS  TEXT
1/1/2   1      0x0005                  0, 2  RDI received from MEP 12
2/2/4   3      0x0002 (0x0006 stored)  1     CCMs from MEP 201 lost
1/1/10  9      0x0000                  -     Loss of continuity, MEP removed

PM SESSION  INDEX  ALARMS  BITS  ALARM SOURCE
1/1/1 #1    1      0x0000  -     S1,P3,Svid100,Dn,L5,Id101,MAID:Customer/CustomerVPN-100
2/2/3 #2    2      0x0010  4     S4,P2,Svid200,Dn,L3,Id201,MAID:Provider/Backbone-200
1/1/9 #3    3      0x0008  3     -

MEP hardware alarm block: 64 zero bytes
[exit 0]
# The tag kind follows the host platform's port type and switch mode.
$ TARV_PORT_TYPES=4/2=3 tarvctl --region demo.bin show alarms | grep '#2'
2/2/3 #2    2      0x0010  4     S4,P2,Cvid200,Dn,L3,Id201,MAID:Provider/Backbone-200
[exit 0]
$ TARV_SWITCH_MODE=2 tarvctl --region demo.bin show alarms | grep '#'
1/1/1 #1    1      0x0000  -     S1,P3,Cvid100,Dn,L5,Id101,MAID:Customer/CustomerVPN-100
2/2/3 #2    2      0x0010  4     S4,P2,Cvid200,Dn,L3,Id201,MAID:Provider/Backbone-200
[exit 0]
$ tarvctl --region demo.bin show alarms --json | head -n 22
{
  "schema": 1,
  "meps": [
    {
      "index": 1,
      "mep": {
        "md": 1,
        "ma": 1,
        "mep": 2,
        "mepId": 102,
        "port": {
          "lag": 5
        }
      },
      "alarms": 5,
      "stored": 5,
      "bits": [
        0,
        2
      ],
      "text": "RDI received from MEP 12"
    },
[exit 0]
$ tarvctl --region empty.bin show alarms
no MEP alarms

no PM alarms

MEP hardware alarm block: 64 zero bytes
[exit 0]
# The checkpoint region is not part of a saved region.
$ tarvctl --region demo.bin show chkp
! tarvctl: --region: a saved region holds the data region only, not the checkpoint region
[exit 2]
$ tarvctl show chkp
! tarvctl: no OAM checkpoint region /T-kelm-chkp-data: create one with 'tarvctl init', or choose another with --prefix or TARV_SHM_PREFIX
[exit 3]
