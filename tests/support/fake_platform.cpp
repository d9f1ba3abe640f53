#include "support/fake_platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace tarv::testing {
namespace {

TRCD_TRACE g_module_object{0};
TRCD_TRACE g_other_module_object{0};

// The statement opened by WQ_beginImpl and not yet closed. The source path
// is the library's static text; it is copied only when a trace is recorded.
struct Pending {
    TRCD_TRACE* object = nullptr;
    std::uint32_t level = 0;
    const char* file = nullptr;
    std::uint32_t line = 0;
    bool printed = false;
};
Pending g_pending;

// Formats one print into a fixed buffer, records it when the fake keeps
// traces, and counts it either way.
__attribute__((format(printf, 6, 0))) void record(TraceKind kind, TRCD_TRACE* object, const char* function,
                                                  std::uint32_t module, std::uint32_t code, const char* format,
                                                  va_list args) {
    char text[2048];
    std::vsnprintf(text, sizeof text, format, args);
    auto& f = fake();
    ++f.trace_count;
    const bool opened = g_pending.object == object && !g_pending.printed;
    if (!opened) ++f.unpaired_count;
    g_pending.printed = true;
    if (!f.keep_traces) return;
    f.traces.push_back(TraceRecord{kind, g_pending.level, function, module, code, text,
                                   opened ? g_pending.file : "<no WQ_beginImpl>", g_pending.line, false});
    if (f.on_trace) f.on_trace(f.traces.back());
}

}  // namespace

FakePlatform& fake() {
    static FakePlatform platform;
    return platform;
}

void FakePlatform::set_debug_level(std::uint32_t level) { DBG_KELM.lLevel = level; }
void FakePlatform::set_module_level(std::uint32_t level) { g_module_object.lLevel = level; }

GuardedBytes& FakePlatform::region(const std::string& name, std::uint32_t size) {
    auto it = regions.find(name);
    if (it == regions.end() || it->second->size() != size)
        it = regions.insert_or_assign(name, std::make_unique<GuardedBytes>(size)).first;
    return *it->second;
}

void FakePlatform::reset() {
    *this = FakePlatform{};
    DBG_KELM.lLevel = 0;
    g_module_object.lLevel = 0;
    g_pending = Pending{};
}

}  // namespace tarv::testing

using tarv::testing::fake;
using tarv::testing::TraceKind;

extern "C" {

TRCD_TRACE DBG_KELM{0};

TRCD_TRACE* Trcd__GetTrace(uint32_t lModule) {
    if (lModule != TRCD_MODULE_KELM) return &tarv::testing::g_other_module_object;
    return fake().module_object_missing ? nullptr : &tarv::testing::g_module_object;
}

void WQ_beginImpl(TRCD_TRACE* pObject, uint32_t lLevel, const char* pSourceFile, uint32_t lLine) {
    tarv::testing::g_pending = {pObject, lLevel, pSourceFile, lLine, false};
}

void WQ_endImpl(TRCD_TRACE* pObject) {
    auto& f = fake();
    const bool closes = tarv::testing::g_pending.object == pObject && tarv::testing::g_pending.printed;
    if (!closes) ++f.unpaired_count;
    if (closes && f.keep_traces && !f.traces.empty()) f.traces.back().closed = true;
    tarv::testing::g_pending = {};
}

void Pcor__PrintDebugTrace(TRCD_TRACE* pObject, uint32_t, const char* pFunction, const char* pFormat, ...) {
    va_list args;
    va_start(args, pFormat);
    tarv::testing::record(TraceKind::Debug, pObject, pFunction, 0, 0, pFormat, args);
    va_end(args);
}

void Pcor__PrintWarningTrace(TRCD_TRACE* pObject, const char* pFunction, uint32_t lModule, uint32_t lCode,
                             const char* pFormat, ...) {
    va_list args;
    va_start(args, pFormat);
    tarv::testing::record(TraceKind::Warning, pObject, pFunction, lModule, lCode, pFormat, args);
    va_end(args);
}

void Pcor__PrintErrorTrace(TRCD_TRACE* pObject, const char* pFunction, uint32_t lModule, uint32_t lCode,
                           const char* pFormat, ...) {
    va_list args;
    va_start(args, pFormat);
    tarv::testing::record(TraceKind::Error, pObject, pFunction, lModule, lCode, pFormat, args);
    va_end(args);
}

void* Pcor__OpenShm(const char* pName, uint32_t lSize, int32_t lReadOnly) {
    auto& f = fake();
    f.shm_calls.push_back({pName, lSize, lReadOnly});
    if (!f.shm_succeeds) return nullptr;
    return f.region(pName, lSize).data();
}

void Hwin__Open(void) { ++fake().hwin_open_calls; }

const uint8_t* Hwin__GetUserPortBaseMacAddress(void) {
    auto& f = fake();
    return f.has_base_mac ? f.base_mac.data() : nullptr;
}

int32_t Prtm__GetPortMacAddress(uint32_t lSlot, uint32_t lPort, uint8_t* pMacAddress) {
    auto& f = fake();
    if (f.keep_traces) f.port_mac_requests.emplace_back(lSlot, lPort);
    auto it = f.port_macs.find({lSlot, lPort});
    if (it == f.port_macs.end()) return -1;
    std::memcpy(pMacAddress, it->second.data(), 6);
    return 0;
}

int32_t Prtm__LagGetLagPortList(uint32_t lLagId, uint8_t* pPortList) {
    auto& f = fake();
    if (f.keep_traces) f.lag_requests.push_back(lLagId);
    if (f.on_lag_request) f.on_lag_request(lLagId);
    auto it = f.lag_lists.find(lLagId);
    if (it == f.lag_lists.end()) {
        std::memset(pPortList, 0, PRTM_LAG_PORT_LIST_SIZE);
        return -1;
    }
    std::memcpy(pPortList, it->second.data(), PRTM_LAG_PORT_LIST_SIZE);
    return 0;
}

int32_t Lanx__GetSwitchMode(void) { return fake().switch_mode; }

int32_t Lanx__GetPbPortType(uint32_t lSlot, uint32_t lPort) {
    auto& f = fake();
    if (f.keep_traces) f.port_type_requests.emplace_back(lSlot, lPort);
    auto it = f.port_types.find({lSlot, lPort});
    return it == f.port_types.end() ? 1 : it->second;
}

}  // extern "C"
