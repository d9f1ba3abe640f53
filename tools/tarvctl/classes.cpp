#include "classes.h"

#include <fmt/format.h>

#include <array>
#include <charconv>

#include "status.h"

namespace tarvctl {
namespace {

// clang-format off
constexpr std::array<ClassDef, 21> kClasses{{
    {519, "", "class 519 record", Rule::Singleton, 0, 14, 1, Placement::None, {"Class519Record", 0}, {"Class519Record", 0}},
    {523, "", "class 523 record", Rule::Singleton, 0, 12, 1, Placement::None, {"Class523Record", 14}, {"Class523Record", 14}},
    {526, "", "class 526 object", Rule::List, 18, 47, 32, Placement::LastId, {"Class526MoidArray", 38521}, {"Class526DataArray", 37017}},
    {528, "", "class 528 object", Rule::List, 18, 93, 32, Placement::LastId, {"Class528MoidArray", 133173}, {"Class528DataArray", 130197}},
    {531, "md", "MD", Rule::List, 6, 65, 128, Placement::LastId, {"MdMoidArray", 385525}, {"MdDataArray", 377205}},
    {532, "mep", "MEP", Rule::List, 14, 48, 32, Placement::LastId, {"MepMoidArray", 387829}, {"MepDataArray", 386293}},
    {571, "", "class 571 object", Rule::List, 14, 8, 32, Placement::Packed, {"Class571MoidArray", 36569}, {"Class571DataArray", 36313}},
    {573, "macomp", "MA component", Rule::List, 14, 101, 32, Placement::LastId, {"MACompMoidArray", 140469}, {"MACompDataArray", 137237}},
    {574, "manet", "MA", Rule::List, 10, 57, 128, Placement::LastId, {"MaNetMoidArray", 375925}, {"MaNetDataArray", 368629}},
    {575, "mip", "MIP", Rule::List, 14, 14, 32, Placement::LastId, {"MipMoidArray", 389173}, {"MipDataArray", 388725}},
    {576, "", "class 576 object", Rule::List, 14, 6, 128, Placement::LastId, {"Class576MoidArray", 141685}, {"Class576DataArray", 140917}},
    {579, "", "class 579 object", Rule::List, 18, 311, 128, Placement::LastId, {"Class579MoidArray", 186101}, {"Class579DataArray", 146293}},
    {580, "", "class 580 object", Rule::NoStorage, 0, 0, 0, Placement::None, {"", 0}, {"", 0}},
    {581, "", "class 581 object", Rule::List, 6, 16, 4096, Placement::LastId, {"Class581MoidArray", 253941}, {"Class581DataArray", 188405}},
    {638, "throughput", "throughput test", Rule::List, 18, 33, 32, Placement::LastId, {"ThroughputMoidArray", 390677}, {"ThroughputDataArray", 389621}},
    {652, "history", "throughput history record", Rule::History, 4, 505, 101, Placement::Packed, {"ThroughputHistoryIdArray", 395317}, {"ThroughputHistoryDataArray", 395721}},
    {665, "", "class 665 entry", Rule::List, 15, 54, 9, Placement::SessionId, {"Class665MoidArray", 448972}, {"Class665DataArray", 448144}},
    {666, "", "class 666 entry", Rule::List, 15, 38, 9, Placement::SessionId, {"Class666MoidArray", 449107}, {"Class666DataArray", 448630}},
    {673, "", "class 673 record", Rule::Singleton, 0, 5, 1, Placement::None, {"Class673Record", 446726}, {"Class673Record", 446726}},
    {674, "pm", "PM session", Rule::List, 15, 127, 9, Placement::SessionId, {"PMSessionMoidArray", 447874}, {"PMSessionDataArray", 446731}},
    {848, "bwn", "bandwidth notification", Rule::List, 14, 18, 32, Placement::LastId, {"BandwidthNotificationMoidArray", 450035}, {"BandwidthNotificationDataArray", 449459}},
}};
// clang-format on

consteval bool tables_inside_region() {
    for (const ClassDef& c : kClasses) {
        if (c.keys.base + std::uint64_t{c.slots} * (c.rule == Rule::Singleton ? c.record : c.key) > kDataRegionSize)
            return false;
        if (c.data.base + std::uint64_t{c.slots} * c.record > kDataRegionSize) return false;
    }
    return true;
}
static_assert(tables_inside_region());

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

}  // namespace tarvctl
