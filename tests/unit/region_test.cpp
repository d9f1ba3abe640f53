// Layout of the data region and the byte order of its scalars.
#include <utility>

#include "classes.h"
#include "region_fixture.h"

namespace tarv::testing {
namespace {

// Table bases and transfer sizes are fixed by the processes that
// share the region.
TEST(RegionLayout, TablesAndTransfersHaveTheSizesOtherProcessesUse) {
    const std::pair<Table, std::uint32_t> landmarks[] = {
        {Table::Class571DataArray, 0x8DD9}, {Table::Class526MoidArray, 0x9679}, {Table::Class528DataArray, 0x1FC95},
        {Table::Class572MoidArray, 0x21555}, {Table::MACompDataArray, 0x21815}, {Table::Class579DataArray, 0x23B75},
        {Table::Class581MoidArray, 0x3DFF5}, {Table::MaNetDataArray, 0x59FF5}, {Table::MdMoidArray, 0x5E1F5},
        {Table::MepDataArray, 0x5E4F5}, {Table::MepMoidArray, 0x5EAF5}, {Table::MepOldMoidArray, 0x5ECB5},
        {Table::MipMoidArray, 0x5F035}, {Table::ThroughputMoidArray, 0x5F615},
        {Table::ThroughputHistoryIdArray, 0x60835}, {Table::ThroughputHistoryDataArray, 0x609C9},
        {Table::Class673Record, 0x6D106}, {Table::PMSessionMoidArray, 0x6D582}, {Table::Class666MoidArray, 0x6DA53},
        {Table::PMAlarmBlock, 0x6DADA}, {Table::PMAlarmMoidArray, 0x6DB2C},
        {Table::BandwidthNotificationMoidArray, 0x6DDF3}, {Table::MepAlarmTextArray, 0x6DFB3},
    };
    for (auto [table, base] : landmarks) EXPECT_EQ(info(table).base, base) << static_cast<int>(table);
    EXPECT_EQ(info(Table::MepAlarmTextArray).end(), 0x6E9D3u);
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {526, 65}, {528, 111}, {531, 71}, {532, 62}, {571, 22}, {573, 115}, {574, 67}, {575, 28},
        {576, 20}, {579, 329}, {581, 22}, {638, 51}, {652, 509}, {665, 69}, {666, 53}, {674, 142}, {848, 32},
    };
    for (auto [id, size] : sizes) EXPECT_EQ(find_class(id)->transfer_size(), size) << id;
}

TEST(ByteOrder, ScalarsAreLittleEndianAtAnyOffset) {
    std::uint8_t buf[16] = {};
    store_le<std::uint32_t>(buf + 1, 0x11223344u);
    store_le<std::uint16_t>(buf + 5, 0xA1B2);
    store_le<double>(buf + 7, 1.0);
    EXPECT_EQ(Bytes(buf, buf + 16), (Bytes{0, 0x44, 0x33, 0x22, 0x11, 0xB2, 0xA1, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0}));
    EXPECT_EQ(load_le<std::uint32_t>(buf + 1), 0x11223344u);
    EXPECT_EQ(load_le<double>(buf + 7), 1.0);
}

}  // namespace
}  // namespace tarv::testing
