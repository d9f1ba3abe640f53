// tarvctl get CLASS [--hex|--json]: a class's transfer list as
// Tarv__GetConfig returns it.
//
// Both forms, described in transfer.h, carry every byte of the list; no
// terminator.
#include <fmt/format.h>

#include <memory>

#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "common/status.h"
#include "style.h"
#include "transfer.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

void add_get(CLI::App& app, const Options& options, Commands& commands) {
    struct Args {
        std::string class_name;
        bool hex = false;
        bool json = false;
    };
    auto args = std::make_shared<Args>();
    CLI::App* get = app.add_subcommand("get", "Print a class's transfer list");
    get->footer(
        "Print the transfer list of one class as Tarv__GetConfig returns it: every object's key and record.\n"
        "Hex (the default): one line per object, key bytes, a blank, record bytes.\n"
        "JSON: the fields the library interprets by name (MD, MaNet, MA component, MEP, MIP, throughput test and "
        "history), every other byte as hex in \"opaque<offset>\" runs.\n"
        "CLASS: " +
        class_choices());
    get->add_option("class", args->class_name, "Class id or name")->required();
    auto* hex_flag = get->add_flag("--hex", args->hex, "One line of hex per object (the default)");
    get->add_flag("--json", args->json, "JSON with named fields")->excludes(hex_flag);
    commands.add(get, [&options, args] {
        const ClassDef& c = parse_class(args->class_name);
        const DataRegion region = DataRegion::attach(options);
        const TransferList list = TransferList::read(c);
        if (args->json) {
            Json records = Json::array();
            for (std::size_t i = 0; i < list.size(); ++i) records.push_back(object_json(c, list.key(i), list.record(i)));
            print_json({{"class", c.id}, {"records", records}});
            return kExitOk;
        }
        for (std::size_t i = 0; i < list.size(); ++i) fmt::print("{}\n", hex_line(c, list.key(i), list.record(i)));
        return kExitOk;
    });
}

}  // namespace tarvctl
