// Configuration write by class: Tarv__SetConfig replaces everything the region
// holds for one class by a transfer list (key then record, back to back,
// closed by an all-zero key), and stores the entries and fields derived from
// each record.
//
// Every class is written by one instantiation of write_class<I> for its row
// of kClasses, so key and record sizes are constants and the copies inline.
// The list is checked in one pass before anything is emptied: a record that
// addresses no slot refuses the whole call and leaves the region as it was.
#include <cstring>
#include <utility>

#include "classes.h"
#include "fields.h"
#include "platform/hwin.h"
#include "platform/prtm.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {
namespace {

constexpr char kFunction[] = "Tarv__SetConfig";
constexpr std::size_t kRefused = ~std::size_t{0};

// Port addresses. A LAG (pseudo-slot 2) takes the chassis base address with
// byPort + 1 added to its low 24 bits, unless the base is within 6 of their
// end; slot 3 has one address, that of its port 1; any other slot asks for
// its own port. The address is cleared first, so a library that answers
// nothing leaves it all zero.
constexpr std::uint8_t kLagSlot = 2;
constexpr std::uint8_t kSingleAddressSlot = 3;
constexpr std::uint32_t kMacLow = 0x1000000;

void port_mac_address(std::uint8_t slot, std::uint8_t port, std::uint8_t (&mac)[6]) {
    std::memset(mac, 0, sizeof mac);
    if (slot != kLagSlot) {
        Prtm__GetPortMacAddress(slot, slot == kSingleAddressSlot ? 1u : port, mac);
        return;
    }
    Hwin__Open();
    const std::uint8_t* base = Hwin__GetUserPortBaseMacAddress();
    if (base == nullptr) return;
    std::memcpy(mac, base, sizeof mac);
    const std::uint32_t low = (std::uint32_t{mac[3]} << 16) | (std::uint32_t{mac[4]} << 8) | mac[5];
    if (low + 6u >= kMacLow) return;
    const std::uint32_t lag = low + port + 1u;
    mac[3] = static_cast<std::uint8_t>(lag >> 16);
    mac[4] = static_cast<std::uint8_t>(lag >> 8);
    mac[5] = static_cast<std::uint8_t>(lag);
}

// Derived value of a throughput test: r = Y / X + Y / X in double precision,
// with X = 125 * A and Y = B * C in 32-bit arithmetic (wrapping). r below 1
// gives 1; otherwise D is r truncated to 32 bits, then its low 16 bits.
// X is 0 only when A is (125 is odd): r counts as 0 when Y is 0 too and as
// infinite otherwise; r of 2^32 and above saturates to 0xFFFFFFFF, so such
// tests store 0xFFFF.
std::uint16_t throughput_rate(std::uint32_t a, std::uint16_t b, std::uint16_t c) {
    const std::uint32_t x = 125u * a;
    const std::uint32_t y = std::uint32_t{b} * std::uint32_t{c};
    constexpr std::uint32_t kSaturated = 0xFFFFFFFFu;
    std::uint32_t whole = 0;
    if (x == 0) {
        whole = y == 0 ? 0 : kSaturated;
    } else {
        const double q = static_cast<double>(y) / static_cast<double>(x);
        const double r = q + q;
        whole = r >= 4294967296.0 ? kSaturated : static_cast<std::uint32_t>(r);
    }
    return whole == 0 ? std::uint16_t{1} : static_cast<std::uint16_t>(whole);
}

// Slot of the record at `key`, the n-th of its list (from 0), by the class's
// placement; the slot count or more when it addresses no slot.
template <std::size_t I>
std::uint32_t slot_of_record(const std::uint8_t* key, std::size_t n) noexcept {
    constexpr const ClassInfo& c = kClasses[I];
    if constexpr (c.placement == Placement::LastId) return slot_hint(key, c.key_size());
    else if constexpr (c.placement == Placement::SessionId) return key[moid::kSessionIdOffset];
    // Both callers stop at the slot count, so n is always below it; the
    // bound only keeps a wrong caller inside the table (no test reaches it).
    else return n < c.slots() ? static_cast<std::uint32_t>(n) : c.slots();
}

// Number of records before the terminator (for a packed class at most its
// slot count: later records are not read), or kRefused after tracing the
// first record that addresses no slot.
template <std::size_t I>
std::size_t count_records(const std::uint8_t* in) {
    constexpr const ClassInfo& c = kClasses[I];
    constexpr std::uint32_t k = c.key_size();
    for (std::size_t n = 0;; ++n, in += c.transfer_size()) {
        if (c.placement == Placement::Packed && n == c.slots()) return n;
        if (key_empty<k>(in)) return n;
        const std::uint32_t slot = slot_of_record<I>(in, n);
        if (slot < c.slots()) continue;
        const bool session = c.placement == Placement::SessionId;
        TARV_ERROR(kFunction, trace::kNotFound, "Class %ld record %ld: %s %ld addresses no slot of %ld..%ld",
                   trace::as_ld(c.id), static_cast<long>(n + 1), session ? "session id" : "instance",
                   session ? trace::as_ld(slot) : trace::as_ld(load_le<std::uint16_t>(in + k - 4)),
                   trace::as_ld(session ? 0 : 1), trace::as_ld(session ? c.slots() - 1 : c.slots()));
        return kRefused;
    }
}

// The further writes for the record just stored in `slot` from the transfer
// record at `in`.
template <std::size_t I>
void derive(std::uint8_t* region, std::uint8_t* record, const std::uint8_t* in, std::uint32_t slot) {
    constexpr const ClassInfo& c = kClasses[I];
    constexpr std::uint32_t k = c.key_size();
    for (const Field<std::uint32_t>& f : c.set_to_one)
        if (f.table != Table::Count) set(record, f, 1u);
    for (const Companion& m : c.companions) {
        if (m.keys == Table::Count) continue;
        std::uint8_t* key = entry(region, m.keys, slot);
        std::memcpy(key, in, k);
        store_le<std::uint16_t>(key + moid::kClassOffset, m.w_class);
        if (info(m.keys).key > k) std::memcpy(key + k, in + k - 4, 4);
    }
    if constexpr (c.mac.address.table != Table::Count) {
        std::uint8_t mac[6];
        port_mac_address(get(record, c.mac.slot), get(record, c.mac.port), mac);
        std::memcpy(record + c.mac.address.offset, mac, sizeof mac);
    }
    if constexpr (c.rate.d.table != Table::Count)
        set(record, c.rate.d, throughput_rate(get(record, c.rate.a), get(record, c.rate.b), get(record, c.rate.c)));
}

// Replacement of a list class: check, empty, place every record.
template <std::size_t I>
std::int32_t write_list(std::uint8_t* region, const std::uint8_t* in) {
    constexpr const ClassInfo& c = kClasses[I];
    constexpr std::uint32_t k = c.key_size();
    constexpr std::uint32_t d = c.record_size();
    const std::size_t records = count_records<I>(in);
    if (records == kRefused) return TARV_SET_CONFIG_REFUSED;
    for (Table t : c.emptied)
        if (t != Table::Count) std::memset(entry(region, t, 0), 0, info(t).bytes());
    for (std::size_t n = 0; n < records; ++n, in += k + d) {
        const std::uint32_t slot = slot_of_record<I>(in, n);
        // Only another thread changing the list since it was checked makes a
        // slot invalid here: no test can time that.
        if (slot >= c.slots()) continue;
        std::uint8_t* record = entry(region, c.data, slot);
        std::memcpy(record, in + k, d);
        std::memcpy(entry(region, c.keys, slot), in, k);
        derive<I>(region, record, in, slot);
    }
    return 0;
}

template <std::size_t I>
std::int32_t write_class(const std::uint8_t* in) {
    constexpr const ClassInfo& c = kClasses[I];
    if constexpr (c.rule == ClassRule::NoStorage) {
        return 0;
    } else {
        if constexpr (c.traces_enter) TARV_DEBUG(trace::kEnter, "Tarv__SetConfig_BandwidthNotification", "Enter");
        std::uint8_t* region = writable_region(kFunction);
        if (region == nullptr) return TARV_SET_CONFIG_NOT_ATTACHED;
        if constexpr (c.rule == ClassRule::Singleton) {
            if (c.kept_when_first_byte_zero && in[0] == 0) return 0;
            std::memcpy(entry(region, c.data, 0), in, c.record_size());
            return 0;
        } else {
            return write_list<I>(region, in);
        }
    }
}

using Writer = std::int32_t (*)(const std::uint8_t*);
template <std::size_t... I>
constexpr std::array<Writer, sizeof...(I)> writers(std::index_sequence<I...>) {
    return {&write_class<I>...};
}
constexpr auto kWriters = writers(std::make_index_sequence<kClasses.size()>());

}  // namespace
}  // namespace tarv

using namespace tarv;

extern "C" TARV_API int32_t Tarv__SetConfig(uint32_t lClassId, const void* pConfig) {
    const std::size_t i = class_index(lClassId);
    if (i == kClasses.size()) return TARV_SET_CONFIG_UNKNOWN_CLASS;
    return kWriters[i](static_cast<const std::uint8_t*>(pConfig));
}
