#include "class_catalog.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "status.h"

namespace tarvtool {
namespace {

// What the tool adds to each of the library's classes, in the library's
// order.
struct Naming {
    std::uint32_t id;
    std::string_view name;
    std::string_view title;
    std::string_view keys;  // table names
    std::string_view data;
};

// clang-format off
constexpr Naming kNames[] = {
    {519, "", "class 519 record", "Class519Record", "Class519Record"},
    {523, "", "class 523 record", "Class523Record", "Class523Record"},
    {526, "", "class 526 object", "Class526MoidArray", "Class526DataArray"},
    {528, "", "class 528 object", "Class528MoidArray", "Class528DataArray"},
    {531, "md", "MD", "MdMoidArray", "MdDataArray"},
    {532, "mep", "MEP", "MepMoidArray", "MepDataArray"},
    {571, "", "class 571 object", "Class571MoidArray", "Class571DataArray"},
    {573, "macomp", "MA component", "MACompMoidArray", "MACompDataArray"},
    {574, "manet", "MA", "MaNetMoidArray", "MaNetDataArray"},
    {575, "mip", "MIP", "MipMoidArray", "MipDataArray"},
    {576, "", "class 576 object", "Class576MoidArray", "Class576DataArray"},
    {579, "", "class 579 object", "Class579MoidArray", "Class579DataArray"},
    {580, "", "class 580 object", "", ""},
    {581, "", "class 581 object", "Class581MoidArray", "Class581DataArray"},
    {638, "throughput", "throughput test", "ThroughputMoidArray", "ThroughputDataArray"},
    {652, "history", "throughput history record", "ThroughputHistoryIdArray", "ThroughputHistoryDataArray"},
    {665, "", "class 665 entry", "Class665MoidArray", "Class665DataArray"},
    {666, "", "class 666 entry", "Class666MoidArray", "Class666DataArray"},
    {673, "", "class 673 record", "Class673Record", "Class673Record"},
    {674, "pm", "PM session", "PMSessionMoidArray", "PMSessionDataArray"},
    {848, "bwn", "bandwidth notification", "BandwidthNotificationMoidArray", "BandwidthNotificationDataArray"},
};
// clang-format on
// One row for each of the library's classes, in its order.
static_assert(std::ranges::equal(kNames, tarv::kClasses, {}, &Naming::id, &tarv::ClassInfo::id));

// A class as the library stores it, named; a class without storage has no
// tables and no bytes.
consteval ClassDef define(const tarv::ClassInfo& c, const Naming& n) {
    if (c.rule == Rule::NoStorage) return {c.id, n.name, n.title, c.rule, 0, 0, 0, c.placement, {}, {}};
    return {c.id, n.name, n.title, c.rule, c.key_size(), c.record_size(), c.slots(), c.placement,
            {n.keys, tarv::info(c.keys).base}, {n.data, tarv::info(c.data).base}};
}

consteval std::array<ClassDef, tarv::kClasses.size()> define_all() {
    std::array<ClassDef, tarv::kClasses.size()> all{};
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = define(tarv::kClasses[i], kNames[i]);
    return all;
}
constexpr auto kClasses = define_all();

}  // namespace

std::span<const ClassDef> classes() noexcept { return kClasses; }

const ClassDef* find_class(std::uint32_t id) noexcept {
    for (const ClassDef& c : kClasses)
        if (c.id == id) return &c;
    return nullptr;
}

const ClassDef& class_of(std::uint32_t id) noexcept { return *find_class(id); }

std::string class_choices() {
    std::string names;
    std::string numbers;
    for (const ClassDef& c : kClasses) {
        if (!c.name.empty())
            names += fmt::format("{}{} ({})", names.empty() ? "" : ", ", c.name, c.id);
        else
            numbers += fmt::format("{}{}", numbers.empty() ? "" : ", ", c.id);
    }
    return names + "; by number also " + numbers;
}

const ClassDef& parse_class(std::string_view text) {
    for (const ClassDef& c : kClasses)
        if (!c.name.empty() && c.name == text) return c;
    std::uint32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error == std::errc{} && end == text.data() + text.size())
        if (const ClassDef* c = find_class(id)) return *c;
    throw Failure(kExitUsage, fmt::format("unknown class '{}': give one of {}", text, class_choices()));
}

}  // namespace tarvtool
