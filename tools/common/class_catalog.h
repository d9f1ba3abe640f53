// What the tools know of the OAM regions: their names and sizes, and for each
// object class served by Tarv__GetConfig its transfer record and the two
// tables that hold it. Sizes, slots, positions and rules come from the
// library's own directory and class table; the tool adds only what people
// read: command-line names, titles and table names. The library answers every
// question about contents; the table positions serve `check` and `snapshot`,
// which look at slots that no library call reports (empty keys, keys in the
// wrong slot).
#ifndef TARVTOOL_CLASS_CATALOG_H
#define TARVTOOL_CLASS_CATALOG_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "api-tarv/classes.h"
#include "tarv/tarv.h"

namespace tarvtool {

inline constexpr const auto& kDataRegion = tarv::kRegionName;
inline constexpr std::uint32_t kDataRegionSize = tarv::kRegionSize;
inline constexpr char kChkpRegion[] = "/kelm-chkp-data";
inline constexpr std::uint32_t kChkpRegionSize = TARV_CHKP_DATA_SIZE;

// How Tarv__GetConfig transfers a class, and where an object's slot comes
// from: the library's own rules.
using Rule = tarv::ClassRule;
using Placement = tarv::Placement;

// One region table.
struct TableRef {
    std::string_view name;
    std::uint32_t base;
};

struct ClassDef {
    std::uint32_t id;
    std::string_view name;   // command-line name, empty for numbered classes
    std::string_view title;  // how messages name one object
    Rule rule;
    std::uint32_t key;     // key bytes of a transfer record
    std::uint32_t record;  // record bytes
    std::uint32_t slots;
    Placement placement;
    TableRef keys;  // key array (the record itself for singletons)
    TableRef data;  // data array

    [[nodiscard]] constexpr std::uint32_t transfer() const noexcept { return key + record; }
    [[nodiscard]] constexpr bool session_keyed() const noexcept { return placement == Placement::SessionId; }
};

// The 21 classes, in class id order.
[[nodiscard]] std::span<const ClassDef> classes() noexcept;

// The class with this id, or null.
[[nodiscard]] const ClassDef* find_class(std::uint32_t id) noexcept;

// The class a command line names, by id ("532") or name ("mep"); throws a
// usage error naming the choices otherwise.
[[nodiscard]] const ClassDef& parse_class(std::string_view text);

// "mep (532), md (531), ..., 526, ..." for help texts.
[[nodiscard]] std::string class_choices();

// Classes by id, for the readers of the common objects.
namespace cls {
inline constexpr std::uint32_t kMd = 531;
inline constexpr std::uint32_t kMep = 532;
inline constexpr std::uint32_t kMaComp = 573;
inline constexpr std::uint32_t kMaNet = 574;
inline constexpr std::uint32_t kMip = 575;
inline constexpr std::uint32_t kThroughput = 638;
inline constexpr std::uint32_t kHistory = 652;
inline constexpr std::uint32_t kPmSession = 674;
inline constexpr std::uint32_t kBwn = 848;
}  // namespace cls

[[nodiscard]] const ClassDef& class_of(std::uint32_t id) noexcept;

}  // namespace tarvtool

#endif
