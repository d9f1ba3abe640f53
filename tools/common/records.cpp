#include "records.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <limits>

#include "status.h"

namespace tarvtool {
namespace {

using namespace field;

// Identifiers after wClass in a key of class c (the PM keys' session byte
// not counted).
constexpr std::uint32_t id_count(const ClassDef& c) noexcept {
    return ((c.session_keyed() ? tarv::moid::kSessionIdOffset : c.key) - 2) / 4;
}

constexpr std::array kMdFields{acMdName, eMdLevel};
constexpr std::array kMaNetFields{acMaName, dwCcmPeriod};
constexpr std::array kMaCompFields{eTagging, wCompVid};
constexpr std::array kMepFields{wMepId,    eDirection, wMepVid,  abyMepMac, bAlarmBit2Enabled,
                                lStored1,  wAlarmBits, lStored2, byMepSlot, byMepPort};
constexpr std::array kMipFields{abyMipMac, byMipSlot, byMipPort};
constexpr std::array kThroughputFields{eEnableStatus, lOperandA, wOperandB, wOperandC, wDerived};
constexpr std::array kHistoryFields{acResult};

// A class's fields lie in its record, in offset order, without overlap.
template <std::size_t N>
consteval bool listed_in_order(const std::array<FieldDef, N>& fields, std::uint32_t class_id) {
    const tarv::Table record = tarv::find_class(class_id)->data;
    std::uint32_t next = 0;
    for (const FieldDef& f : fields) {
        if (f.table != record || f.offset < next) return false;
        next = f.offset + f.width;
    }
    return true;
}
static_assert(listed_in_order(kMdFields, cls::kMd) && listed_in_order(kMaNetFields, cls::kMaNet) &&
              listed_in_order(kMaCompFields, cls::kMaComp) && listed_in_order(kMepFields, cls::kMep) &&
              listed_in_order(kMipFields, cls::kMip) && listed_in_order(kThroughputFields, cls::kThroughput) &&
              listed_in_order(kHistoryFields, cls::kHistory));

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

void put(MutableBytes record, const FieldDef& f, std::uint32_t value) noexcept {
    std::uint8_t* p = record.data() + f.offset;
    switch (f.kind) {
        case Kind::U8: *p = static_cast<std::uint8_t>(value); break;
        case Kind::U16: store_le16(p, static_cast<std::uint16_t>(value)); break;
        case Kind::U32: store_le32(p, value); break;
        default: break;
    }
}

void put_text(MutableBytes record, const FieldDef& f, std::string_view text) noexcept {
    const MutableBytes field = record.subspan(f.offset, f.width);
    std::fill(field.begin(), field.end(), std::uint8_t{0});
    std::copy_n(text.begin(), std::min<std::size_t>(text.size(), field.size()), field.begin());
}

std::vector<std::uint8_t> make_key(const ClassDef& c, std::initializer_list<std::uint32_t> ids, std::uint8_t session) {
    std::vector<std::uint8_t> key(c.key);
    if (key.empty()) return key;  // singletons have none
    std::size_t at = 0;
    if (c.rule != Rule::History) {
        store_le16(key.data(), static_cast<std::uint16_t>(c.id));
        at = 2;
    }
    for (std::uint32_t id : ids) {
        if (at + 4 > key.size()) break;
        store_le32(key.data() + at, id);
        at += 4;
    }
    if (c.session_keyed()) key[tarv::moid::kSessionIdOffset] = session;
    return key;
}

KeyIds key_ids(const ClassDef& c, Bytes key) noexcept {
    KeyIds ids;
    if (c.rule == Rule::History) {
        ids.id[0] = le32(key.data());
        ids.count = 1;
        return ids;
    }
    ids.cls = le16(key.data());
    ids.count = id_count(c);
    for (std::uint32_t i = 0; i < ids.count; ++i) ids.id[i] = le32(key.data() + 2 + static_cast<std::size_t>(i) * 4);
    if (c.session_keyed()) ids.session = key[tarv::moid::kSessionIdOffset];
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

void put_name(Json& j, const std::string& key, std::string_view bytes) {
    bool valid = true;
    j[key] = utf8_or_replaced(bytes, valid);
    if (!valid)
        j[key + "Hex"] = hex(Bytes(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
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

namespace {

[[noreturn]] void bad(const std::string& message) { throw Failure(kExitUsage, message); }

// An unsigned JSON number that fits `bits` bits.
std::uint32_t number(const Json& j, std::string_view name, unsigned bits) {
    const std::uint64_t max = bits >= 32 ? std::numeric_limits<std::uint32_t>::max() : (std::uint64_t{1} << bits) - 1;
    const bool whole = j.is_number_unsigned() || (j.is_number_integer() && j.get<std::int64_t>() >= 0);
    if (!whole || j.get<std::uint64_t>() > max)
        bad(fmt::format("\"{}\" must be a whole number from 0 to {}, not {}", name, max, j.dump()));
    return static_cast<std::uint32_t>(j.get<std::uint64_t>());
}

const std::string& text_of(const Json& j, std::string_view name) {
    if (!j.is_string()) bad(fmt::format("\"{}\" must be a string, not {}", name, j.dump()));
    return j.get_ref<const std::string&>();
}

}  // namespace

std::vector<std::uint8_t> key_from_json(const ClassDef& c, const Json& key) {
    if (!key.is_object()) bad(fmt::format("\"key\" must be an object, not {}", key.dump()));
    // The members key_json writes for the class, each with its width.
    std::vector<std::pair<std::string, unsigned>> names;
    if (c.rule == Rule::History) {
        names.emplace_back("lHistoryId", 32);
    } else {
        names.emplace_back("wClass", 16);
        for (std::uint32_t i = 0; i < id_count(c); ++i)
            names.emplace_back(fmt::format("lId{}", i + 1), 32);
        if (c.session_keyed()) names.emplace_back("bySessionId", 8);
    }
    for (const auto& member : key.items()) {
        const std::string& name = member.key();
        if (std::none_of(names.begin(), names.end(), [&](const auto& n) { return n.first == name; }))
            bad(fmt::format("unknown key member \"{}\" for class {}", name, c.id));
    }
    std::vector<std::uint8_t> key_bytes(c.key);
    std::size_t at = 0;
    for (const auto& [name, bits] : names) {
        if (!key.contains(name)) bad(fmt::format("the key lacks \"{}\"", name));
        const std::uint32_t v = number(key.at(name), name, bits);
        if (bits == 16)
            store_le16(key_bytes.data() + at, static_cast<std::uint16_t>(v));
        else if (bits == 32)
            store_le32(key_bytes.data() + at, v);
        else
            key_bytes[at] = static_cast<std::uint8_t>(v);
        at += bits / 8;
    }
    return key_bytes;
}

std::vector<std::uint8_t> record_from_json(const ClassDef& c, const Json& record) {
    if (!record.is_object()) bad(fmt::format("\"record\" must be an object, not {}", record.dump()));
    std::vector<std::uint8_t> record_bytes(c.record);
    std::vector<bool> given(c.record, false);
    auto cover = [&](std::string_view name, std::uint32_t offset, std::size_t width) {
        if (offset + width > c.record)
            bad(fmt::format("\"{}\" runs past the record's {} bytes", name, c.record));
        for (std::size_t i = offset; i < offset + width; ++i) {
            if (given[i]) bad(fmt::format("\"{}\" gives byte {} a second time", name, i));
            given[i] = true;
        }
    };
    const auto fields = record_fields(c.id);
    for (const auto& member : record.items()) {
        const std::string& name = member.key();
        const Json& value_given = member.value();
        const auto f = std::find_if(fields.begin(), fields.end(), [&](const FieldDef& d) { return d.name == name; });
        if (f != fields.end()) {
            cover(name, f->offset, f->width);
            std::optional<std::vector<std::uint8_t>> raw;
            switch (f->kind) {
                case Kind::Text:
                    raw = parse_exact_text(text_of(value_given, name));
                    if (!raw) bad(fmt::format("\"{}\" holds a character above U+00FF", name));
                    if (raw->size() > f->width)
                        bad(fmt::format("\"{}\" has {} characters, its field {}", name, raw->size(), f->width));
                    std::copy(raw->begin(), raw->end(), record_bytes.begin() + f->offset);
                    break;
                case Kind::Mac:
                    raw = parse_mac(text_of(value_given, name));
                    if (!raw) bad(fmt::format("\"{}\" must be six hex bytes such as 02:54:41:52:57:03", name));
                    std::copy(raw->begin(), raw->end(), record_bytes.begin() + f->offset);
                    break;
                default: put(record_bytes, *f, number(value_given, name, 8 * f->width)); break;
            }
            continue;
        }
        std::uint32_t offset = 0;
        const std::string_view digits = std::string_view(name).substr(std::min<std::size_t>(name.size(), 6));
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), offset);
        if (name.rfind("opaque", 0) != 0 || digits.empty() || error != std::errc{} ||
            end != digits.data() + digits.size())
            bad(fmt::format("unknown record member \"{}\" for class {}", name, c.id));
        const auto raw = parse_hex(text_of(value_given, name));
        if (!raw || raw->empty()) bad(fmt::format("\"{}\" must be an even number of hex digits", name));
        cover(name, offset, raw->size());
        std::copy(raw->begin(), raw->end(), record_bytes.begin() + offset);
    }
    const auto missing = std::find(given.begin(), given.end(), false);
    if (missing != given.end())
        bad(fmt::format("the record does not give byte {} (of {})", missing - given.begin(), c.record));
    return record_bytes;
}

}  // namespace tarvtool
