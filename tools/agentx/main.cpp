// tarv-agentx: serves the switch's CFM configuration and MEP state from the
// OAM data region as the IEEE8021-CFM-MIB tables, an AgentX subagent of the
// master agent (snmpd). It reads the region through libtarv.so and never
// writes it.
#include <CLI/CLI.hpp>

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
// clang-format on

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/region_access.h"
#include "common/status.h"
#include "subagent.h"

extern "C" {
// The agent library's session to the master agent; null while it is not connected.
extern netsnmp_session* main_session;
}

namespace {

constexpr char kName[] = "tarv-agentx";
constexpr int kExitNoMaster = 1;

volatile std::sig_atomic_t stop_requested = 0;

void request_stop(int /*signal*/) { stop_requested = 1; }

constexpr char kFooter[] = R"(Exit status:
  0  stopped by SIGTERM or SIGINT
  1  the master agent cannot be reached at start-up
  2  usage error: unknown option, invalid prefix or ifIndex map line
  4  the ifIndex map cannot be read

Environment:
  TARV_SHM_PREFIX  shared-memory prefix when --prefix is not given

See tarv-agentx(8).)";

struct Settings {
    tarvtool::Options options;
    std::string socket;
    std::string ifindex_map;
    bool foreground = false;
    bool syslog = false;
    int ping_interval = 5;
};

void install_signal_handlers() {
    struct sigaction action {};
    action.sa_handler = request_stop;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART: the agent's select returns at once
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

int serve(const Settings& s) {
    tarvtool::prepare_platform(s.options);
    tarvagentx::IfIndexMap map =
        s.ifindex_map.empty() ? tarvagentx::IfIndexMap{} : tarvagentx::IfIndexMap::load(s.ifindex_map);

    if (s.syslog || !s.foreground)
        snmp_enable_syslog_ident(kName, LOG_DAEMON);
    else
        snmp_enable_stderrlog();

    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 1);
    if (!s.socket.empty()) netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, s.socket.c_str());
    netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_PING_INTERVAL, s.ping_interval);
    // No configuration files and no persistent state: everything comes from the command line.
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
    // Numeric OIDs only: no MIB module is parsed (the library reads the list
    // from MIBS), so none missing fills the log. Set before any thread exists.
    setenv("MIBS", "", 1);  // NOLINT(concurrency-mt-unsafe)

    init_agent(kName);
    tarvagentx::register_tables(s.options, std::move(map));
    init_snmp(kName);
    if (main_session == nullptr) {
        snmp_log(LOG_ERR, "cannot reach the master agent at %s\n",
                 s.socket.empty() ? "its default AgentX socket" : s.socket.c_str());
        snmp_shutdown(kName);
        return kExitNoMaster;
    }
    if (!s.foreground && daemon(0, 0) != 0) {
        snmp_log(LOG_ERR, "cannot run in the background: %s\n", tarvtool::error_text(errno).c_str());
        snmp_shutdown(kName);
        return tarvtool::kExitIo;
    }
    install_signal_handlers();
    snmp_log(LOG_INFO, "serving the CFM MIB from %s\n", tarvtool::object_name(tarvtool::kDataRegion).c_str());
    while (stop_requested == 0) agent_check_and_process(1);
    snmp_log(LOG_INFO, "stopped\n");
    snmp_shutdown(kName);
    return tarvtool::kExitOk;
}

int run(int argc, char** argv) {
    Settings s;
    CLI::App app("Serve the CFM configuration and MEP state of the OAM region as the IEEE8021-CFM-MIB, "
                 "an AgentX subagent of snmpd.",
                 kName);
    app.set_version_flag("--version", std::string(kName) + " " TARV_VERSION);
    app.add_option("--agentx-socket", s.socket, "The master agent's AgentX socket (default: net-snmp's, /var/agentx/master)")
        ->type_name("PATH");
    app.add_flag("--foreground", s.foreground, "Stay in the foreground and log to stderr");
    app.add_flag("--syslog", s.syslog, "Log to syslog also in the foreground");
    app.add_option("--prefix", s.options.prefix,
                   "Shared-memory prefix of the region (default: TARV_SHM_PREFIX, else none: the real region)");
    app.add_option("--ifindex-map", s.ifindex_map, "ifIndex of ports and LAGs: lines 'SLOT/PORT IFINDEX', 'lag N IFINDEX'")
        ->type_name("FILE");
    app.add_option("--ping-interval", s.ping_interval, "Seconds between AgentX pings; a lost master is sought as often")
        ->check(CLI::Range(1, 3600));
    app.footer(kFooter);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : tarvtool::kExitUsage;
    }
    return serve(s);
}

void report(const char* what) noexcept { (void)std::fprintf(stderr, "%s: %s\n", kName, what); }

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const tarvtool::Failure& e) {
        report(e.what());
        return e.code();
    } catch (const std::exception& e) {
        report(e.what());
    } catch (...) {
        report("unexpected failure");
    }
    return tarvtool::kExitIo;
}
