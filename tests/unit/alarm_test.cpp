// Alarm queries and the Y.1731 alarm source text. Record fields are written
// at the offsets the controller uses, not through the library's field table.
#include <cstdio>
#include <tuple>

#include "region_fixture.h"

namespace tarv::testing {
namespace {

using AlarmTest = AttachedTest;

// The class field alone tells whether a slot holds a MEP; bit 2 counts only
// when its flag byte is not zero.
TEST_F(AlarmTest, AlarmWordsFollowTheClassFieldAndTheBit2Flag) {
    // Slot, key, alarm bits, bit 2 flag, the word.
    const std::tuple<std::uint32_t, Bytes, std::uint16_t, std::uint8_t, std::uint16_t> rows[] = {
        {0, key_bytes(532, {1, 1, 1}), 0x0007, 0, 0x0003}, {1, key_bytes(532, {1, 1, 2}), 0x0007, 1, 0x0007},
        {2, key_bytes(0, {1, 1, 3}), 0xFFFF, 1, 0x0000},   {3, key_bytes(0x0100, {0, 0, 0}), 0xFFFF, 0, 0xFFFB},
        {31, key_bytes(532, {1, 1, 32}), 0x8004, 2, 0x8004}};
    std::vector<std::uint16_t> words(33, 0xEEEE), want(33, 0);
    want[32] = 0xEEEE;
    for (const auto& [slot, key, bits, bit2_enabled, word] : rows) {
        put_key(Table::MepMoidArray, slot, key);
        store_le(at(Table::MepDataArray, slot) + 26, bits);
        at(Table::MepDataArray, slot)[21] = bit2_enabled;
        want[slot] = word;
    }
    Tarv__GetAlarms(words.data());
    EXPECT_EQ(words, want);
}

// The current MOID if its 14 bytes are not all zero, else the old one; the
// text as strncpy of at most 80 bytes; an index past the table has neither.
TEST_F(AlarmTest, DetailsGiveTheCurrentElseTheOldMoidAndTheText) {
    put_key(Table::MepMoidArray, 3, key_bytes(0, {1, 2, 3}));
    put_key(Table::MepOldMoidArray, 3, key_bytes(532, {9, 9, 9}));
    std::strcpy(reinterpret_cast<char*>(at(Table::MepAlarmTextArray, 3)), "ten chars!");
    put_key(Table::MepOldMoidArray, 4, key_bytes(532, {8, 8, 8}));
    std::memset(at(Table::MepAlarmTextArray, 4), 'x', 81);          // no terminator in the slot
    put_key(Table::MepOldMoidArray, 0, key_bytes(532, {7, 7, 7}));  // where a slot 32 would start
    Bytes ten(80, 0);
    std::memcpy(ten.data(), "ten chars!", 10);
    // Index, the MOID and text expected (empty: untouched), the traces.
    const std::tuple<std::uint32_t, Bytes, Bytes, Lines> rows[] = {
        {3, key_bytes(0, {1, 2, 3}), ten, {"7 wMepMoidArrayIndex=3"}},
        {4, key_bytes(532, {8, 8, 8}), Bytes(80, 'x'), {"7 wMepMoidArrayIndex=4"}},
        {5, {}, {}, {"5 MEP index 5 not found!", "7 wMepMoidArrayIndex=5", "4 String is NULL\n"}},
        {32, {}, {}, {"5 MEP index 32 not found!", "7 wMepMoidArrayIndex=32"}},
    };
    for (const auto& [index, moid, text, traces] : rows) {
        const auto got_moid = guarded(14), got_text = guarded(80);
        fake().traces.clear();
        Tarv__GetDetailsForAlarm(index, reinterpret_cast<TARV_MOID*>(got_moid->data()),
                                 reinterpret_cast<char*>(got_text->data()));
        EXPECT_EQ(contents(*got_moid), moid.empty() ? Bytes(14, 0xEE) : moid) << index;
        EXPECT_EQ(contents(*got_text), text.empty() ? Bytes(80, 0xEE) : text) << index;
        EXPECT_EQ(traced(), traces) << index;
    }
}

// Every slot of the three PM key tables as stored, empty or not; an index
// past them is traced and reads nothing. The alarm blocks are copied whole.
TEST_F(AlarmTest, PmKeysAndBlocksAreCopiedAsStoredWithinTheirTables) {
    const std::tuple<const char*, void (*)(std::uint32_t, TARV_PM_KEY*), Table> getters[] = {
        {"Tarv__GetPMAlarmMoid", Tarv__GetPMAlarmMoid, Table::PMAlarmMoidArray},
        {"Tarv__GetPMSessionMoid", Tarv__GetPMSessionMoid, Table::PMSessionMoidArray},
        {"Tarv__GetPMSessionOldMoid", Tarv__GetPMSessionOldMoid, Table::PMSessionOldMoidArray}};
    for (std::uint32_t slot = 1; slot < 9; ++slot)  // slot 0 stays empty
        for (std::size_t i = 0; i < 3; ++i)
            put_pattern(std::get<2>(getters[i]), slot, static_cast<std::uint8_t>(slot * 16 + i));
    for (const auto& [function, get, table] : getters) {
        for (std::uint32_t slot = 0; slot < 10; ++slot) {
            const auto key = guarded(15);
            fake().traces.clear();
            get(slot, reinterpret_cast<TARV_PM_KEY*>(key->data()));
            EXPECT_EQ(contents(*key), slot < 9 ? bytes_of(table, slot) : Bytes(15, 0xEE)) << function << " " << slot;
        }
        const std::string trace = "1/3 " + std::string(function) + ": PM slot index 9 out of range, last slot is 8";
        EXPECT_EQ(traced(true), Lines{trace});
    }
    put_pattern(Table::PMAlarmBlock, 8, 0x51);
    put_pattern(Table::MepHWAlarmBlock, 0, 0x61);
    const auto pm = guarded(18), hw = guarded(64);
    Tarv__GetPMAlarms(pm->data());
    Tarv__GetMEPHWAlarms(hw->data());
    EXPECT_EQ(contents(*pm), bytes_of(Table::PMAlarmBlock, 0, 18));
    EXPECT_EQ(contents(*hw), bytes_of(Table::MepHWAlarmBlock, 0));
}

// ---------------------------------------------------------------------------
// Alarm source text: session 5 of MEP 12 in MaNet 7 of MD 3.
// ---------------------------------------------------------------------------

class AlarmTextTest : public AlarmTest {
protected:
    void SetUp() override {
        AlarmTest::SetUp();
        Bytes key = key_bytes(674, {3, 7, 12});
        key.push_back(5);
        pm_key = as_key<TARV_PM_KEY>(key);
        put_key(Table::PMSessionMoidArray, 5, key);
        put_key(Table::MepMoidArray, 11, key_bytes(532, {3, 7, 12}));
        put_key(Table::MaNetMoidArray, 6, key_bytes(574, {3, 7}));
        put_key(Table::MdMoidArray, 2, key_bytes(531, {3}));
    }
    TARV_PM_KEY pm_key{};
};

// The first link that is missing is traced and the buffer stays untouched;
// the port type is asked once the MEP is found.
TEST_F(AlarmTextTest, FirstMissingLinkIsTracedAndTheBufferStaysUntouched) {
    // Session id, the table whose slot `slot` gets byte `byte` flipped, the
    // trace, whether the port type was asked.
    const std::tuple<std::uint8_t, Table, std::uint32_t, std::uint32_t, const char*, bool> rows[] = {
        {0, Table::Count, 0, 0, "The session id is illegal!", false},
        {9, Table::Count, 0, 0, "The session id is illegal!", false},
        {5, Table::PMSessionMoidArray, 5, 13, "Can not find the PM session!", false},
        {5, Table::PMSessionMoidArray, 5, 14, "Can not find the PM session!", false},
        {5, Table::MepMoidArray, 11, 0, "Can not find the MEP!", false},
        {5, Table::MaNetMoidArray, 6, 9, "Can not find the MA!", true},
        {5, Table::MdMoidArray, 2, 0, "Can not find the MD!", true},
    };
    for (const auto& [session, table, slot, byte, trace, switch_asked] : rows) {
        SetUp();
        TARV_PM_KEY key = pm_key;
        key.bySessionId = session;
        if (table != Table::Count) at(table, slot)[byte] ^= 1;
        const auto text = guarded(96);
        EXPECT_EQ(Tarv__GetMepInfoAbout1731Alarm(key, reinterpret_cast<char*>(text->data())), 0u) << trace;
        EXPECT_EQ(contents(*text), Bytes(96, 0xEE)) << trace;
        EXPECT_EQ(traced(), Lines{std::string("6 ") + trace});
        EXPECT_EQ(fake().port_type_requests.size(), switch_asked ? 1u : 0u) << trace;
    }
}

// What the C library's formatting gives for the records in the region.
void expected_text(char* out, bool c_vid, const std::uint8_t* mep, const std::uint8_t* md, const std::uint8_t* manet) {
    std::snprintf(out, 96, "S%hd,P%hd,%s%d,%s,L%d,Id%hd,MAID:", short{mep[46]}, short{mep[47]}, c_vid ? "Cvid" : "Svid",
                  int{load_le<std::uint16_t>(mep + 6)}, load_le<std::uint32_t>(mep + 2) == 1 ? "Dn" : "Up",
                  static_cast<int>(load_le<std::uint32_t>(md + 48) - 1u), load_le<std::int16_t>(mep));
    std::strncat(out, reinterpret_cast<const char*>(md + 4), 20);
    std::strcat(out, "/");
    std::strncat(out, reinterpret_cast<const char*>(manet + 4), 24);
}

// Every field at its edges (a slot, port or MEP id read as signed 16 bits,
// the level less one as signed 32 bits), names of up to 30 characters over
// the bytes that follow their field, C-VID by the switch mode (the port type
// then not asked) or by the port type; the first row's text fills the 96
// bytes exactly.
TEST_F(AlarmTextTest, TextIsWhatTheCLibraryFormatsForAnyRecord) {
    // MD and MA name lengths, slot, port, VID, direction, MD level, MEP id, switch mode, port type.
    using Row = std::tuple<std::uint32_t, std::uint32_t, std::uint8_t, std::uint8_t, std::uint16_t, std::uint32_t,
                           std::uint32_t, std::uint16_t, std::int32_t, std::int32_t>;
    const Row rows[] = {{30, 30, 255, 255, 65535, 0xFFFFFFFFu, 0x80000001u, 0x8000, 1, 3},
                        {0, 0, 0, 0, 0, 1, 0, 0, 2, 1},
                        {19, 24, 1, 4, 100, 2, 5, 0x7FFF, 3, 1},
                        {20, 25, 128, 127, 4095, 0, 1, 0xFFFF, 1, 2},
                        {21, 21, 2, 9, 1, 1, 0xFFFFFFFFu, 1, 0, 3},
                        {25, 19, 3, 1, 200, 1, 0x80000000u, 32767, 2, 3}};
    std::uint8_t *m = at(Table::MepDataArray, 11), *md = at(Table::MdDataArray, 2);
    std::uint8_t* manet = at(Table::MaNetDataArray, 6);
    const auto put_name = [](std::uint8_t* record, std::uint32_t size, std::uint32_t n) {
        for (std::uint32_t i = 0; i < size; ++i) record[i] = static_cast<std::uint8_t>(0x80 + i);
        for (std::uint32_t i = 0; i < n; ++i) record[4 + i] = static_cast<std::uint8_t>('!' + (i * 7) % 94);
        record[4 + n] = 0;
    };
    for (const auto& [md_name, ma_name, slot, port, vid, direction, level, id, switch_mode, port_type] : rows) {
        put_name(md, 65, md_name);
        put_name(manet, 57, ma_name);
        m[46] = slot, m[47] = port;
        store_le(m + 6, vid), store_le(m + 2, direction), store_le(md + 48, level), store_le(m, id);
        fake().switch_mode = switch_mode;
        fake().port_types[{slot, port}] = port_type;
        fake().port_type_requests.clear();

        char want[96];
        std::memset(want, 0xEE, sizeof want);
        expected_text(want, switch_mode == 2 || port_type == 3, m, md, manet);
        EXPECT_EQ(std::strlen(want) == 95, md_name == 30 && ma_name == 30) << want;
        const auto got = guarded(96);
        EXPECT_EQ(Tarv__GetMepInfoAbout1731Alarm(pm_key, reinterpret_cast<char*>(got->data())), 1u);
        EXPECT_EQ(contents(*got), Bytes(want, want + 96)) << want;
        const std::vector<std::pair<std::uint32_t, std::uint32_t>> asked{{slot, port}};
        EXPECT_EQ(fake().port_type_requests, switch_mode == 2 ? decltype(asked){} : asked) << want;
    }
}

}  // namespace
}  // namespace tarv::testing
