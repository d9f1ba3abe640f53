// Attaching the data region and the module's trace convention.
#include "region_fixture.h"
#include "trace.h"

namespace tarv::testing {
namespace {

class AttachTest : public RegionTest {};

TEST_F(AttachTest, OpenMapsTheRegionReadOnlyOnce) {
    Tarv__Open();
    Tarv__Open();

    ASSERT_EQ(fake().shm_calls.size(), 1u);
    EXPECT_EQ(fake().shm_calls[0].name, "/kelm-data");
    EXPECT_EQ(fake().shm_calls[0].size, 453075u);
    EXPECT_EQ(fake().shm_calls[0].read_only, 1);
    EXPECT_EQ(pSharedData, fake().regions.at("/kelm-data")->data());
    EXPECT_EQ(pStorData, nullptr);
    EXPECT_TRUE(fake().traces.empty());
}

TEST_F(AttachTest, FailedOpenTracesCode12AndIsRetried) {
    fake().set_module_level(1);
    fake().shm_succeeds = false;
    abZeroKey[44] = 0x5A;  // whatever happened before, the zero block ends up zero

    Tarv__Open();

    EXPECT_EQ(pSharedData, nullptr);
    EXPECT_EQ(abZeroKey[44], 0);
    ASSERT_EQ(fake().traces.size(), 1u);
    const TraceRecord& t = fake().traces[0];
    EXPECT_EQ(t.kind, TraceKind::Error);
    EXPECT_EQ(t.level, 1u);
    EXPECT_EQ(t.function, "Tarv__Open");
    EXPECT_EQ(t.module, 142u);
    EXPECT_EQ(t.code, 12u);
    EXPECT_EQ(t.text, "KELM_SHARED_DATA");

    fake().shm_succeeds = true;
    Tarv__Open();
    EXPECT_NE(pSharedData, nullptr);
    EXPECT_EQ(fake().shm_calls.size(), 2u);
}

TEST_F(AttachTest, FailedOpenIsSilentWhenTheModuleLevelIsZero) {
    fake().shm_succeeds = false;
    Tarv__Open();
    Tarv__StorOpen();  // "Failed"
    fake().shm_succeeds = true;
    Tarv__Open();
    Tarv__StorOpen();  // "Null"
    EXPECT_NE(pStorData, nullptr);
    EXPECT_EQ(fake().trace_count, 0u);
}

TEST_F(AttachTest, StorOpenAfterOpenTracesNullAndRemapsReadWrite) {
    fake().set_module_level(1);
    Tarv__Open();

    Tarv__StorOpen();

    ASSERT_EQ(fake().shm_calls.size(), 2u);
    EXPECT_EQ(fake().shm_calls[1].read_only, 0);
    EXPECT_NE(pStorData, nullptr);
    EXPECT_EQ(pSharedData, pStorData);
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].function, "Tarv__StorOpen");
    EXPECT_EQ(fake().traces[0].code, 0u);
    EXPECT_EQ(fake().traces[0].text, "Null");

    Tarv__StorOpen();
    Tarv__Open();
    EXPECT_EQ(fake().shm_calls.size(), 2u);  // attached read-write: both are no-ops
}

TEST_F(AttachTest, FailedStorOpenLeavesTheProcessDetached) {
    fake().set_module_level(1);
    Tarv__Open();
    fake().shm_succeeds = false;

    Tarv__StorOpen();

    EXPECT_EQ(pSharedData, nullptr);
    EXPECT_EQ(pStorData, nullptr);
    ASSERT_EQ(fake().traces.size(), 2u);
    EXPECT_EQ(fake().traces[0].text, "Null");
    EXPECT_EQ(fake().traces[1].text, "Failed");
    EXPECT_EQ(fake().traces[1].code, 0u);

    fake().shm_succeeds = true;
    Tarv__StorOpen();
    EXPECT_NE(pStorData, nullptr);
    EXPECT_EQ(fake().count_text("Null"), 1u);  // detached before the retry: no second "Null"
}

TEST_F(AttachTest, SaveXmlHookChangesNothing) {
    std::uint8_t* region = attach();
    region[0] = 0x42;

    Tarv__SaveXMLIfOldConfig();

    EXPECT_EQ(region[0], 0x42);
    EXPECT_TRUE(fake().traces.empty());
    EXPECT_TRUE(fake().shm_calls.empty());
}

TEST_F(AttachTest, QueriesBeforeAttachAnswerWithoutTouchingMemory) {
    fake().set_module_level(1);
    std::uint8_t buffer[64];
    std::memset(buffer, 0xEE, sizeof buffer);
    std::uint16_t index = 77;

    EXPECT_EQ(Tarv__GetConfig(531, buffer, 3), 0);
    EXPECT_EQ(Tarv__MEPMoidIterator(nullptr), nullptr);
    Tarv__ReadMEP(make_moid(532, 1, 1, 1), buffer + 10);
    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 1, 1), &index), -1);
    EXPECT_EQ(Tarv__GetConfig(519, buffer + 20, 0), 0);

    for (int i = 0; i < 6; ++i) EXPECT_EQ(buffer[i], 0) << i;  // an empty MD list
    for (std::size_t i = 6; i < sizeof buffer; ++i) EXPECT_EQ(buffer[i], 0xEE) << i;
    EXPECT_EQ(index, 77);
    ASSERT_EQ(fake().traces.size(), 5u);
    for (const TraceRecord& t : fake().traces) {
        EXPECT_EQ(t.code, 12u);
        EXPECT_EQ(t.text, "KELM_SHARED_DATA");
    }
    EXPECT_EQ(fake().traces[2].function, "Tarv__ReadMEP");
}

class TraceConventionTest : public RegionTest {};

TEST_F(TraceConventionTest, DebugTracesRunFromTheirLevelUp) {
    attach();
    fake().set_debug_level(4);
    const TARV_MOID id_zero = make_moid(532, 1, 1, 0);

    EXPECT_EQ(Tarv__MEPMoidIterator(&id_zero), nullptr);  // level-4 trace: hint out of range

    ASSERT_EQ(fake().traces.size(), 1u);
    const TraceRecord& t = fake().traces[0];
    EXPECT_EQ(t.kind, TraceKind::Debug);
    EXPECT_EQ(t.level, 4u);
    EXPECT_EQ(t.function, "Tarv__MEPMoidIterator");
    EXPECT_EQ(t.file, "data/swch/api-tarv");
    EXPECT_GT(t.line, 0u);
    EXPECT_TRUE(t.closed);

    fake().set_debug_level(3);
    fake().traces.clear();
    EXPECT_EQ(Tarv__MEPMoidIterator(&id_zero), nullptr);
    EXPECT_TRUE(fake().traces.empty());
}

TEST_F(TraceConventionTest, WarningsNeedLevelTwoErrorsAnyLevel) {
    fake().set_module_level(1);
    TARV_WARNING("Fn", trace::kNotFound, "w %d", 1);
    TARV_ERROR("Fn", trace::kNullData, "e %ld", 2L);
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].kind, TraceKind::Error);
    EXPECT_EQ(fake().traces[0].code, 26u);
    EXPECT_EQ(fake().traces[0].text, "e 2");

    fake().set_module_level(2);
    TARV_WARNING("Fn", trace::kNotFound, "w %d", 1);
    ASSERT_EQ(fake().traces.size(), 2u);
    EXPECT_EQ(fake().traces[1].kind, TraceKind::Warning);
    EXPECT_EQ(fake().traces[1].level, 2u);
    EXPECT_EQ(fake().traces[1].module, 142u);
    EXPECT_EQ(fake().traces[1].code, 3u);
    EXPECT_TRUE(fake().traces[1].closed);

    fake().set_module_level(0);
    TARV_ERROR("Fn", trace::kNullData, "e");
    EXPECT_EQ(fake().traces.size(), 2u);
}

TEST_F(TraceConventionTest, DebugLevelWordIsReadUnsigned) {
    fake().set_debug_level(0xFFFFFFFFu);  // every level passes
    TARV_DEBUG(7, "Fn", "x");
    EXPECT_EQ(fake().traces.size(), 1u);
}

}  // namespace
}  // namespace tarv::testing
