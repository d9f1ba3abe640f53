# demo creates the regions when they are missing, writes the configuration
# and the controller's state, and prints the overview.
$ tarvctl demo
wrote a demo configuration to /T-kelm-data:

MD 1 "Customer", level 5
  MA 1/1 "CustomerVPN-100": C-VLAN 100, CCM period 4
    MEP 1/1/1  id 101  1/3    VLAN 100  Down  02:54:41:52:57:03
    MEP 1/1/2  id 102  lag 5  VLAN 100  Up    02:54:41:52:56:06
MD 2 "Provider", level 3
  MA 2/2 "Backbone-200": S-VLAN 200, CCM period 2
    MEP 2/2/3  id 201  4/2    VLAN 200  Down  02:54:41:52:5a:02
    MEP 2/2/4  id 202  3/7    VLAN 200  Up    02:54:41:52:59:01
    MEP 2/2/6  id 203  lag 6  VLAN 200  Down  02:54:41:52:56:07
MD 3 "Operator", level 7
  MA 3/3 "Metro-VFI-7": VFI 7, CCM period 4
    MEP 3/3/5  id 301  1/4    VFI 7     Down  02:54:41:52:57:04

3 MDs, 3 MAs, 6 MEPs, 2 MIPs, 2 throughput tests, 2 PM sessions, 6 bandwidth notifications

LAG members belong to the host platform, not to the region: 'tarvctl lag' and 'tarvctl slot'
take them from TARV_LAGS, e.g. export TARV_LAGS='5=1/1,4/1;6=1/2,1/5'.
[exit 0]
$ tarvctl snapshot save mine.bin >/dev/null && cmp mine.bin demo.bin && echo "the region the transcripts run on"
the region the transcripts run on
[exit 0]
$ tarvctl show chkp
/T-kelm-chkp-data: checkpoint record, 280 bytes, section 16 value 1
0000  01 00 00 00 06 00 02 00 00 00 00 00 00 00 00 00  ................
0010  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................
*
0110  00 00 00 00 00 00 00 00                          ........
0118
[exit 0]
# A region that is not empty is left alone (status 5), unless --force.
$ tarvctl snapshot load --force faults.bin >/dev/null; tarvctl demo
! tarvctl: /T-kelm-data is not empty (3 MDs, 5 MAs, 9 MEPs, 3 MIPs, 3 throughput tests, 2 PM sessions, 9 bandwidth notifications); it may be a controller's: 'tarvctl demo --force' replaces it
[exit 5]
$ tarvctl demo --force | tail -n 1; tarvctl snapshot save again.bin >/dev/null; cmp again.bin demo.bin && echo identical
take them from TARV_LAGS, e.g. export TARV_LAGS='5=1/1,4/1;6=1/2,1/5'.
identical
[exit 0]
$ tarvctl --region demo.bin demo
! tarvctl: --region: 'demo' writes shared memory and cannot run on a region file
[exit 2]
$ tarvctl show chkp --json | cut -c 1-60
{
  "schema": 1,
  "region": "/T-kelm-chkp-data",
  "sectionValue": 1,
  "record": "01000000060002000000000000000000000000000000000
}
[exit 0]
