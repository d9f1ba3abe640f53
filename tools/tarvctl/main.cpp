// tarvctl: inspect and diagnose the switch's OAM regions from the command
// line, through libtarv.so on the host platform.
#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <string_view>
#include <system_error>
#include <vector>

#include "commands.h"
#include "common/region_access.h"
#include "common/status.h"
#include "style.h"

namespace {

constexpr char kFooter[] = R"(Exit status:
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

Every subcommand has --help. See tarvctl(1).)";

void error_line(const std::string& message) {
    fmt::print(stderr, "{} {}\n", tarvctl::paint(stderr, tarvctl::Tone::Bad, "tarvctl:"), message);
}

void usage_hint() { fmt::print(stderr, "Run 'tarvctl --help' for more information.\n"); }

// Edits (insertions, deletions, substitutions, swaps of neighbours) that turn
// `a` into `b`.
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

std::vector<std::string> subcommand_names(CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(sub->get_name());
    return names;
}

// "unknown subcommand 'shwo': did you mean 'show'?" for a word that is no
// subcommand, or "" when the extra words follow a subcommand.
std::string unknown_subcommand(CLI::App& app) {
    if (!app.get_subcommands().empty()) return "";
    const std::vector<std::string> extras = app.remaining();
    const auto word =
        std::find_if(extras.begin(), extras.end(), [](const std::string& w) { return w.rfind('-', 0) != 0; });
    if (word == extras.end()) return "";
    const std::vector<std::string> names = subcommand_names(app);
    std::string nearest;
    std::size_t best = 3;  // more edits than two is a different word
    for (const std::string& name : names)
        if (const std::size_t d = edit_distance(*word, name); d < best && d < name.size()) {
            best = d;
            nearest = name;
        }
    if (!nearest.empty()) return fmt::format("unknown subcommand '{}': did you mean '{}'?", *word, nearest);
    return fmt::format("unknown subcommand '{}': give one of {}", *word, fmt::join(names, ", "));
}

int run_command_line(int argc, char** argv) {
    using namespace tarvctl;
    Options options;
    CLI::App app("Inspect and diagnose the OAM regions of the switch through libtarv.", "tarvctl");
    app.fallthrough();  // the options below also after the subcommand
    app.require_subcommand(0, 1);  // none is reported below, unknown words as such
    app.set_version_flag("--version", "tarvctl " TARV_VERSION);
    app.add_option("--prefix", options.prefix,
                   "Shared-memory prefix of the regions (default: TARV_SHM_PREFIX, else none: the real regions; "
                   "'' for none)");
    app.add_option("--region", options.region_file,
                   "Read a saved region FILE instead of shared memory (read-only subcommands)")
        ->type_name("FILE");
    app.add_option("--color", options.color, "Colour: auto (on a terminal), always, never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    app.add_flag("--trace", options.trace, "Print the library's error and warning traces on standard error");
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
        const std::string unknown = dynamic_cast<const CLI::ExtrasError*>(&e) != nullptr ? unknown_subcommand(app) : "";
        error_line(unknown.empty() ? e.what() : unknown);
        usage_hint();
        return kExitUsage;
    }
    choose_colour(options.color);
    prepare_platform(options);
    const auto* run = commands.chosen();
    if (run == nullptr) {
        error_line(fmt::format("a subcommand is required: {}", fmt::join(subcommand_names(app), ", ")));
        usage_hint();
        return kExitUsage;
    }
    return (*run)();
}

// Prints a failure's message; a failure without one (a reader of standard
// output that went away) ends the command quietly.
int report(const tarvtool::Failure& f) {
    if (*f.what() != '\0') error_line(f.what());
    return f.code();
}

// Runs the command, then makes sure that what it printed reached standard
// output: lost output never ends with status 0.
int run_and_flush(int argc, char** argv) {
    using namespace tarvctl;
    int status = kExitIo;
    int lost = 0;  // errno of a print that failed half-way
    try {
        status = run_command_line(argc, argv);
    } catch (const Failure& f) {
        status = report(f);
        // A subcommand's own flush_stdout has told of lost output already.
        if (std::ferror(stdout) != 0 && status != kExitOk) return status;
    } catch (const std::system_error& e) {
        // fmt's report of a print to standard output that failed half-way
        // is told below; one to another file is told here.
        if (std::ferror(stdout) != 0)
            lost = e.code().value();
        else
            error_line(e.what());
    } catch (const std::exception& e) {
        error_line(e.what());
    }
    try {
        if (lost != 0) throw_lost_output(lost);
        flush_stdout();  // CLI11's help too: std::cout writes through stdout's buffer
        if (!std::cout.flush()) throw_lost_output(EIO);
    } catch (const Failure& f) {
        return report(f);
    }
    return status;
}

}  // namespace

// Setting up the parser or printing an error can throw as well (no memory, a
// stderr that cannot be written): the program then ends as on an I/O failure.
int main(int argc, char** argv) {
    try {
        return run_and_flush(argc, argv);
    } catch (...) {
        return tarvctl::kExitIo;
    }
}
