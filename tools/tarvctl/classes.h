// What tarvctl knows of the OAM regions: their names and sizes, and for each
// object class served by Tarv__GetConfig its transfer record and the two
// tables that hold it. The library answers every question about contents;
// the table positions serve `check` and `snapshot`, which look at slots that
// no library call reports (empty keys, keys in the wrong slot).
#ifndef TARVCTL_CLASSES_H
#define TARVCTL_CLASSES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarvctl {

inline constexpr char kDataRegion[] = "/kelm-data";
inline constexpr std::uint32_t kDataRegionSize = 453075;
inline constexpr char kChkpRegion[] = "/kelm-chkp-data";
inline constexpr std::uint32_t kChkpRegionSize = 280;

// How Tarv__GetConfig transfers a class.
enum class Rule : std::uint8_t {
    List,       // keyed records, ended by an all-zero key
    Singleton,  // one record, no key
    History,    // throughput history: 4-byte ids, no terminator
    NoStorage,  // accepted, nothing stored
};

// Where an object's slot comes from.
enum class Placement : std::uint8_t {
    LastId,     // instance number (low 16 bits of the last identifier) - 1
    SessionId,  // the PM key's session byte; slot 0 is never used
    Packed,     // stored in the order given
    None,
};

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

// Tables the controller keeps beside the classes: the library reads them
// (alarms, old keys, PM alarm keys) and its configuration write never
// touches them.
struct AreaDef {
    std::string_view name;
    std::uint32_t base;
    std::uint32_t entry;  // bytes per slot
    std::uint32_t slots;
};
namespace area {
inline constexpr AreaDef kMepOldMoid{"MepOldMoidArray", 388277, 14, 32};
inline constexpr AreaDef kPmSessionOldMoid{"PMSessionOldMoidArray", 448009, 15, 9};
inline constexpr AreaDef kPmAlarmBlock{"PMAlarmBlock", 449242, 2, 9};
inline constexpr AreaDef kMepHwAlarmBlock{"MepHWAlarmBlock", 449260, 64, 1};
inline constexpr AreaDef kPmAlarmMoid{"PMAlarmMoidArray", 449324, 15, 9};
inline constexpr AreaDef kMepAlarmText{"MepAlarmTextArray", 450483, 81, 32};
}  // namespace area

}  // namespace tarvctl

#endif
