# Every subcommand explains itself; --version names the release.
$ tarvctl --help
Inspect and diagnose the OAM regions of the switch through libtarv.
Usage: tarvctl [OPTIONS] [SUBCOMMAND]

Options:
  -h,--help                   Print this help message and exit
  --version                   Display program version information and exit
  --prefix TEXT               Shared-memory prefix of the regions (default: TARV_SHM_PREFIX, else none: the real regions)
  --region FILE               Read a saved region FILE instead of shared memory (read-only subcommands)
  --color TEXT:{auto,always,never}
                              Colour: auto (on a terminal), always, never

Subcommands:
  init                        Create the OAM regions, zero-filled
  show                        Show what the region holds, through the library
  check                       Check the region's consistency
  get                         Print a class's transfer list
  snapshot                    Save the data region to a file, or load it from one
  watch                       Print what changes in the region, until interrupted

Exit status:
  0  done; check found nothing
  1  check found inconsistencies
  2  usage error: unknown subcommand, option, class or value
  3  no OAM data region in shared memory (create one with 'tarvctl init')
  4  a file or region cannot be read, written or mapped, or has the wrong size

Environment:
  TARV_SHM_PREFIX  shared-memory prefix when --prefix is not given
  NO_COLOR         no colour, even on a terminal

Every subcommand has --help. See tarvctl(1).
[exit 0]
$ tarvctl --version
tarvctl 1.0.0
[exit 0]
$ tarvctl init --help
Create the OAM regions, zero-filled
Usage: tarvctl init [OPTIONS]

Options:
  -h,--help                   Print this help message and exit
  --force                     Clear regions that exist already

Create the data region /kelm-data (453075 bytes) and the checkpoint region /kelm-chkp-data (280 bytes) in shared memory, zero-filled, under the prefix of --prefix or TARV_SHM_PREFIX. A region that exists is left as it is.
[exit 0]
$ tarvctl show --help
Show what the region holds, through the library
Usage: tarvctl show [OPTIONS] [view]

Positionals:
  view TEXT:{tree,mds,mas,meps,mips,throughput,pm,bwn}
                              What to show (default: tree)

Options:
  -h,--help                   Print this help message and exit
  --json                      JSON on standard output, for scripts

Show what the region holds, as the library reads it: the MD/MA/MEP tree (the default), or one view:
  mds         maintenance domains with their level and counts
  mas         maintenance associations with their components' tagging and CCM period
  meps        MEPs: MEP id, MA, port (a LAG as lag N), VID, tagging, direction, MAC
  mips        MIPs: MA, port, MAC
  throughput  throughput tests and the throughput history
  pm          PM sessions with their MEP
  bwn         bandwidth notifications with their MEP and record
[exit 0]
$ tarvctl check --help
Check the region's consistency
Usage: tarvctl check [OPTIONS]

Options:
  -h,--help                   Print this help message and exit
  --json                      JSON on standard output, for scripts

Check the region's consistency, as no library call does: objects whose MD, MA or MEP is missing, MAs with MEPs but no MA component, keys whose identifier does not match their slot or whose class does not match their table, duplicate keys, records behind empty keys, PM entries whose session id does not match their slot.
One line per finding: table, slot, what is wrong. Exit status 0 when there is none, 1 with findings.
[exit 0]
$ tarvctl get --help
Print a class's transfer list
Usage: tarvctl get [OPTIONS] class

Positionals:
  class TEXT REQUIRED         Class id or name

Options:
  -h,--help                   Print this help message and exit
  --hex Excludes: --json      One line of hex per object (the default)
  --json Excludes: --hex      JSON with named fields

Print the transfer list of one class as Tarv__GetConfig returns it: every object's key and record.
Hex (the default): one line per object, key bytes, a blank, record bytes.
JSON: the fields the library interprets by name (MD, MaNet, MA component, MEP, MIP, throughput test and history), every other byte as hex in "opaque<offset>" runs.
CLASS: md (531), mep (532), macomp (573), manet (574), mip (575), throughput (638), history (652), pm (674), bwn (848); by number also 519, 523, 526, 528, 571, 576, 579, 580, 581, 665, 666, 673
[exit 0]
$ tarvctl snapshot --help
Save the data region to a file, or load it from one
Usage: tarvctl snapshot [OPTIONS] SUBCOMMAND

Options:
  -h,--help                   Print this help message and exit

Subcommands:
  save                        Save the data region to FILE
  load                        Load FILE into the data region (created if missing)

Copy the data region /kelm-data to a file or back: a saved region is exactly 453075 bytes. Read-only subcommands run on a saved region with --region FILE.
[exit 0]
$ tarvctl snapshot save --help
Save the data region to FILE
Usage: tarvctl snapshot save [OPTIONS] file

Positionals:
  file TEXT REQUIRED          File to write

Options:
  -h,--help                   Print this help message and exit

Copy the data region /kelm-data to a file or back: a saved region is exactly 453075 bytes. Read-only subcommands run on a saved region with --region FILE.
[exit 0]
$ tarvctl snapshot load --help
Load FILE into the data region (created if missing)
Usage: tarvctl snapshot load [OPTIONS] file

Positionals:
  file TEXT REQUIRED          Saved region to load

Options:
  -h,--help                   Print this help message and exit

Copy the data region /kelm-data to a file or back: a saved region is exactly 453075 bytes. Read-only subcommands run on a saved region with --region FILE.
[exit 0]
$ tarvctl watch --help
Print what changes in the region, until interrupted
Usage: tarvctl watch [OPTIONS]

Options:
  -h,--help                   Print this help message and exit
  --interval UINT:UINT in [1 - 3600000]
                              Milliseconds between polls (default 1000)
  --count UINT                Stop after this many polls, the first included (default 0: never)

Poll the region and print each change as it is seen, class by class: "+ MEP 1/1/4" for an object added, "- MIP 1/1/2" for one removed. A class counts once two reads in a row agree, so a class the controller is rewriting is not reported half written. Runs until interrupted (SIGINT, SIGTERM; exit status 0) or for --count polls.
[exit 0]
