# Without a region every reading subcommand says how to make one (status 3);
# a region file that is missing or of the wrong size is an I/O error (4).
$ tarvctl show
! tarvctl: no OAM data region /T-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
$ tarvctl check
! tarvctl: no OAM data region /T-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
$ tarvctl get md
! tarvctl: no OAM data region /T-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
$ tarvctl watch --count 1
! tarvctl: no OAM data region /T-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
$ tarvctl snapshot save copy.bin
! tarvctl: no OAM data region /T-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
$ test -e copy.bin || echo "copy.bin not written"
copy.bin not written
[exit 0]
$ tarvctl --region missing.bin show meps
! tarvctl: cannot read 'missing.bin': No such file or directory
[exit 4]
$ tarvctl --region short.bin check
! tarvctl: 'short.bin': has 1000 bytes, but a raw region image has exactly 453075
[exit 4]
$ tarvctl --region . show
! tarvctl: '.' is not a regular file
[exit 4]
$ tarvctl snapshot load short.bin
! tarvctl: 'short.bin': not a snapshot file (no TARVSNAP header)
[exit 4]
$ tarvctl show
! tarvctl: no OAM data region /T-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
