// tarvctl's readers of what people and files hand it, and what it makes of
// them: hex, addresses and texts; JSON keys and records; transfer lists in
// the forms `get` prints and as Tarv__SetConfig takes them; the numbers of
// the query subcommands and what they work out beside the library's
// answers; the alarm lines of `watch`. Each refusal is a usage error that
// names what is wrong; the transcripts show the same paths end to end.
#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tarvctl/args.h"
#include "common/bytes.h"
#include "tarvctl/query.h"
#include "common/records.h"
#include "common/region_diff.h"
#include "common/snapshot_file.h"
#include "tarvctl/show.h"
#include "common/status.h"
#include "tarvctl/transfer.h"

namespace {

using namespace tarvctl;
using namespace tarvtool;
using ByteList = std::vector<std::uint8_t>;

// The usage error `run` throws, or "" when it returns.
std::string usage_error(const std::function<void()>& run) {
    try {
        run();
    } catch (const Failure& f) {
        EXPECT_EQ(f.code(), kExitUsage) << f.what();
        return f.what();
    }
    return "";
}
// That `run` is accepted when `want` is empty, else refused with an error
// that contains `want`.
void expect_usage(const std::function<void()>& run, const char* want, const std::string& row) {
    const std::string error = usage_error(run);
    if (*want == '\0')
        EXPECT_EQ(error, "") << row;
    else
        EXPECT_NE(error.find(want), std::string::npos) << row << ": " << (error.empty() ? "accepted" : error);
}

// ------------------------------------------------------------ byte texts

TEST(TarvctlBytes, HexAddressesAndExactTexts) {
    ByteList every(256);
    std::iota(every.begin(), every.end(), std::uint8_t{0});  // a zero first
    EXPECT_EQ(parse_exact_text(exact_text(every)), every);
    struct Row {
        std::optional<ByteList> (*parse)(std::string_view);
        std::string text;
        std::optional<ByteList> bytes;  // nothing: refused
    };
    const Row rows[] = {
        {parse_hex, "", ByteList{}},
        {parse_hex, "0aFf", ByteList{0x0a, 0xff}},
        {parse_hex, "0", std::nullopt},
        {parse_hex, "0g", std::nullopt},
        {parse_mac, "02:54:41:52:57:0F", ByteList{0x02, 0x54, 0x41, 0x52, 0x57, 0x0f}},
        {parse_mac, "02:54:41:52:57", std::nullopt},
        {parse_mac, "02:54:41:52:57:03:", std::nullopt},
        {parse_mac, "02:54:41:52:57:0g", std::nullopt},
        {parse_exact_text, "\xc2\x80", ByteList{0x80}},
        {parse_exact_text, "\xc3\xbf", ByteList{0xff}},
        {parse_exact_text, "\xc4\x80", std::nullopt},  // U+0100
        {parse_exact_text, "\xc3", std::nullopt},
        {parse_exact_text, "\xc3\x41", std::nullopt},
    };
    for (const Row& r : rows) EXPECT_EQ(r.parse(r.text), r.bytes) << r.text;
}

// A name's bytes for a terminal (escaped) and for JSON (UTF-8, U+FFFD for
// each invalid byte, and then its bytes in hex beside it).
TEST(TarvctlBytes, NamesForPeopleAndJson) {
    const std::string bad = "\xef\xbf\xbd";  // U+FFFD
    struct Row {
        std::string bytes, text, utf8;  // utf8 "" : the bytes unchanged
    };
    const Row rows[] = {
        {" ~", " ~", ""},
        {"\x01\x1f\x7f\\", "\\x01\\x1f\\x7f\\\\", ""},
        {"K\xc3\xb6ln", "K\\xc3\\xb6ln", ""},
        {"\xf0\x9f\x98\x80\xef\xbf\xbf", "\\xf0\\x9f\\x98\\x80\\xef\\xbf\\xbf", ""},  // U+1F600, U+FFFF
        {"Caf\xe9", "Caf\\xe9", "Caf" + bad},
        {"\xc0\x80", "\\xc0\\x80", bad + bad},                           // overlong
        {"\xed\xa0\x80", "\\xed\\xa0\\x80", bad + bad + bad},            // surrogate
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80", bad + bad + bad + bad},  // above U+10FFFF
        {"\xe2\x82" "A", "\\xe2\\x82A", bad + bad + "A"},              // cut short
    };
    for (const Row& r : rows) {
        EXPECT_EQ(escaped(r.bytes), r.text) << r.text;
        Json j = Json::object();
        put_name(j, "name", r.bytes);
        EXPECT_EQ(j.at("name"), r.utf8.empty() ? r.bytes : r.utf8) << r.text;
        const Bytes raw(reinterpret_cast<const std::uint8_t*>(r.bytes.data()), r.bytes.size());
        EXPECT_EQ(j.contains("nameHex") ? j.at("nameHex") : Json(), r.utf8.empty() ? Json() : Json(hex(raw))) << r.text;
        EXPECT_NO_THROW((void)j.dump()) << r.text;
    }
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
        {532, "eDirection", 4294967295U, ""},
        {532, "eDirection", 4294967296U, "from 0 to 4294967295"},
        {532, "eDirection", "1", "not \"1\""},
        // Texts up to their field, one byte per character.
        {531, "acMdName", "ABCDEFGHIJKLMNOPQRST", ""},
        {531, "acMdName", "ABCDEFGHIJKLMNOPQRSTU", "\"acMdName\" has 21 characters, its field 20"},
        {531, "acMdName", 7, "\"acMdName\" must be a string"},
        // Opaque runs: hex, inside the record, each byte once.
        {531, "opaque52", "00000000000000000000000000", ""},
        {531, "opaque52", "0000000000000000000000000000", "\"opaque52\" runs past the record's 65 bytes"},
        {531, "opaque52", "000000000000000000000000", "does not give byte 64 (of 65)"},
        {531, "opaque52", "0", "even number of hex digits"},
        {531, "opaque52", "", "even number of hex digits"},
        {531, "opaque47", "00", "\"opaque47\" gives byte 47 a second time"},
        {531, "opaqueX", "00", "unknown record member \"opaqueX\""},
        {531, "eMdLev48", 1, "unknown record member \"eMdLev48\" for class 531"},
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
        expect_usage([&] { (void)key_from_json(c, key), (void)record_from_json(c, record); }, r.error, r.member);
    }
}

// ------------------------------------------------------------ transfer lists

// What `get` prints for a list, in either form, reads back as the same
// objects, for every class and whatever the bytes.
TEST(TarvctlTransfer, WhatGetPrintsReadsBackForEveryClass) {
    std::mt19937 random(531);
    for (const ClassDef& c : classes()) {
        if (c.rule == Rule::NoStorage) continue;
        std::vector<TransferEntry> objects(c.rule == Rule::Singleton ? 1 : 3);
        std::string hex_text;
        Json records = Json::array();
        for (TransferEntry& e : objects) {
            e.key.resize(c.key);
            e.record.resize(c.record);
            for (ByteList* bytes : {&e.key, &e.record})
                for (std::uint8_t& b : *bytes) b = static_cast<std::uint8_t>(random());
            hex_text += hex_line(c, e.key, e.record) + "\n";
            records.push_back(object_json(c, e.key, e.record));
        }
        const Json doc = {{"class", c.id}, {"records", records}};
        for (const std::string& text : {hex_text, doc.dump(2)}) {
            const std::vector<TransferEntry> read = parse_transfer(c, text, "f");
            ASSERT_EQ(read.size(), objects.size()) << c.id;
            for (std::size_t i = 0; i < read.size(); ++i) {
                EXPECT_EQ(read[i].key, objects[i].key) << c.id;
                EXPECT_EQ(read[i].record, objects[i].record) << c.id;
            }
        }
    }
}

struct ListRow {
    std::uint32_t class_id;
    std::size_t count;
    std::size_t terminator;  // zero bytes after the records
    const char* error;       // "": accepted
    std::size_t zero_key = 0;  // the record, from 1, given an all-zero key
};

TEST(TarvctlTransfer, ListsEndAsTheirClassNeeds) {
    const ListRow rows[] = {
        {531, 0, 6, ""},
        {531, 2, 6, ""},
        {531, 3, 0, "'f' record 2: an all-zero key would end the list here", 2},
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
        std::vector<TransferEntry> given;
        for (std::uint32_t id = 1; id <= r.count; ++id) {
            const ByteList key = make_key(c, {id, id, id, id}, static_cast<std::uint8_t>(id));
            given.push_back({"record " + std::to_string(id), key, ByteList(c.record, 0xab)});
        }
        if (r.zero_key != 0) given[r.zero_key - 1].key.assign(c.key, 0);
        std::vector<std::uint8_t> list;
        const std::string row = std::to_string(r.class_id) + " x" + std::to_string(r.count);
        expect_usage([&] { list = transfer_list(c, given, "f"); }, r.error, row);
        if (*r.error != '\0') continue;
        const std::size_t records = r.count * c.transfer();
        ASSERT_EQ(list.size(), records + r.terminator) << row;
        for (std::size_t i = 0; i < r.count; ++i)
            EXPECT_EQ(ByteList(list.begin() + static_cast<std::ptrdiff_t>(i * c.transfer()),
                               list.begin() + static_cast<std::ptrdiff_t>(i * c.transfer() + c.key)),
                      given[i].key);
        EXPECT_TRUE(all_zero(Bytes(list).subspan(records))) << r.class_id;
    }
}

TEST(TarvctlTransfer, FilesInEitherForm) {
    const ClassDef& md = class_of(531);
    const std::string line = "130201000000 " + std::string(2 * md.record, '0');
    const struct {
        std::string text;
        std::size_t objects;
        const char* error;  // "": accepted
    } rows[] = {
        {"", 0, ""},
        {"\n \n" + line + "\r\n\n" + line + "\n", 2, ""},
        {line + "\n" + line.substr(13), 0, "'f' line 2: expected the key's hex digits, a blank"},
        {line + " 00", 0, "'f' line 1: expected the key's hex digits"},
        {" \n {\"class\": 531, \"records\": []}", 0, ""},
        {"[]", 0, "'f': expected an object with a \"records\" array"},
        {"{\"records\": [{\"key\": {\"wClass\": 531, \"lId1\": 1}}]}", 0,
         "'f' record 1: expected {\"key\": ..., \"record\": ...}"},
        {"{\"class\": 574, \"records\": []}", 0, "'f': holds class 574, not 531"},
        {"{\"records\": [", 0, "'f' is not valid JSON: parse error at line 1"},
    };
    for (const auto& r : rows) {
        std::vector<TransferEntry> parsed;
        expect_usage([&] { parsed = parse_transfer(md, r.text, "f"); }, r.error, r.text);
        EXPECT_EQ(parsed.size(), r.objects) << r.text;
    }
}

// ------------------------------------------------------------ numbers

TEST(TarvctlArgs, SlotsPortsIdsAndRanges) {
    struct Row {
        char what;  // 's' slot/port, 'r' --range, 'v' a VID
        const char* text;
        bool ok;
    };
    const Row rows[] = {
        {'s', "0/0", true},     {'s', "255/255", true}, {'s', "256/1", false}, {'s', "1/256", false},
        {'s', "1", false},      {'s', "/4", false},     {'s', "1/4/5", false}, {'s', " 1/4", false},
        {'r', "0-65535", true}, {'r', "9-2", false}, {'r', "5-5", true},     {'r', "1-65536", false}, {'r', "1", false},
        {'v', "1", true},
    };
    for (const Row& r : rows) {
        const std::string error = usage_error([&] {
            if (r.what == 's') (void)parse_slot_port(r.text);
            if (r.what == 'r') (void)parse_range(r.text, "--range");
            if (r.what == 'v') (void)parse_number(r.text, 1, 4094, "VID");
        });
        EXPECT_EQ(error.empty(), r.ok) << r.what << " '" << r.text << "': " << error;
    }
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
        {2, 5, {}, 2, 0},                        // a LAG without members, never physical slot 2
        {2, 5, {{2, 5}}, 2, 1},                  // a member on slot 2 counts
        {2, 5, {{1, 1}, {4, 1}, {1, 2}}, 1, 2},
        {2, 5, {{1, 0}, {0, 1}, {1, 7}}, 1, 1},  // empty entries skipped
        {2, 5, {{0, 1}}, 0, 0},
    };
    for (const Row& r : rows)
        EXPECT_EQ(ports_on_slot(mep_on(1, 1, 1, 100, r.mep_slot, r.mep_port), r.members, r.slot), r.ports)
            << int{r.mep_slot} << "/" << int{r.mep_port} << " on slot " << int{r.slot};
    EXPECT_EQ((std::vector{mep_weight(1), mep_weight(2), mep_weight(3)}), (std::vector<std::uint32_t>{1, 3, 1}));
}

// ------------------------------------------------------------ watch

// Both ends of the alarm word; the transcripts show the other changes.
TEST(TarvctlWatch, AlarmBitsFrom0To15) {
    Change change{};
    change.kind = Change::Kind::Alarm;
    change.name = "MEP 1/1/2";
    change.word_before = 0x0001;
    change.word_after = 0x8000;
    EXPECT_EQ(change_lines(change),
              (std::vector<std::string>{"* MEP 1/1/2: alarm bit 15 raised", "* MEP 1/1/2: alarm bit 0 cleared"}));
}

// A snapshot header whose checksum holds but whose fields do not is
// refused, each for its own reason; an intact one gives the region back.
TEST(TarvctlSnapshot, HeaderFieldsOtherThanThisLayout) {
    const ByteList region(kDataRegionSize, 7);
    const ByteList good = encode_snapshot(region, 1234);
    EXPECT_EQ(decode_snapshot(good, "f", SnapshotForm::Either).region, region);
    EXPECT_EQ(decode_snapshot(good, "f", SnapshotForm::Headered).header->time_ms, 1234U);
    const struct {
        std::uint32_t offset;
        std::uint8_t value;
        const char* message;
    } rows[] = {
        {8, 65, "format 1 with a 65-byte header"},  {12, 2, "format 2"},
        {16, 0, "a region of 452864 bytes"},        {20, 0, "and layout"},
        {24, 2, "byte order 2"},
    };
    for (const auto& row : rows) {
        ByteList file = good;
        file[row.offset] = row.value;
        store_le32(file.data() + 44, crc32(Bytes(file).first(44)));
        try {
            (void)decode_snapshot(file, "f", SnapshotForm::Either);
            ADD_FAILURE() << row.message;
        } catch (const Failure& f) {
            EXPECT_EQ(f.code(), kExitIo);
            EXPECT_NE(std::string(f.what()).find(row.message), std::string::npos) << f.what();
        }
    }
    ByteList longer = good;
    longer.push_back(0);
    EXPECT_THROW((void)decode_snapshot(longer, "f", SnapshotForm::Either), Failure);
}

}  // namespace
