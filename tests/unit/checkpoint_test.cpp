// The checkpoint region: attach, read of the whole record, write of a prefix.
#include <gtest/gtest.h>

#include "region.h"
#include "support/fake_platform.h"
#include "tarv/tarv.h"

namespace tarv::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr char kName[] = "/kelm-chkp-data";

class CheckpointTest : public ::testing::Test {
protected:
    void SetUp() override {
        fake().reset();
        pChkpData = nullptr;
        fake().set_debug_level(7);
        fake().set_module_level(2);
    }
    void TearDown() override {
        pChkpData = nullptr;
        fake().reset();
    }
    // Attaches and fills the record with 0x11; returns its 280 bytes.
    GuardedBytes& open() {
        Tarv__ChkpOpen();
        GuardedBytes& record = *fake().regions.at(kName);
        record.fill(0x11);
        fake().traces.clear();
        return record;
    }
    // Each trace as "<level> <text>", warnings and errors with their code.
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const auto& t : fake().traces)
            out.push_back(std::to_string(t.level) + (t.level < 4 ? "/" + std::to_string(t.code) : "") + " " + t.text);
        return out;
    }
};

TEST_F(CheckpointTest, OpenAttachesReadWriteOnceAndRetriesAfterAFailure) {
    fake().shm_succeeds = false;
    Tarv__ChkpOpen();
    fake().shm_succeeds = true;
    Tarv__ChkpOpen();
    Tarv__ChkpOpen();

    EXPECT_EQ(pChkpData, fake().regions.at(kName)->data());
    EXPECT_EQ(pSharedData, nullptr);
    ASSERT_EQ(fake().shm_calls.size(), 2u);
    EXPECT_EQ(fake().shm_calls[1].size, 280u);
    EXPECT_EQ(fake().shm_calls[1].read_only, 0);
    EXPECT_EQ(texts(), (std::vector<std::string>{"7 /kelm-chkp-data\n",
                                                  "1/12 Open KELM Read-Write SHM failed - /kelm-chkp-data\n",
                                                  "7 /kelm-chkp-data\n", "7 /kelm-chkp-data\n"}));
}

struct SetCase {
    std::uint32_t section;
    std::uint16_t value;
    std::int32_t length;
    bool attached;
    std::string warning;  // "" when the write happens
};

TEST_F(CheckpointTest, WriteChecksSectionValueLengthAndAttachInThisOrder) {
    const std::vector<SetCase> cases{
        {16, 1, 280, true, ""},
        {16, 1, 100, true, ""},
        {16, 1, 0, true, ""},
        {16, 1, 281, true, "lLengthInByte 281 too big, maximum 280\n"},
        {16, 1, -1, true, "lLengthInByte -1 too big, maximum 280\n"},
        {15, 1, 100, true, "Illegal eSectionId 15, expected 16\n"},
        {16, 0, 100, true, "Illegal wValue 0, expected 1\n"},
        {15, 0, 281, false, "Illegal eSectionId 15, expected 16\n"},
        {16, 2, 281, false, "Illegal wValue 2, expected 1\n"},
        {16, 1, 281, false, "lLengthInByte 281 too big, maximum 280\n"},
        {16, 1, 280, false, "pChkpData is NULL\n"},
    };
    GuardedBytes source(280);
    source.fill(0xA5);
    for (const auto& c : cases) {
        SetUp();
        GuardedBytes* record = c.attached ? &open() : nullptr;

        Tarv__SetChkpData(c.section, c.value, source.data(), c.length);

        std::vector<std::string> want{"7 /kelm-chkp-data\n"};
        if (!c.warning.empty()) want.push_back("2/3 " + c.warning);
        EXPECT_EQ(texts(), want) << c.length;
        if (record == nullptr) continue;
        const std::size_t written = c.warning.empty() ? static_cast<std::size_t>(c.length) : 0;
        Bytes expected(280, 0x11);
        std::fill_n(expected.begin(), written, 0xA5);
        EXPECT_EQ(Bytes(record->data(), record->data() + 280), expected) << c.length;
    }
}

struct GetCase {
    bool null_data;
    std::int32_t length;
    std::size_t buffer;
    bool attached;
    std::uint16_t value;   // *pwValue afterwards
    std::string warning;   // "" when the record is copied
};

TEST_F(CheckpointTest, ReadCopiesTheWholeRecordIntoABufferLargeEnough) {
    const std::vector<GetCase> cases{
        {false, 280, 280, true, 1, ""},
        {false, 300, 300, true, 1, ""},
        {false, -1, 280, true, 1, ""},
        {false, 279, 280, true, 1, "2/3 lLengthInByte 279 too small, need 280\n"},
        {true, 280, 1, true, 0xEEEE, "2/26 Illegal pData.\n"},
        {false, 280, 280, false, 1, "2/3 pChkpData is NULL\n"},
    };
    for (const auto& c : cases) {
        SetUp();
        if (c.attached) open();
        GuardedBytes out(c.buffer);
        out.fill(0xEE);
        std::uint16_t value = 0xEEEE;

        Tarv__GetChkpData(9, &value, c.null_data ? nullptr : out.data(), c.length);

        const std::string l = std::to_string(c.length);
        std::vector<std::string> want{"7 eSectionId: 9  lLengthInByte:" + l + "\n"};
        if (c.value == 1 && static_cast<std::uint32_t>(c.length) >= 280)
            want.push_back("5 sizeof(KELM_CHKP_DATA) 280, lLengthInByte " + l + "\n");
        if (!c.warning.empty()) want.push_back(c.warning);
        EXPECT_EQ(texts(), want);
        EXPECT_EQ(value, c.value) << l;
        Bytes expected(c.buffer, 0xEE);
        if (c.warning.empty()) std::fill_n(expected.begin(), 280, 0x11);
        EXPECT_EQ(Bytes(out.data(), out.data() + c.buffer), expected) << l;
    }
}

}  // namespace
}  // namespace tarv::testing
