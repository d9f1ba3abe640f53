// tarvctl's readers of what people and files hand it, and what it makes of
// them: hex, addresses and texts; JSON keys and records; transfer lists as
// Tarv__SetConfig takes them; the numbers of the query subcommands; the
// alarm lines of `watch`. Each refusal is a usage error that names what is
// wrong; the transcripts show the same paths end to end.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tarvctl/args.h"
#include "tarvctl/bytes.h"
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

// Every class's keys and records come back byte for byte from their JSON,
// whatever the bytes: all zero, all 0xFF, or arbitrary.
TEST(TarvctlRecords, JsonGivesBackEveryByteOfEveryClass) {
    std::mt19937 random(531);
    for (const ClassDef& c : classes()) {
        if (c.rule == Rule::NoStorage) continue;
        for (int pattern = 0; pattern < 3; ++pattern) {
            ByteList key(c.key);
            ByteList record(c.record);
            for (ByteList* bytes : {&key, &record})
                for (std::uint8_t& b : *bytes)
                    b = pattern == 0 ? 0 : pattern == 1 ? 0xff : static_cast<std::uint8_t>(random());
            EXPECT_EQ(record_from_json(c, record_json(c, record)), record) << c.id << " pattern " << pattern;
            if (c.key > 0) {
                EXPECT_EQ(key_from_json(c, key_json(c, key)), key) << c.id << " pattern " << pattern;
            }
        }
    }
}

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
