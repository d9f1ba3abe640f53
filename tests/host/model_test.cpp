// The chassis, port and switch model of the host platform, set through the
// C API and the environment.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "host_test_support.h"
#include "platform/hwin.h"
#include "platform/lanx.h"
#include "platform/prtm.h"
#include "platform/trcd.h"

namespace tarv::host::testing {
namespace {

using Mac = std::array<std::uint8_t, 6>;
using LagList = std::array<std::uint8_t, PRTM_LAG_PORT_LIST_SIZE>;

constexpr Mac kDefaultMac{0x02, 0x54, 0x41, 0x52, 0x56, 0x00};

Mac port_mac(std::uint32_t slot, std::uint32_t port) {
    Mac mac;
    mac.fill(0xEE);
    EXPECT_EQ(Prtm__GetPortMacAddress(slot, port, mac.data()), 0);
    return mac;
}

// The member list of a LAG, from a buffer that held other bytes before.
LagList lag_list(std::uint32_t lag) {
    LagList list;
    list.fill(0xAA);
    EXPECT_EQ(Prtm__LagGetLagPortList(lag, list.data()), 0);
    return list;
}

LagList expected_list(std::initializer_list<std::uint8_t> head) {
    LagList list{};
    std::copy(head.begin(), head.end(), list.begin());
    return list;
}

// Everything the environment can change, to compare a model with another.
struct Snapshot {
    std::uint32_t debug_level;
    std::uint32_t module_level;
    Mac base_mac;
    std::int32_t switch_mode;
    std::int32_t type_1_3;
    std::int32_t type_4_2;
    LagList lag_5;
    std::string object;

    static Snapshot take() {
        const std::uint8_t* mac = Hwin__GetUserPortBaseMacAddress();
        Mac base{};
        if (mac != nullptr) std::memcpy(base.data(), mac, base.size());
        return {DBG_KELM.lLevel,
                Trcd__GetTrace(TRCD_MODULE_KELM)->lLevel,
                base,
                Lanx__GetSwitchMode(),
                Lanx__GetPbPortType(1, 3),
                Lanx__GetPbPortType(4, 2),
                lag_list(5),
                object_name("/kelm-data")};
    }
    bool operator==(const Snapshot&) const = default;
};

class ModelTest : public ::testing::Test {
protected:
    void SetUp() override { clean_environment(); }
    void TearDown() override { clean_environment(); }

    // Reads the environment again and returns what it wrote to stderr.
    static std::string reset_capturing_stderr() {
        ::testing::internal::CaptureStderr();
        TarvHost_Reset();
        return ::testing::internal::GetCapturedStderr();
    }
};

TEST_F(ModelTest, DefaultsWithoutEnvironment) {
    Hwin__Open();
    const std::uint8_t* base = Hwin__GetUserPortBaseMacAddress();
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(std::memcmp(base, kDefaultMac.data(), 6), 0);
    EXPECT_EQ(Lanx__GetSwitchMode(), 1);
    for (std::uint32_t slot : {0u, 1u, 255u, 70000u}) EXPECT_EQ(Lanx__GetPbPortType(slot, slot), 1);
    for (std::uint32_t lag : {0u, 5u, 255u, 256u, 0xFFFFFFFFu}) EXPECT_EQ(lag_list(lag), LagList{}) << lag;
    EXPECT_EQ(object_name("/kelm-data"), "/kelm-data");
}

TEST_F(ModelTest, PortMacIsBaseMacPlusSlotAndPort) {
    const Mac base{0x00, 0x10, 0x20, 0x00, 0x00, 0x10};
    TarvHost_SetBaseMac(base.data());
    EXPECT_EQ(port_mac(1, 3), (Mac{0x00, 0x10, 0x20, 0x00, 0x01, 0x13}));
    EXPECT_EQ(port_mac(2, 0), (Mac{0x00, 0x10, 0x20, 0x00, 0x02, 0x10}));
    EXPECT_EQ(port_mac(0, 0), base);
    EXPECT_NE(port_mac(1, 0x100), port_mac(1, 0)) << "port 256 still moves the address";

    // The low 24 bits wrap; the top three bytes never change.
    const Mac high{0x00, 0x10, 0x20, 0xFF, 0xFF, 0xF0};
    TarvHost_SetBaseMac(high.data());
    EXPECT_EQ(port_mac(0, 0x20), (Mac{0x00, 0x10, 0x20, 0x00, 0x00, 0x10}));
    EXPECT_EQ(port_mac(0xFFFFFFFFu, 0), (Mac{0x00, 0x10, 0x20, 0xFF, 0xFE, 0xF0}));

    // Without a base MAC no port has an address; the buffer stays as it was.
    EXPECT_EQ(Prtm__GetPortMacAddress(1, 1, nullptr), -1);
    TarvHost_SetBaseMac(nullptr);
    EXPECT_EQ(Hwin__GetUserPortBaseMacAddress(), nullptr);
    Mac mac;
    mac.fill(0xEE);
    EXPECT_EQ(Prtm__GetPortMacAddress(1, 1, mac.data()), -1);
    EXPECT_EQ(mac, (Mac{0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST_F(ModelTest, LagListIsCountThenPairsThenZeros) {
    const std::uint8_t two[] = {1, 1, 1, 2};
    ASSERT_EQ(TarvHost_SetLagMembers(5, two, 2), 0);
    EXPECT_EQ(lag_list(5), expected_list({2, 1, 1, 1, 2}));
    EXPECT_EQ(lag_list(6), LagList{});
    EXPECT_EQ(Prtm__LagGetLagPortList(5, nullptr), -1);

    std::vector<std::uint8_t> nine;
    for (std::uint8_t i = 1; i <= 9; ++i) nine.insert(nine.end(), {i, static_cast<std::uint8_t>(10 + i)});
    ASSERT_EQ(TarvHost_SetLagMembers(255, nine.data(), 9), 0);
    LagList full{};
    full[0] = 9;
    std::copy(nine.begin(), nine.end(), full.begin() + 1);
    EXPECT_EQ(lag_list(255), full) << "nine members fill 19 bytes, the 20th stays zero";

    // Refused member lists change nothing.
    const std::vector<std::uint8_t> ten(20, 1);
    EXPECT_EQ(TarvHost_SetLagMembers(5, ten.data(), 10), -1);
    EXPECT_EQ(TarvHost_SetLagMembers(5, nullptr, 1), -1);
    EXPECT_EQ(TarvHost_SetLagMembers(256, two, 2), -1);
    EXPECT_EQ(lag_list(5), expected_list({2, 1, 1, 1, 2}));
    EXPECT_EQ(lag_list(0), LagList{}) << "lag 256 must not wrap onto lag 0";

    ASSERT_EQ(TarvHost_SetLagMembers(5, nullptr, 0), 0);
    EXPECT_EQ(lag_list(5), LagList{});
}

TEST_F(ModelTest, PortTypesAreKeptPerPortUpToTheTableSize) {
    ASSERT_EQ(TarvHost_SetPortType(1, 3, 3), 0);
    EXPECT_EQ(Lanx__GetPbPortType(1, 3), 3);
    EXPECT_EQ(Lanx__GetPbPortType(3, 1), 1);
    EXPECT_EQ(Lanx__GetPbPortType(1, 4), 1);
    ASSERT_EQ(TarvHost_SetPortType(1, 3, 2), 0);
    EXPECT_EQ(Lanx__GetPbPortType(1, 3), 2);

    for (std::uint32_t port = 100; port < 100 + TARV_HOST_PORT_TYPES_MAX - 1; ++port)
        ASSERT_EQ(TarvHost_SetPortType(9, port, 3), 0) << port;
    EXPECT_EQ(TarvHost_SetPortType(9, 1, 3), -1) << "the table is full";
    EXPECT_EQ(Lanx__GetPbPortType(9, 1), 1);
    EXPECT_EQ(TarvHost_SetPortType(1, 3, 4), 0) << "a known port can still change";
    EXPECT_EQ(Lanx__GetPbPortType(1, 3), 4);
}

TEST_F(ModelTest, EnvironmentSetsTheModel) {
    setenv("TARV_DEBUG_LEVEL", "5", 1);
    setenv("TARV_TRACE_LEVEL", "2", 1);
    setenv("TARV_BASE_MAC", "00:10:20:aB:Cd:10", 1);
    setenv("TARV_SWITCH_MODE", "2", 1);
    setenv("TARV_PORT_TYPES", "1/3=3,4/2=-1,1/3=2", 1);
    setenv("TARV_LAGS", "5=1/1,1/2;6=3/4;7=", 1);
    setenv("TARV_SHM_PREFIX", "t1234-", 1);
    EXPECT_EQ(reset_capturing_stderr(), "");

    EXPECT_EQ(DBG_KELM.lLevel, 5u);
    EXPECT_EQ(Trcd__GetTrace(TRCD_MODULE_KELM)->lLevel, 2u);
    EXPECT_EQ(std::memcmp(Hwin__GetUserPortBaseMacAddress(), Mac{0x00, 0x10, 0x20, 0xAB, 0xCD, 0x10}.data(), 6), 0);
    EXPECT_EQ(Lanx__GetSwitchMode(), 2);
    EXPECT_EQ(Lanx__GetPbPortType(1, 3), 2) << "a later entry for the same port wins";
    EXPECT_EQ(Lanx__GetPbPortType(4, 2), -1);
    EXPECT_EQ(Lanx__GetPbPortType(2, 4), 1);
    EXPECT_EQ(lag_list(5), expected_list({2, 1, 1, 1, 2}));
    EXPECT_EQ(lag_list(6), expected_list({1, 3, 4}));
    EXPECT_EQ(lag_list(7), LagList{});
    EXPECT_EQ(object_name("/kelm-data"), "/t1234-kelm-data");

    // Reset forgets what the setters did and reads the environment again.
    TarvHost_SetSwitchMode(9);
    TarvHost_SetDebugLevel(0);
    TarvHost_Reset();
    EXPECT_EQ(Lanx__GetSwitchMode(), 2);
    EXPECT_EQ(DBG_KELM.lLevel, 5u);
}

TEST_F(ModelTest, EnvironmentValuesAtTheirLimits) {
    setenv("TARV_DEBUG_LEVEL", "4294967295", 1);
    setenv("TARV_TRACE_LEVEL", "0", 1);
    setenv("TARV_SWITCH_MODE", "-2147483648", 1);
    setenv("TARV_PORT_TYPES", "255/255=2147483647,0/0=0", 1);
    setenv("TARV_LAGS", "255=1/2,3/4,5/6,7/8,9/10,11/12,13/14,15/16,255/255", 1);
    const std::string prefix(TARV_HOST_SHM_PREFIX_MAX, 'a');
    setenv("TARV_SHM_PREFIX", prefix.c_str(), 1);
    EXPECT_EQ(reset_capturing_stderr(), "");

    EXPECT_EQ(DBG_KELM.lLevel, 0xFFFFFFFFu);
    EXPECT_EQ(Trcd__GetTrace(TRCD_MODULE_KELM)->lLevel, 0u);
    EXPECT_EQ(Lanx__GetSwitchMode(), INT32_MIN);
    EXPECT_EQ(Lanx__GetPbPortType(255, 255), INT32_MAX);
    EXPECT_EQ(Lanx__GetPbPortType(0, 0), 0);
    EXPECT_EQ(lag_list(255), expected_list({9, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 255, 255}));
    EXPECT_EQ(object_name("/x"), "/" + prefix + "x");

    setenv("TARV_SWITCH_MODE", "2147483647", 1);
    setenv("TARV_PORT_TYPES", "", 1);
    setenv("TARV_LAGS", "", 1);
    setenv("TARV_SHM_PREFIX", "", 1);
    EXPECT_EQ(reset_capturing_stderr(), "");
    EXPECT_EQ(Lanx__GetSwitchMode(), INT32_MAX);
    EXPECT_EQ(Lanx__GetPbPortType(255, 255), 1);
    EXPECT_EQ(lag_list(255), LagList{});
    EXPECT_EQ(object_name("/x"), "/x");
}

TEST_F(ModelTest, InvalidValuesAreIgnoredWithOneLineEach) {
    const Snapshot defaults = Snapshot::take();
    const std::string too_many_types = [] {
        std::string s;
        for (int port = 1; port <= TARV_HOST_PORT_TYPES_MAX + 1; ++port)
            s += (port > 1 ? ",1/" : "1/") + std::to_string(port) + "=3";
        return s;
    }();
    const struct {
        const char* name;
        std::string value;
    } cases[] = {
        {"TARV_DEBUG_LEVEL", "-1"},
        {"TARV_DEBUG_LEVEL", "4294967296"},
        {"TARV_DEBUG_LEVEL", " 5"},
        {"TARV_TRACE_LEVEL", "two"},
        {"TARV_BASE_MAC", "00:10:20:00:00"},
        {"TARV_BASE_MAC", "0:10:20:00:00:10"},
        {"TARV_BASE_MAC", "00:10:20:00:00:1g"},
        {"TARV_SWITCH_MODE", "2147483648"},
        {"TARV_SWITCH_MODE", "1.5"},
        {"TARV_PORT_TYPES", "1/3="},
        {"TARV_PORT_TYPES", "256/1=3"},
        {"TARV_PORT_TYPES", "1/3=3,"},
        {"TARV_PORT_TYPES", "1/3=3,4/2=x"},
        {"TARV_PORT_TYPES", too_many_types},
        {"TARV_LAGS", "5=1"},
        {"TARV_LAGS", "5=1/1,"},
        {"TARV_LAGS", "256=1/1"},
        {"TARV_LAGS", "5=1/256"},
        {"TARV_LAGS", "5=1/1,1/2,1/3,1/4,1/5,1/6,1/7,1/8,1/9,1/10"},
        {"TARV_SHM_PREFIX", "a/b"},
        {"TARV_SHM_PREFIX", std::string(TARV_HOST_SHM_PREFIX_MAX + 1, 'a')},
    };
    for (const auto& c : cases) {
        clean_environment();
        setenv(c.name, c.value.c_str(), 1);
        const std::string err = reset_capturing_stderr();
        EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << c.name << "=" << c.value << ": " << err;
        EXPECT_EQ(err.rfind(std::string("tarv-host: ignoring ") + c.name + "=", 0), 0u) << err;
        EXPECT_TRUE(Snapshot::take() == defaults) << c.name << "=" << c.value << " changed the model";
    }
}

TEST_F(ModelTest, AnInvalidVariableDoesNotStopTheOthers) {
    setenv("TARV_DEBUG_LEVEL", "loud", 1);
    setenv("TARV_SWITCH_MODE", "2", 1);
    setenv("TARV_LAGS", "5=1/1", 1);
    const std::string err = reset_capturing_stderr();
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
    EXPECT_EQ(DBG_KELM.lLevel, 0u);
    EXPECT_EQ(Lanx__GetSwitchMode(), 2);
    EXPECT_EQ(lag_list(5), expected_list({1, 1, 1}));
}

}  // namespace
}  // namespace tarv::host::testing
