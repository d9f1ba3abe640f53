# Every usage question about a port with a VFI-based MEP and a MIP of a
# C-VLAN MA; status 0 since OAM uses the port.
$ tarvctl --region demo.bin port 1/4
Port 1/4: MEP 3/3/5 (id 301, Down, VFI 7), MIP 1/1/1 (MA 1/1)

QUESTION                                 ANSWER  CALL
a MEP or MIP on the port                 yes     Tarv__IsOamEnabledOnPort
the same, entries told by their class    yes     Tarv__IsOamEnabledOnPortOpt
the same, a MEP looked for first         yes     Tarv__IsMPEnabledOnPort
Down MEPs on the port, asked MEP by MEP  3/3/5   Tarv__IsOamEnabledForMepOnPort
a MEP on a VLAN of 1-4094                no      Tarv__FindMepOnPort
a MIP on a VLAN of 1-4094                yes     Tarv__FindMipOnPort

QUESTION FOR EACH VLAN OR VFI ID              7    100    CALL
a MEP on the port with it as S-VLAN           no   no     Tarv__IsOamEnabledOnPortSVlan
a MIP on the port in an MA with it as S-VLAN  no   no     Tarv__IsOamEnabledOnMIPPortSVlan
a MEP or MIP on the port with it as C-VLAN    no   yes    Tarv__IsOamEnabledOnCVlanPort
a MEP on the port with it as VFI              yes  no     Tarv__IsOamEnabledOnPortVfi
tagging mode 0 conflicts with a MEP           no   no     Tarv__CheckTagging
a VID translation of it cuts off OAM          no   no     Tarv__IsVidTranslationUsedByOam
registering it as C-VID cuts off OAM          no   yes    Tarv__IsCVidRegistrationsUsedByOam
the Down MEPs with it as C-VLAN               -    -      Tarv__FindDownMepFromSomeWhereOnCVlanPort
a MIP with it as C-VLAN                       -    1/1/1  Tarv__DoesMipExistOnCVlanPort
[exit 0]
# A LAG is slot 2; more ids, and the range finders narrowing a range.
$ tarvctl --region demo.bin port 2/6 --vid 100 --vid 4095 --range 100-300 --new-range 150-250 | sed -n '1p;/1-4094\|100-300/p;/FOR EACH/,$p'
Port 2/6 (LAG 6): MEP 2/2/6 (id 203, Down, VLAN 200), MIP 2/2/2 (MA 2/2)
a MEP on a VLAN of 100-300                  yes     Tarv__FindMepOnPort
a MIP on a VLAN of 100-300                  yes     Tarv__FindMipOnPort
a MEP on a VLAN of 100-300 outside 150-250  no      Tarv__FindAllMepOnPort
a MIP on a VLAN of 100-300 outside 150-250  no      Tarv__FindAllMipOnPort
QUESTION FOR EACH VLAN OR VFI ID              100  200  4095  CALL
a MEP on the port with it as S-VLAN           no   no   no    Tarv__IsOamEnabledOnPortSVlan
a MIP on the port in an MA with it as S-VLAN  no   yes  no    Tarv__IsOamEnabledOnMIPPortSVlan
a MEP or MIP on the port with it as C-VLAN    no   no   no    Tarv__IsOamEnabledOnCVlanPort
a MEP on the port with it as VFI              no   no   no    Tarv__IsOamEnabledOnPortVfi
tagging mode 0 conflicts with a MEP           no   yes  no    Tarv__CheckTagging
a VID translation of it cuts off OAM          no   yes  no    Tarv__IsVidTranslationUsedByOam
registering it as C-VID cuts off OAM          no   no   no    Tarv__IsCVidRegistrationsUsedByOam
the Down MEPs with it as C-VLAN               -    -    -     Tarv__FindDownMepFromSomeWhereOnCVlanPort
a MIP with it as C-VLAN                       -    -    -     Tarv__DoesMipExistOnCVlanPort
[exit 0]
$ tarvctl --region demo.bin port 3/7 --json | head -n 24
{
  "schema": 1,
  "port": {
    "slot": 3,
    "port": 7
  },
  "points": {
    "meps": [
      {
        "md": 2,
        "ma": 2,
        "mep": 4,
        "mepId": 202,
        "port": {
          "slot": 3,
          "port": 7
        },
        "direction": "Up",
        "tagging": "S-VLAN",
        "vid": 200
      }
    ],
    "mips": []
  },
[exit 0]
# A port without OAM answers no: status 1.
$ tarvctl --region demo.bin port 9/9
Port 9/9: no MEP or MIP in the region

QUESTION                                 ANSWER  CALL
a MEP or MIP on the port                 no      Tarv__IsOamEnabledOnPort
the same, entries told by their class    no      Tarv__IsOamEnabledOnPortOpt
the same, a MEP looked for first         no      Tarv__IsMPEnabledOnPort
Down MEPs on the port, asked MEP by MEP  -       Tarv__IsOamEnabledForMepOnPort
a MEP on a VLAN of 1-4094                no      Tarv__FindMepOnPort
a MIP on a VLAN of 1-4094                no      Tarv__FindMipOnPort

No VLAN or VFI id to ask about: no MEP or MIP on the port names one (ask with --vid).
[exit 1]
# Switch-wide VLANs and VFIs: 0 when used, 1 when not.
$ for q in "vlan 200" "vlan 4094" "vfi 7"; do tarvctl --region demo.bin $q; echo "[$?]"; done
VLAN 200: MA components 2/2/2 (S-VLAN of MA 2/2 "Backbone-200")

QUESTION                          ANSWER  CALL
an MA component has it as S-VLAN  yes     Tarv__IsOamEnabledOnSVlan
an MA component has it as C-VLAN  no      Tarv__IsOamEnabledOnCVlan
[0]
VLAN 4094: MA components none

QUESTION                          ANSWER  CALL
an MA component has it as S-VLAN  no      Tarv__IsOamEnabledOnSVlan
an MA component has it as C-VLAN  no      Tarv__IsOamEnabledOnCVlan
[1]
VFI 7: MA components 3/3/3 (VFI of MA 3/3 "Metro-VFI-7")

QUESTION                       ANSWER  CALL
an MA component has it as VFI  yes     Tarv__IsOamEnabledOnVfi
[0]
[exit 0]
$ tarvctl --region demo.bin vlan 200 --json
{
  "schema": 1,
  "vid": 200,
  "components": [
    {
      "md": 2,
      "ma": 2,
      "component": 2,
      "tagging": "S-VLAN",
      "maName": "Backbone-200"
    }
  ],
  "answers": {
    "Tarv__IsOamEnabledOnSVlan": true,
    "Tarv__IsOamEnabledOnCVlan": false
  }
}
[exit 0]
# LAGs: the members come from the host platform, not from the region.
$ TARV_LAGS='6=1/2,1/5' tarvctl --region demo.bin lag 6
LAG 6: MEP 2/2/6 (id 203, Down, VLAN 200), MIP 2/2/2 (MA 2/2)
members, from the host platform (TARV_LAGS): 1/2, 1/5

QUESTION                 ANSWER             CALL
a MEP or MIP on the LAG  yes, CCM period 2  Tarv__IsOamEnabledOnLagOpt

The port questions for the LAG: tarvctl port 2/6
[exit 0]
$ tarvctl --region demo.bin lag 7 --json
{
  "schema": 1,
  "lag": 7,
  "points": {
    "meps": [],
    "mips": []
  },
  "answers": {
    "Tarv__IsOamEnabledOnLagOpt": false
  },
  "ccmPeriod": null,
  "members": []
}
[exit 1]
# Slot resources, units counted per MEP, LAG MEPs once per member port on
# the slot.
$ TARV_LAGS='5=1/1,4/1;6=1/2,1/5' tarvctl --region demo.bin slot 1 --ccm-period 2
Slot 1: room for a MEP of CCM period 2: yes (Tarv__MepResourcesAvailableOnSlot)

MEP    PORT   CCM PERIOD  PORTS ON THE SLOT  UNITS
1/1/1  1/3    4           1                  1
1/1/2  lag 5  4           1                  1
3/3/5  1/4    4           1                  1
2/2/6  lag 6  2           2                  6

9 units in use, 3 for the new MEP: 12 of at most 1000
[exit 0]
$ tarvctl --region empty.bin slot 4 --ccm-period 1
Slot 4: room for a MEP of CCM period 1: yes (Tarv__MepResourcesAvailableOnSlot)

no MEP uses the slot

0 units in use, 1 for the new MEP: 1 of at most 1000
[exit 0]
# Malformed ports, ids and ranges: status 2.
$ for q in "port 1-4" "port 1/4 --vid 0" "vlan 4095" "vfi 65536" "lag 256" "slot x --ccm-period 1"; do tarvctl --region demo.bin $q 2>&1; echo "[$?]"; done
tarvctl: malformed SLOT/PORT '1-4': expected two numbers from 0 to 255, as in 1/4
[2]
tarvctl: malformed --vid '0': expected a number from 1 to 65535
[2]
tarvctl: malformed VID '4095': expected a number from 1 to 4094
[2]
tarvctl: malformed VFI '65536': expected a number from 1 to 65535
[2]
tarvctl: malformed LAG id '256': expected a number from 0 to 255
[2]
tarvctl: malformed SLOT 'x': expected a number from 0 to 255
[2]
[exit 0]
$ tarvctl --region demo.bin slot 1
! tarvctl: --ccm-period is required
! Run 'tarvctl --help' for more information.
[exit 2]
