#!/usr/bin/env python3
"""tarv-agentx beside a private snmpd: the MIB tables against 'tarvctl show
--json', a change seen by the next walk, a master restart, no region, and
thousands of requests without growth. Usage: agentx_test.py BUILD_DIR"""
import json, os, shutil, signal, socket, subprocess as sp, sys, tempfile, time

build = sys.argv[1]
tarvctl, agentx = f"{build}/tools/tarvctl/tarvctl", f"{build}/tools/agentx/tarv-agentx"
root = ".1.3.111.2.802.1.1.8.1"
tables = {"md": "5.2.1", "ma": "6.1.1", "comp": "6.2.1", "list": "6.3.1", "mep": "7.1.1"}
tmp = tempfile.mkdtemp(prefix="tarv-agentx-test-")
env = dict(os.environ, TARV_SHM_PREFIX=f"agx{os.getpid()}-", MIBS="", SNMP_PERSISTENT_DIR=f"{tmp}/state")
# AddressSanitizer's quarantine keeps freed memory resident: off, so that growth means a leak.
env["ASAN_OPTIONS"] = env.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=0"
with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as s:
    s.bind(("127.0.0.1", 0))
    port = s.getsockname()[1]
procs = {}


def start(name, *args):
    procs[name] = sp.Popen(args, env=env, stdout=sp.DEVNULL, stderr=open(f"{tmp}/{name}.log", "a"))


def stop(name):
    p = procs.pop(name)
    p.send_signal(signal.SIGTERM)
    return p.wait(20)


def until(cond, what, seconds=10):
    for _ in range(seconds * 10):
        if cond():
            return
        time.sleep(0.1)
    sys.exit(f"FAIL: {what}")


def start_snmpd():
    with open(f"{tmp}/snmpd.conf", "w") as f:
        f.write(f"agentaddress udp:127.0.0.1:{port}\nmaster agentx\nagentXSocket {tmp}/agentx\n"
                "rocommunity public 127.0.0.1\n")
    start("snmpd", "snmpd", "-f", "-Lf", f"{tmp}/snmpd.log", "-C", "-c", f"{tmp}/snmpd.conf", "-p", f"{tmp}/snmpd.pid")
    until(lambda: os.path.exists(f"{tmp}/agentx"), "snmpd did not open its AgentX socket")


def snmp(tool, *args):
    return sp.run([tool, "-v2c", "-c", "public", "-On", "-Ox", "-t", "2", "-r", "1", f"127.0.0.1:{port}", *args],
                  env=env, capture_output=True, text=True, check=False).stdout


def walk(tool="snmpwalk", *opts):
    """The served tree as {OID below the tables' root: value}, octet strings in hex."""
    rows = {}
    for line in snmp(tool, *opts, root).splitlines():
        oid, _, value = line.partition(" = ")
        if oid.startswith(root + "."):
            rows[oid[len(root) + 1:]] = value.split(": ", 1)[-1].replace(" ", "").lower()
    return rows


def expected():
    """What 'tarvctl show --json' says the compared columns hold: every access to its keys is here."""
    show = json.loads(sp.run([tarvctl, "show", "--json"], env=env, capture_output=True, check=True).stdout)
    tagging = {"C-VLAN": 1, "S-VLAN": 2, "VFI": 5}
    words = {(a["mep"]["md"], a["mep"]["ma"], a["mep"]["mep"]): a["alarms"] for a in show["alarms"]["meps"] if a["mep"]}
    e = {}
    for d in show["mds"]:
        e.update({f"{tables['md']}.3.{d['md']}": d["name"].encode().hex(), f"{tables['md']}.4.{d['md']}": str(d["level"])})
    for a in show["mas"]:
        i = f"{a['md']}.{a['ma']}"
        e[f"{tables['ma']}.3.{i}"] = a["name"].encode().hex()
        for c in a["components"]:
            e[f"{tables['comp']}.2.{tagging[c['tagging']]}.{i}"] = str(c["vid"])
    for m in show["meps"]:
        i = f"{m['md']}.{m['ma']}.{m['mepId']}"
        word = words.get((m["md"], m["ma"], m["mep"]), 0) & 0x1F
        e.update({f"{tables['list']}.2.{i}": "1", f"{tables['mep']}.3.{i}": {"Down": "1", "Up": "2"}[m["direction"]],
                  f"{tables['mep']}.2.{i}": str({6: 4242}.get(m["port"].get("lag"), 10000 + m["port"]["lag"]
                                                          if "lag" in m["port"] else
                                                          1000 * m["port"]["slot"] + m["port"]["port"])),
                  f"{tables['mep']}.4.{i}": str(m["vid"]), f"{tables['mep']}.9.{i}": m["mac"].replace(":", ""),
                  f"{tables['mep']}.13.{i}": str(word.bit_length()),
                  f"{tables['mep']}.14.{i}": f"{int(f'{word:05b}'[::-1], 2) << 3:02x}"})
    return e


def check_tables(what):
    e, got = expected(), walk()
    prefixes = {".".join(k.split(".")[:4]) for k in e}
    compared = {k: v for k, v in got.items() if ".".join(k.split(".")[:4]) in prefixes}
    if not e or compared != e:
        diff = sorted(set(e.items()) ^ set(compared.items()))
        sys.exit(f"FAIL: {what}: walk and tarvctl differ: {diff}")
    return got


def rss(name):
    with open(f"/proc/{procs[name].pid}/status") as f:
        return next(int(l.split()[1]) for l in f if l.startswith("VmRSS:"))


try:
    sp.run([tarvctl, "demo"], env=env, check=True, stdout=sp.DEVNULL)
    # Refused at start-up: no master agent (1), a malformed ifIndex map (2).
    with open(f"{tmp}/ifindex", "w") as f:
        f.write("# LAG 6 numbered by the switch\nlag 6 4242\n")
    with open(f"{tmp}/bad-ifindex", "w") as f:
        f.write("2/6 17\n")
    for args, status, message in [(["--ifindex-map", f"{tmp}/ifindex"], 1, "cannot reach the master agent"),
                                  (["--ifindex-map", f"{tmp}/bad-ifindex"], 2, "bad-ifindex:1:")]:
        r = sp.run([agentx, "--foreground", "--agentx-socket", f"{tmp}/none", *args], env=env, capture_output=True, text=True)
        assert r.returncode == status and message in r.stderr, r
    start_snmpd()
    start("agentx", agentx, "--foreground", "--agentx-socket", f"{tmp}/agentx", "--ping-interval", "1",
          "--ifindex-map", f"{tmp}/ifindex")
    until(lambda: walk(), "the subagent never answered")
    tree = check_tables("demo region")
    assert walk("snmpbulkwalk", "-Cr1000") == tree, "GETBULK with large max-repetitions differs from GETNEXT"

    # GET: a row the region lacks, a left-out column, the entry and column OIDs themselves.
    mep = f"{root}.{tables['mep']}"
    for oid, answer in [(f"{mep}.2.1.1.999", "No Such Instance"), (f"{mep}.6.1.1.101", "No Such Object"),
                        (f"{mep}.2", "No Such Object"), (f"{mep}.2.1.1.101", "INTEGER: 1003"),
                        (f"{mep}.2.2.2.203", "INTEGER: 4242")]:
        assert answer in snmp("snmpget", oid), (oid, snmp("snmpget", oid))
    # GETNEXT past the last instance of each table goes on to the next table.
    for table, nxt in zip(tables.values(), list(tables.values())[1:] + [None]):
        last = max((k for k in tree if k.startswith(table + ".")), key=lambda k: [int(x) for x in k.split(".")])
        after = snmp("snmpgetnext", f"{root}.{last}")
        assert after.startswith(f"{root}.{nxt}.") if nxt else "No more variables" in after, (last, after)

    # A MEP changed by the configuration writer: the next walk shows it.
    mep_class = json.loads(sp.run([tarvctl, "get", "mep", "--json"], env=env, capture_output=True, check=True).stdout)
    mep_class["records"][0]["record"].update(eDirection=2, wVid=101, byPort=9)
    sp.run([tarvctl, "set", "mep", "-"], env=env, input=json.dumps(mep_class).encode(), check=True)
    assert check_tables("after tarvctl set") != tree, "the walk did not change"

    # The master restarts: the subagent is back within seconds.
    assert stop("snmpd") == 0
    start_snmpd()
    until(lambda: walk(), "the subagent did not come back after the master restarted", 15)

    # Thousands of GETNEXT and GETBULK requests: no crash, no growth.
    walk("snmpbulkwalk", "-Cr1")
    before = rss("agentx")
    for _ in range(12):
        walk()
        walk("snmpbulkwalk", "-Cr1")
        walk("snmpbulkwalk", "-Cr3")
    growth = rss("agentx") - before
    assert procs["agentx"].poll() is None and growth < 4096, f"agent gone or grew by {growth} kB"
    assert stop("agentx") == 0, "SIGTERM did not end the subagent with status 0"

    # No region at all: empty tables, the subagent stays up.
    env["TARV_SHM_PREFIX"] += "none-"
    start("agentx", agentx, "--foreground", "--agentx-socket", f"{tmp}/agentx")
    time.sleep(1)
    assert walk() == {} and procs["agentx"].poll() is None, "without a region: rows, or the subagent ended"
    assert stop("agentx") == 0
    print("PASS")
finally:
    for name in list(procs):
        procs[name].kill()
        procs.pop(name).wait()
    for region in ("kelm-data", "kelm-chkp-data"):
        for prefix in (env["TARV_SHM_PREFIX"], env["TARV_SHM_PREFIX"].removesuffix("none-")):
            if os.path.exists(f"/dev/shm/{prefix}{region}"):
                os.unlink(f"/dev/shm/{prefix}{region}")
    shutil.rmtree(tmp, ignore_errors=True)
