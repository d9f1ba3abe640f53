// tarvctl set CLASS FILE: the inverse of `get`. Reads a class's transfer
// list in either form `get` prints (hex lines or JSON), appends the
// terminator and hands it to Tarv__SetConfig, which replaces everything the
// region holds for the class, as the configuration-database manager does.
#include <fmt/format.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>

#include "commands.h"
#include "objects.h"
#include "records.h"
#include "status.h"
#include "tarv/tarv.h"

namespace tarvctl {
namespace {

struct Entry {
    std::string where;  // "line 3", "record 2", for messages
    std::vector<std::uint8_t> key;
    std::vector<std::uint8_t> record;
};

[[noreturn]] void bad_input(const std::string& path, const std::string& where, const std::string& what) {
    throw Failure(kExitUsage, where.empty() ? fmt::format("'{}': {}", path, what)
                                            : fmt::format("'{}' {}: {}", path, where, what));
}

std::string read_input(const std::string& path) {
    if (path == "-") return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    std::ifstream in(path, std::ios::binary);
    if (!in) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    return text;
}

// One line per object as `get --hex` prints it; blank lines are skipped.
std::vector<Entry> parse_hex_lines(const ClassDef& c, const std::string& text, const std::string& path) {
    std::vector<Entry> entries;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::istringstream words(line);
        std::vector<std::string> parts{std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
        if (parts.empty()) continue;
        const std::string where = fmt::format("line {}", number);
        if (c.rule == Rule::NoStorage) {  // refused below, whatever the line holds
            entries.push_back(Entry{where, {}, {}});
            continue;
        }
        const std::size_t expected = c.key > 0 ? 2 : 1;
        if (parts.size() != expected)
            bad_input(path, where,
                      c.key > 0 ? "expected the key's hex digits, a blank, the record's hex digits"
                                : "expected the record's hex digits alone");
        Entry e{where, {}, {}};
        auto bytes_of = [&](const std::string& digits, std::uint32_t size, const char* what) {
            auto raw = parse_hex(digits);
            if (!raw) bad_input(path, where, fmt::format("the {} is not an even number of hex digits", what));
            if (raw->size() != size)
                bad_input(path, where, fmt::format("the {} has {} bytes, class {} needs {}", what, raw->size(), c.id, size));
            return std::move(*raw);
        };
        if (c.key > 0) e.key = bytes_of(parts[0], c.key, "key");
        e.record = bytes_of(parts.back(), c.record, "record");
        entries.push_back(std::move(e));
    }
    return entries;
}

// {"class": N, "records": [{"key": {...}, "record": {...}}, ...]} as `get
// --json` prints it.
std::vector<Entry> parse_json(const ClassDef& c, const std::string& text, const std::string& path) {
    Json doc;
    try {
        doc = Json::parse(text);
    } catch (const Json::parse_error& e) {
        std::string what = e.what();
        what.erase(0, what.find("] ") == std::string::npos ? 0 : what.find("] ") + 2);
        throw Failure(kExitUsage, fmt::format("'{}' is not valid JSON: {}", path, what));
    }
    if (!doc.is_object() || !doc.contains("records") || !doc.at("records").is_array())
        bad_input(path, "", "expected an object with a \"records\" array");
    if (doc.contains("class") && doc.at("class") != c.id)
        bad_input(path, "", fmt::format("holds class {}, not {}", doc.at("class").dump(), c.id));
    std::vector<Entry> entries;
    int number = 0;
    for (const Json& r : doc.at("records")) {
        const std::string where = fmt::format("record {}", ++number);
        try {
            if (!r.is_object() || !r.contains("record")) throw Failure(kExitUsage, "expected {\"key\": ..., \"record\": ...}");
            if (c.key > 0 && !r.contains("key")) throw Failure(kExitUsage, "the record has no \"key\"");
            Entry e{where, c.key > 0 ? key_from_json(c, r.at("key")) : std::vector<std::uint8_t>{},
                    record_from_json(c, r.at("record"))};
            entries.push_back(std::move(e));
        } catch (const Failure& f) {
            bad_input(path, where, f.what());
        }
    }
    return entries;
}

// The transfer list Tarv__SetConfig takes: the records back to back, then
// the terminator. Refuses what the library would pass over without a word:
// an all-zero key inside the list (it would end the list there) and records
// past the last slot of the packed classes.
std::vector<std::uint8_t> transfer_list(const ClassDef& c, const std::vector<Entry>& entries,
                                        const std::string& path) {
    if (c.rule == Rule::NoStorage && !entries.empty())
        bad_input(path, entries.front().where, fmt::format("class {} stores nothing", c.id));
    if (c.rule == Rule::Singleton && entries.size() != 1)
        throw Failure(kExitUsage,
                      fmt::format("'{}' holds {} records; class {} takes exactly one", path, entries.size(), c.id));
    if (c.placement == Placement::Packed && entries.size() > c.slots)
        bad_input(path, entries[c.slots].where, fmt::format("class {} holds at most {} records", c.id, c.slots));
    std::vector<std::uint8_t> list;
    for (const Entry& e : entries) {
        if (c.key > 0 && all_zero(e.key))
            bad_input(path, e.where, "an all-zero key would end the list here");
        list.insert(list.end(), e.key.begin(), e.key.end());
        list.insert(list.end(), e.record.begin(), e.record.end());
    }
    if (c.rule == Rule::List || (c.rule == Rule::History && entries.size() < c.slots)) list.resize(list.size() + c.key);
    if (list.empty()) list.push_back(0);  // class 580: a valid pointer, never read
    return list;
}

std::string class_text(const ClassDef& c) {
    return c.name.empty() ? fmt::format("class {}", c.id) : fmt::format("{} ({})", c.name, c.id);
}

int set(const Options& options, const ClassDef& c, const std::string& path) {
    refuse_region_file(options, "set");
    const std::string text = read_input(path);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    const std::vector<Entry> entries = first != std::string::npos && (text[first] == '{' || text[first] == '[')
                                           ? parse_json(c, text, path)
                                           : parse_hex_lines(c, text, path);
    const std::vector<std::uint8_t> list = transfer_list(c, entries, path);
    require_region(kDataRegion);
    Tarv__StorOpen();
    const std::int32_t result = Tarv__SetConfig(c.id, list.data());
    if (result == TARV_SET_CONFIG_NOT_ATTACHED)
        throw Failure(kExitIo, fmt::format("cannot attach {} for writing", object_name(kDataRegion)));
    if (result == TARV_SET_CONFIG_REFUSED)
        throw Failure(kExitUsage, fmt::format("'{}': the library refused the list, the region is unchanged: a record "
                                              "addresses no slot of {} (the trace above names it)",
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
