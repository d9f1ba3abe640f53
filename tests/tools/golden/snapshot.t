# A region goes into shared memory and back out unchanged.
$ tarvctl snapshot load demo.bin
loaded demo.bin into /T-kelm-data
[exit 0]
$ tarvctl show meps
MEP    ID   MA               PORT   VID  TAGGING  DIR   MAC
1/1/1  101  CustomerVPN-100  1/3    100  C-VLAN   Down  02:54:41:52:57:03
1/1/2  102  CustomerVPN-100  lag 5  100  C-VLAN   Up    02:54:41:52:56:06
2/2/3  201  Backbone-200     4/2    200  S-VLAN   Down  02:54:41:52:5a:02
2/2/4  202  Backbone-200     3/7    200  S-VLAN   Up    02:54:41:52:59:01
3/3/5  301  Metro-VFI-7      1/4    7    VFI      Down  02:54:41:52:57:04
2/2/6  203  Backbone-200     lag 6  200  S-VLAN   Down  02:54:41:52:56:07
[exit 0]
$ tarvctl snapshot save copy.bin
saved /T-kelm-data to copy.bin (453075 bytes)
[exit 0]
$ cmp copy.bin demo.bin && echo identical
identical
[exit 0]
# A saved region copies without shared memory.
$ tarvctl --region faults.bin snapshot save faults-copy.bin
saved file faults.bin to faults-copy.bin (453075 bytes)
[exit 0]
$ cmp faults-copy.bin faults.bin && echo identical
identical
[exit 0]
# Loading replaces what was there.
$ tarvctl snapshot load faults.bin
loaded faults.bin into /T-kelm-data
[exit 0]
$ tarvctl check | tail -n 1
16 findings in /T-kelm-data: duplicateKey 1, emptyRecord 3, missingParent 5, noComponent 1, noSlot 1, recordBehindEmptyKey 1, sessionMismatch 1, slotZero 1, wrongClass 1, wrongSlot 1
[exit 0]
$ tarvctl snapshot save /nonexistent/dir/x.bin
! tarvctl: cannot write '/nonexistent/dir/x.bin': No such file or directory
[exit 4]
