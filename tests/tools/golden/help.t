# The program's help names every subcommand and the exit statuses.
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
# Every subcommand explains itself.
$ for c in init show check get snapshot "snapshot save" "snapshot load" watch; do tarvctl $c --help | head -n 2; done
Create the OAM regions, zero-filled
Usage: tarvctl init [OPTIONS]
Show what the region holds, through the library
Usage: tarvctl show [OPTIONS] [view]
Check the region's consistency
Usage: tarvctl check [OPTIONS]
Print a class's transfer list
Usage: tarvctl get [OPTIONS] class
Save the data region to a file, or load it from one
Usage: tarvctl snapshot [OPTIONS] SUBCOMMAND
Save the data region to FILE
Usage: tarvctl snapshot save [OPTIONS] file
Load FILE into the data region (created if missing)
Usage: tarvctl snapshot load [OPTIONS] file
Print what changes in the region, until interrupted
Usage: tarvctl watch [OPTIONS]
[exit 0]
$ tarvctl show --help | tail -n 8
Show what the region holds, as the library reads it: the MD/MA/MEP tree (the default), or one view:
  mds         maintenance domains with their level and counts
  mas         maintenance associations with their components' tagging and CCM period
  meps        MEPs: MEP id, MA, port (a LAG as lag N), VID, tagging, direction, MAC
  mips        MIPs: MA, port, MAC
  throughput  throughput tests and the throughput history
  pm          PM sessions with their MEP
  bwn         bandwidth notifications with their MEP and record
[exit 0]
