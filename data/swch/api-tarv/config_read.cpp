// Configuration read by class: Tarv__GetConfig copies every object of one
// class out of the region as a transfer list (key then record, back to back).
#include <cstring>
#include <utility>

#include "classes.h"
#include "fields.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {
namespace {

constexpr char kFunction[] = "Tarv__GetConfig";

// The result text of a history transfer record as a C string of at most its
// 404 bytes, whether or not the record holds a terminator.
struct HistoryResultText {
    char text[history::acResult.size + 1];
    explicit HistoryResultText(const std::uint8_t* record) noexcept {
        std::memcpy(text, record + history::acResult.offset, history::acResult.size);
        text[history::acResult.size] = '\0';
    }
};

void trace_saved_history(std::uint32_t slot, const std::uint8_t* transfer_record) {
    const std::uint8_t* record = transfer_record + info(Table::ThroughputHistoryIdArray).key;
    TARV_DEBUG(trace::kOutcome, "Tarv__GetConfig_ThroughputHistory", "Save Record %ld, result: %s",
               static_cast<long>(slot), HistoryResultText(record).text);
}

// Listing rule of the table-backed classes, one instantiation per class so
// that the emptiness test and the two copies have fixed sizes and inline.
template <std::size_t I>
void read_list(std::uint8_t* out, std::uint32_t count) {
    constexpr const ClassInfo& c = kClasses[I];
    constexpr std::uint32_t k = c.key_size();
    constexpr std::uint32_t d = c.record_size();
    if constexpr (c.traces_enter) TARV_DEBUG(trace::kEnter, "Tarv__GetConfig_BandwidthNotification", "Enter");
    if (const std::uint8_t* region = attached_region(kFunction)) {
        const std::uint8_t* key = entry(region, c.keys, c.first_slot);
        const std::uint8_t* record = entry(region, c.data, c.first_slot);
        std::uint32_t written = 0;
        for (std::uint32_t s = c.first_slot; s < c.slots(); ++s, key += k, record += d) {
            if (!slot_occupied<I>(key, s)) continue;
            std::memcpy(out, key, k);
            std::memcpy(out + k, record, d);
            out += k + d;
            if (++written >= count) return;
        }
    }
    std::memset(out, 0, k);
}

// Throughput history: count 0 hands out the first occupied slot, any other
// count every occupied slot; no terminator in either mode.
void read_history(const ClassInfo& c, std::uint8_t* out, std::uint32_t count) {
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return;
    const std::uint32_t k = c.key_size();
    const std::uint32_t d = c.record_size();
    for (std::uint32_t s = 0; s < c.slots(); ++s) {
        const std::uint8_t* id = entry(region, c.keys, s);
        if (key_empty(id, k)) continue;
        std::memcpy(out, id, k);
        std::memcpy(out + k, entry(region, c.data, s), d);
        trace_saved_history(s, out);
        if (count == 0) return;
        out += k + d;
    }
}

template <std::size_t I>
void read_class(std::uint8_t* out, std::uint32_t count) {
    constexpr const ClassInfo& c = kClasses[I];
    if constexpr (c.rule == ClassRule::List) {
        read_list<I>(out, count);
    } else if constexpr (c.rule == ClassRule::Singleton) {
        if (const std::uint8_t* region = attached_region(kFunction))
            std::memcpy(out, entry(region, c.data, 0), c.record_size());
    } else if constexpr (c.rule == ClassRule::History) {
        read_history(c, out, count);
    }
}

using Reader = void (*)(std::uint8_t*, std::uint32_t);
template <std::size_t... I>
constexpr std::array<Reader, sizeof...(I)> readers(std::index_sequence<I...>) {
    return {&read_class<I>...};
}
constexpr auto kReaders = readers(std::make_index_sequence<kClasses.size()>());

}  // namespace
}  // namespace tarv

using namespace tarv;

extern "C" TARV_API int32_t Tarv__GetConfig(uint32_t lClassId, void* pConfig, uint32_t lCount) {
    const std::size_t i = class_index(lClassId);
    if (i == kClasses.size()) return 1;
    kReaders[i](static_cast<std::uint8_t*>(pConfig), lCount);
    return 0;
}
