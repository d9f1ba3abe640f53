# A region goes into shared memory and back out unchanged, as a snapshot
# file, a raw image, or through standard input and output.
$ tarvctl snapshot load demo.bin
loaded demo.bin into /T-kelm-data
[exit 0]
$ tarvctl snapshot save copy.bin && cmp copy.bin demo.bin && echo identical
saved /T-kelm-data to copy.bin (snapshot, 453075 bytes)
identical
[exit 0]
$ tarvctl snapshot save --raw - | cmp - demo.raw && echo identical
identical
! saved /T-kelm-data to standard output (raw image, 453075 bytes)
[exit 0]
$ tarvctl --region faults.bin snapshot save - >faults-copy.bin; cmp faults-copy.bin faults.bin && echo identical
identical
! saved file faults.bin to standard output (snapshot, 453075 bytes)
[exit 0]
$ tarvctl --region demo.raw show meps | head -n 2
MEP    ID   MA               PORT   VID  TAGGING  DIR   MAC
1/1/1  101  CustomerVPN-100  1/3    100  C-VLAN   Down  02:54:41:52:57:03
[exit 0]
$ tarvctl snapshot info demo.bin; tarvctl snapshot info - <demo.raw
file: demo.bin
form: snapshot, format 1, 64-byte header
region: 453075 bytes, layout ab136725 (this tool's), little-endian
saved: 2026-11-25T01:35:00.123Z
checksums: header ce1c1a81, region d53581a0 (both verified)
file: standard input
form: raw region image (no header), 453075 bytes
[exit 0]
# Loading over a region that is not empty, or a file check rejects, needs
# --force; what is refused leaves the region byte for byte as it was.
$ tarvctl snapshot load demo2.bin; tarvctl snapshot load faults.bin; head -c 453075 /dev/zero | tr '\0' 'z' >junk.raw; tarvctl snapshot load --raw junk.raw
! tarvctl: /T-kelm-data is not empty: give --force to replace it (a backup of it is left first)
! tarvctl: 'faults.bin': check finds 16 inconsistencies (the first: MepMoidArray slot 6: MEP 1/9/7: its MA 1/9 is missing); give --force to load it anyway
! tarvctl: 'junk.raw': check finds 15338 inconsistencies (the first: Class526MoidArray slot 0: class 526 object 2054847098/2054847098/2054847098/2054847098: key of class 31354 in the table of class 526); give --force to load it anyway
[exit 5]
$ tarvctl snapshot save after.bin >/dev/null; cmp after.bin demo.bin && echo unchanged
unchanged
[exit 0]
# --dry-run names what would change and writes nothing.
$ tarvctl snapshot load --dry-run demo2.bin; tarvctl snapshot save after.bin >/dev/null; cmp after.bin demo.bin && echo unchanged
+ MEP 1/1/7
- MIP 2/2/2
+ bandwidth notification 1/1/7
* MEP 1/1/1: alarm bit 1 raised
* MEP 1/1/2: alarm bits 0, 2 cleared
* PM session 1/1/1 #1: alarm bit 0 raised
* table Class577MoidArray: 5 bytes differ
* table Class578MoidArray: 5 bytes differ
* table MepOldMoidArray: 5 bytes differ
dry run: 9 changes to /T-kelm-data; nothing written
unchanged
[exit 0]
# A forced load leaves a backup and prints the command that undoes it.
$ undo=$(tarvctl snapshot load --force faults.bin | tee /dev/stderr | sed -n 's/^undo: //p'); tarvctl check | tail -n 1; $undo; tarvctl snapshot save after.bin >/dev/null; cmp after.bin demo.bin && echo restored
16 findings in /T-kelm-data: duplicateKey 1, emptyRecord 3, missingParent 5, noComponent 1, noSlot 1, recordBehindEmptyKey 1, sessionMismatch 1, slotZero 1, wrongClass 1, wrongSlot 1
loaded backups/T-kelm-data-20261125T013500.123Z.snap into /T-kelm-data
backup: backups/T-kelm-data-20261125T013500.123Z-2.snap
undo: tarvctl snapshot load --force backups/T-kelm-data-20261125T013500.123Z-2.snap
restored
! loaded faults.bin into /T-kelm-data
! backup: backups/T-kelm-data-20261125T013500.123Z.snap
! undo: tarvctl snapshot load --force backups/T-kelm-data-20261125T013500.123Z.snap
[exit 0]
# A file that is not what the form asked for, or damaged, is refused.
$ tarvctl snapshot load --force demo.raw
! tarvctl: 'demo.raw': a raw region image, not a snapshot file: load it with --raw
[exit 4]
$ tarvctl snapshot load --force --raw demo.bin
! tarvctl: 'demo.bin': a snapshot file, not a raw region image: load it without --raw
[exit 4]
$ cp demo.bin hdr.bin; printf 'X' | dd of=hdr.bin bs=1 seek=20 conv=notrunc 2>/dev/null; tarvctl snapshot info hdr.bin
! tarvctl: 'hdr.bin': the header checksum is ce1c1a81, its bytes give 5353a6b5: the header is corrupt
[exit 4]
$ cp demo.bin body.bin; printf 'X' | dd of=body.bin bs=1 seek=400000 conv=notrunc 2>/dev/null; tarvctl --region body.bin show meps
! tarvctl: 'body.bin': the region checksum is d53581a0, its bytes give b41e358f: the region is corrupt
[exit 4]
$ head -c 40 demo.bin >cut.bin; tarvctl snapshot load --force cut.bin
! tarvctl: 'cut.bin': the header is cut short: 40 bytes of 64
[exit 4]
$ tarvctl snapshot save /nonexistent/dir/x.bin
! tarvctl: cannot write '/nonexistent/dir/x.bin': No such file or directory
[exit 4]
