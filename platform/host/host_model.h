// The host platform's model: the state behind the chassis, port, switch,
// shared-memory and trace services, shared by the units of libtarv_host.so.
#ifndef TARV_HOST_MODEL_H
#define TARV_HOST_MODEL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "platform/trcd.h"
#include "tarv_host.h"

namespace tarv::host {

inline constexpr std::size_t kMacSize = 6;
inline constexpr std::size_t kLagIds = 256;
inline constexpr std::size_t kLagMembers = TARV_HOST_LAG_MEMBERS_MAX;
inline constexpr std::size_t kPortTypes = TARV_HOST_PORT_TYPES_MAX;
inline constexpr std::size_t kPrefixMax = TARV_HOST_SHM_PREFIX_MAX;

inline constexpr std::uint32_t kDefaultDebugLevel = 0;
inline constexpr std::uint32_t kDefaultModuleLevel = 1;
inline constexpr std::array<std::uint8_t, kMacSize> kDefaultBaseMac{0x02, 0x54, 0x41, 0x52, 0x56, 0x00};
inline constexpr std::int32_t kDefaultSwitchMode = 1;
inline constexpr std::int32_t kDefaultPortType = 1;

struct Lag {
    std::uint8_t count = 0;
    std::array<std::uint8_t, 2 * kLagMembers> members{};  // slot, port, slot, port, ...
};

struct PortType {
    std::uint32_t slot;
    std::uint32_t port;
    std::int32_t type;
};

struct Model {
    bool has_base_mac = true;
    std::array<std::uint8_t, kMacSize> base_mac = kDefaultBaseMac;
    std::int32_t switch_mode = kDefaultSwitchMode;
    std::array<PortType, kPortTypes> port_types{};
    std::size_t port_type_count = 0;
    std::array<Lag, kLagIds> lags{};
    char shm_prefix[kPrefixMax + 1] = {};
    std::FILE* trace_stream = nullptr;  // null: stderr
};

Model& model() noexcept;

// Trace object of module 142 (DBG_KELM is the debug object).
TRCD_TRACE& module_object() noexcept;

// The model's defaults, then the environment.
void reset() noexcept;

// Sets the type of one port; false when the table is full.
bool set_port_type(Model& m, std::uint32_t slot, std::uint32_t port, std::int32_t type) noexcept;

// True when `prefix` is a valid shared-memory prefix.
bool valid_prefix(const char* prefix) noexcept;

// Returns every name served from a region file to shared memory.
void forget_region_files() noexcept;

// One diagnostic line "tarv-host: ..." on stderr.
void diagnostic(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));

}  // namespace tarv::host

#endif
