// tarvctl describes the region from the outside (it sees only the public
// header); these tests hold that description against the library's own
// directory, class table and field list, so the two cannot drift apart.
#include <gtest/gtest.h>

#include <algorithm>

#include "api-tarv/classes.h"
#include "api-tarv/fields.h"
#include "tarvctl/classes.h"
#include "tarvctl/records.h"

namespace {

using tarv::Table;

tarvctl::Rule rule_of(tarv::ClassRule r) {
    switch (r) {
        case tarv::ClassRule::List: return tarvctl::Rule::List;
        case tarv::ClassRule::Singleton: return tarvctl::Rule::Singleton;
        case tarv::ClassRule::History: return tarvctl::Rule::History;
        case tarv::ClassRule::NoStorage: break;
    }
    return tarvctl::Rule::NoStorage;
}

tarvctl::Placement placement_of(tarv::Placement p) {
    switch (p) {
        case tarv::Placement::LastId: return tarvctl::Placement::LastId;
        case tarv::Placement::SessionId: return tarvctl::Placement::SessionId;
        case tarv::Placement::Packed: return tarvctl::Placement::Packed;
        case tarv::Placement::None: break;
    }
    return tarvctl::Placement::None;
}

TEST(TarvctlLayout, ClassesAreTheLibrarysWithTheirTables) {
    EXPECT_EQ(tarvctl::kDataRegionSize, tarv::kRegionSize);
    EXPECT_STREQ(tarvctl::kDataRegion, tarv::kRegionName);
    ASSERT_EQ(tarvctl::classes().size(), tarv::kClasses.size());
    for (const tarv::ClassInfo& lib : tarv::kClasses) {
        const tarvctl::ClassDef* tool = tarvctl::find_class(lib.id);
        ASSERT_NE(tool, nullptr) << lib.id;
        EXPECT_EQ(tool->rule, rule_of(lib.rule)) << lib.id;
        if (lib.rule == tarv::ClassRule::NoStorage) continue;
        EXPECT_EQ(tool->placement, placement_of(lib.placement)) << lib.id;
        EXPECT_EQ(tool->key, lib.rule == tarv::ClassRule::Singleton ? 0u : lib.key_size()) << lib.id;
        EXPECT_EQ(tool->record, lib.record_size()) << lib.id;
        EXPECT_EQ(tool->slots, lib.slots()) << lib.id;
        EXPECT_EQ(tool->keys.base, tarv::info(lib.keys).base) << lib.id;
        EXPECT_EQ(tool->data.base, tarv::info(lib.data).base) << lib.id;
    }
}

// The controller's tables tarvctl reads and the demo fills are the
// library's, with their entry sizes and slot counts.
TEST(TarvctlLayout, ControllerTablesAreTheLibrarys) {
    namespace a = tarvctl::area;
    const std::pair<tarvctl::AreaDef, Table> rows[] = {
        {a::kMepOldMoid, Table::MepOldMoidArray},   {a::kPmSessionOldMoid, Table::PMSessionOldMoidArray},
        {a::kPmAlarmBlock, Table::PMAlarmBlock},    {a::kMepHwAlarmBlock, Table::MepHWAlarmBlock},
        {a::kPmAlarmMoid, Table::PMAlarmMoidArray}, {a::kMepAlarmText, Table::MepAlarmTextArray},
    };
    for (const auto& [tool, lib] : rows) {
        EXPECT_EQ(tool.base, tarv::info(lib).base) << tool.name;
        EXPECT_EQ(tool.entry, tarv::info(lib).entry) << tool.name;
        EXPECT_EQ(tool.slots, tarv::info(lib).slots) << tool.name;
    }
}

struct FieldRow {
    tarvctl::FieldDef tool;
    std::uint32_t class_id;
    Table table;
    std::uint32_t offset;
    std::uint32_t width;
};

template <typename V>
FieldRow row(const tarvctl::FieldDef& tool, std::uint32_t class_id, tarv::Field<V> lib) {
    return {tool, class_id, lib.table, lib.offset, sizeof(V)};
}
FieldRow row(const tarvctl::FieldDef& tool, std::uint32_t class_id, tarv::Bytes lib) {
    return {tool, class_id, lib.table, lib.offset, lib.size};
}

// Every named field is the library's field of the same record, and is listed
// for its class.
TEST(TarvctlLayout, NamedFieldsAreTheLibrarys) {
    namespace f = tarvctl::field;
    const FieldRow rows[] = {
        row(f::acMdName, 531, tarv::md::acMdName),
        row(f::eMdLevel, 531, tarv::md::eMdLevel),
        row(f::acMaName, 574, tarv::manet::acMaName),
        row(f::dwCcmPeriod, 574, tarv::manet::dwCcmPeriod),
        row(f::eTagging, 573, tarv::macomp::eTagging),
        row(f::wCompVid, 573, tarv::macomp::wVid),
        row(f::wMepId, 532, tarv::mep::wMepId),
        row(f::eDirection, 532, tarv::mep::eDirection),
        row(f::wMepVid, 532, tarv::mep::wVid),
        row(f::abyMepMac, 532, tarv::mep::abyMacAddress),
        row(f::bAlarmBit2Enabled, 532, tarv::mep::bAlarmBit2Enabled),
        row(f::lStored1, 532, tarv::mep::lStored1),
        row(f::wAlarmBits, 532, tarv::mep::wAlarmBits),
        row(f::lStored2, 532, tarv::mep::lStored2),
        row(f::byMepSlot, 532, tarv::mep::bySlot),
        row(f::byMepPort, 532, tarv::mep::byPort),
        row(f::abyMipMac, 575, tarv::mip::abyMacAddress),
        row(f::byMipSlot, 575, tarv::mip::bySlot),
        row(f::byMipPort, 575, tarv::mip::byPort),
        row(f::eEnableStatus, 638, tarv::throughput::eEnableStatus),
        row(f::lOperandA, 638, tarv::throughput::lOperandA),
        row(f::wOperandB, 638, tarv::throughput::wOperandB),
        row(f::wOperandC, 638, tarv::throughput::wOperandC),
        row(f::wDerived, 638, tarv::throughput::wDerived),
        row(f::acResult, 652, tarv::history::acResult),
    };
    std::size_t listed = 0;
    for (const FieldRow& r : rows) {
        EXPECT_EQ(r.tool.offset, r.offset) << r.tool.name;
        EXPECT_EQ(r.tool.width, r.width) << r.tool.name;
        EXPECT_EQ(tarv::find_class(r.class_id)->data, r.table) << r.tool.name;
        const auto fields = tarvctl::record_fields(r.class_id);
        const bool in_class = std::any_of(fields.begin(), fields.end(), [&](const tarvctl::FieldDef& d) {
            return d.name == r.tool.name && d.offset == r.tool.offset;
        });
        EXPECT_TRUE(in_class) << r.tool.name << " is not listed for class " << r.class_id;
    }
    for (const tarv::ClassInfo& c : tarv::kClasses) listed += tarvctl::record_fields(c.id).size();
    EXPECT_EQ(listed, std::size(rows)) << "a class lists a field the library does not name";
}

}  // namespace
