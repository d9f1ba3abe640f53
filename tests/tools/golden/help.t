# The program's help names every subcommand and the exit statuses.
$ tarvctl --help
Inspect and diagnose the OAM regions of the switch through libtarv.
Usage: tarvctl [OPTIONS] [SUBCOMMAND]

Options:
  -h,--help                   Print this help message and exit
  --version                   Display program version information and exit
  --prefix TEXT               Shared-memory prefix of the regions (default: TARV_SHM_PREFIX, else none: the real regions; '' for none)
  --region FILE               Read a saved region FILE instead of shared memory (read-only subcommands)
  --color TEXT:{auto,always,never}
                              Colour: auto (on a terminal), always, never
  --trace                     Print the library's error and warning traces on standard error

Subcommands:
  init                        Create the OAM regions, zero-filled
  demo                        Write a realistic demo configuration into the region
  show                        Show what the region holds, through the library
  check                       Check the region's consistency
  get                         Print a class's transfer list
  set                         Replace a class in the region by a transfer list
  port                        Ask every usage question about a port
  vlan                        Ask whether OAM uses a VLAN, switch-wide
  vfi                         Ask whether OAM uses a VFI, switch-wide
  lag                         Ask whether OAM uses a LAG
  slot                        Ask whether a slot has room for one more MEP
  snapshot                    Save the data region to a file, or load it from one
  watch                       Print what changes in the region, until interrupted
  simulate                    Play the OAM controller on the region, until interrupted
  metrics                     The region's state as Prometheus metrics

Exit status:
  0  done; check found nothing
  1  check found inconsistencies; port, vlan, vfi, lag: OAM does not use it; slot: the MEP does not fit
  2  usage error: unknown subcommand, option, class or value; a malformed SLOT/PORT, VID, id or range;
     an invalid TARV_SHM_PREFIX or TARV_LAGS; a file set refuses
  3  no OAM data region in shared memory (create one with 'tarvctl init')
  4  a file or region cannot be read, written or mapped, or has the wrong size; standard output
     cannot be written (a full disk; a closed pipe ends tarvctl quietly)
  5  refused: demo on a region that is not empty (demo --force replaces it); simulate on the real
     region (without --force) or on one without MEPs

Environment:
  TARV_SHM_PREFIX   shared-memory prefix when --prefix is not given
  TARV_LAGS         LAG members, e.g. 5=1/1,4/1;6=1/2 (the host platform's, not the region's)
  NO_COLOR          when not empty: no colour, even on a terminal
  TARV_TRACE_LEVEL  the library's trace level (errors 1, warnings 2, ...); when set, it holds with or
                    without --trace. Unset: no trace lines, or errors and warnings with --trace
  TARV_DEBUG_LEVEL  the library's debug lines up to this level (default 0: none)

Every subcommand has --help. See tarvctl(1).
[exit 0]
$ tarvctl --version
tarvctl 1.0.0
[exit 0]
# Every subcommand explains itself.
$ for c in init demo show port vlan vfi lag slot check get set snapshot "snapshot save" "snapshot load" watch; do tarvctl $c --help | head -n 2; done
Create the OAM regions, zero-filled
Usage: tarvctl init [OPTIONS]
Write a realistic demo configuration into the region
Usage: tarvctl demo [OPTIONS]
Show what the region holds, through the library
Usage: tarvctl show [OPTIONS] [view]
Ask every usage question about a port
Usage: tarvctl port [OPTIONS] SLOT/PORT
Ask whether OAM uses a VLAN, switch-wide
Usage: tarvctl vlan [OPTIONS] VID
Ask whether OAM uses a VFI, switch-wide
Usage: tarvctl vfi [OPTIONS] VFI
Ask whether OAM uses a LAG
Usage: tarvctl lag [OPTIONS] ID
Ask whether a slot has room for one more MEP
Usage: tarvctl slot [OPTIONS] SLOT
Check the region's consistency
Usage: tarvctl check [OPTIONS]
Print a class's transfer list
Usage: tarvctl get [OPTIONS] class
Replace a class in the region by a transfer list
Usage: tarvctl set [OPTIONS] class file
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
  throughput  throughput tests, through their iterator and reader; whether one is enabled; the history
  pm          PM sessions with their MEP
  bwn         bandwidth notifications, through their iterator and reader, with their MEP and record
  alarms      alarm words of the MEPs by bit number, with their texts; PM alarms with the Y.1731 alarm
              source text of their session; the MEP hardware alarm block. A MEP's word is shown as
              Tarv__GetAlarms reports it, the stored one after it when they differ (bit 2 is reported
              only when the MEP's bAlarmBit2Enabled is set)
  chkp        the checkpoint record, in hex (not on a saved region)
[exit 0]
