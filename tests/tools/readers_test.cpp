// tarvctl's readers of what people and files hand it, and what it makes of
// them: hex, addresses and texts; JSON keys and records; transfer lists in
// the forms `get` prints and as Tarv__SetConfig takes them; the numbers of
// the query subcommands and what they work out beside the library's
// answers; the alarm lines of `watch`. Each refusal is a usage error that
// names what is wrong; the transcripts show the same paths end to end.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tarvctl/args.h"
#include "tarvctl/bytes.h"
#include "tarvctl/query.h"
#include "tarvctl/records.h"
#include "tarvctl/show.h"
#include "tarvctl/status.h"
#include "tarvctl/transfer.h"

namespace {

using namespace tarvctl;
using ByteList = std::vector<std::uint8_t>;

// The usage error `run` throws, or nothing when it returns.
std::optional<std::string> usage_error(const std::function<void()>& run) {
    try {
        run();
    } catch (const Failure& f) {
        EXPECT_EQ(f.code(), kExitUsage) << f.what();
        return f.what();
    }
    return std::nullopt;
}

// ------------------------------------------------------------ byte texts

struct ParseRow {
    std::string text;
    std::optional<ByteList> bytes;  // nothing: refused
};

TEST(TarvctlBytes, HexAndMacAddresses) {
    const ParseRow hex_rows[] = {
        {"", ByteList{}},           {"0aFf", ByteList{0x0a, 0xff}}, {"0", std::nullopt},
        {"0g", std::nullopt},       {" 0a", std::nullopt},
    };
    for (const ParseRow& r : hex_rows) EXPECT_EQ(parse_hex(r.text), r.bytes) << r.text;
    const ParseRow mac_rows[] = {
        {"02:54:41:52:57:0F", ByteList{0x02, 0x54, 0x41, 0x52, 0x57, 0x0f}},
        {"02-54-41-52-57-03", std::nullopt},
        {"02:54:41:52:57", std::nullopt},
        {"02:54:41:52:57:033", std::nullopt},
        {"02:54:41:52:5:703", std::nullopt},
        {"02:54:41:52:57:0g", std::nullopt},
    };
    for (const ParseRow& r : mac_rows) EXPECT_EQ(parse_mac(r.text), r.bytes) << r.text;
}

TEST(TarvctlBytes, ExactTextsCarryEveryByte) {
    ByteList field(256);
    for (std::size_t i = 0; i < field.size(); ++i) field[i] = static_cast<std::uint8_t>(i);  // a zero first
    EXPECT_EQ(parse_exact_text(exact_text(field)), field);
    const ParseRow rows[] = {
        {"\xc2\x80", ByteList{0x80}},  {"\xc3\xbf", ByteList{0xff}}, {"\xc4\x80", std::nullopt},  // U+0100
        {"\xc3", std::nullopt},        {"\xc3\x41", std::nullopt},   {"\xe2\x82\xac", std::nullopt},
    };
    for (const ParseRow& r : rows) EXPECT_EQ(parse_exact_text(r.text), r.bytes) << r.text;
}

// ------------------------------------------------------------ JSON records

struct JsonRow {
    std::uint32_t class_id;
    const char* member;  // of the record, or "key.NAME"
    Json value;          // null: the member is removed
    const char* error;   // "": accepted
};

TEST(TarvctlRecords, JsonMembersWithinTheirFields) {
    const JsonRow rows[] = {
        // Integers up to their width, unsigned.
        {532, "bySlot", 255, ""},
        {532, "bySlot", 256, "\"bySlot\" must be a whole number from 0 to 255, not 256"},
        {532, "wMepId", 65535, ""},
        {532, "wMepId", 65536, "from 0 to 65535"},
        {532, "eDirection", -1, "not -1"},
        {532, "eDirection", "1", "not \"1\""},
        // Texts up to their field, one byte per character.
        {531, "acMdName", "ABCDEFGHIJKLMNOPQRST", ""},
        {531, "acMdName", "ABCDEFGHIJKLMNOPQRSTU", "\"acMdName\" has 21 characters, its field 20"},
        {531, "acMdName", 7, "\"acMdName\" must be a string"},
        {532, "abyMacAddress", "02:54:41:52:57", "six hex bytes"},
        // Opaque runs: hex, inside the record, each byte once.
        {531, "opaque52", "00000000000000000000000000", ""},
        {531, "opaque52", "0000000000000000000000000000", "\"opaque52\" runs past the record's 65 bytes"},
        {531, "opaque52", "000000000000000000000000", "does not give byte 64 (of 65)"},
        {531, "opaque52", "0", "even number of hex digits"},
        {531, "opaque52", "", "even number of hex digits"},
        {531, "opaque52", nullptr, "does not give byte 52"},
        {531, "opaque47", "00", "\"opaque47\" gives byte 47 a second time"},
        {531, "opaqueX", "00", "unknown record member \"opaqueX\""},
        {531, "eMdLevl", 1, "unknown record member \"eMdLevl\" for class 531"},
        // Keys: their identifiers, each within its width.
        {674, "key.bySessionId", 255, ""},
        {674, "key.bySessionId", 256, "from 0 to 255"},
        {531, "key.wClass", nullptr, "the key lacks \"wClass\""},
        {531, "key.lId2", 1, "unknown key member \"lId2\" for class 531"},
        {652, "key.wClass", 652, "unknown key member \"wClass\" for class 652"},
    };
    for (const JsonRow& r : rows) {
        const ClassDef& c = class_of(r.class_id);
        Json key = key_json(c, ByteList(c.key));
        Json record = record_json(c, ByteList(c.record));
        std::string member = r.member;
        Json& target = member.rfind("key.", 0) == 0 ? key : record;
        if (&target == &key) member.erase(0, 4);
        if (r.value.is_null())
            target.erase(member);
        else
            target[member] = r.value;
        const auto error = usage_error([&] {
            (void)key_from_json(c, key);
            (void)record_from_json(c, record);
        });
        if (*r.error == '\0') {
            EXPECT_EQ(error, std::nullopt) << r.member;
        } else {
            EXPECT_NE(error.value_or("accepted").find(r.error), std::string::npos)
                << r.member << ": " << error.value_or("accepted");
        }
    }
}

// ------------------------------------------------------------ transfer lists

std::vector<TransferEntry> entries(const ClassDef& c, std::size_t count) {
    std::vector<TransferEntry> list;
    for (std::size_t i = 0; i < count; ++i) {
        const auto id = static_cast<std::uint32_t>(i + 1);
        list.push_back({"record " + std::to_string(id), make_key(c, {id, id, id, id}, static_cast<std::uint8_t>(id)),
                        ByteList(c.record, 0xab)});
    }
    return list;
}

// What `get` prints for a list, in either form, reads back as the same
// objects, for every class and whatever the bytes: all zero but a key's
// last byte, all 0xFF, or arbitrary.
TEST(TarvctlTransfer, WhatGetPrintsReadsBackForEveryClass) {
    std::mt19937 random(531);
    for (const ClassDef& c : classes()) {
        if (c.rule == Rule::NoStorage) continue;
        const std::size_t count = c.rule == Rule::Singleton ? 1 : 3;
        for (int pattern = 0; pattern < 3; ++pattern) {
            std::vector<TransferEntry> objects;
            std::string hex_text;
            Json records = Json::array();
            for (std::size_t i = 0; i < count; ++i) {
                ByteList key(c.key);
                ByteList record(c.record);
                for (ByteList* bytes : {&key, &record})
                    for (std::uint8_t& b : *bytes)
                        b = pattern == 0 ? 0 : pattern == 1 ? 0xff : static_cast<std::uint8_t>(random());
                if (!key.empty()) key.back() |= 1;  // a key, not the terminator
                hex_text += hex_line(c, key, record) + "\n";
                records.push_back(object_json(c, key, record));
                objects.push_back({"", key, record});
            }
            const Json doc = {{"class", c.id}, {"records", records}};
            for (const std::string& text : {hex_text, doc.dump(2)}) {
                const std::vector<TransferEntry> read = parse_transfer(c, text, "f");
                ASSERT_EQ(read.size(), count) << c.id;
                for (std::size_t i = 0; i < count; ++i) {
                    EXPECT_EQ(read[i].key, objects[i].key) << c.id << " pattern " << pattern;
                    EXPECT_EQ(read[i].record, objects[i].record) << c.id << " pattern " << pattern;
                }
            }
        }
    }
}

struct ListRow {
    std::uint32_t class_id;
    std::size_t count;
    std::size_t terminator;  // zero bytes after the records
    const char* error;       // "": accepted
};

TEST(TarvctlTransfer, ListsEndAsTheirClassNeeds) {
    const ListRow rows[] = {
        {531, 0, 6, ""},
        {531, 2, 6, ""},
        {674, 8, 15, ""},
        {571, 32, 14, ""},
        {571, 33, 0, "record 33: class 571 holds at most 32 records"},
        {652, 3, 4, ""},
        {652, 101, 0, ""},
        {652, 102, 0, "record 102: class 652 holds at most 101 records"},
        {519, 1, 0, ""},
        {519, 0, 0, "holds 0 records; class 519 takes exactly one"},
        {519, 2, 0, "holds 2 records; class 519 takes exactly one"},
        {580, 1, 0, "record 1: class 580 stores nothing"},
    };
    for (const ListRow& r : rows) {
        const ClassDef& c = class_of(r.class_id);
        const std::vector<TransferEntry> given = entries(c, r.count);
        std::vector<std::uint8_t> list;
        const auto error = usage_error([&] { list = transfer_list(c, given, "f"); });
        if (*r.error != '\0') {
            EXPECT_NE(error.value_or("accepted").find(r.error), std::string::npos) << r.class_id << " x" << r.count;
            continue;
        }
        ASSERT_EQ(error, std::nullopt) << r.class_id << " x" << r.count;
        const std::size_t records = r.count * c.transfer();
        ASSERT_EQ(list.size(), records + r.terminator) << r.class_id << " x" << r.count;
        for (std::size_t i = 0; i < r.count; ++i)
            EXPECT_EQ(ByteList(list.begin() + static_cast<std::ptrdiff_t>(i * c.transfer()),
                               list.begin() + static_cast<std::ptrdiff_t>(i * c.transfer() + c.key)),
                      given[i].key);
        EXPECT_TRUE(all_zero(Bytes(list).subspan(records))) << r.class_id;
    }
}

TEST(TarvctlTransfer, AllZeroKeyInsideAListIsRefused) {
    const ClassDef& md = class_of(531);
    std::vector<TransferEntry> given = entries(md, 3);
    given[1].key.assign(md.key, 0);
    EXPECT_EQ(usage_error([&] { (void)transfer_list(md, given, "f"); }),
              "'f' record 2: an all-zero key would end the list here");
}

struct TextRow {
    std::string text;
    std::size_t objects;
    const char* error;  // "": accepted
};

TEST(TarvctlTransfer, FilesInEitherForm) {
    const ClassDef& md = class_of(531);
    const std::string line = "130201000000 " + std::string(2 * md.record, '0');
    const TextRow rows[] = {
        {"", 0, ""},
        {"\n \n" + line + "\r\n\n" + line + "\n", 2, ""},
        {line + "\n\n1302010000 00", 0, "'f' line 3: the key has 5 bytes, class 531 needs 6"},
        {line + "\n" + line.substr(13), 0, "'f' line 2: expected the key's hex digits, a blank"},
        {line + " 00", 0, "'f' line 1: expected the key's hex digits"},
        {" \n {\"class\": 531, \"records\": []}", 0, ""},
        {"[]", 0, "'f': expected an object with a \"records\" array"},
        {"{\"records\": [{\"key\": {\"wClass\": 531, \"lId1\": 1}}]}", 0,
         "'f' record 1: expected {\"key\": ..., \"record\": ...}"},
        {"{\"class\": 574, \"records\": []}", 0, "'f': holds class 574, not 531"},
        {"{\"records\": [", 0, "'f' is not valid JSON: "},
    };
    for (const TextRow& r : rows) {
        std::vector<TransferEntry> parsed;
        const auto error = usage_error([&] { parsed = parse_transfer(md, r.text, "f"); });
        if (*r.error == '\0') {
            EXPECT_EQ(error, std::nullopt) << r.text;
            EXPECT_EQ(parsed.size(), r.objects) << r.text;
        } else {
            EXPECT_EQ(error.value_or("accepted").rfind(r.error, 0), 0u) << error.value_or("accepted");
        }
    }
}

// ------------------------------------------------------------ numbers

TEST(TarvctlArgs, SlotsPortsIdsAndRanges) {
    struct Row {
        std::function<void()> parse;
        const char* text;
        bool ok;
    };
    auto slot_port = [](const char* t) { return [t] { (void)parse_slot_port(t); }; };
    auto range = [](const char* t) { return [t] { (void)parse_range(t, "--range"); }; };
    auto vid = [](const char* t) { return [t] { (void)parse_number(t, 1, 4094, "VID"); }; };
    const Row rows[] = {
        {slot_port("0/0"), "0/0", true},       {slot_port("255/255"), "255/255", true},
        {slot_port("256/1"), "256/1", false},  {slot_port("1/256"), "1/256", false},
        {slot_port("1"), "1", false},          {slot_port("1/"), "1/", false},
        {slot_port("/4"), "/4", false},        {slot_port("1/4/5"), "1/4/5", false},
        {slot_port("-1/4"), "-1/4", false},    {slot_port(" 1/4"), " 1/4", false},
        {range("0-65535"), "0-65535", true},   {range("9-2"), "9-2", true},
        {range("1-65536"), "1-65536", false},  {range("1"), "1", false},
        {range("-5"), "-5", false},            {range("1-2-3"), "1-2-3", false},
        {vid("1"), "1", true},                 {vid("4094"), "4094", true},
        {vid("0"), "0", false},                {vid("4095"), "4095", false},
        {vid("+1"), "+1", false},              {vid("1x"), "1x", false},
        {vid(""), "", false},
    };
    for (const Row& r : rows) EXPECT_EQ(!usage_error(r.parse).has_value(), r.ok) << "'" << r.text << "'";
    const IdRange empty = parse_range("9-2", "--range");
    EXPECT_EQ(empty.low, 9u);
    EXPECT_EQ(empty.high, 2u);
}

// ------------------------------------------------------------ queries

Mep mep_on(std::uint32_t md, std::uint32_t ma, std::uint32_t mep, std::uint16_t vid, std::uint8_t slot,
           std::uint8_t port) {
    return Mep{md, ma, mep, 100, 1, vid, "", slot, port, 0};
}

// The ids asked about on a port: its MEPs' own, and those of the
// components of the MAs of its MEPs and MIPs; never 0, never another port's.
TEST(TarvctlQueries, IdsOfAPort) {
    Configuration c;
    c.comps = {{1, 1, 1, 1, 100}, {1, 1, 2, 2, 200}, {2, 2, 3, 5, 7}, {3, 3, 4, 1, 0}, {4, 4, 5, 1, 400}};
    c.meps = {mep_on(1, 1, 1, 101, 1, 4), mep_on(3, 3, 2, 0, 1, 4), mep_on(4, 4, 3, 401, 1, 5),
              mep_on(4, 4, 4, 402, 4, 1)};
    c.mips = {{2, 2, 1, "", 1, 4}, {4, 4, 2, "", 5, 4}};
    EXPECT_EQ(ids_on_port(c, 1, 4), (std::set<std::uint32_t>{7, 100, 101, 200}));
    EXPECT_EQ(ids_on_port(c, 1, 5), (std::set<std::uint32_t>{400, 401}));
    EXPECT_EQ(ids_on_port(c, 9, 9), std::set<std::uint32_t>{});
}

// The ports through which a MEP loads a slot, and the units per port.
TEST(TarvctlQueries, ResourceUnitsOfAMep) {
    struct Row {
        std::uint8_t mep_slot, mep_port;
        LagMembers members;
        std::uint8_t slot;
        std::uint32_t ports;
    };
    const Row rows[] = {
        {1, 3, {}, 1, 1},
        {1, 3, {}, 4, 0},
        {2, 5, {}, 2, 0},                                 // a LAG without members, never physical slot 2
        {2, 5, {{2, 5}}, 2, 1},                           // a member on slot 2 counts
        {2, 5, {{1, 1}, {4, 1}, {1, 2}}, 1, 2},
        {2, 5, {{1, 0}, {0, 1}, {1, 7}}, 1, 1},           // empty entries skipped
        {2, 5, LagMembers(9, {1, 1}), 1, 9},
        {2, 5, {{1, 1}, {4, 1}}, 3, 0},
    };
    for (const Row& r : rows)
        EXPECT_EQ(ports_on_slot(mep_on(1, 1, 1, 100, r.mep_slot, r.mep_port), r.members, r.slot), r.ports)
            << int{r.mep_slot} << "/" << int{r.mep_port} << " on slot " << int{r.slot};
    EXPECT_EQ(mep_weight(1), 1u);
    EXPECT_EQ(mep_weight(2), 3u);
    EXPECT_EQ(mep_weight(3), 1u);
}

// ------------------------------------------------------------ watch

TEST(TarvctlWatch, AlarmBitsRaisedThenCleared) {
    struct Row {
        std::uint16_t before, now;
        std::vector<std::string> lines;
    };
    const Row rows[] = {
        {0x0005, 0x0005, {}},
        {0x0000, 0x0005, {"* MEP 1/1/2: alarm bits 0, 2 raised"}},
        {0x0005, 0x0004, {"* MEP 1/1/2: alarm bit 0 cleared"}},
        {0x0001, 0x8000, {"* MEP 1/1/2: alarm bit 15 raised", "* MEP 1/1/2: alarm bit 0 cleared"}},
        {0xffff, 0x0000, {"* MEP 1/1/2: alarm bits 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15 cleared"}},
    };
    for (const Row& r : rows) EXPECT_EQ(alarm_changes("MEP 1/1/2", r.before, r.now), r.lines) << r.before;
}

}  // namespace
