// Trace lines and trace control objects of the host platform.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "host_test_support.h"
#include "platform/pcor.h"
#include "platform/trcd.h"
#include "platform/wq.h"

namespace tarv::host::testing {
namespace {

constexpr char kPath[] = "data/swch/api-tarv";

class TraceTest : public ::testing::Test {
protected:
    void SetUp() override {
        clean_environment();
        stream_ = std::tmpfile();
        ASSERT_NE(stream_, nullptr);
        TarvHost_SetTraceStream(stream_);
    }
    void TearDown() override {
        clean_environment();
        std::fclose(stream_);
    }

    // Everything written to the trace stream so far.
    std::string written() {
        std::string text;
        std::rewind(stream_);
        char buffer[512];
        std::size_t n = 0;
        while ((n = std::fread(buffer, 1, sizeof buffer, stream_)) > 0) text.append(buffer, n);
        std::fseek(stream_, 0, SEEK_END);
        return text;
    }

    // One statement as the library makes it, gated by the platform only.
    static void debug(std::uint32_t level, std::uint32_t line, const char* text) {
        WQ_beginImpl(&DBG_KELM, level, kPath, line);
        Pcor__PrintDebugTrace(&DBG_KELM, level, "Tarv__ReadMEP", "%s", text);
        WQ_endImpl(&DBG_KELM);
    }
    static void error(std::uint32_t code, std::uint32_t line, const char* text) {
        TRCD_TRACE* object = Trcd__GetTrace(TRCD_MODULE_KELM);
        WQ_beginImpl(object, 1, kPath, line);
        Pcor__PrintErrorTrace(object, "Tarv__Open", TRCD_MODULE_KELM, code, "%s", text);
        WQ_endImpl(object);
    }
    static void warning(std::uint32_t code, std::uint32_t line, const char* text) {
        TRCD_TRACE* object = Trcd__GetTrace(TRCD_MODULE_KELM);
        WQ_beginImpl(object, 2, kPath, line);
        Pcor__PrintWarningTrace(object, "Tarv__GetConfig", TRCD_MODULE_KELM, code, "%s", text);
        WQ_endImpl(object);
    }

    std::FILE* stream_ = nullptr;
};

TEST_F(TraceTest, LinesCarryLevelFunctionCodePlaceAndMessage) {
    TarvHost_SetDebugLevel(7);
    TarvHost_SetModuleLevel(2);

    WQ_beginImpl(&DBG_KELM, 5, kPath, 123);
    Pcor__PrintDebugTrace(&DBG_KELM, 5, "Tarv__ReadMEP", "Mep %d of %s", 7, "MA-1");
    WQ_endImpl(&DBG_KELM);
    error(12, 40, "KELM_SHARED_DATA");
    warning(3, 77, "Class 999 unknown");

    EXPECT_EQ(written(),
              "tarv L5 Tarv__ReadMEP code=- data/swch/api-tarv:123: Mep 7 of MA-1\n"
              "tarv L1 Tarv__Open code=12 data/swch/api-tarv:40: KELM_SHARED_DATA\n"
              "tarv L2 Tarv__GetConfig code=3 data/swch/api-tarv:77: Class 999 unknown\n");
}

TEST_F(TraceTest, EveryStatementIsExactlyOneLine) {
    TarvHost_SetDebugLevel(7);
    debug(4, 1, "pMepIndex is null\n");
    debug(4, 2, "two\r\nparts\n\n");
    debug(4, 3, "");
    EXPECT_EQ(written(),
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:1: pMepIndex is null\n"
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:2: two  parts\n"
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:3: \n");

    const std::string text(5000, 'x');
    debug(4, 4, text.c_str());
    const std::string out = written();
    const std::string last = out.substr(out.rfind("tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:4: "));
    EXPECT_EQ(std::count(last.begin(), last.end(), '\n'), 1) << "cut, but still one line";
    EXPECT_EQ(last.back(), '\n');
    EXPECT_GT(last.size(), 1000u);
    EXPECT_LT(last.size(), text.size());
}

TEST_F(TraceTest, PrintOutsideAnOpenStatementHasNoPlace) {
    TarvHost_SetDebugLevel(7);
    Pcor__PrintDebugTrace(&DBG_KELM, 4, "Tarv__ReadMEP", "no statement");
    WQ_beginImpl(Trcd__GetTrace(TRCD_MODULE_KELM), 1, kPath, 9);  // another object's statement
    Pcor__PrintDebugTrace(&DBG_KELM, 4, "Tarv__ReadMEP", "other object");
    WQ_endImpl(Trcd__GetTrace(TRCD_MODULE_KELM));
    debug(4, 10, "closed");
    Pcor__PrintDebugTrace(&DBG_KELM, 4, "Tarv__ReadMEP", "after end");
    EXPECT_EQ(written(),
              "tarv L4 Tarv__ReadMEP code=- ?:0: no statement\n"
              "tarv L4 Tarv__ReadMEP code=- ?:0: other object\n"
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:10: closed\n"
              "tarv L4 Tarv__ReadMEP code=- ?:0: after end\n");
}

// Debug lines need DBG_KELM's level; warnings and errors need module 142's,
// and neither level word plays a part in the other's lines.
TEST_F(TraceTest, LinesFollowTheirObjectsLevelWord) {
    TarvHost_SetModuleLevel(0);
    TarvHost_SetDebugLevel(4);
    debug(5, 1, "level 5 at 4");
    debug(4, 2, "level 4 at 4");
    error(12, 3, "error at module 0");
    TarvHost_SetDebugLevel(0);
    debug(4, 4, "level 4 at 0");
    TarvHost_SetModuleLevel(1);
    error(12, 5, "error at module 1");
    warning(3, 6, "warning at module 1");
    TarvHost_SetModuleLevel(2);
    warning(3, 7, "warning at module 2");
    TarvHost_SetDebugLevel(0xFFFFFFFFu);
    debug(7, 8, "level 7 at max");
    EXPECT_EQ(written(),
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:2: level 4 at 4\n"
              "tarv L1 Tarv__Open code=12 data/swch/api-tarv:5: error at module 1\n"
              "tarv L2 Tarv__GetConfig code=3 data/swch/api-tarv:7: warning at module 2\n"
              "tarv L7 Tarv__ReadMEP code=- data/swch/api-tarv:8: level 7 at max\n");
}

TEST_F(TraceTest, DefaultsShowErrorsOnly) {
    TRCD_TRACE* kelm = Trcd__GetTrace(TRCD_MODULE_KELM);
    TRCD_TRACE* other = Trcd__GetTrace(1);
    ASSERT_TRUE(kelm != nullptr && other != nullptr);
    EXPECT_EQ(Trcd__GetTrace(0xFFFFFFFFu), other) << "one object for every other module";
    EXPECT_TRUE(kelm != other && kelm != &DBG_KELM);
    EXPECT_EQ(DBG_KELM.lLevel, 0u);
    EXPECT_EQ(kelm->lLevel, 1u);
    EXPECT_EQ(other->lLevel, 0u);

    debug(4, 1, "debug");
    warning(3, 2, "warning");
    error(12, 3, "error");
    EXPECT_EQ(written(), "tarv L1 Tarv__Open code=12 data/swch/api-tarv:3: error\n");
}

TEST_F(TraceTest, NoStreamMeansStderr) {
    TarvHost_SetTraceStream(nullptr);
    ::testing::internal::CaptureStderr();
    error(26, 5, "pData is null");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "tarv L1 Tarv__Open code=26 data/swch/api-tarv:5: pData is null\n");
    EXPECT_EQ(written(), "");
}

}  // namespace
}  // namespace tarv::host::testing
