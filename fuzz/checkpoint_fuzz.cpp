// Fuzzes the checkpoint region operations with arbitrary section ids, values
// and lengths, attached and not.
//
// The first input byte's bit 0 set: no trace statement runs, else every one
// does. Then each operation is read from the input:
//   op:u8 % 4
//   0  Tarv__ChkpOpen; flag:u8 bit 0 set: the platform refuses the region
//   1  Tarv__GetChkpData: section:u32, length (Input::number), flag:u8
//      (bit 0: null pData)
//   2  Tarv__SetChkpData: section:u8 (16 + (u8 % 3) - 1), value:u8 % 3,
//      length (Input::number), then min(length, 280) data bytes
//   3  detach the checkpoint region, as a process that never opened it
// pData ends at a guard page and is exactly lLengthInByte bytes long, at most
// the 280 bytes of the record (280 for a negative length, which counts as
// very large); pwValue is two bytes before a guard page. A model of the record and of the attach,
// written out from the rules, decides what every call must leave in the
// region and in the caller's buffers.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;

constexpr char kTarget[] = "checkpoint";
constexpr std::uint32_t kSize = TARV_CHKP_DATA_SIZE;

struct Model {
    std::uint8_t record[kSize] = {};
    std::uint8_t* attached = nullptr;
};

void open(Model& m, Input& in) {
    auto& f = testing::fake();
    f.shm_succeeds = (in.u8() & 1u) == 0;
    CALL(Tarv__ChkpOpen, ());
    f.shm_succeeds = true;
    if (m.attached == nullptr && pChkpData != nullptr) {
        // A first attach maps the region as the platform keeps it.
        std::memcpy(m.record, pChkpData, kSize);
        m.attached = pChkpData;
    }
    if (pChkpData != m.attached) fuzz::fail(kTarget, "Tarv__ChkpOpen: wrong attach");
}

void get(const Model& m, Input& in) {
    static thread_local fuzz::Guarded value_buffer(2), data_buffer(kSize);
    const std::uint32_t section = in.u32();
    const auto length = static_cast<std::int32_t>(in.number());
    const bool null_data = (in.u8() & 1u) != 0;
    const std::size_t size = length < 0 ? kSize : std::min<std::size_t>(static_cast<std::uint32_t>(length), kSize);
    std::uint8_t* value = value_buffer.take(2);
    std::uint8_t* data = data_buffer.take(size);
    CALL(Tarv__GetChkpData, (section, reinterpret_cast<std::uint16_t*>(value), null_data ? nullptr : data, length));

    std::uint16_t value_now = 0;
    std::memcpy(&value_now, value, 2);
    if (null_data ? !fuzz::untouched(value, 2) : value_now != TARV_CHKP_SECTION_VALUE)
        fuzz::fail(kTarget, "Tarv__GetChkpData: wrong *pwValue");
    const bool copies = !null_data && static_cast<std::uint32_t>(length) >= kSize && m.attached != nullptr;
    if (copies ? std::memcmp(data, m.record, kSize) != 0 : !fuzz::untouched(data, size))
        fuzz::fail(kTarget, "Tarv__GetChkpData: wrong copy");
}

void set(Model& m, Input& in) {
    static thread_local fuzz::Guarded data_buffer(kSize);
    const std::uint32_t section = TARV_CHKP_SECTION_ID + in.u8() % 3u - 1u;
    const auto value = static_cast<std::uint16_t>(in.u8() % 3u);
    const auto length = static_cast<std::int32_t>(in.number());
    // Nothing is read from a refused or empty copy: a length the call refuses
    // gets a buffer of no byte at all.
    const std::size_t size = length > 0 && static_cast<std::uint32_t>(length) <= kSize ? static_cast<std::size_t>(length) : 0;
    std::uint8_t* data = data_buffer.take(size);
    in.bytes(data, size);
    CALL(Tarv__SetChkpData, (section, value, size == 0 && in.u8() % 2u == 0 ? nullptr : data, length));
    if (section == TARV_CHKP_SECTION_ID && value == TARV_CHKP_SECTION_VALUE && m.attached != nullptr &&
        static_cast<std::uint32_t>(length) <= kSize)
        std::memcpy(m.record, data, size);
    if (m.attached != nullptr && std::memcmp(m.attached, m.record, kSize) != 0)
        fuzz::fail(kTarget, "Tarv__SetChkpData: the record differs from what was written");
}

// What the region holds and whether the process has it attached.
Model g_model;

// Every input starts detached; the region the platform keeps survives. A
// replay without comparisons keeps the attachment it is given.
bool prepare(Input& in, std::uint8_t*&) {
    testing::fake().keep_traces = false;
    if (fuzz::checking) pChkpData = nullptr;
    g_model.attached = pChkpData;
    fuzz::set_traces((in.u8() & 1u) == 0);
    return true;
}

constexpr fuzz::Op kOps[] = {
    {[](std::uint8_t*, Input& in) { open(g_model, in); }, fuzz::kAttaches},
    {[](std::uint8_t*, Input& in) { get(g_model, in); }},
    {[](std::uint8_t*, Input& in) { set(g_model, in); }, fuzz::kWrites},
    {[](std::uint8_t*, Input&) {
        if (!fuzz::checking) return;  // a replay keeps its attachment
        pChkpData = nullptr;
        g_model.attached = nullptr;
    }, fuzz::kAttaches},
};

}  // namespace

const tarv::fuzz::Target tarv::fuzz::checkpoint_target{kTarget, prepare, kOps, {}};
TARV_FUZZ_ENTRY(checkpoint_target)
