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
#ifndef TARVTOOL_RECORDS_H
#define TARVTOOL_RECORDS_H

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bytes.h"
#include "class_catalog.h"

namespace tarvtool {

using Json = nlohmann::ordered_json;

enum class Kind : std::uint8_t { U8, U16, U32, Text, Mac };

struct FieldDef {
    std::string_view name;
    std::uint32_t offset;
    std::uint32_t width;
    Kind kind;
    tarv::Table table;  // the record it lies in
};

// A field of the library's, under the name JSON gives it.
template <typename V>
consteval FieldDef field_def(std::string_view name, tarv::Field<V> f) {
    return {name, f.offset, sizeof(V), sizeof(V) == 1 ? Kind::U8 : sizeof(V) == 2 ? Kind::U16 : Kind::U32, f.table};
}
consteval FieldDef field_def(std::string_view name, tarv::Bytes b, Kind kind) {
    return {name, b.offset, b.size, kind, b.table};
}

// The fields the tools read.
namespace field {
inline constexpr FieldDef acMdName = field_def("acMdName", tarv::md::acMdName, Kind::Text);
inline constexpr FieldDef eMdLevel = field_def("eMdLevel", tarv::md::eMdLevel);
inline constexpr FieldDef acMaName = field_def("acMaName", tarv::manet::acMaName, Kind::Text);
inline constexpr FieldDef dwCcmPeriod = field_def("dwCcmPeriod", tarv::manet::dwCcmPeriod);
inline constexpr FieldDef eTagging = field_def("eTagging", tarv::macomp::eTagging);
inline constexpr FieldDef wCompVid = field_def("wVid", tarv::macomp::wVid);
inline constexpr FieldDef wMepId = field_def("wMepId", tarv::mep::wMepId);
inline constexpr FieldDef eDirection = field_def("eDirection", tarv::mep::eDirection);
inline constexpr FieldDef wMepVid = field_def("wVid", tarv::mep::wVid);
inline constexpr FieldDef abyMepMac = field_def("abyMacAddress", tarv::mep::abyMacAddress, Kind::Mac);
inline constexpr FieldDef bAlarmBit2Enabled = field_def("bAlarmBit2Enabled", tarv::mep::bAlarmBit2Enabled);
inline constexpr FieldDef lStored1 = field_def("lStored1", tarv::mep::lStored1);
inline constexpr FieldDef wAlarmBits = field_def("wAlarmBits", tarv::mep::wAlarmBits);
inline constexpr FieldDef lStored2 = field_def("lStored2", tarv::mep::lStored2);
inline constexpr FieldDef byMepSlot = field_def("bySlot", tarv::mep::bySlot);
inline constexpr FieldDef byMepPort = field_def("byPort", tarv::mep::byPort);
inline constexpr FieldDef abyMipMac = field_def("abyMacAddress", tarv::mip::abyMacAddress, Kind::Mac);
inline constexpr FieldDef byMipSlot = field_def("bySlot", tarv::mip::bySlot);
inline constexpr FieldDef byMipPort = field_def("byPort", tarv::mip::byPort);
inline constexpr FieldDef eEnableStatus = field_def("eEnableStatus", tarv::throughput::eEnableStatus);
inline constexpr FieldDef lOperandA = field_def("lOperandA", tarv::throughput::lOperandA);
inline constexpr FieldDef wOperandB = field_def("wOperandB", tarv::throughput::wOperandB);
inline constexpr FieldDef wOperandC = field_def("wOperandC", tarv::throughput::wOperandC);
inline constexpr FieldDef wDerived = field_def("wDerived", tarv::throughput::wDerived);
inline constexpr FieldDef acResult = field_def("acResult", tarv::history::acResult, Kind::Text);
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

// Sets j[key] to a name or text from the region: a plain string when its
// bytes are valid UTF-8; otherwise the valid parts with U+FFFD for each
// other byte, and j[key + "Hex"] holding all its bytes in lower-case hex.
void put_name(Json& j, const std::string& key, std::string_view bytes);

[[nodiscard]] Json key_json(const ClassDef& c, Bytes key);
[[nodiscard]] Json record_json(const ClassDef& c, Bytes record);

// The inverse of key_json and record_json: the bytes of the key and of the
// record. Every member must be known and every byte given exactly once;
// throws a usage error that says what is wrong otherwise.
[[nodiscard]] std::vector<std::uint8_t> key_from_json(const ClassDef& c, const Json& key);
[[nodiscard]] std::vector<std::uint8_t> record_from_json(const ClassDef& c, const Json& record);

}  // namespace tarvtool

#endif
