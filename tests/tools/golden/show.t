# Every view of a realistic region, read through the library.
$ tarvctl --region demo.bin show
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
[exit 0]
$ tarvctl --region demo.bin show mds
MD  NAME      LEVEL  MAS  MEPS
1   Customer  5      1    2
2   Provider  3      1    3
3   Operator  7      1    1
[exit 0]
$ tarvctl --region demo.bin show mas
MA   NAME             TAGGING     CCM PERIOD  MEPS  MIPS
1/1  CustomerVPN-100  C-VLAN 100  4           2     1
2/2  Backbone-200     S-VLAN 200  2           3     1
3/3  Metro-VFI-7      VFI 7       4           1     0
[exit 0]
$ tarvctl --region demo.bin show meps
MEP    ID   MA               PORT   VID  TAGGING  DIR   MAC
1/1/1  101  CustomerVPN-100  1/3    100  C-VLAN   Down  02:54:41:52:57:03
1/1/2  102  CustomerVPN-100  lag 5  100  C-VLAN   Up    02:54:41:52:56:06
2/2/3  201  Backbone-200     4/2    200  S-VLAN   Down  02:54:41:52:5a:02
2/2/4  202  Backbone-200     3/7    200  S-VLAN   Up    02:54:41:52:59:01
3/3/5  301  Metro-VFI-7      1/4    7    VFI      Down  02:54:41:52:57:04
2/2/6  203  Backbone-200     lag 6  200  S-VLAN   Down  02:54:41:52:56:07
[exit 0]
$ tarvctl --region demo.bin show mips
MIP    MA               PORT   MAC
1/1/1  CustomerVPN-100  1/4    02:54:41:52:57:04
2/2/2  Backbone-200     lag 6  02:54:41:52:56:07
[exit 0]
$ tarvctl --region demo.bin show throughput
TEST     MEP ID  ENABLED  A    B    C  D
1/1/1/1  101     yes      2    125  4  4
2/2/3/2  201     no       100  10   1  1
a test enabled (Tarv_GetEnableStatusofThroughput): yes

HISTORY  RESULT
1        1/1/1 test 1: 96.40 Mbit/s, frame loss 0.00 %
2        2/2/3 test 2: 9.87 Mbit/s, frame loss 1.25 %
[exit 0]
$ tarvctl --region demo.bin show pm
MEP    SESSION  MEP ID  PORT  MA
1/1/1  1        101     1/3   CustomerVPN-100
2/2/3  2        201     4/2   Backbone-200
[exit 0]
$ tarvctl --region demo.bin show bwn
MEP    MEP ID  RECORD
1/1/1  101     01000000e803000002000000000000000000
1/1/2  102     000000000000000000000000000000000000
2/2/3  201     010000001027000001000000000000000000
2/2/4  202     000000000000000000000000000000000000
3/3/5  301     000000000000000000000000000000000000
2/2/6  203     000000000000000000000000000000000000
[exit 0]
# Objects whose MA or MD is missing are listed after the tree.
$ tarvctl show --region faults.bin
MD 1 "Customer", level 5
  MA 1/1 "CustomerVPN-100": C-VLAN 100, CCM period 4
    MEP 1/1/1  id 101  1/3    VLAN 100  Down         02:54:41:52:57:03
    MEP 1/1/2  id 102  lag 5  VLAN 100  Up           02:54:41:52:56:06
    MEP 1/1/9  id 0    0/0    VLAN 0    direction 0  00:00:00:00:00:00
  MA 1/200 "": -, CCM period 0
MD 2 "Provider", level 3
  MA 2/2 "Backbone-200": S-VLAN 200, CCM period 2
    MEP 2/2/3  id 201  4/2    VLAN 200  Down         02:54:41:52:5a:02
    MEP 2/2/4  id 202  3/7    VLAN 200  Up           02:54:41:52:59:01
    MEP 2/2/6  id 203  lag 6  VLAN 200  Down         02:54:41:52:56:07
MD 3 "Operator", level 7
  MA 3/3 "Metro-VFI-7": VFI 7, CCM period 4
    MEP 3/3/5  id 301  1/4    VFI 7     Down         02:54:41:52:57:04
outside the tree (tarvctl check tells why):
  MA 9/9 "Orphan-MA": no MD 9
  MEP 1/9/7  id 107  1/3    VLAN 100  Down         02:54:41:52:57:03
  MEP 9/9/8  id 908  4/1    VLAN 300  Down         02:54:41:52:5a:01

3 MDs, 5 MAs, 9 MEPs, 3 MIPs, 3 throughput tests, 2 PM sessions, 9 bandwidth notifications
[exit 0]
# An empty region.
$ tarvctl --region empty.bin show
0 MDs, 0 MAs, 0 MEPs, 0 MIPs, 0 throughput tests, 0 PM sessions, 0 bandwidth notifications
[exit 0]
$ tarvctl --region empty.bin show meps
no MEPs
[exit 0]
$ tarvctl --region empty.bin show throughput
no throughput tests
a test enabled (Tarv_GetEnableStatusofThroughput): no
[exit 0]
