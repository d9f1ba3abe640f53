// Configuration read by class: Tarv__GetConfig copies every object of one
// class out of the region as a transfer list (key then record, back to back).
#include <cstring>

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

// Listing rule of the table-backed classes.
void read_list(const ClassInfo& c, std::uint8_t* out, std::uint32_t count) {
    if (c.id == TARV_CLASS_BANDWIDTH_NOTIFICATION)
        TARV_DEBUG(trace::kEnter, "Tarv__GetConfig_BandwidthNotification", "Enter");
    const std::uint32_t k = c.key_size();
    const std::uint32_t d = c.record_size();
    const std::uint8_t* region = attached_region(kFunction);
    if (region != nullptr) {
        std::uint32_t written = 0;
        for (std::uint32_t s = c.first_slot; s < c.slots(); ++s) {
            const std::uint8_t* key = entry(region, c.keys, s);
            if (!slot_occupied(c, key, s)) continue;
            std::memcpy(out, key, k);
            std::memcpy(out + k, entry(region, c.data, s), d);
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

}  // namespace
}  // namespace tarv

using namespace tarv;

extern "C" TARV_API int32_t Tarv__GetConfig(uint32_t lClassId, void* pConfig, uint32_t lCount) {
    const ClassInfo* c = find_class(lClassId);
    if (c == nullptr) return 1;
    auto* out = static_cast<std::uint8_t*>(pConfig);
    // Every ClassRule has its case: the edge a compiler adds for other values
    // of the enumeration is never taken.
    switch (c->rule) {
        case ClassRule::List:
            read_list(*c, out, lCount);
            break;
        case ClassRule::Singleton:
            if (const std::uint8_t* region = attached_region(kFunction))
                std::memcpy(out, entry(region, c->data, 0), c->record_size());
            break;
        case ClassRule::History:
            read_history(*c, out, lCount);
            break;
        case ClassRule::NoStorage:
            break;
    }
    return 0;
}
