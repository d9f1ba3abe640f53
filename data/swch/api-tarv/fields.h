// Named fields inside the region's records.
//
// Most record bytes are opaque and copied whole; these are the fields some
// operation reads, tests, prints or sets. A field names its table and its
// offset within that table's entry; its width is that of its value type.
// Every field is checked at compile time to lie inside its record.
#ifndef TARV_FIELDS_H
#define TARV_FIELDS_H

#include <cstdint>

#include "byteorder.h"
#include "region.h"

namespace tarv {

template <typename V>
struct Field {
    Table table;
    std::uint32_t offset;
};

// A run of bytes inside a record (texts, addresses).
struct Bytes {
    Table table;
    std::uint32_t offset;
    std::uint32_t size;
};

template <typename V>
[[nodiscard]] constexpr bool fits(Field<V> f) noexcept {
    return f.offset + sizeof(V) <= info(f.table).entry;
}
[[nodiscard]] constexpr bool fits(Bytes b) noexcept {
    return b.offset + b.size <= info(b.table).entry;
}

// Value of field f in the record at `record`.
template <typename V>
[[nodiscard]] inline V get(const std::uint8_t* record, Field<V> f) noexcept {
    return load_le<V>(record + f.offset);
}
template <typename V>
inline void set(std::uint8_t* record, Field<V> f, V value) noexcept {
    store_le<V>(record + f.offset, value);
}

// MOID and key layout (key arrays).
namespace moid {
inline constexpr std::uint32_t kClassOffset = 0;
inline constexpr std::uint32_t kId1Offset = 2;
inline constexpr std::uint32_t kId2Offset = 6;
inline constexpr std::uint32_t kId3Offset = 10;
inline constexpr std::uint32_t kId4Offset = 14;
inline constexpr std::uint32_t kSessionIdOffset = 14;  // PM keys
}  // namespace moid

namespace md {
inline constexpr Bytes acMdName{Table::MdDataArray, 4, 20};
inline constexpr Field<std::uint32_t> eMdLevel{Table::MdDataArray, 48};
}  // namespace md

namespace manet {
inline constexpr Bytes acMaName{Table::MaNetDataArray, 4, 24};
inline constexpr Field<std::uint32_t> dwCcmPeriod{Table::MaNetDataArray, 50};
}  // namespace manet

namespace macomp {
inline constexpr Field<std::uint32_t> eTagging{Table::MACompDataArray, 85};
inline constexpr Field<std::uint16_t> wVid{Table::MACompDataArray, 89};
}  // namespace macomp

namespace mep {
inline constexpr Field<std::uint16_t> wMepId{Table::MepDataArray, 0};
inline constexpr Field<std::uint32_t> eDirection{Table::MepDataArray, 2};
inline constexpr Field<std::uint16_t> wVid{Table::MepDataArray, 6};
inline constexpr Bytes abyMacAddress{Table::MepDataArray, 10, 6};
inline constexpr Field<std::uint8_t> bAlarmBit2Enabled{Table::MepDataArray, 21};
inline constexpr Field<std::uint32_t> lStored1{Table::MepDataArray, 22};
inline constexpr Field<std::uint16_t> wAlarmBits{Table::MepDataArray, 26};
inline constexpr Field<std::uint32_t> lStored2{Table::MepDataArray, 28};
inline constexpr Field<std::uint8_t> bySlot{Table::MepDataArray, 46};
inline constexpr Field<std::uint8_t> byPort{Table::MepDataArray, 47};
}  // namespace mep

namespace mip {
inline constexpr Bytes abyMacAddress{Table::MipDataArray, 0, 6};
inline constexpr Field<std::uint8_t> bySlot{Table::MipDataArray, 12};
inline constexpr Field<std::uint8_t> byPort{Table::MipDataArray, 13};
}  // namespace mip

namespace throughput {
inline constexpr Field<std::uint32_t> eEnableStatus{Table::ThroughputDataArray, 9};
inline constexpr Field<std::uint32_t> lOperandA{Table::ThroughputDataArray, 23};
inline constexpr Field<std::uint16_t> wOperandB{Table::ThroughputDataArray, 27};
inline constexpr Field<std::uint16_t> wOperandC{Table::ThroughputDataArray, 29};
inline constexpr Field<std::uint16_t> wDerived{Table::ThroughputDataArray, 31};
}  // namespace throughput

namespace history {
// Zero-terminated result text; may fill its 404 bytes without a terminator.
inline constexpr Bytes acResult{Table::ThroughputHistoryDataArray, 101, 404};
}  // namespace history

namespace class526 {
inline constexpr Field<std::uint32_t> lStored{Table::Class526DataArray, 13};
}
namespace class528 {
inline constexpr Field<std::uint32_t> lStored{Table::Class528DataArray, 9};
}

namespace alarm_text {
inline constexpr std::uint32_t kMaxChars = 80;  // an 81-byte zero-terminated text
}

// Values of the point, component and MA fields that the usage queries test.
namespace mep {
inline constexpr std::uint32_t kDown = 1;  // eDirection
inline constexpr std::uint32_t kUp = 2;
inline constexpr std::uint8_t kLagSlot = 2;  // bySlot of a point on a LAG; byPort is then the LAG id
}  // namespace mep
namespace macomp {
inline constexpr std::uint32_t kCVlan = 1;  // eTagging
inline constexpr std::uint32_t kSVlan = 2;
inline constexpr std::uint32_t kVfi = 5;
}  // namespace macomp
namespace manet {
inline constexpr std::uint32_t kHeavyCcmPeriod = 2;  // the dwCcmPeriod whose MEPs cost 3 resource units
}  // namespace manet

static_assert(fits(md::acMdName) && fits(md::eMdLevel));
static_assert(fits(manet::acMaName) && fits(manet::dwCcmPeriod));
static_assert(fits(macomp::eTagging) && fits(macomp::wVid));
static_assert(fits(mep::wMepId) && fits(mep::eDirection) && fits(mep::wVid) && fits(mep::abyMacAddress) &&
              fits(mep::bAlarmBit2Enabled) && fits(mep::lStored1) && fits(mep::wAlarmBits) &&
              fits(mep::lStored2) && fits(mep::bySlot) && fits(mep::byPort));
static_assert(fits(mip::abyMacAddress) && fits(mip::bySlot) && fits(mip::byPort));
static_assert(fits(throughput::eEnableStatus) && fits(throughput::lOperandA) && fits(throughput::wOperandB) &&
              fits(throughput::wOperandC) && fits(throughput::wDerived));
static_assert(history::acResult.offset + history::acResult.size == info(Table::ThroughputHistoryDataArray).entry);
static_assert(fits(class526::lStored) && fits(class528::lStored));

}  // namespace tarv

#endif
