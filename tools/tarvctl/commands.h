// The subcommands. Each add_* function declares one subcommand (its
// arguments, options and help) on the application and registers what runs
// it; main parses the command line and runs the one given.
#ifndef TARVCTL_COMMANDS_H
#define TARVCTL_COMMANDS_H

#include <CLI/CLI.hpp>
#include <functional>
#include <utility>
#include <vector>

#include "common/region_access.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

// What runs each subcommand; the result is the exit status.
class Commands {
public:
    void add(CLI::App* command, std::function<int()> run) { runs_.emplace_back(command, std::move(run)); }
    // The runner of the deepest subcommand the command line named, or null.
    [[nodiscard]] const std::function<int()>* chosen() const {
        const std::function<int()>* found = nullptr;
        for (const auto& [command, run] : runs_)
            if (command->parsed()) found = &run;
        return found;
    }

private:
    std::vector<std::pair<CLI::App*, std::function<int()>>> runs_;
};

void add_init(CLI::App& app, const Options& options, Commands& commands);
void add_demo(CLI::App& app, const Options& options, Commands& commands);
void add_snapshot(CLI::App& app, const Options& options, Commands& commands);
void add_show(CLI::App& app, const Options& options, Commands& commands);
void add_check(CLI::App& app, const Options& options, Commands& commands);
void add_get(CLI::App& app, const Options& options, Commands& commands);
void add_set(CLI::App& app, const Options& options, Commands& commands);
void add_watch(CLI::App& app, const Options& options, Commands& commands);
void add_simulate(CLI::App& app, const Options& options, Commands& commands);
void add_metrics(CLI::App& app, const Options& options, Commands& commands);
// port, vlan, vfi, lag and slot.
void add_queries(CLI::App& app, const Options& options, Commands& commands);

}  // namespace tarvctl

#endif
