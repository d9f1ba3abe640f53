#include "region_diff.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "api-tarv/classes.h"
#include "objects.h"

namespace tarvtool {
namespace {

using Slot = StoredObject;

const tarv::ClassInfo& info_of(const ClassDef& c) {
    return *std::find_if(tarv::kClasses.begin(), tarv::kClasses.end(),
                         [&c](const tarv::ClassInfo& i) { return i.id == c.id; });
}

}  // namespace

std::vector<StoredObject> stored_objects(const ClassDef& c, Bytes region) {
    const tarv::ClassInfo& i = info_of(c);
    const tarv::TableInfo& keys = tarv::info(i.keys);
    const tarv::TableInfo& data = tarv::info(i.data);
    if (c.rule == Rule::Singleton) return {Slot{0, {}, region.subspan(data.base, c.record)}};
    std::vector<Slot> found;
    for (std::uint32_t s = 0; s < c.slots; ++s) {
        const Bytes key = region.subspan(keys.base + static_cast<std::size_t>(s) * keys.entry, c.key);
        if (!all_zero(key)) found.push_back(Slot{s, key, region.subspan(data.base + static_cast<std::size_t>(s) * data.entry, c.record)});
    }
    return found;
}

namespace {

bool same(Bytes a, Bytes b) { return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin()); }

const Slot* find_key(const std::vector<Slot>& slots, Bytes key) {
    const auto it = std::find_if(slots.begin(), slots.end(), [&key](const Slot& s) { return same(s.key, key); });
    return it == slots.end() ? nullptr : &*it;
}

std::vector<std::uint8_t> copy(Bytes b) { return {b.begin(), b.end()}; }

Change make(Change::Kind kind, const ClassDef* def, std::string name, Bytes key = {}, Bytes record = {}) {
    Change c{};
    c.kind = kind;
    c.def = def;
    c.name = std::move(name);
    c.key = copy(key);
    c.record = copy(record);
    return c;
}

std::string object_name(const ClassDef& c, Bytes key) {
    return c.rule == Rule::Singleton ? fmt::format("{}", c.title) : label(c, key);
}

void diff_class(const ClassDef& c, Bytes before, Bytes after, std::vector<Change>& out) {
    const std::vector<Slot> was = stored_objects(c, before);
    const std::vector<Slot> now = stored_objects(c, after);
    for (const Slot& s : was)
        if (c.rule != Rule::Singleton && find_key(now, s.key) == nullptr)
            out.push_back(make(Change::Kind::Removed, &c, object_name(c, s.key), s.key, s.record));
    for (const Slot& s : now)
        if (c.rule != Rule::Singleton && find_key(was, s.key) == nullptr)
            out.push_back(make(Change::Kind::Added, &c, object_name(c, s.key), s.key, s.record));
    for (const Slot& s : now) {
        const Slot* old = c.rule == Rule::Singleton ? &was.front() : find_key(was, s.key);
        if (old == nullptr || same(old->record, s.record)) continue;
        Change change = make(Change::Kind::Changed, &c, object_name(c, s.key), s.key, s.record);
        const Json a = record_json(c, old->record);
        const Json b = record_json(c, s.record);
        for (const auto& member : b.items()) {
            if (c.id == cls::kMep && member.key() == field::wAlarmBits.name) continue;  // an alarm word below
            if (a.at(member.key()) != member.value())
                change.fields.push_back(FieldChange{member.key(), a.at(member.key()), member.value()});
        }
        if (!change.fields.empty()) out.push_back(std::move(change));
    }
}

// The MEP slots' alarm words as stored in their records, named by the MEP.
void diff_mep_alarms(Bytes before, Bytes after, std::vector<Change>& out) {
    const ClassDef& c = class_of(cls::kMep);
    const tarv::ClassInfo& i = info_of(c);
    for (std::uint32_t s = 0; s < c.slots; ++s) {
        const std::size_t k = tarv::info(i.keys).base + static_cast<std::size_t>(s) * tarv::info(i.keys).entry;
        const std::size_t r = tarv::info(i.data).base + static_cast<std::size_t>(s) * tarv::info(i.data).entry;
        const auto word = [&](Bytes region) {
            return all_zero(region.subspan(k, c.key)) ? std::uint16_t{0}
                                                      : static_cast<std::uint16_t>(value(region.subspan(r, c.record),
                                                                                         field::wAlarmBits));
        };
        const std::uint16_t a = word(before);
        const std::uint16_t b = word(after);
        if (a == b) continue;
        const Bytes key = all_zero(after.subspan(k, c.key)) ? before.subspan(k, c.key) : after.subspan(k, c.key);
        Change change = make(Change::Kind::Alarm, &c, label(c, key), key,
                             (all_zero(after.subspan(k, c.key)) ? before : after).subspan(r, c.record));
        change.word_before = a;
        change.word_after = b;
        out.push_back(std::move(change));
    }
}

// The PM alarm block's words, each named by the key of its slot in the PM
// alarm key array.
void diff_pm_alarms(Bytes before, Bytes after, std::vector<Change>& out) {
    const ClassDef& c = class_of(cls::kPmSession);
    const tarv::TableInfo& block = tarv::info(tarv::Table::PMAlarmBlock);
    const tarv::TableInfo& keys = tarv::info(tarv::Table::PMAlarmMoidArray);
    for (std::uint32_t s = 0; s < block.slots; ++s) {
        const std::size_t at = block.base + static_cast<std::size_t>(s) * block.entry;
        const std::uint16_t a = le16(before.data() + at);
        const std::uint16_t b = le16(after.data() + at);
        if (a == b) continue;
        const Bytes key = after.subspan(keys.base + static_cast<std::size_t>(s) * keys.entry, c.key);
        Change change =
            make(Change::Kind::Alarm, &c, all_zero(key) ? fmt::format("PM slot {}", s) : label(c, key), key);
        change.word_before = a;
        change.word_after = b;
        out.push_back(std::move(change));
    }
}

constexpr std::array<std::string_view, static_cast<std::size_t>(tarv::Table::Count)> kTableNames = {
    "Class519Record", "Class523Record", "Private1", "Class571DataArray", "Class571MoidArray", "Class526DataArray",
    "Class526MoidArray", "Private2", "Class528DataArray", "Class528MoidArray", "Class572DataArray",
    "Class572MoidArray", "MACompDataArray", "MACompMoidArray", "Class576DataArray", "Class576MoidArray",
    "Class577DataArray", "Class577MoidArray", "Class578DataArray", "Class578MoidArray", "Class579DataArray",
    "Class579MoidArray", "Class581DataArray", "Class581MoidArray", "Private3", "MaNetDataArray", "MaNetMoidArray",
    "MdDataArray", "MdMoidArray", "MepDataArray", "MepMoidArray", "MepOldMoidArray", "MipDataArray", "MipMoidArray",
    "ThroughputDataArray", "ThroughputMoidArray", "Private4", "ThroughputHistoryIdArray",
    "ThroughputHistoryDataArray", "Class673Record", "PMSessionDataArray", "PMSessionMoidArray",
    "PMSessionOldMoidArray", "Class665DataArray", "Class666DataArray", "Class665MoidArray", "Class666MoidArray",
    "PMAlarmBlock", "MepHWAlarmBlock", "PMAlarmMoidArray", "BandwidthNotificationDataArray",
    "BandwidthNotificationMoidArray", "MepAlarmTextArray"};

// A table that no class transfers and no alarm word covers.
bool outside_objects(tarv::Table t) {
    if (t == tarv::Table::PMAlarmBlock || t == tarv::Table::PMAlarmMoidArray) return false;
    return std::none_of(tarv::kClasses.begin(), tarv::kClasses.end(), [t](const tarv::ClassInfo& i) {
        return i.rule != Rule::NoStorage && (i.keys == t || i.data == t);
    });
}

void diff_tables(Bytes before, Bytes after, std::vector<Change>& out) {
    for (const tarv::TableInfo& t : tarv::kDirectory) {
        if (!outside_objects(t.id)) continue;
        std::uint32_t count = 0;
        for (std::uint32_t at = t.base; at < t.end(); ++at) count += before[at] != after[at] ? 1U : 0U;
        if (count == 0) continue;
        Change change = make(Change::Kind::Table, nullptr, std::string(kTableNames[static_cast<std::size_t>(t.id)]));
        change.count = count;
        out.push_back(std::move(change));
    }
}

// A value for a line: a number or an address as it is, any other text
// quoted with JSON's escapes.
std::string shown(const Json& v) {
    if (!v.is_string()) return v.dump();
    const auto& s = v.get_ref<const std::string&>();
    const bool plain = !s.empty() && std::all_of(s.begin(), s.end(), [](char ch) {
        return (ch >= '0' && ch <= '9') || (ch >= 'a' && ch <= 'f') || ch == ':';
    });
    return plain ? s : v.dump(-1, ' ', true);
}

std::string bits_text(const std::vector<unsigned>& bits) {
    return fmt::format("{} {}", bits.size() == 1 ? "bit" : "bits", fmt::join(bits, ", "));
}

// A MEP as every JSON view refers to it.
Json mep_reference(Bytes key, Bytes record) {
    const KeyIds ids = key_ids(class_of(cls::kMep), key);
    const auto slot = value(record, field::byMepSlot);
    const auto port = value(record, field::byMepPort);
    Json j = Json::object();
    j["md"] = ids.id[0];
    j["ma"] = ids.id[1];
    j["mep"] = ids.id[2];
    j["mepId"] = value(record, field::wMepId);
    j["port"] = slot == kLagSlot ? Json{{"lag", port}} : Json{{"slot", slot}, {"port", port}};
    return j;
}

}  // namespace

std::vector<Change> diff_regions(Bytes before, Bytes after) {
    std::vector<Change> out;
    for (const ClassDef& c : classes())
        if (c.rule != Rule::NoStorage) diff_class(c, before, after, out);
    diff_mep_alarms(before, after, out);
    diff_pm_alarms(before, after, out);
    diff_tables(before, after, out);
    return out;
}

std::vector<std::string> change_lines(const Change& change) {
    switch (change.kind) {
        case Change::Kind::Added: return {"+ " + change.name};
        case Change::Kind::Removed: return {"- " + change.name};
        case Change::Kind::Changed: {
            std::string line = "* " + change.name + ":";
            for (std::size_t i = 0; i < change.fields.size(); ++i)
                line += fmt::format("{} {} {} -> {}", i == 0 ? "" : ",", change.fields[i].name,
                                    shown(change.fields[i].before), shown(change.fields[i].after));
            return {line};
        }
        case Change::Kind::Alarm: {
            std::vector<std::string> lines;
            const auto raised = bits_of(change.word_after & ~change.word_before);
            const auto cleared = bits_of(change.word_before & ~change.word_after);
            if (!raised.empty()) lines.push_back(fmt::format("* {}: alarm {} raised", change.name, bits_text(raised)));
            if (!cleared.empty())
                lines.push_back(fmt::format("* {}: alarm {} cleared", change.name, bits_text(cleared)));
            return lines;
        }
        case Change::Kind::Table:
            return {fmt::format("* table {}: {} byte{} differ{}", change.name, change.count,
                                change.count == 1 ? "" : "s", change.count == 1 ? "s" : "")};
    }
    return {};
}

Json change_json(const Change& change) {
    static constexpr const char* kEvents[] = {"added", "removed", "changed", "alarm", "table"};
    Json j = Json::object();
    j["event"] = kEvents[static_cast<std::size_t>(change.kind)];
    if (change.kind == Change::Kind::Table) {
        j["table"] = change.name;
        j["bytes"] = change.count;
        return j;
    }
    j["class"] = change.def->id;
    j["object"] = change.name;
    if (!change.key.empty() && !all_zero(change.key)) j["key"] = key_json(*change.def, change.key);
    if (change.def->id == cls::kMep && !change.record.empty()) j["mep"] = mep_reference(change.key, change.record);
    if (change.kind == Change::Kind::Changed) {
        Json fields = Json::object();
        for (const FieldChange& f : change.fields) fields[f.name] = Json{{"before", f.before}, {"after", f.after}};
        j["fields"] = fields;
    } else if (change.kind == Change::Kind::Alarm) {
        j["raised"] = bits_of(change.word_after & ~change.word_before);
        j["cleared"] = bits_of(change.word_before & ~change.word_after);
    }
    return j;
}

}  // namespace tarvtool
