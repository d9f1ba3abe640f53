// Attaching the data region, calls made before it, and the module's trace
// convention.
#include <tuple>

#include "points.h"
#include "region_fixture.h"
#include "trace.h"

namespace tarv::testing {
namespace {

using AttachTest = RegionTest;

// A failed attach zeroes the key block, traces code 12 (nothing at module
// level 0) and is retried by the next call; once attached, Tarv__Open and the
// XML hook do nothing.
TEST_F(AttachTest, OpenMapsTheRegionReadOnlyOnceAndRetriesAFailure) {
    fake().shm_succeeds = false;
    Tarv__Open();
    fake().set_module_level(1);
    abZeroKey[44] = 0x5A;
    Tarv__Open();
    EXPECT_EQ(pSharedData, nullptr);
    EXPECT_EQ(abZeroKey[44], 0);
    fake().shm_succeeds = true;
    Tarv__Open();
    Tarv__Open();
    pSharedData[0] = 0x42;
    Tarv__SaveXMLIfOldConfig();

    EXPECT_EQ(pSharedData, fake().regions.at("/kelm-data")->data());
    EXPECT_EQ(pSharedData[0], 0x42);
    EXPECT_EQ(pStorData, nullptr);
    ASSERT_EQ(fake().shm_calls.size(), 3u);
    const ShmCall& call = fake().shm_calls[2];
    EXPECT_EQ(std::tie(call.name, call.size, call.read_only), std::make_tuple("/kelm-data", 453075u, 1));
    EXPECT_EQ(traced(true), Lines{"1/12 Tarv__Open: KELM_SHARED_DATA"});
}

// Tarv__StorOpen after Tarv__Open traces "Null" and maps read-write; a failed
// one leaves the process detached, so its retry traces no second "Null".
TEST_F(AttachTest, StorOpenRemapsReadWriteAndDetachesWhenItFails) {
    fake().set_module_level(1);
    Tarv__Open();
    fake().shm_succeeds = false;
    Tarv__StorOpen();
    EXPECT_EQ(pSharedData, nullptr);
    EXPECT_EQ(pStorData, nullptr);
    fake().shm_succeeds = true;
    Tarv__StorOpen();
    Tarv__StorOpen();
    Tarv__Open();

    EXPECT_NE(pStorData, nullptr);
    EXPECT_EQ(pSharedData, pStorData);
    ASSERT_EQ(fake().shm_calls.size(), 3u);
    EXPECT_EQ(fake().shm_calls[1].read_only + fake().shm_calls[2].read_only, 0);
    EXPECT_EQ(traced(true), (Lines{"1/0 Tarv__StorOpen: Null", "1/0 Tarv__StorOpen: Failed"}));
}

// Every query answers "nothing found" with one code 12 trace of its own
// name, writes nothing but an empty list's terminator and all-zero alarm
// words, and asks the platform nothing. Tarv__CheckTagging of VLAN 0 or of a
// mode other than 0 does not read the region, so it does not trace.
TEST_F(AttachTest, QueriesBeforeAttachAnswerWithoutTouchingMemory) {
    fake().set_module_level(1);
    const auto out = guarded(96);
    std::uint8_t* b = out->data();
    auto* m = reinterpret_cast<TARV_MOID*>(b);
    std::uint16_t index = 77;
    std::int32_t mep_index = 0;
    std::uint32_t period = 0xDEADBEEF;
    std::vector<std::uint16_t> words(32, 0xEEEE);
    const TARV_MOID moid = make_moid(532, 1, 1, 1);
    // The function, its answer, the answer expected. Evaluated in order.
    const std::tuple<std::string, std::int64_t, std::int64_t> calls[] = {
        {"Tarv__MEPMoidIterator", Tarv__MEPMoidIterator(nullptr) != nullptr, 0},
        {"Tarv__ReadMEP", (Tarv__ReadMEP(moid, b), 0), 0},
        {"Tarv__GetMepIndexFromOldMoid", Tarv__GetMepIndexFromOldMoid(moid, &index), -1},
        {"Tarv__GetConfig", Tarv__GetConfig(519, b, 0), 0},
        {"Tarv__BandwidthNotificationMoidIterator", Tarv__BandwidthNotificationMoidIterator(nullptr) != nullptr, 0},
        {"Tarv__ReadBandwidthNotification", (Tarv__ReadBandwidthNotification(moid, b), 0), 0},
        {"Tarv__ThroughputListMoidIterator", Tarv__ThroughputListMoidIterator(nullptr) != nullptr, 0},
        {"Tarv__ReadThroughputEntry", (Tarv__ReadThroughputEntry(TARV_THROUGHPUT_KEY{638, 1, 1, 1, 1}, b), 0), 0},
        {"Tarv_GetEnableStatusofThroughput", Tarv_GetEnableStatusofThroughput(), 0},
        {"Tarv__GetAlarms", (Tarv__GetAlarms(words.data()), 0), 0},
        {"Tarv__GetDetailsForAlarm", (Tarv__GetDetailsForAlarm(0, m, reinterpret_cast<char*>(b + 14)), 0), 0},
        {"Tarv__GetPMAlarms", (Tarv__GetPMAlarms(b), 0), 0},
        {"Tarv__GetMEPHWAlarms", (Tarv__GetMEPHWAlarms(b), 0), 0},
        {"Tarv__GetPMAlarmMoid", (Tarv__GetPMAlarmMoid(1, reinterpret_cast<TARV_PM_KEY*>(b)), 0), 0},
        {"Tarv__GetPMSessionMoid", (Tarv__GetPMSessionMoid(1, reinterpret_cast<TARV_PM_KEY*>(b)), 0), 0},
        {"Tarv__GetPMSessionOldMoid", (Tarv__GetPMSessionOldMoid(1, reinterpret_cast<TARV_PM_KEY*>(b)), 0), 0},
        {"Tarv__GetMepInfoAbout1731Alarm",
         Tarv__GetMepInfoAbout1731Alarm(TARV_PM_KEY{moid, 1}, reinterpret_cast<char*>(b)), 0},
        {"Tarv__GetConfig", Tarv__GetConfig(531, b + 90, 3), 0},
        {"Tarv__IsOamEnabledOnPortOpt", Tarv__IsOamEnabledOnPortOpt(1, 4), 0},
        {"Tarv__IsOamEnabledForMepOnPort", Tarv__IsOamEnabledForMepOnPort(1, 4, make_moid(0, 0, 0, 0)), 0},
        {"Tarv__IsEndpointSTagged", Tarv__IsEndpointSTagged(make_moid(0, 0, 0, 0)), 0},
        {"Tarv__IsOamEnabledOnCVlanPort", Tarv__IsOamEnabledOnCVlanPort(1, 4, 0), 0},
        {"Tarv__IsOamEnabledOnVfi", Tarv__IsOamEnabledOnVfi(0), 0},
        {"Tarv__CheckTagging", Tarv__CheckTagging(1, 4, 1, 0), 0},
        {"", Tarv__CheckTagging(1, 4, 0, 0) + Tarv__CheckTagging(1, 4, 1, 1), 0},
        {"Tarv__FindAllMipOnPort", Tarv__FindAllMipOnPort(1, 4, 0, 4095, 0, 0), 1},
        {"Tarv__FindDownMepFromSomeWhereOnCVlanPort",
         Tarv__FindDownMepFromSomeWhereOnCVlanPort(0, 0, 0, &mep_index, m, b + 14), 0},
        {"Tarv__DoesMipExistOnCVlanPort", Tarv__DoesMipExistOnCVlanPort(0, 0, 0, m, b + 14), 0},
        {"Tarv__IsOamEnabledOnLagOpt", Tarv__IsOamEnabledOnLagOpt(0, &period), 0},
        {"Tarv__MepResourcesAvailableOnSlot", Tarv__MepResourcesAvailableOnSlot(0, 0), 1},
    };
    Lines want;
    for (const auto& [function, got, expected] : calls) {
        EXPECT_EQ(got, expected) << function;
        if (!function.empty()) want.push_back("1/12 " + function + ": KELM_SHARED_DATA");
    }
    EXPECT_EQ(traced(true), want);
    Bytes expected(96, 0xEE);
    std::fill_n(expected.begin() + 90, 6, 0);  // an empty MD list
    EXPECT_EQ(contents(*out), expected);
    EXPECT_EQ(std::tie(index, mep_index, period), std::make_tuple(77, 0, 0xDEADBEEF));
    EXPECT_EQ(words, std::vector<std::uint16_t>(32, 0));
    EXPECT_TRUE(fake().port_type_requests.empty() && fake().lag_requests.empty());
}

// A statement runs when its object's level word allows it: debug from its
// level up (the word read unsigned), warnings from 2, errors from 1. It is
// one WQ_beginImpl / print / WQ_endImpl triple with the library's path.
TEST_F(RegionTest, TraceStatementsFollowTheirLevelWords) {
    const auto statement = [](std::uint32_t level) {
        if (level > 2) TARV_DEBUG(level, "Fn", "d %d", 1);
        else if (level == 2) TARV_WARNING("Fn", trace::kNotFound, "w %d", 1);
        else TARV_ERROR("Fn", trace::kNullData, "e %ld", 2L);
    };
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::size_t> rows[] = {
        {4, 0, 4, 1}, {3, 9, 4, 0}, {0xFFFFFFFFu, 0, 7, 1}, {6, 9, 7, 0}, {0, 1, 2, 0}, {0, 2, 2, 1}, {9, 0, 1, 0},
        {0, 1, 1, 1}};
    for (const auto& [debug_word, module_word, level, runs] : rows) {
        fake().traces.clear();
        fake().set_debug_level(debug_word);
        fake().set_module_level(module_word);
        statement(level);
        EXPECT_EQ(fake().traces.size(), runs) << debug_word << "/" << module_word << " " << level;
    }
    fake().traces.clear();
    fake().set_debug_level(4);
    fake().set_module_level(2);
    for (std::uint32_t level : {4u, 2u, 1u}) statement(level);
    ASSERT_EQ(traced(true), (Lines{"4 Fn: d 1", "2/3 Fn: w 1", "1/26 Fn: e 2"}));
    const std::pair<TraceKind, std::uint32_t> kinds[] = {{TraceKind::Debug, 0}, {TraceKind::Warning, 142},
                                                         {TraceKind::Error, 142}};
    for (std::size_t i = 0; i < 3; ++i) {
        const TraceRecord& t = fake().traces[i];
        EXPECT_EQ(std::tie(t.kind, t.module, t.file, t.closed),
                  std::make_tuple(kinds[i].first, kinds[i].second, "data/swch/api-tarv", true));
        EXPECT_GT(t.line, 0u);
    }
}

}  // namespace
}  // namespace tarv::testing
