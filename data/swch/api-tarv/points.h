// Maintenance points (MEPs and MIPs) on a port and the MA components of
// their MA: the scans that the usage queries are made of.
//
// A point sits on (bySlot, byPort) of its record; on a LAG, bySlot is the
// pseudo-slot 2 and byPort the LAG id. The MA component of a point is found
// by the point's MOID: same MD id (lId1) and MaNet id (lId2), whatever the
// class and the own instance number. The queries differ on purpose in how
// they recognise a live point, whether they skip empty component entries
// and whether only the first component of an MA counts; those choices are
// parameters here, the loops exist once.
#ifndef TARV_POINTS_H
#define TARV_POINTS_H

#include <cstdint>
#include <cstring>

#include "fields.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv::points {

inline constexpr std::uint32_t kMoidSize = TARV_MOID_SIZE;
// The bytes of a MOID that name its MA: the MD id and the MaNet id.
inline constexpr std::uint32_t kMaOffset = moid::kId1Offset;
inline constexpr std::uint32_t kMaSize = moid::kId3Offset - moid::kId1Offset;

// A kind of maintenance point: its key and data arrays, the class of its
// MOIDs and its placement fields. Only MEP records carry a VLAN and a
// direction.
struct Kind {
    Table keys;
    Table data;
    std::uint16_t wClass;
    Field<std::uint8_t> bySlot;
    Field<std::uint8_t> byPort;
    bool mep;
};
inline constexpr Kind kMep{Table::MepMoidArray, Table::MepDataArray, TARV_CLASS_MEP, mep::bySlot, mep::byPort, true};
inline constexpr Kind kMip{Table::MipMoidArray, Table::MipDataArray, TARV_CLASS_MIP, mip::bySlot, mip::byPort, false};
static_assert(info(kMep.keys).key == kMoidSize && info(kMip.keys).key == kMoidSize &&
              info(Table::MACompMoidArray).key == kMoidSize);

// How a scan recognises a live point.
enum class Live : std::uint8_t {
    Always,  // every entry is examined, empty or not
    Key,     // its 14 MOID bytes are not all zero
    Class,   // its MOID's wClass is the kind's class (one 16-bit load)
    Vid,     // its record's wVid is not 0 (MEPs; the MOID is not looked at)
};

// The slot and port a point must sit on. Arguments of any integer type are
// compared with the 8-bit record fields widened, so values outside 0..255
// never match.
struct Place {
    std::int64_t slot;
    std::int64_t port;
};

// Whether the port of slots 2 and 3 is replaced before the match: slot 2
// matches port 24 and slot 3 port 23, whatever port was passed.
enum class Ports : std::uint8_t { AsGiven, Substituted };

[[nodiscard]] constexpr Place place(Ports rule, std::int64_t slot, std::int64_t port) noexcept {
    if (rule == Ports::Substituted && slot == 3) return {slot, 23};
    if (rule == Ports::Substituted && slot == 2) return {slot, 24};
    return {slot, port};
}

[[nodiscard]] inline bool live(Live rule, const Kind& kind, const std::uint8_t* key,
                               const std::uint8_t* record) noexcept {
    // Every Live value returns from its case; the edge a compiler adds for
    // other values, and the return after the switch, are never taken. Only
    // MEP scans use Live::Vid (a MIP carries no VLAN): its kind.mep test is
    // never false either.
    switch (rule) {
        case Live::Always: return true;
        case Live::Key: return !key_empty(key, kMoidSize);
        case Live::Class: return load_le<std::uint16_t>(key + moid::kClassOffset) == kind.wClass;
        case Live::Vid: return kind.mep && get(record, mep::wVid) != 0;
    }
    return false;
}

// Whether the point with record `record` sits at `at`.
[[nodiscard]] inline bool sits(const Kind& kind, const std::uint8_t* record, Place at) noexcept {
    return get(record, kind.bySlot) == at.slot && get(record, kind.byPort) == at.port;
}

// The first slot of `kind` from `from` on whose point is live by `rule`, sits
// at `at` and passes match(key, record); kNotFound when none does. `match`
// runs only for points that pass every other test. Inlined into each query,
// where the kind and the rule are constants.
template <typename Match>
[[nodiscard, gnu::always_inline]] inline std::uint32_t find_point(const std::uint8_t* region, const Kind& kind,
                                                                  Live rule, Place at, std::uint32_t from,
                                                                  Match&& match) noexcept {
    for (std::uint32_t i = from; i < info(kind.keys).slots; ++i) {
        const std::uint8_t* key = entry(region, kind.keys, i);
        const std::uint8_t* record = entry(region, kind.data, i);
        if (live(rule, kind, key, record) && sits(kind, record, at) && match(key, record)) return i;
    }
    return kNotFound;
}

// A point found by first_point: its kind and slot; kind is null when none.
struct PointHit {
    const Kind* kind;
    std::uint32_t slot;
};

// The first point at `at`, live by `rule`: MEPs before MIPs.
[[nodiscard, gnu::always_inline]] inline PointHit first_point(const std::uint8_t* region, Live rule,
                                                              Place at) noexcept {
    const auto any = [](const std::uint8_t*, const std::uint8_t*) { return true; };
    if (const std::uint32_t slot = find_point(region, kMep, rule, at, 0, any); slot != kNotFound) return {&kMep, slot};
    if (const std::uint32_t slot = find_point(region, kMip, rule, at, 0, any); slot != kNotFound) return {&kMip, slot};
    return {nullptr, kNotFound};
}

// Whether a component scan passes over empty MAComp entries or compares them
// like any other (an empty entry then belongs to the MA with MD 0, MaNet 0).
enum class Empty : std::uint8_t { Skip, Examine };

// The first MA component, in slot order, of the MA of the point with MOID
// `point` (any MA when `point` is null) for which match(record) holds;
// kNotFound when none does.
template <typename Match>
[[nodiscard, gnu::always_inline]] inline std::uint32_t find_component(const std::uint8_t* region,
                                                                      const std::uint8_t* point, Empty empty,
                                                                      Match&& match) noexcept {
    for (std::uint32_t j = 0; j < info(Table::MACompMoidArray).slots; ++j) {
        const std::uint8_t* key = entry(region, Table::MACompMoidArray, j);
        if (empty == Empty::Skip && key_empty(key, kMoidSize)) continue;
        if (point != nullptr && std::memcmp(key + kMaOffset, point + kMaOffset, kMaSize) != 0) continue;
        if (match(entry(region, Table::MACompDataArray, j))) return j;
    }
    return kNotFound;
}

// Endpoint tagging test: whether the first non-empty component of the MA of
// the MEP with MOID `moid` has eTagging `tagging` (1, 2 or 5). A MEP whose MA
// has no component is an inconsistency of the region: error trace (code 0)
// under the name of the tagging test, and the answer is no.
[[nodiscard]] bool endpoint_tagged(const std::uint8_t* region, const std::uint8_t* moid,
                                   std::uint32_t tagging) noexcept;

}  // namespace tarv::points

// The endpoint tagging tests and the MIP test for a C-VLAN on a port under
// their own names. Internal to the library: not exported. Their names follow
// the library's Tarv__ convention, double underscore included.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
uint32_t Tarv__IsEndpointCTagged(TARV_MOID Moid);
uint32_t Tarv__IsEndpointSTagged(TARV_MOID Moid);
uint32_t Tarv__IsEndpointVfi(TARV_MOID Moid);
uint32_t Tarv__IsOamEnabledOnMIPPortCVlan(int32_t slot, int32_t port, int32_t vid);
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

#endif
