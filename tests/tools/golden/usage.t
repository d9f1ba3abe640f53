# Bad command lines end with status 2 before anything is read or written.
$ tarvctl
! tarvctl: a subcommand is required: init, demo, show, check, get, set, port, vlan, vfi, lag, slot, snapshot, watch, simulate, metrics
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl frobnicate
! tarvctl: unknown subcommand 'frobnicate': give one of init, demo, show, check, get, set, port, vlan, vfi, lag, slot, snapshot, watch, simulate, metrics
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl show frob
! tarvctl: view: frob not in {tree,mds,mas,meps,mips,throughput,pm,bwn,alarms,chkp}
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl get
! tarvctl: class is required
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl get foo
! tarvctl: unknown class 'foo': give one of md (531), mep (532), macomp (573), manet (574), mip (575), throughput (638), history (652), pm (674), bwn (848); by number also 519, 523, 526, 528, 571, 576, 579, 580, 581, 665, 666, 673
[exit 2]
$ tarvctl get 999
! tarvctl: unknown class '999': give one of md (531), mep (532), macomp (573), manet (574), mip (575), throughput (638), history (652), pm (674), bwn (848); by number also 519, 523, 526, 528, 571, 576, 579, 580, 581, 665, 666, 673
[exit 2]
$ tarvctl get mep --hex --json
! tarvctl: --hex excludes --json
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl --color purple show
! tarvctl: --color: purple not in {auto,always,never}
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl watch --interval 0
! tarvctl: --interval: Value 0 not in range 1 to 3600000
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl snapshot
! tarvctl: A subcommand is required
! Run 'tarvctl --help' for more information.
[exit 2]
# An invalid prefix never falls back to the real region.
$ tarvctl --prefix a/b show
! tarvctl: invalid --prefix 'a/b': at most 64 of A-Z a-z 0-9 . _ -
[exit 2]
$ TARV_SHM_PREFIX='a b' tarvctl show
! tarv-host: ignoring TARV_SHM_PREFIX="a b": expected at most 64 of A-Z a-z 0-9 . _ -
! tarvctl: invalid TARV_SHM_PREFIX 'a b': at most 64 of A-Z a-z 0-9 . _ -
[exit 2]
# Writing subcommands refuse a region file, before or after the subcommand.
$ tarvctl --region demo.bin init
! tarvctl: --region: 'init' writes shared memory and cannot run on a region file
[exit 2]
$ tarvctl snapshot load demo.bin --region demo.bin
! tarvctl: --region: 'snapshot load' writes shared memory and cannot run on a region file
[exit 2]
$ ls /dev/shm | grep -c T- || true
0
[exit 0]
