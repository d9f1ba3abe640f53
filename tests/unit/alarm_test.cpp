// Alarm queries and the Y.1731 alarm source text. Record fields are written
// at the offsets the controller uses, not through the library's field table.
#include <cstdio>
#include <random>

#include "region_fixture.h"

namespace tarv::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;
Bytes contents(const GuardedBytes& g) { return {g.data(), g.data() + g.size()}; }

class AlarmTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        attach();
        fake().set_debug_level(7);
        fake().set_module_level(1);
    }
    // Each trace as "<level> <text>", errors as "<level>/<code> <text>".
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const auto& t : fake().traces)
            out.push_back(std::to_string(t.level) + (t.level < 4 ? "/" + std::to_string(t.code) : "") + " " + t.text);
        return out;
    }
};

struct AlarmWordCase {
    std::uint32_t slot;
    std::vector<std::uint8_t> key;
    std::uint16_t bits;
    std::uint8_t bit2_enabled;
    std::uint16_t want;
};

TEST_F(AlarmTest, AlarmWordsFollowTheClassFieldAndTheBit2Flag) {
    const std::vector<AlarmWordCase> cases{
        {0, key_bytes(532, {1, 1, 1}), 0x0007, 0, 0x0003},
        {1, key_bytes(532, {1, 1, 2}), 0x0007, 1, 0x0007},
        {2, key_bytes(0, {1, 1, 3}), 0xFFFF, 1, 0x0000},  // ids alone make no MEP here
        {3, key_bytes(0x0100, {0, 0, 0}), 0xFFFF, 0, 0xFFFB},
        {31, key_bytes(532, {1, 1, 32}), 0x8004, 2, 0x8004},
    };
    for (const auto& c : cases) {
        put_key(Table::MepMoidArray, c.slot, c.key);
        store_le(at(Table::MepDataArray, c.slot) + 26, c.bits);
        at(Table::MepDataArray, c.slot)[21] = c.bit2_enabled;
    }
    std::vector<std::uint16_t> words(33, 0xEEEE);
    Tarv__GetAlarms(words.data());
    std::vector<std::uint16_t> want(33, 0);
    want[32] = 0xEEEE;
    for (const auto& c : cases) want[c.slot] = c.want;
    EXPECT_EQ(words, want);
}

struct DetailCase {
    std::uint32_t index;
    Bytes moid, text;  // expected; empty: untouched
    std::vector<std::string> traces;
};

TEST_F(AlarmTest, DetailsGiveTheCurrentElseTheOldMoidAndTheTextAsStrncpy) {
    put_key(Table::MepMoidArray, 3, key_bytes(0, {1, 2, 3}));  // 14 bytes decide, not the class
    put_key(Table::MepOldMoidArray, 3, key_bytes(532, {9, 9, 9}));
    std::strcpy(reinterpret_cast<char*>(at(Table::MepAlarmTextArray, 3)), "ten chars!");
    put_key(Table::MepOldMoidArray, 4, key_bytes(532, {8, 8, 8}));
    std::memset(at(Table::MepAlarmTextArray, 4), 'x', 81);    // no terminator in the slot
    put_key(Table::MepOldMoidArray, 0, key_bytes(532, {7, 7, 7}));  // where a slot 32 would start
    Bytes ten(80, 0);
    std::memcpy(ten.data(), "ten chars!", 10);

    const std::vector<DetailCase> cases{
        {3, key_bytes(0, {1, 2, 3}), ten, {"7 wMepMoidArrayIndex=3"}},
        {4, key_bytes(532, {8, 8, 8}), Bytes(80, 'x'), {"7 wMepMoidArrayIndex=4"}},
        {5, {}, {}, {"5 MEP index 5 not found!", "7 wMepMoidArrayIndex=5", "4 String is NULL\n"}},
        {32, {}, {}, {"5 MEP index 32 not found!", "7 wMepMoidArrayIndex=32"}},
    };
    for (const auto& c : cases) {
        GuardedBytes moid(14), text(80);
        moid.fill(0xEE), text.fill(0xEE);
        fake().traces.clear();
        Tarv__GetDetailsForAlarm(c.index, reinterpret_cast<TARV_MOID*>(moid.data()), reinterpret_cast<char*>(text.data()));
        EXPECT_EQ(contents(moid), c.moid.empty() ? Bytes(14, 0xEE) : c.moid) << c.index;
        EXPECT_EQ(contents(text), c.text.empty() ? Bytes(80, 0xEE) : c.text) << c.index;
        EXPECT_EQ(texts(), c.traces) << c.index;
    }
}

struct PmKeyCase {
    const char* function;
    void (*get)(std::uint32_t, TARV_PM_KEY*);
    Table table;
};

TEST_F(AlarmTest, PmKeysAndBlocksAreCopiedAsStoredWithinTheirTables) {
    const std::vector<PmKeyCase> cases{{"Tarv__GetPMAlarmMoid", Tarv__GetPMAlarmMoid, Table::PMAlarmMoidArray},
                                       {"Tarv__GetPMSessionMoid", Tarv__GetPMSessionMoid, Table::PMSessionMoidArray},
                                       {"Tarv__GetPMSessionOldMoid", Tarv__GetPMSessionOldMoid,
                                        Table::PMSessionOldMoidArray}};
    for (std::uint32_t slot = 1; slot < 9; ++slot)  // slot 0 stays empty
        for (std::size_t i = 0; i < cases.size(); ++i)
            put_pattern(cases[i].table, slot, static_cast<std::uint8_t>(slot * 16 + i));
    for (const auto& c : cases) {
        GuardedBytes key(15);
        for (std::uint32_t slot = 0; slot < 9; ++slot) {
            c.get(slot, reinterpret_cast<TARV_PM_KEY*>(key.data()));
            EXPECT_EQ(contents(key), bytes_of(c.table, slot)) << c.function << " " << slot;
        }
        key.fill(0xEE);
        fake().traces.clear();
        c.get(9, reinterpret_cast<TARV_PM_KEY*>(key.data()));
        EXPECT_EQ(contents(key), Bytes(15, 0xEE));
        EXPECT_EQ(texts(), std::vector<std::string>{"1/3 PM slot index 9 out of range, last slot is 8"});
        EXPECT_EQ(fake().traces[0].function, c.function);
    }
    put_pattern(Table::PMAlarmBlock, 8, 0x51);
    put_pattern(Table::MepHWAlarmBlock, 0, 0x61);
    GuardedBytes pm(18), hw(64);
    Tarv__GetPMAlarms(pm.data());
    Tarv__GetMEPHWAlarms(hw.data());
    EXPECT_EQ(contents(pm), bytes_of(Table::PMAlarmBlock, 0, 18));
    EXPECT_EQ(contents(hw), bytes_of(Table::MepHWAlarmBlock, 0));
}

// ---------------------------------------------------------------------------
// Alarm source text: session 5 of MEP 12 in MaNet 7 of MD 3.
// ---------------------------------------------------------------------------

class AlarmTextTest : public AlarmTest {
protected:
    void SetUp() override {
        AlarmTest::SetUp();
        std::memcpy(&pm_key, key_bytes(674, {3, 7, 12}).data(), 14);
        pm_key.bySessionId = 5;
        std::memcpy(at(Table::PMSessionMoidArray, 5), &pm_key, 15);
        put_key(Table::MepMoidArray, 11, key_bytes(532, {3, 7, 12}));
        put_key(Table::MaNetMoidArray, 6, key_bytes(574, {3, 7}));
        put_key(Table::MdMoidArray, 2, key_bytes(531, {3}));
    }
    std::uint8_t* mep() { return at(Table::MepDataArray, 11); }
    std::uint8_t* md() { return at(Table::MdDataArray, 2); }
    std::uint8_t* manet() { return at(Table::MaNetDataArray, 6); }
    TARV_PM_KEY pm_key{};
};

struct BrokenLink {
    void (*apply)(TARV_PM_KEY& key);
    const char* trace;
    bool switch_asked;
};

TEST_F(AlarmTextTest, FirstMissingLinkIsTracedAndTheBufferStaysUntouched) {
    const std::vector<BrokenLink> cases{
        {[](TARV_PM_KEY& k) { k.bySessionId = 0; }, "The session id is illegal!", false},
        {[](TARV_PM_KEY& k) { k.bySessionId = 9; }, "The session id is illegal!", false},
        {[](TARV_PM_KEY&) { entry(pSharedData, Table::PMSessionMoidArray, 5)[13] ^= 1; },
         "Can not find the PM session!", false},
        {[](TARV_PM_KEY&) { entry(pSharedData, Table::PMSessionMoidArray, 5)[14] = 6; },
         "Can not find the PM session!", false},
        {[](TARV_PM_KEY&) { entry(pSharedData, Table::MepMoidArray, 11)[0] ^= 1; }, "Can not find the MEP!", false},
        {[](TARV_PM_KEY&) { entry(pSharedData, Table::MaNetMoidArray, 6)[9] ^= 1; }, "Can not find the MA!", true},
        {[](TARV_PM_KEY&) { entry(pSharedData, Table::MdMoidArray, 2)[0] ^= 1; }, "Can not find the MD!", true},
    };
    for (const auto& c : cases) {
        SetUp();
        TARV_PM_KEY key = pm_key;
        c.apply(key);
        GuardedBytes info(96);
        info.fill(0xEE);
        EXPECT_EQ(Tarv__GetMepInfoAbout1731Alarm(key, reinterpret_cast<char*>(info.data())), 0u) << c.trace;
        EXPECT_EQ(contents(info), Bytes(96, 0xEE)) << c.trace;
        EXPECT_EQ(texts(), std::vector<std::string>{std::string("6 ") + c.trace});
        EXPECT_EQ(fake().port_type_requests.size(), c.switch_asked ? 1u : 0u) << c.trace;
    }
}

// What the C library's formatting gives for the records in the region.
void expected_text(char* out, std::int32_t mode, std::int32_t port_type, const std::uint8_t* mep,
                   const std::uint8_t* md, const std::uint8_t* manet) {
    std::snprintf(out, 96, "S%hd,P%hd,%s%d,%s,L%d,Id%hd,MAID:", static_cast<short>(mep[46]),
                  static_cast<short>(mep[47]), mode == 2 || port_type == 3 ? "Cvid" : "Svid",
                  static_cast<int>(load_le<std::uint16_t>(mep + 6)), load_le<std::uint32_t>(mep + 2) == 1 ? "Dn" : "Up",
                  static_cast<int>(load_le<std::uint32_t>(md + 48) - 1u), load_le<std::int16_t>(mep));
    std::strncat(out, reinterpret_cast<const char*>(md + 4), 20);
    std::strcat(out, "/");
    std::strncat(out, reinterpret_cast<const char*>(manet + 4), 24);
}

TEST_F(AlarmTextTest, TextIsWhatTheCLibraryFormatsForAnyRecord) {
    std::mt19937 rng(1731);
    auto pick = [&rng](std::initializer_list<std::uint32_t> edges) -> std::uint32_t {
        return static_cast<std::uint32_t>(rng() % 2 ? rng() : edges.begin()[rng() % edges.size()]);
    };
    // A name of n printable characters from the field's start, over the
    // record bytes that follow it when it is longer than the field.
    auto put_name = [&rng](std::uint8_t* record, std::uint32_t size, std::uint32_t n) {
        for (std::uint32_t i = 0; i < size; ++i) record[i] = static_cast<std::uint8_t>(rng() % 255 + 1);
        for (std::uint32_t i = 0; i < n; ++i) record[4 + i] = static_cast<std::uint8_t>('!' + rng() % 94);
        record[4 + n] = 0;
    };
    const std::uint32_t name_lengths[] = {0, 19, 20, 21, 24, 25, 30};
    std::size_t longest = 0;
    for (int round = 0; round < 3000; ++round) {
        const bool widest = round == 0;
        put_name(md(), 65, widest ? 30 : name_lengths[rng() % 7]);
        put_name(manet(), 57, widest ? 30 : name_lengths[rng() % 7]);
        std::uint8_t* m = mep();
        m[46] = static_cast<std::uint8_t>(widest ? 255 : pick({0, 255}));
        m[47] = static_cast<std::uint8_t>(widest ? 255 : pick({0, 255}));
        store_le(m + 6, static_cast<std::uint16_t>(widest ? 65535 : pick({0, 65535})));
        store_le(m + 2, pick({0, 1, 2, 0xFFFFFFFFu}));
        store_le(md() + 48, widest ? 0x80000001u : pick({0, 1, 5, 0x80000000u, 0x80000001u, 0xFFFFFFFFu}));
        store_le(m, static_cast<std::uint16_t>(widest ? 0x8000 : pick({0, 0x7FFF, 0x8000, 0xFFFF})));
        fake().switch_mode = static_cast<std::int32_t>(pick({1, 2, 3}) % 4);
        const std::int32_t port_type = static_cast<std::int32_t>(pick({1, 3}) % 4);
        fake().port_types[{m[46], m[47]}] = port_type;
        fake().port_type_requests.clear();

        char want[96];
        std::memset(want, 0xEE, sizeof want);
        expected_text(want, fake().switch_mode, port_type, m, md(), manet());
        GuardedBytes got(96);  // the longest text ends at its last byte
        got.fill(0xEE);
        ASSERT_EQ(Tarv__GetMepInfoAbout1731Alarm(pm_key, reinterpret_cast<char*>(got.data())), 1u);
        ASSERT_EQ(contents(got), Bytes(want, want + 96)) << want;
        longest = std::max(longest, std::strlen(want));
        const std::vector<std::pair<std::uint32_t, std::uint32_t>> asked{{m[46], m[47]}};
        EXPECT_EQ(fake().port_type_requests, fake().switch_mode == 2 ? decltype(asked){} : asked);
    }
    EXPECT_EQ(longest, 95u);
}

TEST_F(AlarmTest, QueriesBeforeAttachAnswerNothingFound) {
    pSharedData = nullptr;
    fake().set_debug_level(0);
    GuardedBytes buffer(96);
    buffer.fill(0xEE);
    auto* b = buffer.data();
    std::vector<std::uint16_t> words(32, 0xEEEE);
    TARV_PM_KEY key{make_moid(532, 1, 1, 1), 1};

    EXPECT_EQ(Tarv__BandwidthNotificationMoidIterator(nullptr), nullptr);
    Tarv__ReadBandwidthNotification(key.Moid, b);
    EXPECT_EQ(Tarv__ThroughputListMoidIterator(nullptr), nullptr);
    Tarv__ReadThroughputEntry(TARV_THROUGHPUT_KEY{638, 1, 1, 1, 1}, b);
    EXPECT_EQ(Tarv_GetEnableStatusofThroughput(), 0u);
    Tarv__GetAlarms(words.data());
    Tarv__GetDetailsForAlarm(0, reinterpret_cast<TARV_MOID*>(b), reinterpret_cast<char*>(b + 14));
    Tarv__GetPMAlarms(b);
    Tarv__GetMEPHWAlarms(b);
    Tarv__GetPMAlarmMoid(1, reinterpret_cast<TARV_PM_KEY*>(b));
    Tarv__GetPMSessionMoid(1, reinterpret_cast<TARV_PM_KEY*>(b));
    Tarv__GetPMSessionOldMoid(1, reinterpret_cast<TARV_PM_KEY*>(b));
    EXPECT_EQ(Tarv__GetMepInfoAbout1731Alarm(key, reinterpret_cast<char*>(b)), 0u);

    EXPECT_EQ(contents(buffer), Bytes(96, 0xEE));
    EXPECT_EQ(words, std::vector<std::uint16_t>(32, 0));
    EXPECT_TRUE(fake().port_type_requests.empty());
    EXPECT_EQ(texts(), std::vector<std::string>(13, "1/12 KELM_SHARED_DATA"));
    EXPECT_EQ(fake().traces[4].function, "Tarv_GetEnableStatusofThroughput");
}

}  // namespace
}  // namespace tarv::testing
