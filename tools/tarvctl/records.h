// The fields of the records the library interprets (MD, MaNet, MA
// component, MEP, MIP, throughput test, throughput history), and the JSON
// and hex forms of transfer records. Every other byte is the controller's
// and is shown as hex, unchanged.
//
// JSON form of one transfer record:
//   {"key": {"wClass": 532, "lId1": 1, "lId2": 1, "lId3": 3},
//    "record": {"wMepId": 101, "eDirection": 1, "wVid": 100,
//               "opaque8": "0000", "abyMacAddress": "02:54:41:52:57:03", ...}}
// Keys name their identifiers (wClass, lId1..lId4, bySessionId for PM keys,
// lHistoryId for the throughput history). A record lists its named fields
// and, between them, "opaque<offset>" runs of hex bytes, in offset order, so
// that together they cover every byte exactly once. Numbers are unsigned
// decimals; texts are strings of one code point per byte (U+0000..U+00FF),
// trailing zero bytes left out; addresses are six colon-separated hex bytes.
// Singletons have no "key"; a class without named fields is one "opaque0".
#ifndef TARVCTL_RECORDS_H
#define TARVCTL_RECORDS_H

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bytes.h"
#include "classes.h"

namespace tarvctl {

using Json = nlohmann::ordered_json;

enum class Kind : std::uint8_t { U8, U16, U32, Text, Mac };

struct FieldDef {
    std::string_view name;
    std::uint32_t offset;
    std::uint32_t width;
    Kind kind;
};

// The fields tarvctl reads.
namespace field {
inline constexpr FieldDef acMdName{"acMdName", 4, 20, Kind::Text};
inline constexpr FieldDef eMdLevel{"eMdLevel", 48, 4, Kind::U32};
inline constexpr FieldDef acMaName{"acMaName", 4, 24, Kind::Text};
inline constexpr FieldDef dwCcmPeriod{"dwCcmPeriod", 50, 4, Kind::U32};
inline constexpr FieldDef eTagging{"eTagging", 85, 4, Kind::U32};
inline constexpr FieldDef wCompVid{"wVid", 89, 2, Kind::U16};
inline constexpr FieldDef wMepId{"wMepId", 0, 2, Kind::U16};
inline constexpr FieldDef eDirection{"eDirection", 2, 4, Kind::U32};
inline constexpr FieldDef wMepVid{"wVid", 6, 2, Kind::U16};
inline constexpr FieldDef abyMepMac{"abyMacAddress", 10, 6, Kind::Mac};
inline constexpr FieldDef bAlarmBit2Enabled{"bAlarmBit2Enabled", 21, 1, Kind::U8};
inline constexpr FieldDef lStored1{"lStored1", 22, 4, Kind::U32};
inline constexpr FieldDef wAlarmBits{"wAlarmBits", 26, 2, Kind::U16};
inline constexpr FieldDef lStored2{"lStored2", 28, 4, Kind::U32};
inline constexpr FieldDef byMepSlot{"bySlot", 46, 1, Kind::U8};
inline constexpr FieldDef byMepPort{"byPort", 47, 1, Kind::U8};
inline constexpr FieldDef abyMipMac{"abyMacAddress", 0, 6, Kind::Mac};
inline constexpr FieldDef byMipSlot{"bySlot", 12, 1, Kind::U8};
inline constexpr FieldDef byMipPort{"byPort", 13, 1, Kind::U8};
inline constexpr FieldDef eEnableStatus{"eEnableStatus", 9, 4, Kind::U32};
inline constexpr FieldDef lOperandA{"lOperandA", 23, 4, Kind::U32};
inline constexpr FieldDef wOperandB{"wOperandB", 27, 2, Kind::U16};
inline constexpr FieldDef wOperandC{"wOperandC", 29, 2, Kind::U16};
inline constexpr FieldDef wDerived{"wDerived", 31, 2, Kind::U16};
inline constexpr FieldDef acResult{"acResult", 101, 404, Kind::Text};
}  // namespace field

// Named fields of a class's record in offset order; empty for opaque ones.
[[nodiscard]] std::span<const FieldDef> record_fields(std::uint32_t class_id) noexcept;

// Value of an integer field.
[[nodiscard]] std::uint32_t value(Bytes record, const FieldDef& f) noexcept;
// The bytes of a field.
[[nodiscard]] inline Bytes bytes(Bytes record, const FieldDef& f) noexcept {
    return record.subspan(f.offset, f.width);
}

// Sets an integer field (little-endian, cut to its width), and a text
// field (its bytes, cut to the width, zeros after them).
void put(MutableBytes record, const FieldDef& f, std::uint32_t value) noexcept;
void put_text(MutableBytes record, const FieldDef& f, std::string_view text) noexcept;

// A key of class c: wClass, then the identifiers (lHistoryId alone for the
// throughput history), then for PM keys the session byte.
[[nodiscard]] std::vector<std::uint8_t> make_key(const ClassDef& c, std::initializer_list<std::uint32_t> ids,
                                                 std::uint8_t session = 0);

// Identifiers of a key: wClass, then lId1.. as the key's size allows (for
// PM keys lId1..lId3 and the session byte), for labels.
struct KeyIds {
    std::uint16_t cls = 0;
    std::uint32_t id[4] = {};
    std::uint32_t count = 0;  // identifiers after wClass
    std::uint8_t session = 0;
};
[[nodiscard]] KeyIds key_ids(const ClassDef& c, Bytes key) noexcept;

// "MEP 1/1/3", "PM session 1/1/1 #2", "throughput history record 7".
[[nodiscard]] std::string label(const ClassDef& c, Bytes key);

[[nodiscard]] Json key_json(const ClassDef& c, Bytes key);
[[nodiscard]] Json record_json(const ClassDef& c, Bytes record);

// The inverse of key_json and record_json: the bytes of the key and of the
// record. Every member must be known and every byte given exactly once;
// throws a usage error that says what is wrong otherwise.
[[nodiscard]] std::vector<std::uint8_t> key_from_json(const ClassDef& c, const Json& key);
[[nodiscard]] std::vector<std::uint8_t> record_from_json(const ClassDef& c, const Json& record);

}  // namespace tarvctl

#endif
