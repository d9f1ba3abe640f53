// The host platform's model: defaults, the environment and the C API that
// sets it.
#include "host_model.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace tarv::host {
namespace {

constinit Model g_model{};

// A strict reader of the environment's small grammars: no blanks, no signs
// where none belong, no overflow.
class Cursor {
public:
    explicit Cursor(const char* text) noexcept : p_(text) {}

    [[nodiscard]] bool end() const noexcept { return *p_ == '\0'; }
    [[nodiscard]] char peek() const noexcept { return *p_; }

    bool eat(char c) noexcept {
        if (*p_ != c) return false;
        ++p_;
        return true;
    }

    // An unsigned decimal number not above `max`.
    bool number(std::uint64_t max, std::uint64_t& out) noexcept {
        if (!digit(*p_)) return false;
        std::uint64_t v = 0;
        while (digit(*p_)) {
            v = v * 10 + static_cast<std::uint64_t>(*p_ - '0');
            if (v > max) return false;
            ++p_;
        }
        out = v;
        return true;
    }

    bool u8(std::uint8_t& out) noexcept {
        std::uint64_t v = 0;
        if (!number(0xFF, v)) return false;
        out = static_cast<std::uint8_t>(v);
        return true;
    }

    bool u32(std::uint32_t& out) noexcept {
        std::uint64_t v = 0;
        if (!number(0xFFFFFFFFu, v)) return false;
        out = static_cast<std::uint32_t>(v);
        return true;
    }

    bool i32(std::int32_t& out) noexcept {
        const bool negative = eat('-');
        std::uint64_t v = 0;
        if (!number(negative ? 0x80000000u : 0x7FFFFFFFu, v)) return false;
        out = static_cast<std::int32_t>(negative ? -static_cast<std::int64_t>(v) : static_cast<std::int64_t>(v));
        return true;
    }

    // Exactly two hex digits.
    bool hex_byte(std::uint8_t& out) noexcept {
        int hi = hex(p_[0]);
        if (hi < 0) return false;
        int lo = hex(p_[1]);
        if (lo < 0) return false;
        p_ += 2;
        out = static_cast<std::uint8_t>(hi * 16 + lo);
        return true;
    }

private:
    static bool digit(char c) noexcept { return c >= '0' && c <= '9'; }
    static int hex(char c) noexcept {
        if (digit(c)) return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    }

    const char* p_;
};

// Each reader parses one variable into `m` and returns null, or the reason
// it refuses the value; the caller applies `m` only when it succeeds.
using Reader = const char* (*)(const char* value, Model& m, std::uint32_t& level);

const char* read_level(const char* value, Model&, std::uint32_t& level) {
    Cursor c(value);
    if (!c.u32(level) || !c.end()) return "expected an unsigned decimal level up to 4294967295";
    return nullptr;
}

const char* read_base_mac(const char* value, Model& m, std::uint32_t&) {
    Cursor c(value);
    for (std::size_t i = 0; i < kMacSize; ++i) {
        if (i > 0 && !c.eat(':')) return "expected six hex bytes like 00:10:20:00:00:10";
        if (!c.hex_byte(m.base_mac[i])) return "expected six hex bytes like 00:10:20:00:00:10";
    }
    if (!c.end()) return "expected six hex bytes like 00:10:20:00:00:10";
    m.has_base_mac = true;
    return nullptr;
}

const char* read_switch_mode(const char* value, Model& m, std::uint32_t&) {
    Cursor c(value);
    if (!c.i32(m.switch_mode) || !c.end()) return "expected a signed 32-bit decimal number";
    return nullptr;
}

const char* read_port_types(const char* value, Model& m, std::uint32_t&) {
    m.port_type_count = 0;
    Cursor c(value);
    if (c.end()) return nullptr;
    do {
        std::uint8_t slot = 0;
        std::uint8_t port = 0;
        std::int32_t type = 0;
        if (!c.u8(slot) || !c.eat('/') || !c.u8(port) || !c.eat('=') || !c.i32(type))
            return "expected slot/port=type[,slot/port=type...] with slot and port 0..255";
        if (!set_port_type(m, slot, port, type)) return "more than 64 ports";
    } while (c.eat(','));
    if (!c.end()) return "expected slot/port=type[,slot/port=type...] with slot and port 0..255";
    return nullptr;
}

const char* read_lags(const char* value, Model& m, std::uint32_t&) {
    constexpr const char* kSyntax = "expected lag=slot/port[,slot/port...][;lag=...] with numbers 0..255";
    m.lags = {};
    Cursor c(value);
    if (c.end()) return nullptr;
    do {
        std::uint8_t id = 0;
        if (!c.u8(id) || !c.eat('=')) return kSyntax;
        Lag lag;
        if (c.peek() != ';' && !c.end()) {
            do {
                if (lag.count == kLagMembers) return "more than 9 members in one LAG";
                if (!c.u8(lag.members[2 * std::size_t{lag.count}]) || !c.eat('/') ||
                    !c.u8(lag.members[2 * std::size_t{lag.count} + 1]))
                    return kSyntax;
                ++lag.count;
            } while (c.eat(','));
        }
        m.lags[id] = lag;
    } while (c.eat(';'));
    if (!c.end()) return kSyntax;
    return nullptr;
}

const char* read_shm_prefix(const char* value, Model& m, std::uint32_t&) {
    if (!valid_prefix(value)) return "expected at most 64 of A-Z a-z 0-9 . _ -";
    std::memcpy(m.shm_prefix, value, std::strlen(value) + 1);  // at most 64 characters
    return nullptr;
}

void load_variable(const char* name, Reader reader, std::uint32_t* level_word) {
    // Read at load and by TarvHost_Reset, before other threads use the
    // platform (tarv_host.h).
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    if (value == nullptr) return;
    // Parse into a copy so that a refused value leaves no trace in the model.
    Model staged = g_model;
    std::uint32_t level = 0;
    if (const char* why = reader(value, staged, level)) {
        diagnostic("ignoring %s=\"%s\": %s", name, value, why);
        return;
    }
    if (level_word != nullptr)
        *level_word = level;
    else
        g_model = staged;
}

void load_environment() noexcept {
    load_variable("TARV_DEBUG_LEVEL", read_level, &DBG_KELM.lLevel);
    load_variable("TARV_TRACE_LEVEL", read_level, &module_object().lLevel);
    load_variable("TARV_BASE_MAC", read_base_mac, nullptr);
    load_variable("TARV_SWITCH_MODE", read_switch_mode, nullptr);
    load_variable("TARV_PORT_TYPES", read_port_types, nullptr);
    load_variable("TARV_LAGS", read_lags, nullptr);
    load_variable("TARV_SHM_PREFIX", read_shm_prefix, nullptr);
}

// The environment is read when the library is loaded, before any caller can
// use a platform function or read DBG_KELM.
struct LoadAtStart {
    LoadAtStart() noexcept { reset(); }
} const g_load_at_start;

}  // namespace

Model& model() noexcept { return g_model; }

void reset() noexcept {
    g_model = Model{};
    DBG_KELM.lLevel = kDefaultDebugLevel;
    module_object().lLevel = kDefaultModuleLevel;
    forget_region_files();
    load_environment();
}

bool set_port_type(Model& m, std::uint32_t slot, std::uint32_t port, std::int32_t type) noexcept {
    for (std::size_t i = 0; i < m.port_type_count; ++i) {
        if (m.port_types[i].slot == slot && m.port_types[i].port == port) {
            m.port_types[i].type = type;
            return true;
        }
    }
    if (m.port_type_count == m.port_types.size()) return false;
    m.port_types[m.port_type_count++] = PortType{slot, port, type};
    return true;
}

bool valid_prefix(const char* prefix) noexcept {
    std::size_t n = 0;
    for (; prefix[n] != '\0'; ++n) {
        const char c = prefix[n];
        const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
                        c == '_' || c == '-';
        if (!ok || n == kPrefixMax) return false;
    }
    return true;
}

void diagnostic(const char* format, ...) noexcept {
    char line[512];
    va_list args;
    va_start(args, format);
    // clang's analyzer loses the va_start on the way (a false positive).
    (void)std::vsnprintf(line, sizeof line, format, args);  // NOLINT(clang-analyzer-valist.Uninitialized)
    va_end(args);
    (void)std::fprintf(stderr, "tarv-host: %s\n", line);
}

}  // namespace tarv::host

using tarv::host::g_model;

extern "C" {

void TarvHost_Reset(void) { tarv::host::reset(); }

void TarvHost_SetDebugLevel(uint32_t lLevel) { DBG_KELM.lLevel = lLevel; }

void TarvHost_SetModuleLevel(uint32_t lLevel) { tarv::host::module_object().lLevel = lLevel; }

void TarvHost_SetTraceStream(FILE* pStream) { g_model.trace_stream = pStream; }

void TarvHost_SetBaseMac(const uint8_t* pMac) {
    g_model.has_base_mac = pMac != nullptr;
    if (pMac != nullptr) std::memcpy(g_model.base_mac.data(), pMac, tarv::host::kMacSize);
}

void TarvHost_SetSwitchMode(int32_t lMode) { g_model.switch_mode = lMode; }

int TarvHost_SetPortType(uint32_t lSlot, uint32_t lPort, int32_t lType) {
    return tarv::host::set_port_type(g_model, lSlot, lPort, lType) ? 0 : -1;
}

int TarvHost_SetLagMembers(uint32_t lLagId, const uint8_t* pMembers, uint32_t lCount) {
    if (lLagId >= tarv::host::kLagIds || lCount > tarv::host::kLagMembers) return -1;
    if (lCount > 0 && pMembers == nullptr) return -1;
    tarv::host::Lag lag;
    lag.count = static_cast<std::uint8_t>(lCount);
    if (lCount > 0) std::memcpy(lag.members.data(), pMembers, 2 * std::size_t{lCount});
    g_model.lags[lLagId] = lag;
    return 0;
}

int TarvHost_SetShmPrefix(const char* pPrefix) {
    if (pPrefix == nullptr) pPrefix = "";
    if (!tarv::host::valid_prefix(pPrefix)) return -1;
    std::memcpy(g_model.shm_prefix, pPrefix, std::strlen(pPrefix) + 1);  // at most 64 characters
    return 0;
}

}  // extern "C"
