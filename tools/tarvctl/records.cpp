#include "records.h"

#include <fmt/format.h>

#include <array>

namespace tarvctl {
namespace {

using namespace field;

constexpr std::array kMdFields{acMdName, eMdLevel};
constexpr std::array kMaNetFields{acMaName, dwCcmPeriod};
constexpr std::array kMaCompFields{eTagging, wCompVid};
constexpr std::array kMepFields{wMepId,    eDirection, wMepVid,  abyMepMac, bAlarmBit2Enabled,
                                lStored1,  wAlarmBits, lStored2, byMepSlot, byMepPort};
constexpr std::array kMipFields{abyMipMac, byMipSlot, byMipPort};
constexpr std::array kThroughputFields{eEnableStatus, lOperandA, wOperandB, wOperandC, wDerived};
constexpr std::array kHistoryFields{acResult};

template <std::size_t N>
consteval bool in_offset_order(const std::array<FieldDef, N>& fields, std::uint32_t record) {
    std::uint32_t next = 0;
    for (const FieldDef& f : fields) {
        if (f.offset < next) return false;
        next = f.offset + f.width;
    }
    return next <= record;
}
static_assert(in_offset_order(kMdFields, 65) && in_offset_order(kMaNetFields, 57) &&
              in_offset_order(kMaCompFields, 101) && in_offset_order(kMepFields, 48) &&
              in_offset_order(kMipFields, 14) && in_offset_order(kThroughputFields, 33) &&
              in_offset_order(kHistoryFields, 505));

}  // namespace

std::span<const FieldDef> record_fields(std::uint32_t class_id) noexcept {
    switch (class_id) {
        case cls::kMd: return kMdFields;
        case cls::kMep: return kMepFields;
        case cls::kMaComp: return kMaCompFields;
        case cls::kMaNet: return kMaNetFields;
        case cls::kMip: return kMipFields;
        case cls::kThroughput: return kThroughputFields;
        case cls::kHistory: return kHistoryFields;
        default: return {};
    }
}

std::uint32_t value(Bytes record, const FieldDef& f) noexcept {
    const std::uint8_t* p = record.data() + f.offset;
    switch (f.kind) {
        case Kind::U8: return *p;
        case Kind::U16: return le16(p);
        case Kind::U32: return le32(p);
        default: return 0;
    }
}

KeyIds key_ids(const ClassDef& c, Bytes key) noexcept {
    KeyIds ids;
    if (c.rule == Rule::History) {
        ids.id[0] = le32(key.data());
        ids.count = 1;
        return ids;
    }
    ids.cls = le16(key.data());
    const std::uint32_t moid = c.session_keyed() ? 14 : c.key;
    ids.count = (moid - 2) / 4;
    for (std::uint32_t i = 0; i < ids.count; ++i) ids.id[i] = le32(key.data() + 2 + 4 * i);
    if (c.session_keyed()) ids.session = key[14];
    return ids;
}

std::string label(const ClassDef& c, Bytes key) {
    if (c.rule == Rule::Singleton || c.rule == Rule::NoStorage) return std::string(c.title);
    const KeyIds ids = key_ids(c, key);
    std::string text = fmt::format("{} {}", c.title, ids.id[0]);
    for (std::uint32_t i = 1; i < ids.count; ++i) text += fmt::format("/{}", ids.id[i]);
    if (c.session_keyed()) text += fmt::format(" #{}", ids.session);
    return text;
}

Json key_json(const ClassDef& c, Bytes key) {
    Json j = Json::object();
    const KeyIds ids = key_ids(c, key);
    if (c.rule == Rule::History) {
        j["lHistoryId"] = ids.id[0];
        return j;
    }
    j["wClass"] = ids.cls;
    for (std::uint32_t i = 0; i < ids.count; ++i) j[fmt::format("lId{}", i + 1)] = ids.id[i];
    if (c.session_keyed()) j["bySessionId"] = ids.session;
    return j;
}

Json record_json(const ClassDef& c, Bytes record) {
    Json j = Json::object();
    std::uint32_t next = 0;
    auto opaque_until = [&](std::uint32_t end) {
        if (end > next) j[fmt::format("opaque{}", next)] = hex(record.subspan(next, end - next));
    };
    for (const FieldDef& f : record_fields(c.id)) {
        opaque_until(f.offset);
        switch (f.kind) {
            case Kind::Text: j[std::string(f.name)] = exact_text(bytes(record, f)); break;
            case Kind::Mac: j[std::string(f.name)] = mac(bytes(record, f)); break;
            default: j[std::string(f.name)] = value(record, f); break;
        }
        next = f.offset + f.width;
    }
    opaque_until(static_cast<std::uint32_t>(record.size()));
    return j;
}

}  // namespace tarvctl
