#include "transfer.h"

#include <fmt/format.h>

#include <iterator>
#include <sstream>

#include "common/records.h"
#include "common/status.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

[[noreturn]] void bad_input(const std::string& path, const std::string& where, const std::string& what) {
    throw Failure(kExitUsage, where.empty() ? fmt::format("'{}': {}", path, what)
                                            : fmt::format("'{}' {}: {}", path, where, what));
}

// One line per object as `get --hex` prints it; blank lines are skipped.
std::vector<TransferEntry> parse_hex_lines(const ClassDef& c, const std::string& text, const std::string& path) {
    std::vector<TransferEntry> entries;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::istringstream words(line);
        std::vector<std::string> parts{std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
        // cppcheck-suppress knownConditionTrueFalse ; the braces take the words, not a list of two iterators
        if (parts.empty()) continue;
        const std::string where = fmt::format("line {}", number);
        if (c.rule == Rule::NoStorage) {  // refused below, whatever the line holds
            entries.push_back(TransferEntry{where, {}, {}});
            continue;
        }
        const std::size_t expected = c.key > 0 ? 2 : 1;
        if (parts.size() != expected)
            bad_input(path, where,
                      c.key > 0 ? "expected the key's hex digits, a blank, the record's hex digits"
                                : "expected the record's hex digits alone");
        TransferEntry e{where, {}, {}};
        auto bytes_of = [&](const std::string& digits, std::uint32_t size, const char* what) {
            auto raw = parse_hex(digits);
            if (!raw) bad_input(path, where, fmt::format("the {} is not an even number of hex digits", what));
            if (raw->size() != size)
                bad_input(path, where,
                          fmt::format("the {} has {} bytes, class {} needs {}", what, raw->size(), c.id, size));
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
std::vector<TransferEntry> parse_json(const ClassDef& c, const std::string& text, const std::string& path) {
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
    std::vector<TransferEntry> entries;
    int number = 0;
    for (const Json& r : doc.at("records")) {
        const std::string where = fmt::format("record {}", ++number);
        try {
            if (!r.is_object() || !r.contains("record"))
                throw Failure(kExitUsage, R"(expected {"key": ..., "record": ...})");
            if (c.key > 0 && !r.contains("key")) throw Failure(kExitUsage, "the record has no \"key\"");
            TransferEntry e{where, c.key > 0 ? key_from_json(c, r.at("key")) : std::vector<std::uint8_t>{},
                    record_from_json(c, r.at("record"))};
            entries.push_back(std::move(e));
        } catch (const Failure& f) {
            bad_input(path, where, f.what());
        }
    }
    return entries;
}

}  // namespace

std::string hex_line(const ClassDef& c, Bytes key, Bytes record) {
    return c.key > 0 ? hex(key) + " " + hex(record) : hex(record);
}

Json object_json(const ClassDef& c, Bytes key, Bytes record) {
    Json j = Json::object();
    if (c.key > 0) j["key"] = key_json(c, key);
    j["record"] = record_json(c, record);
    return j;
}

std::vector<TransferEntry> parse_transfer(const ClassDef& c, const std::string& text, const std::string& path) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    const bool json = first != std::string::npos && (text[first] == '{' || text[first] == '[');
    return json ? parse_json(c, text, path) : parse_hex_lines(c, text, path);
}

std::vector<std::uint8_t> transfer_list(const ClassDef& c, const std::vector<TransferEntry>& entries,
                                        const std::string& path) {
    if (c.rule == Rule::NoStorage && !entries.empty())
        bad_input(path, entries.front().where, fmt::format("class {} stores nothing", c.id));
    if (c.rule == Rule::Singleton && entries.size() != 1)
        throw Failure(kExitUsage,
                      fmt::format("'{}' holds {} records; class {} takes exactly one", path, entries.size(), c.id));
    if (c.placement == Placement::Packed && entries.size() > c.slots)
        bad_input(path, entries[c.slots].where, fmt::format("class {} holds at most {} records", c.id, c.slots));
    std::vector<std::uint8_t> list;
    for (const TransferEntry& e : entries) {
        if (c.key > 0 && all_zero(e.key))
            bad_input(path, e.where, "an all-zero key would end the list here");
        list.insert(list.end(), e.key.begin(), e.key.end());
        list.insert(list.end(), e.record.begin(), e.record.end());
    }
    if (c.rule == Rule::List || (c.rule == Rule::History && entries.size() < c.slots)) list.resize(list.size() + c.key);
    if (list.empty()) list.push_back(0);  // class 580: a valid pointer, never read
    return list;
}

}  // namespace tarvctl
