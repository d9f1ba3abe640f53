// Chassis, port and switch services of the host platform, answered from the
// model.
#include <cstring>

#include "host_model.h"
#include "platform/hwin.h"
#include "platform/lanx.h"
#include "platform/prtm.h"

using tarv::host::model;

extern "C" {

void Hwin__Open(void) {}

const uint8_t* Hwin__GetUserPortBaseMacAddress(void) {
    return model().has_base_mac ? model().base_mac.data() : nullptr;
}

// The base MAC with (low 24 bits + 0x100 * slot + port) mod 2^24 as its low
// 24 bits, so every (slot, port) of a chassis gets its own address.
int32_t Prtm__GetPortMacAddress(uint32_t lSlot, uint32_t lPort, uint8_t* pMacAddress) {
    if (pMacAddress == nullptr || !model().has_base_mac) return -1;
    const auto& base = model().base_mac;
    const std::uint32_t low = (std::uint32_t{base[3]} << 16) | (std::uint32_t{base[4]} << 8) | base[5];
    const std::uint32_t port_low = low + 0x100u * lSlot + lPort;
    std::memcpy(pMacAddress, base.data(), 3);
    pMacAddress[3] = static_cast<std::uint8_t>(port_low >> 16);
    pMacAddress[4] = static_cast<std::uint8_t>(port_low >> 8);
    pMacAddress[5] = static_cast<std::uint8_t>(port_low);
    return 0;
}

int32_t Prtm__LagGetLagPortList(uint32_t lLagId, uint8_t* pPortList) {
    if (pPortList == nullptr) return -1;
    std::memset(pPortList, 0, PRTM_LAG_PORT_LIST_SIZE);
    if (lLagId >= tarv::host::kLagIds) return 0;
    const tarv::host::Lag& lag = model().lags[lLagId];
    pPortList[0] = lag.count;
    std::memcpy(pPortList + 1, lag.members.data(), 2 * std::size_t{lag.count});
    return 0;
}

int32_t Lanx__GetSwitchMode(void) { return model().switch_mode; }

int32_t Lanx__GetPbPortType(uint32_t lSlot, uint32_t lPort) {
    const auto& m = model();
    for (std::size_t i = 0; i < m.port_type_count; ++i)
        if (m.port_types[i].slot == lSlot && m.port_types[i].port == lPort) return m.port_types[i].type;
    return tarv::host::kDefaultPortType;
}

}  // extern "C"

static_assert(1 + 2 * tarv::host::kLagMembers <= PRTM_LAG_PORT_LIST_SIZE,
              "the count byte and the members fit the member list");
