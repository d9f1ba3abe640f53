// OAM usage queries: does OAM use a port, a VLAN or a VFI; the MEPs and MIPs
// on a port; VLAN translation and C-VID registration checks.
//
// Every query is a row of a small table (its name, which points it looks at
// and how, its port rule and its messages) run by one of four scans:
// presence on a port, points using one VLAN, points using a VLAN of a range,
// components using a VLAN switch-wide.
#include <cstdint>
#include <cstring>

#include "points.h"
#include "readers.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv::points {

// The endpoint tagging tests, each under its own name in the error trace.
struct EndpointTest {
    std::uint32_t tagging;
    const char* function;
};
inline constexpr EndpointTest kEndpointTests[] = {
    {macomp::kCVlan, "Tarv__IsEndpointCTagged"},
    {macomp::kSVlan, "Tarv__IsEndpointSTagged"},
    {macomp::kVfi, "Tarv__IsEndpointVfi"},
};

// Every tagging a query asks about has its test: the empty name is never
// returned.
constexpr const char* endpoint_test_name(std::uint32_t tagging) noexcept {
    for (const EndpointTest& t : kEndpointTests)
        if (t.tagging == tagging) return t.function;
    return "";
}

bool endpoint_tagged(const std::uint8_t* region, const std::uint8_t* moid, std::uint32_t tagging) noexcept {
    const std::uint32_t j = find_component(region, moid, Empty::Skip, [](const std::uint8_t*) { return true; });
    if (j == kNotFound) {
        TARV_ERROR(endpoint_test_name(tagging), trace::kNoCode, "MEP exists without it's parent MAComp\n");
        return false;
    }
    return get(entry(region, Table::MACompDataArray, j), macomp::eTagging) == tagging;
}

namespace {

// The scans below run with a table row as argument; each exported function
// gets its own copy, in which the row's constants fold into plain loops.
#define TARV_SCAN [[gnu::always_inline]] inline

// ---------------------------------------------------------------------------
// Outcome traces
// ---------------------------------------------------------------------------

// Every outcome message of this unit prints up to three ints, and the formats
// come from the tables below; each table entry is checked at compile time to
// hold exactly the "%d" conversions its scan passes and no other conversion.
consteval int int_conversions(const char* format) {
    int n = 0;
    for (const char* p = format; *p != '\0'; ++p) {
        if (*p != '%') continue;
        if (p[1] != 'd') return -1;
        ++n;
    }
    return n;
}
consteval bool prints(const char* format, int ints) { return format == nullptr || int_conversions(format) == ints; }

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
// One outcome trace at debug level 5; arguments beyond the format's
// conversions are not printed. A null format traces nothing.
void trace_outcome(const char* function, const char* format, int a, int b = 0, int c = 0) noexcept {
    if (format != nullptr) TARV_DEBUG(trace::kOutcome, function, format, a, b, c);
}
#pragma GCC diagnostic pop

// ---------------------------------------------------------------------------
// Presence of a MEP or a MIP on a port
// ---------------------------------------------------------------------------

struct PresenceQuery {
    const char* function;
    Live live;
    const char* mep_found;  // (slot, port)
    const char* mip_found;
    const char* none;
};
inline constexpr PresenceQuery kOnPort{"Tarv__IsOamEnabledOnPort", Live::Key, "OAM is enabled on S/P %d/%d",
                                       "OAM is enabled on S/P %d/%d", "OAM is NOT enabled on S/P %d/%d"};
inline constexpr PresenceQuery kOnPortOpt{"Tarv__IsOamEnabledOnPortOpt", Live::Class,
                                          "OAM is enabled on Slot %d, Port %d.", "OAM is enabled on Slot %d, Port %d.",
                                          "OAM is NOT enabled on Slot %d, Port %d."};
inline constexpr PresenceQuery kMPOnPort{"Tarv__IsMPEnabledOnPort", Live::Class, "MEP is enabled on Slot %d, Port %d.",
                                         "OAM is enabled on Slot %d, Port %d.",
                                         "OAM is NOT enabled on Slot %d, Port %d."};
consteval bool valid(const PresenceQuery& q) {
    return prints(q.mep_found, 2) && prints(q.mip_found, 2) && prints(q.none, 2);
}
static_assert(valid(kOnPort) && valid(kOnPortOpt) && valid(kMPOnPort));

TARV_SCAN std::uint32_t presence(const PresenceQuery& q, std::int32_t slot, std::int32_t port) noexcept {
    const std::uint8_t* region = attached_region(q.function);
    if (region == nullptr) return 0;
    const PointHit hit = first_point(region, q.live, {slot, port});
    if (hit.kind == nullptr) {
        trace_outcome(q.function, q.none, slot, port);
        return 0;
    }
    trace_outcome(q.function, hit.kind->mep ? q.mep_found : q.mip_found, slot, port);
    return 1;
}

// ---------------------------------------------------------------------------
// Points that use a VLAN
// ---------------------------------------------------------------------------

// VLAN ids a point must carry: lo..hi, except those of the kept span
// keep_lo..keep_hi (an empty kept span when keep_lo > keep_hi).
struct Span {
    std::int64_t lo;
    std::int64_t hi;
    std::int64_t keep_lo = 1;
    std::int64_t keep_hi = 0;

    [[nodiscard]] constexpr bool holds(std::int64_t vid) const noexcept {
        return lo <= vid && vid <= hi && !(keep_lo <= vid && vid <= keep_hi);
    }
};

// How the MA of a point decides which VLAN it serves.
enum class MaRule : std::uint8_t {
    // The endpoint tagging test: the MA's first non-empty component; the
    // point's own record carries the VLAN.
    FirstComponent,
    // Any component of the MA, empty entries compared too, with a VLAN of
    // the span (for MEPs, their record must carry one as well).
    AnyComponent,
};

// Which points use a VLAN: the tagging test is "eTagging is (or is not)
// `tagging`".
struct VlanRule {
    const Kind* kind;
    Live live;
    std::uint32_t direction;  // MEPs: mep::kDown, or 0 for either direction
    MaRule ma;
    std::uint32_t tagging;
    bool tagged;
};

// The slot of the first point from `from` on at `at` that uses a VLAN of
// `vlans` by rule `r`; the VLAN it uses goes to *vid.
TARV_SCAN std::uint32_t point_on_vlan(const std::uint8_t* region, const VlanRule& r, Place at, Span vlans,
                                      std::uint32_t from, std::uint16_t* vid) noexcept {
    const auto uses = [&](const std::uint8_t* key, const std::uint8_t* record) __attribute__((always_inline)) {
        if (r.kind->mep) {
            const std::uint16_t w = get(record, mep::wVid);
            if (!vlans.holds(w)) return false;
            if (r.direction != 0 && get(record, mep::eDirection) != r.direction) return false;
            *vid = w;
        }
        if (r.ma == MaRule::FirstComponent) return endpoint_tagged(region, key, r.tagging) == r.tagged;
        const auto serves = [&](const std::uint8_t* component) __attribute__((always_inline)) {
            const std::uint16_t w = get(component, macomp::wVid);
            if (!vlans.holds(w) || (get(component, macomp::eTagging) == r.tagging) != r.tagged) return false;
            *vid = w;
            return true;
        };
        return find_component(region, key, Empty::Examine, serves) != kNotFound;
    };
    return find_point(region, *r.kind, r.live, at, from, uses);
}

// A query for the points on a port that use one VLAN; when none does, the
// follow-up query `then` (the MIPs) decides. Messages print (vid, slot,
// port) with the caller's port; a null message is not traced.
struct VlanQuery {
    const char* function;
    VlanRule rule;
    Ports ports;
    const VlanQuery* then;
    const char* found;
    const char* then_found;
    const char* none;
};
consteval bool valid(const VlanQuery& q) {
    return prints(q.found, 3) && prints(q.then_found, 3) && prints(q.none, 3);
}

constexpr char kSvlanInUse[] = "Svlan %d is in use by OAM on S/P %d/%d";
constexpr char kSvlanNotInUse[] = "Svlan %d is not in use by OAM on S/P %d/%d";
constexpr char kCvlanInUse[] = "Cvlan %d is in use by OAM on S/P %d/%d";
constexpr char kCvlanNotInUse[] = "Cvlan %d is not in use by OAM on S/P %d/%d";
constexpr char kInUseByDownMep[] = "vlan: %d is in use by a Down MEP(S%d/P%d)\n";
constexpr char kInUseByMip[] = "vlan: %d is in use by a MIP(S%d/P%d)\n";

// MIPs (live: key) whose MA has, among any of its components, one of the
// VLAN with tagging t.
constexpr VlanRule mips_in(std::uint32_t t) { return {&kMip, Live::Key, 0, MaRule::AnyComponent, t, true}; }
// MEPs carrying the VLAN whose endpoint test says tagging t.
constexpr VlanRule meps_in(Live live, std::uint32_t direction, std::uint32_t t) {
    return {&kMep, live, direction, MaRule::FirstComponent, t, true};
}

// clang-format off
inline constexpr VlanQuery kMipOnSVlan{"Tarv__IsOamEnabledOnMIPPortSVlan", mips_in(macomp::kSVlan),
    Ports::AsGiven, nullptr, kSvlanInUse, nullptr, kSvlanNotInUse};
inline constexpr VlanQuery kMipOnCVlan{"Tarv__IsOamEnabledOnMIPPortCVlan", mips_in(macomp::kCVlan),
    Ports::AsGiven, nullptr, kSvlanInUse, nullptr, kSvlanNotInUse};
inline constexpr VlanQuery kMipHandedOut{"Tarv__DoesMipExistOnCVlanPort", mips_in(macomp::kCVlan),
    Ports::AsGiven, nullptr, kCvlanInUse, nullptr, kCvlanNotInUse};
inline constexpr VlanQuery kDownMepHandedOut{"Tarv__FindDownMepFromSomeWhereOnCVlanPort",
    meps_in(Live::Key, mep::kDown, macomp::kCVlan), Ports::AsGiven, nullptr, kCvlanInUse, nullptr, kCvlanNotInUse};
inline constexpr VlanQuery kPortSVlan{"Tarv__IsOamEnabledOnPortSVlan", meps_in(Live::Key, 0, macomp::kSVlan),
    Ports::Substituted, nullptr, kSvlanInUse, nullptr, kSvlanNotInUse};
inline constexpr VlanQuery kPortVfi{"Tarv__IsOamEnabledOnPortVfi", meps_in(Live::Key, 0, macomp::kVfi),
    Ports::Substituted, nullptr,
    "vfi %d is in use by OAM on S/P %d/%d", nullptr, "vfi %d is not in use by OAM on S/P %d/%d"};
inline constexpr VlanQuery kPortCVlan{"Tarv__IsOamEnabledOnCVlanPort", meps_in(Live::Key, 0, macomp::kCVlan),
    Ports::AsGiven, &kMipOnCVlan,
    "Cvlan %d is in use by MEP on S/P %d/%d", "Cvlan %d is in use by MIP on S/P %d/%d",
    "Cvlan %d is not in use by OAM on S/P %d/%d"};
// Neither check below tests the MEP MOID: a stale record that matches is
// examined, and its endpoint test normally finds no component.
inline constexpr VlanQuery kVidTranslation{"Tarv__IsVidTranslationUsedByOam", meps_in(Live::Always, 0, macomp::kSVlan),
    Ports::AsGiven, &kMipOnSVlan, kInUseByDownMep, kInUseByMip, nullptr};
inline constexpr VlanQuery kCVidRegistration{"Tarv__IsCVidRegistrationsUsedByOam",
    meps_in(Live::Always, mep::kDown, macomp::kCVlan), Ports::AsGiven, &kMipOnCVlan,
    kInUseByDownMep, kInUseByMip, nullptr};
// clang-format on
static_assert(valid(kMipOnSVlan) && valid(kMipOnCVlan) && valid(kMipHandedOut) && valid(kDownMepHandedOut) &&
              valid(kPortSVlan) && valid(kPortVfi) && valid(kPortCVlan) && valid(kVidTranslation) &&
              valid(kCVidRegistration));

// Up MEPs that use a C-VID registration: the S-VID and whether it counts.
struct UpMeps {
    std::int32_t svid;
    bool svid_counts;
};

// An Up MEP on `at` whose MA's first component (empty entries compared too)
// is C-tagged with the MEP carrying `cvid`, or, when the S-VID counts,
// S-tagged with the MEP carrying the S-VID. Traces the VLAN that matched.
bool up_mep_uses(const std::uint8_t* region, const char* function, std::int32_t slot, std::int32_t port,
                 std::int32_t cvid, UpMeps up) noexcept {
    std::int32_t vid = 0;
    const auto uses = [&](const std::uint8_t* key, const std::uint8_t* record) {
        if (get(record, mep::eDirection) != mep::kUp) return false;
        const std::uint32_t j = find_component(region, key, Empty::Examine, [](const std::uint8_t*) { return true; });
        if (j == kNotFound) return false;
        const std::uint32_t tagging = get(entry(region, Table::MACompDataArray, j), macomp::eTagging);
        const std::uint16_t w = get(record, mep::wVid);
        if (tagging == macomp::kCVlan && w == cvid) {
            vid = cvid;
            return true;
        }
        if (up.svid_counts && tagging == macomp::kSVlan && w == up.svid) {
            vid = up.svid;
            return true;
        }
        return false;
    };
    if (find_point(region, kMep, Live::Always, {slot, port}, 0, uses) == kNotFound) return false;
    trace_outcome(function, "vlan: %d is in use by a Up MEP(S%d/P%d)\n", vid, slot, port);
    return true;
}

// Runs query q from MEP or MIP slot `from`; the slot found goes to *found.
TARV_SCAN std::uint32_t vlan_query(const std::uint8_t* region, const VlanQuery& q, std::int32_t slot,
                                   std::int32_t port, std::int32_t vid, std::uint32_t from = 0,
                                   std::uint32_t* found = nullptr, const UpMeps* up = nullptr) noexcept {
    std::uint16_t w = 0;
    const std::uint32_t i = point_on_vlan(region, q.rule, place(q.ports, slot, port), {vid, vid}, from, &w);
    if (i != kNotFound) {
        trace_outcome(q.function, q.found, vid, slot, port);
        if (found != nullptr) *found = i;
        return 1;
    }
    if (up != nullptr && up_mep_uses(region, q.function, slot, port, vid, *up)) return 1;
    if (q.then != nullptr) {
        // The follow-up query traces under its own name, then this one.
        const VlanQuery& then = *q.then;
        const Place at = place(then.ports, slot, port);
        const bool used = point_on_vlan(region, then.rule, at, {vid, vid}, 0, &w) != kNotFound;
        trace_outcome(then.function, used ? then.found : then.none, vid, slot, port);
        if (used) {
            trace_outcome(q.function, q.then_found, vid, slot, port);
            return 1;
        }
    }
    trace_outcome(q.function, q.none, vid, slot, port);
    return 0;
}

TARV_SCAN std::uint32_t vlan_query(const VlanQuery& q, std::int32_t slot, std::int32_t port, std::int32_t vid,
                                   const UpMeps* up = nullptr) noexcept {
    const std::uint8_t* region = attached_region(q.function);
    return region == nullptr ? 0 : vlan_query(region, q, slot, port, vid, 0, nullptr, up);
}

// ---------------------------------------------------------------------------
// Range finders: 0 when a point on the port uses a VLAN of the range
// ---------------------------------------------------------------------------

struct RangeQuery {
    const char* function;
    VlanRule rule;
    const char* found;  // (the VLAN in use)
};
consteval bool valid(const RangeQuery& q) { return prints(q.found, 1); }

// A MEP of a VFI-based MA does not count; one without a component does.
inline constexpr VlanRule kMepInRange{&kMep, Live::Vid, 0, MaRule::FirstComponent, macomp::kVfi, false};
// A component of the MIP's MA counts unless it is VFI-based.
inline constexpr VlanRule kMipInRange{&kMip, Live::Key, 0, MaRule::AnyComponent, macomp::kVfi, false};
inline constexpr RangeQuery kFindMep{"Tarv__FindMepOnPort", kMepInRange, "vlan: %d is in use by a MEP"};
inline constexpr RangeQuery kFindAllMep{"Tarv__FindAllMepOnPort", kMepInRange,
                                        "vlan(with mep): %d is not in the new vlan span"};
inline constexpr RangeQuery kFindMip{"Tarv__FindMipOnPort", kMipInRange, "vlan: %d is in use by a MIP"};
inline constexpr RangeQuery kFindAllMip{"Tarv__FindAllMipOnPort", kMipInRange, "vlan: %d is in use by a MIP"};
static_assert(valid(kFindMep) && valid(kFindAllMep) && valid(kFindMip) && valid(kFindAllMip));

// The VLANs low..high outside the kept span keep_low..keep_high (none kept
// by default). VLAN 0 is never in use by a range: it starts at 1 at the least.
constexpr Span range(std::uint32_t low, std::uint32_t high, std::uint16_t keep_low = 1,
                     std::uint16_t keep_high = 0) noexcept {
    return {low == 0 ? 1 : std::int64_t{low}, high, keep_low, keep_high};
}

TARV_SCAN std::uint32_t range_query(const RangeQuery& q, std::int32_t slot, std::int32_t port, Span vlans) noexcept {
    const std::uint8_t* region = attached_region(q.function);
    if (region == nullptr) return 1;
    std::uint16_t w = 0;
    if (point_on_vlan(region, q.rule, {slot, port}, vlans, 0, &w) == kNotFound) return 1;
    trace_outcome(q.function, q.found, w);
    return 0;
}

// ---------------------------------------------------------------------------
// Switch-wide: an MA component with the VLAN or VFI
// ---------------------------------------------------------------------------

struct SwitchQuery {
    const char* function;
    std::uint32_t tagging;
    const char* found;  // (the id)
    const char* none;
};
inline constexpr SwitchQuery kSVlanAnywhere{"Tarv__IsOamEnabledOnSVlan", macomp::kSVlan, "Svlan %d is in use by OAM",
                                            nullptr};
inline constexpr SwitchQuery kVfiAnywhere{"Tarv__IsOamEnabledOnVfi", macomp::kVfi, "Vfi %d is in use by OAM", nullptr};
inline constexpr SwitchQuery kCVlanAnywhere{"Tarv__IsOamEnabledOnCVlan", macomp::kCVlan, "Cvlan %d is in use by OAM",
                                            "Cvlan %d is not in use by OAM"};
consteval bool valid(const SwitchQuery& q) { return prints(q.found, 1) && prints(q.none, 1); }
static_assert(valid(kSVlanAnywhere) && valid(kVfiAnywhere) && valid(kCVlanAnywhere));

TARV_SCAN std::uint32_t switch_query(const SwitchQuery& q, std::int32_t id) noexcept {
    const std::uint8_t* region = attached_region(q.function);
    if (region == nullptr) return 0;
    const std::uint32_t j = find_component(region, nullptr, Empty::Skip, [&](const std::uint8_t* component) {
        return get(component, macomp::eTagging) == q.tagging && get(component, macomp::wVid) == id;
    });
    trace_outcome(q.function, j != kNotFound ? q.found : q.none, id);
    return j != kNotFound ? 1 : 0;
}

// Tagging mode 0 conflicts with a MEP on the port that carries the VLAN in an
// MA with an S-tagged component of that VLAN.
inline constexpr VlanRule kTaggingConflict{&kMep, Live::Key, 0, MaRule::AnyComponent, macomp::kSVlan, true};

std::uint32_t endpoint_test(const TARV_MOID& moid, std::uint32_t tagging) noexcept {
    const std::uint8_t* region = attached_region(endpoint_test_name(tagging));
    if (region == nullptr) return 0;
    const MoidBytes key(moid);
    return endpoint_tagged(region, key.b, tagging) ? 1 : 0;
}

#undef TARV_SCAN

}  // namespace
}  // namespace tarv::points

using namespace tarv;
using namespace tarv::points;

// Internal helpers: not exported.
extern "C" uint32_t Tarv__IsEndpointCTagged(TARV_MOID Moid) { return endpoint_test(Moid, macomp::kCVlan); }
extern "C" uint32_t Tarv__IsEndpointSTagged(TARV_MOID Moid) { return endpoint_test(Moid, macomp::kSVlan); }
extern "C" uint32_t Tarv__IsEndpointVfi(TARV_MOID Moid) { return endpoint_test(Moid, macomp::kVfi); }
extern "C" uint32_t Tarv__IsOamEnabledOnMIPPortCVlan(int32_t slot, int32_t port, int32_t vid) {
    return vlan_query(kMipOnCVlan, slot, port, vid);
}

extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnPort(int32_t slot, int32_t port) {
    return presence(kOnPort, slot, port);
}
extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnPortOpt(int32_t slot, int32_t port) {
    return presence(kOnPortOpt, slot, port);
}
extern "C" TARV_API uint32_t Tarv__IsMPEnabledOnPort(int32_t slot, int32_t port) {
    return presence(kMPOnPort, slot, port);
}

extern "C" TARV_API uint32_t Tarv__IsOamEnabledForMepOnPort(int32_t slot, int32_t port, TARV_MOID Moid) {
    static constexpr char kFunction[] = "Tarv__IsOamEnabledForMepOnPort";
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return 0;
    // Whether any slot holds the MOID as a Down MEP at the place: the keyed
    // lookup, the record tested with the key. A MEP in its hint slot costs
    // one comparison.
    const MoidValue wanted = MoidValue::of(reinterpret_cast<const std::uint8_t*>(&Moid));
    const Place at = place(Ports::Substituted, slot, port);
    const auto down_mep_at = [&](const std::uint8_t* key) {
        if (!wanted.matches(key)) return false;
        const std::uint8_t* record = entry(region, kMep.data, slot_of(region, kMep.keys, key));
        return sits(kMep, record, at) && get(record, mep::eDirection) == mep::kDown;
    };
    if (find_slot_if(region, kMep.keys, wanted.hint(), down_mep_at) == kNotFound) {
        TARV_DEBUG(trace::kOutcome, kFunction, "OAM is NOT enabled for requested MEP  on S/P %d/%d", slot, port);
        return 0;
    }
    TARV_DEBUG(trace::kOutcome, kFunction, "OAM is enabled for requested MEP on S/P %d/%d", slot, port);
    return 1;
}

extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnMIPPortSVlan(int32_t slot, int32_t port, int32_t vid) {
    return vlan_query(kMipOnSVlan, slot, port, vid);
}
extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnPortSVlan(int32_t slot, int32_t port, int32_t vid) {
    return vlan_query(kPortSVlan, slot, port, vid);
}
extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnPortVfi(int32_t slot, int32_t port, int32_t vfi) {
    return vlan_query(kPortVfi, slot, port, vfi);
}
extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnCVlanPort(int32_t slot, int32_t port, int32_t vid) {
    return vlan_query(kPortCVlan, slot, port, vid);
}
extern "C" TARV_API int32_t Tarv__IsVidTranslationUsedByOam(int32_t slot, int32_t port, int32_t vid) {
    return static_cast<int32_t>(vlan_query(kVidTranslation, slot, port, vid));
}
extern "C" TARV_API uint32_t Tarv__IsCVidRegistrationsUsedByOam(int32_t slot, int32_t port, int32_t cvid,
                                                                int32_t svid, int32_t value1, int32_t value2,
                                                                uint8_t flag) {
    (void)value1;
    (void)value2;
    const UpMeps up{svid, flag == 1};
    return vlan_query(kCVidRegistration, slot, port, cvid, &up);
}

extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnSVlan(int32_t vid) { return switch_query(kSVlanAnywhere, vid); }
extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnVfi(int32_t vfi) { return switch_query(kVfiAnywhere, vfi); }
extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnCVlan(int32_t vid) { return switch_query(kCVlanAnywhere, vid); }

extern "C" TARV_API uint32_t Tarv__CheckTagging(uint32_t slot, uint32_t port, uint32_t vid, uint32_t mode) {
    if (vid == 0 || mode != 0) return 0;
    const std::uint8_t* region = attached_region("Tarv__CheckTagging");
    if (region == nullptr) return 0;
    std::uint16_t w = 0;
    return point_on_vlan(region, kTaggingConflict, {slot, port}, {vid, vid}, 0, &w) != kNotFound
               ? TARV_TAGGING_CONFLICT
               : 0;
}

extern "C" TARV_API uint32_t Tarv__FindMepOnPort(int32_t slot, int32_t port, uint32_t lowVid, uint32_t highVid) {
    return range_query(kFindMep, slot, port, range(lowVid, highVid));
}
extern "C" TARV_API uint32_t Tarv__FindMipOnPort(int32_t slot, int32_t port, uint32_t lowVid, uint32_t highVid) {
    return range_query(kFindMip, slot, port, range(lowVid, highVid));
}
extern "C" TARV_API uint32_t Tarv__FindAllMepOnPort(int32_t slot, int32_t port, uint32_t oldLow, uint32_t oldHigh,
                                                    uint16_t newLow, uint16_t newHigh) {
    return range_query(kFindAllMep, slot, port, range(oldLow, oldHigh, newLow, newHigh));
}
extern "C" TARV_API uint32_t Tarv__FindAllMipOnPort(int32_t slot, int32_t port, uint32_t oldLow, uint32_t oldHigh,
                                                    uint16_t newLow, uint16_t newHigh) {
    return range_query(kFindAllMip, slot, port, range(oldLow, oldHigh, newLow, newHigh));
}

extern "C" TARV_API uint32_t Tarv__FindDownMepFromSomeWhereOnCVlanPort(int32_t slot, int32_t port, int32_t cvid,
                                                                       int32_t* pMepIndex, TARV_MOID* pMoid,
                                                                       void* pMep) {
    // Starts outside the MEP table, below as above, answer 0 at once.
    const std::int32_t start = *pMepIndex;
    if (start < 0 || static_cast<std::uint32_t>(start) >= info(kMep.keys).slots) return 0;
    const std::uint8_t* region = attached_region(kDownMepHandedOut.function);
    if (region == nullptr) return 0;
    std::uint32_t i = kNotFound;
    if (vlan_query(region, kDownMepHandedOut, slot, port, cvid, static_cast<std::uint32_t>(start), &i) == 0) return 0;
    std::memcpy(pMoid, entry(region, kMep.keys, i), kMoidSize);
    std::memcpy(pMep, entry(region, kMep.data, i), info(kMep.data).entry);
    *pMepIndex = static_cast<std::int32_t>(i);
    return 1;
}

extern "C" TARV_API uint32_t Tarv__DoesMipExistOnCVlanPort(int32_t slot, int32_t port, int32_t cvid, TARV_MOID* pMoid,
                                                           void* pMip) {
    const std::uint8_t* region = attached_region(kMipHandedOut.function);
    if (region == nullptr) return 0;
    std::uint32_t i = kNotFound;
    if (vlan_query(region, kMipHandedOut, slot, port, cvid, 0, &i) == 0) return 0;
    std::memcpy(pMoid, entry(region, kMip.keys, i), kMoidSize);
    std::memcpy(pMip, entry(region, kMip.data, i), info(kMip.data).entry);
    return 1;
}
