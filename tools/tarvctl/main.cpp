// tarvctl: inspect and diagnose the switch's OAM regions from the command
// line, through libtarv.so on the host platform.
#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "commands.h"
#include "common/region_access.h"
#include "common/status.h"
#include "style.h"

namespace {

constexpr char kFooter[] = R"(Exit status:
  0  done; check found nothing
  1  check found inconsistencies; port, vlan, vfi, lag: OAM does not use it; slot: the MEP does not fit
  2  usage error: unknown subcommand, option, class or value; a malformed SLOT/PORT, VID or id; a file set refuses
  3  no OAM data region in shared memory (create one with 'tarvctl init')
  4  a file or region cannot be read, written or mapped, or has the wrong size
  5  refused: demo on a region that is not empty (demo --force replaces it); simulate on the real
     region (without --force) or on one without MEPs

Environment:
  TARV_SHM_PREFIX  shared-memory prefix when --prefix is not given
  TARV_LAGS        LAG members, e.g. 5=1/1,4/1;6=1/2 (the host platform's, not the region's)
  NO_COLOR         no colour, even on a terminal

Every subcommand has --help. See tarvctl(1).)";

void error_line(const std::string& message) {
    fmt::print(stderr, "{} {}\n", tarvctl::paint(stderr, tarvctl::Tone::Bad, "tarvctl:"), message);
}

int run_command_line(int argc, char** argv) {
    using namespace tarvctl;
    Options options;
    CLI::App app("Inspect and diagnose the OAM regions of the switch through libtarv.", "tarvctl");
    app.fallthrough();  // the options below also after the subcommand
    app.require_subcommand(0, 1);  // none is reported below, unknown words as such
    app.set_version_flag("--version", "tarvctl " TARV_VERSION);
    app.add_option("--prefix", options.prefix,
                   "Shared-memory prefix of the regions (default: TARV_SHM_PREFIX, else none: the real regions)");
    app.add_option("--region", options.region_file,
                   "Read a saved region FILE instead of shared memory (read-only subcommands)")
        ->type_name("FILE");
    app.add_option("--color", options.color, "Colour: auto (on a terminal), always, never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    app.footer(kFooter);

    Commands commands;
    add_init(app, options, commands);
    add_demo(app, options, commands);
    add_show(app, options, commands);
    add_check(app, options, commands);
    add_get(app, options, commands);
    add_set(app, options, commands);
    add_queries(app, options, commands);
    add_snapshot(app, options, commands);
    add_watch(app, options, commands);
    add_simulate(app, options, commands);
    add_metrics(app, options, commands);

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& e) {
        return app.exit(e);  // --help, --version
    } catch (const CLI::ParseError& e) {
        choose_colour(options.color);
        error_line(e.what());
        fmt::print(stderr, "Run 'tarvctl --help' for more information.\n");
        return kExitUsage;
    }
    choose_colour(options.color);
    try {
        select_prefix(options);
        const auto* run = commands.chosen();
        if (run == nullptr) {
            error_line(
                "a subcommand is required: init, demo, show, port, vlan, vfi, lag, slot, check, get, set, snapshot, "
                "watch, simulate or metrics");
            fmt::print(stderr, "Run 'tarvctl --help' for more information.\n");
            return kExitUsage;
        }
        return (*run)();
    } catch (const Failure& f) {
        (void)std::fflush(stdout);
        error_line(f.what());
        return f.code();
    } catch (const std::exception& e) {
        (void)std::fflush(stdout);
        error_line(e.what());
        return kExitIo;
    }
}

}  // namespace

// Setting up the parser or printing an error can throw as well (no memory, a
// stderr that cannot be written): the program then ends as on an I/O failure.
int main(int argc, char** argv) {
    try {
        return run_command_line(argc, argv);
    } catch (...) {
        return tarvctl::kExitIo;
    }
}
