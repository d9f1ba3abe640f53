// tarvctl set CLASS FILE: the inverse of `get`. Reads a class's transfer
// list in either form `get` prints (hex lines or JSON), appends the
// terminator and hands it to Tarv__SetConfig, which replaces everything the
// region holds for the class, as the configuration-database manager does.
#include <fmt/format.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "common/status.h"
#include "tarv/tarv.h"
#include "transfer.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

std::string read_input(const std::string& path) {
    if (path == "-") return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    std::ifstream in(path, std::ios::binary);
    if (!in) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    return text;
}

std::string class_text(const ClassDef& c) {
    return c.name.empty() ? fmt::format("class {}", c.id) : fmt::format("{} ({})", c.name, c.id);
}

int set(const Options& options, const ClassDef& c, const std::string& path) {
    refuse_region_file(options, "set");
    const std::string text = read_input(path);
    const std::vector<TransferEntry> entries = parse_transfer(c, text, path);
    const std::vector<std::uint8_t> list = transfer_list(c, entries, path);
    require_region(kDataRegion);
    Tarv__StorOpen();
    const std::int32_t result = Tarv__SetConfig(c.id, list.data());
    if (result == TARV_SET_CONFIG_NOT_ATTACHED)
        throw Failure(kExitIo, fmt::format("cannot attach {} for writing", object_name(kDataRegion)));
    if (result == TARV_SET_CONFIG_REFUSED)
        throw Failure(kExitUsage, fmt::format("'{}': the library refused the list, the region is unchanged: a record "
                                              "addresses no slot of {} (--trace shows the library's error trace "
                                              "naming it)",
                                              path, class_text(c)));
    fmt::print("{}: {} record{} written to {}\n", class_text(c), entries.size(), entries.size() == 1 ? "" : "s",
               object_name(kDataRegion));
    if (c.id == cls::kMep)
        fmt::print(stderr,
                   "tarvctl: note: a MEP write keys one empty bandwidth notification per MEP; write class bwn "
                   "after it\n");
    if (c.id == 673 && entries.front().record[0] == 0)
        fmt::print(stderr, "tarvctl: note: class 673 keeps its stored value when the first byte given is 0\n");
    return kExitOk;
}

}  // namespace

void add_set(CLI::App& app, const Options& options, Commands& commands) {
    struct Args {
        std::string class_name;
        std::string file;
    };
    auto args = std::make_shared<Args>();
    CLI::App* cmd = app.add_subcommand("set", "Replace a class in the region by a transfer list");
    cmd->footer(
        "Replace everything the region holds for one class by the objects in FILE, through Tarv__SetConfig,\n"
        "as the configuration-database manager does. FILE is in either form 'tarvctl get' prints: hex lines,\n"
        "or JSON when it starts with '{' or '['; '-' reads standard input. The terminator is appended. The library\n"
        "derives what it always derives: MEP and MIP MAC addresses, companion keys, a throughput test's\n"
        "enable status and derived value. A MEP write keys an empty bandwidth notification per MEP: write\n"
        "class bwn after class mep.\n"
        "Refused with the region unchanged (exit status 2): a malformed file, an all-zero key inside the\n"
        "list, more records than a packed class holds, a record whose instance or session id addresses no\n"
        "slot.\n"
        "CLASS: " +
        class_choices());
    cmd->add_option("class", args->class_name, "Class id or name")->required();
    cmd->add_option("file", args->file, "Transfer list, as 'tarvctl get' prints it; - for standard input")
        ->required();
    commands.add(cmd, [&options, args] { return set(options, parse_class(args->class_name), args->file); });
}

}  // namespace tarvctl
