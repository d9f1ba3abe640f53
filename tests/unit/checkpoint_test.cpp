// The checkpoint region: attach, read of the whole record, write of a prefix.
#include <tuple>

#include "region_fixture.h"

namespace tarv::testing {
namespace {

constexpr char kName[] = "/kelm-chkp-data";

class CheckpointTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        fake().set_debug_level(7);
        fake().set_module_level(2);
    }
    // Fresh process state, then attached (or not) with a record of 0x11.
    GuardedBytes* open(bool attached) {
        SetUp();
        if (!attached) return nullptr;
        Tarv__ChkpOpen();
        GuardedBytes* record = fake().regions.at(kName).get();
        record->fill(0x11);
        fake().traces.clear();
        return record;
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
    EXPECT_EQ(std::tie(fake().shm_calls[1].size, fake().shm_calls[1].read_only), std::make_tuple(280u, 0));
    EXPECT_EQ(traced(), (Lines{"7 /kelm-chkp-data\n", "1/12 Open KELM Read-Write SHM failed - /kelm-chkp-data\n",
                                    "7 /kelm-chkp-data\n", "7 /kelm-chkp-data\n"}));
}

// Section, value, length and attach are checked in this order; a length of
// up to 280 bytes (0 included) writes that prefix, a negative one counts as
// very large.
TEST_F(CheckpointTest, WriteChecksSectionValueLengthAndAttachInThisOrder) {
    // Section, value, length, attached, the warning ("" when the write happens).
    const std::tuple<std::uint32_t, std::uint16_t, std::int32_t, bool, std::string> rows[] = {
        {16, 1, 280, true, ""}, {16, 1, 100, true, ""}, {16, 1, 0, true, ""},
        {16, 1, 281, true, "lLengthInByte 281 too big, maximum 280"}, {16, 1, 280, false, "pChkpData is NULL"},
        {16, 1, -1, true, "lLengthInByte -1 too big, maximum 280"}, {16, 0, 100, true, "Illegal wValue 0, expected 1"},
        {15, 1, 100, true, "Illegal eSectionId 15, expected 16"}, {16, 2, 281, false, "Illegal wValue 2, expected 1"},
        {17, 1, 100, true, "Illegal eSectionId 17, expected 16"},
        {15, 0, 281, false, "Illegal eSectionId 15, expected 16"},
        {16, 1, 281, false, "lLengthInByte 281 too big, maximum 280"},
    };
    const auto source = guarded(280, 0xA5);
    for (const auto& [section, value, length, attached, warning] : rows) {
        GuardedBytes* record = open(attached);
        Tarv__SetChkpData(section, value, source->data(), length);
        Lines want{"7 /kelm-chkp-data\n"};
        if (!warning.empty()) want.push_back("2/3 " + warning + "\n");
        EXPECT_EQ(traced(), want) << length;
        Bytes expected(280, 0x11);
        std::fill_n(expected.begin(), warning.empty() ? length : 0, 0xA5);
        EXPECT_EQ(record ? contents(*record) : expected, expected) << length;
    }
}

// The record is copied whole into a buffer whose length (read unsigned) is
// at least 280; *pwValue is set also when the length is refused.
TEST_F(CheckpointTest, ReadCopiesTheWholeRecordIntoABufferLargeEnough) {
    // Null pData, length, buffer size, attached, *pwValue afterwards, the
    // warning ("" when the record is copied).
    const std::tuple<bool, std::int32_t, std::size_t, bool, std::uint16_t, std::string> rows[] = {
        {false, 280, 280, true, 1, ""}, {false, 300, 300, true, 1, ""}, {false, -1, 280, true, 1, ""},
        {false, 279, 280, true, 1, "2/3 lLengthInByte 279 too small, need 280\n"},
        {true, 280, 1, true, 0xEEEE, "2/26 Illegal pData.\n"},
        {false, 280, 280, false, 1, "2/3 pChkpData is NULL\n"},
    };
    for (const auto& [null_data, length, buffer, attached, value, warning] : rows) {
        open(attached);
        const auto out = guarded(buffer);
        std::uint16_t got = 0xEEEE;
        Tarv__GetChkpData(9, &got, null_data ? nullptr : out->data(), length);
        const std::string l = std::to_string(length);
        Lines want{"7 eSectionId: 9  lLengthInByte:" + l + "\n"};
        if (value == 1 && static_cast<std::uint32_t>(length) >= 280)
            want.push_back("5 sizeof(KELM_CHKP_DATA) 280, lLengthInByte " + l + "\n");
        if (!warning.empty()) want.push_back(warning);
        EXPECT_EQ(traced(), want);
        EXPECT_EQ(got, value) << l;
        Bytes expected(buffer, 0xEE);
        if (warning.empty()) std::fill_n(expected.begin(), 280, 0x11);
        EXPECT_EQ(contents(*out), expected) << l;
    }
}

}  // namespace
}  // namespace tarv::testing
