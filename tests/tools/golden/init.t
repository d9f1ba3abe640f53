# init makes both regions zero-filled; it keeps existing ones unless --force.
$ tarvctl init
created /T-kelm-data (453075 bytes, zero-filled)
created /T-kelm-chkp-data (280 bytes, zero-filled)
[exit 0]
$ tarvctl show
0 MDs, 0 MAs, 0 MEPs, 0 MIPs, 0 throughput tests, 0 PM sessions, 0 bandwidth notifications
[exit 0]
$ tarvctl check
no findings in /T-kelm-data
[exit 0]
$ tarvctl snapshot load demo.bin
loaded demo.bin into /T-kelm-data
[exit 0]
$ tarvctl init
/T-kelm-data exists: left as it is (init --force clears it)
/T-kelm-chkp-data exists: left as it is (init --force clears it)
[exit 0]
$ tarvctl show mds
MD  NAME      LEVEL  MAS  MEPS
1   Customer  5      1    2
2   Provider  3      1    3
3   Operator  7      1    1
[exit 0]
$ tarvctl init --force
cleared /T-kelm-data (453075 bytes)
cleared /T-kelm-chkp-data (280 bytes)
[exit 0]
$ tarvctl show mds
no MDs
[exit 0]
$ tarvctl --prefix other- show
! tarvctl: no OAM data region /other-kelm-data: create one with 'tarvctl init', or choose another with --prefix, TARV_SHM_PREFIX or --region FILE
[exit 3]
