# The demo region's state as Prometheus metrics: the families (their HELP
# lines, shown without "# " since a transcript keeps such lines as
# comments), then the samples.
$ tarvctl --region demo.bin metrics | grep '^# ' | cut -c3-
HELP tarv_region_attached Whether the OAM data region exists and is attached (1) or not (0).
TYPE tarv_region_attached gauge
HELP tarv_objects Objects the region holds, by class.
TYPE tarv_objects gauge
HELP tarv_md_info Name and level of each MD; the value is always 1.
TYPE tarv_md_info gauge
HELP tarv_ma_info Name of each MA; the value is always 1.
TYPE tarv_ma_info gauge
HELP tarv_mep_alarm_bit Alarm bits of each MEP (as Tarv__GetAlarms reports it), by bit number (1 raised, 0 clear).
TYPE tarv_mep_alarm_bit gauge
HELP tarv_mep_alarm Whether any alarm bit of the MEP (as Tarv__GetAlarms reports it) is raised.
TYPE tarv_mep_alarm gauge
HELP tarv_pm_session_alarm_bit Alarm bits of each PM session, by bit number (1 raised, 0 clear).
TYPE tarv_pm_session_alarm_bit gauge
HELP tarv_pm_session_alarm Whether any alarm bit of the PM session is raised.
TYPE tarv_pm_session_alarm gauge
HELP tarv_throughput_test_running Whether the throughput test is running (enabled by the controller).
TYPE tarv_throughput_test_running gauge
HELP tarv_throughput_rate_bytes_per_second Rate the throughput test measured last, in bytes per second.
TYPE tarv_throughput_rate_bytes_per_second gauge
HELP tarv_throughput_frame_loss_ratio Frame loss the throughput test measured last, as a ratio.
TYPE tarv_throughput_frame_loss_ratio gauge
[exit 0]
$ tarvctl --region demo.bin metrics | grep -v '^# '
tarv_region_attached{region="file demo.bin"} 1
tarv_objects{class="md"} 3
tarv_objects{class="ma"} 3
tarv_objects{class="mep"} 6
tarv_objects{class="mip"} 2
tarv_objects{class="pm_session"} 2
tarv_objects{class="throughput_test"} 2
tarv_objects{class="bandwidth_notification"} 6
tarv_md_info{md="1",name="Customer",level="5"} 1
tarv_md_info{md="2",name="Provider",level="3"} 1
tarv_md_info{md="3",name="Operator",level="7"} 1
tarv_ma_info{md="1",ma="1",name="CustomerVPN-100"} 1
tarv_ma_info{md="2",ma="2",name="Backbone-200"} 1
tarv_ma_info{md="3",ma="3",name="Metro-VFI-7"} 1
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="0"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="1"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="2"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="3"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="4"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="5"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="6"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="7"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="8"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="9"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="10"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="11"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="12"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="13"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="14"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100",bit="15"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="0"} 1
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="1"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="2"} 1
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="3"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="4"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="5"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="6"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="7"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="8"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="9"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="10"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="11"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="12"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="13"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="14"} 0
tarv_mep_alarm_bit{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100",bit="15"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="0"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="1"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="2"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="3"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="4"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="5"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="6"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="7"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="8"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="9"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="10"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="11"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="12"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="13"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="14"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200",bit="15"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="0"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="1"} 1
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="2"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="3"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="4"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="5"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="6"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="7"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="8"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="9"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="10"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="11"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="12"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="13"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="14"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200",bit="15"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="0"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="1"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="2"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="3"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="4"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="5"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="6"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="7"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="8"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="9"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="10"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="11"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="12"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="13"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="14"} 0
tarv_mep_alarm_bit{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7",bit="15"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="0"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="1"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="2"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="3"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="4"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="5"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="6"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="7"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="8"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="9"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="10"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="11"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="12"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="13"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="14"} 0
tarv_mep_alarm_bit{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200",bit="15"} 0
tarv_mep_alarm{md="1",ma="1",mep="1",mep_id="101",port="1/3",vlan="100"} 0
tarv_mep_alarm{md="1",ma="1",mep="2",mep_id="102",port="lag 5",vlan="100"} 1
tarv_mep_alarm{md="2",ma="2",mep="3",mep_id="201",port="4/2",vlan="200"} 0
tarv_mep_alarm{md="2",ma="2",mep="4",mep_id="202",port="3/7",vlan="200"} 1
tarv_mep_alarm{md="3",ma="3",mep="5",mep_id="301",port="1/4",vlan="7"} 0
tarv_mep_alarm{md="2",ma="2",mep="6",mep_id="203",port="lag 6",vlan="200"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="0"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="1"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="2"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="3"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="4"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="5"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="6"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="7"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="8"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="9"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="10"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="11"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="12"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="13"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="14"} 0
tarv_pm_session_alarm_bit{md="1",ma="1",mep="1",session="1",bit="15"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="0"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="1"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="2"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="3"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="4"} 1
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="5"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="6"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="7"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="8"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="9"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="10"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="11"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="12"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="13"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="14"} 0
tarv_pm_session_alarm_bit{md="2",ma="2",mep="3",session="2",bit="15"} 0
tarv_pm_session_alarm{md="1",ma="1",mep="1",session="1"} 0
tarv_pm_session_alarm{md="2",ma="2",mep="3",session="2"} 1
tarv_throughput_test_running{md="1",ma="1",mep="1",test="1"} 1
tarv_throughput_test_running{md="2",ma="2",mep="3",test="2"} 0
tarv_throughput_rate_bytes_per_second{md="1",ma="1",mep="1",test="1"} 12050000
tarv_throughput_rate_bytes_per_second{md="2",ma="2",mep="3",test="2"} 1233750
tarv_throughput_frame_loss_ratio{md="1",ma="1",mep="1",test="1"} 0
tarv_throughput_frame_loss_ratio{md="2",ma="2",mep="3",test="2"} 0.0125
[exit 0]
# A missing region is reported, not an error; a region file must exist.
$ tarvctl metrics | grep -v '^# '
tarv_region_attached{region="/T-kelm-data"} 0
[exit 0]
$ tarvctl --region nothing.bin metrics
! tarvctl: cannot read 'nothing.bin': No such file or directory
[exit 4]
# Name bytes outside printable ASCII as \xHH, quote and backslash escaped.
$ tarvctl snapshot load --force demo.bin >/dev/null; tarvctl get md --json | python3 -c 'import json,sys; d=json.load(sys.stdin); d["records"][0]["record"]["acMdName"]="Q\"B\\\u00e9\u0007"; json.dump(d, sys.stdout)' | tarvctl set md - >/dev/null; tarvctl metrics | grep -F 'md_info{md="1"'
tarv_md_info{md="1",name="Q\"B\\\\xe9\\x07",level="5"} 1
[exit 0]
# promtool (Debian package prometheus) accepts the output, also while
# simulate changes the region.
$ command -v promtool >/dev/null || { echo "promtool is missing: install the Debian package prometheus"; exit 1; }; tarvctl --region demo.bin metrics | promtool check metrics && echo accepted
accepted
[exit 0]
$ tarvctl snapshot load --force demo.bin >/dev/null; tarvctl simulate --seed 5 --changes 60 --rate 100000 --quiet; tarvctl metrics | promtool check metrics && echo accepted; tarvctl metrics | grep -c '^tarv_throughput_rate'
accepted
2
[exit 0]
# --textfile writes DIR/tarv.prom and leaves no temporary file; --interval
# repeats until SIGTERM, exit status 0.
$ mkdir out && tarvctl --region demo.bin metrics --textfile out && ls -A out && cmp out/tarv.prom <(tarvctl --region demo.bin metrics) && echo same
tarv.prom
same
[exit 0]
$ tarvctl metrics --textfile nowhere
! tarvctl: --textfile: Directory does not exist: nowhere
! Run 'tarvctl --help' for more information.
[exit 2]
$ tarvctl snapshot load --force demo.bin >/dev/null; mkdir out2; tarvctl metrics --textfile out2 --interval 0.05 & pid=$!; until [ -e out2/tarv.prom ]; do sleep 0.02; done; sleep 0.2; kill -TERM $pid; wait $pid; echo "ended with $?"; grep -c 'region_attached.* 1$' out2/tarv.prom; ls -A out2
ended with 0
1
tarv.prom
[exit 0]
