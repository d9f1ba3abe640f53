// The host platform on its own: named shared memory over POSIX, trace lines
// and the chassis, port and switch model set through the C API and the
// environment.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "platform/hwin.h"
#include "platform/lanx.h"
#include "platform/pcor.h"
#include "platform/prtm.h"
#include "platform/trcd.h"
#include "platform/wq.h"
#include "tarv_host.h"

namespace tarv::host::testing {
namespace {

// Removes the host platform's variables and returns the model to its defaults.
void clean_environment() {
    for (const char* name : {"TARV_DEBUG_LEVEL", "TARV_TRACE_LEVEL", "TARV_BASE_MAC", "TARV_SWITCH_MODE",
                             "TARV_PORT_TYPES", "TARV_LAGS", "TARV_SHM_PREFIX"})
        unsetenv(name);
    TarvHost_Reset();
}

// The object name the platform uses for `name`, "<invalid>" when there is none.
std::string object_name(const char* name, std::size_t size = TARV_HOST_SHM_NAME_MAX + 1) {
    char buffer[TARV_HOST_SHM_NAME_MAX + 1];
    return TarvHost_ShmObjectName(name, buffer, size) == 0 ? buffer : "<invalid>";
}

template <typename F>
std::string stderr_of(F f) {
    ::testing::internal::CaptureStderr();
    f();
    return ::testing::internal::GetCapturedStderr();
}

long lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

class HostTest : public ::testing::Test {
protected:
    void SetUp() override { clean_environment(); }
    void TearDown() override { clean_environment(); }
};

// ---------------------------------------------------------------- shared memory

constexpr std::uint32_t kSize = 453075;
constexpr int kRw = PCOR_SHM_READ_WRITE;
constexpr int kRo = PCOR_SHM_READ_ONLY;

class ShmTest : public HostTest {
protected:
    void SetUp() override {
        static int counter = 0;
        prefix_ = "h" + std::to_string(getpid()) + "-" + std::to_string(++counter) + "-";
        ASSERT_EQ(TarvHost_SetShmPrefix(prefix_.c_str()), 0);
    }
    void TearDown() override {
        for (const char* name : {"region", "short", "absent", "valid"}) shm_unlink(("/" + prefix_ + name).c_str());
        HostTest::TearDown();
    }
    // Size and permission bits of the object behind `name`; size -1 when absent.
    static std::pair<off_t, unsigned> stat_of(const char* name) {
        const int fd = shm_open(object_name(name).c_str(), O_RDONLY, 0);
        struct stat st {};
        const bool ok = fd >= 0 && fstat(fd, &st) == 0;
        if (fd >= 0) close(fd);
        return ok ? std::pair<off_t, unsigned>{st.st_size, st.st_mode & 0777u} : std::pair<off_t, unsigned>{-1, 0};
    }
    std::string prefix_;
};

// A read-write open creates the object zero-filled with mode 0660 whatever
// the umask; every open maps it anew and shows the same bytes; a smaller
// request maps its start and shrinks nothing; a read-only mapping faults on
// write.
TEST_F(ShmTest, OpensMapOneZeroFilledObject) {
    const mode_t old_mask = umask(077);
    auto* writer = static_cast<std::uint8_t*>(Pcor__OpenShm("/region", kSize, kRw));
    umask(old_mask);
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(stat_of("/region"), (std::pair<off_t, unsigned>{kSize, 0660u}));
    EXPECT_EQ(std::vector<std::uint8_t>(writer, writer + kSize), std::vector<std::uint8_t>(kSize));
    auto* second = static_cast<std::uint8_t*>(Pcor__OpenShm("/region", kSize, kRw));
    auto* reader = static_cast<volatile std::uint8_t*>(Pcor__OpenShm("/region", kSize, kRo));
    auto* part = static_cast<const std::uint8_t*>(Pcor__OpenShm("/region", 1000, kRo));
    ASSERT_TRUE(second && reader && part);
    EXPECT_NE(writer, second);
    writer[kSize - 1] = 0x22;
    second[999] = 0x33;
    EXPECT_EQ(reader[kSize - 1], 0x22);
    EXPECT_EQ(writer[999], 0x33);
    EXPECT_EQ(part[999], 0x33);
    EXPECT_EQ(stat_of("/region").first, kSize);
    EXPECT_DEATH(reader[kSize - 1] = 1, "");
}

// The prefix goes after the leading slash; the whole name has at most 255
// characters and needs room for its terminator. An invalid prefix leaves the
// previous one.
TEST_F(ShmTest, PrefixGoesAfterTheLeadingSlash) {
    EXPECT_EQ(object_name("/region"), "/" + prefix_ + "region");
    const std::string longest = "/" + std::string(TARV_HOST_SHM_NAME_MAX - 1 - prefix_.size(), 'n');
    EXPECT_EQ(object_name(longest.c_str()).size(), std::size_t{TARV_HOST_SHM_NAME_MAX});
    EXPECT_EQ(object_name((longest + "n").c_str()), "<invalid>");
    EXPECT_EQ(object_name("/a/b"), "<invalid>");
    EXPECT_EQ(object_name("/region", prefix_.size() + 8), "/" + prefix_ + "region");
    EXPECT_EQ(object_name("/region", prefix_.size() + 7), "<invalid>");
    const std::string max(TARV_HOST_SHM_PREFIX_MAX, 'p');
    EXPECT_EQ(TarvHost_SetShmPrefix(max.c_str()), 0);
    EXPECT_EQ(TarvHost_SetShmPrefix((max + "p").c_str()), -1);
    EXPECT_EQ(TarvHost_SetShmPrefix("a/b"), -1);
    EXPECT_EQ(object_name("/x"), "/" + max + "x");
    EXPECT_EQ(TarvHost_SetShmPrefix(""), 0);
    EXPECT_EQ(object_name("/kelm-data"), "/kelm-data");
}

// Refusals write one line each, except a read-only open of a missing object,
// the ordinary state before the controller is up; none creates or resizes.
TEST_F(ShmTest, RefusedRequestsGiveNullAndCreateNothing) {
    const int fd = shm_open(object_name("/short").c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ftruncate(fd, kSize - 1), 0);
    close(fd);
    const std::string too_long = "/" + std::string(TARV_HOST_SHM_NAME_MAX, 'n');
    const std::tuple<const char*, std::uint32_t, int, long> rows[] = {
        {"/absent", kSize, kRo, 0}, {"/short", kSize, kRo, 1}, {"/short", kSize, kRw, 1}, {nullptr, 64, kRw, 1},
        {"valid", 64, kRw, 1}, {"/", 64, kRw, 1}, {"/a/b", 64, kRw, 1}, {too_long.c_str(), 64, kRw, 1},
        {"/valid", 64, 2, 1}, {"/valid", 64, -1, 1}, {"/valid", 0, kRw, 1}};
    for (const auto& [name, size, flag, count] : rows) {
        const std::string err = stderr_of(
            [name = name, size = size, flag = flag] { EXPECT_EQ(Pcor__OpenShm(name, size, flag), nullptr); });
        EXPECT_EQ(lines(err), count) << (name ? name : "null") << " " << size << " " << flag << ": " << err;
    }
    EXPECT_EQ(stat_of("/absent").first, -1);
    EXPECT_EQ(stat_of("/valid").first, -1);
    EXPECT_EQ(stat_of("/short").first, kSize - 1);
}

// ---------------------------------------------------------------- region files

class RegionFileTest : public ShmTest {
protected:
    void TearDown() override {
        for (const auto& f : files_) unlink(f.c_str());
        ShmTest::TearDown();
    }

    // A file of `size` bytes, byte i holding i mod 251.
    std::string file(std::size_t size) {
        files_.push_back("/tmp/" + prefix_ + std::to_string(files_.size()) + ".bin");
        std::vector<std::uint8_t> bytes(size);
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i % 251);
        FILE* f = std::fopen(files_.back().c_str(), "wb");
        EXPECT_TRUE(f != nullptr && std::fwrite(bytes.data(), 1, size, f) == size);
        if (f != nullptr) std::fclose(f);
        return files_.back();
    }

    std::vector<std::string> files_;
};

// A name given a file maps that file's bytes privately: writes through a
// read-write mapping reach neither the file nor other mappings, and no shared
// memory object is made. A missing or short file is refused with one line; an
// empty path gives the name back to shared memory. The names and paths the
// table takes are bounded, and a name already in it can always be given a
// new file; Reset forgets them all.
TEST_F(RegionFileTest, NameIsServedFromItsFilePrivately) {
    const std::string path = file(kSize + 5);
    ASSERT_EQ(TarvHost_SetRegionFile("/region", path.c_str()), 0);
    auto* writer = static_cast<std::uint8_t*>(Pcor__OpenShm("/region", kSize, kRw));
    auto* reader = static_cast<const std::uint8_t*>(Pcor__OpenShm("/region", kSize, kRo));
    ASSERT_TRUE(writer && reader);
    writer[kSize - 1] = 0;
    const auto* again = static_cast<const std::uint8_t*>(Pcor__OpenShm("/region", kSize, kRo));
    ASSERT_NE(again, nullptr);
    const std::uint8_t was = (kSize - 1) % 251;
    EXPECT_EQ((std::array{reader[kSize - 1], again[kSize - 1]}), (std::array{was, was})) << "the write went through";
    EXPECT_EQ(stat_of("/region").first, -1);
    for (const std::string& refused : {std::string(), file(kSize - 1), std::string("/nonexistent/region.bin")}) {
        ASSERT_EQ(TarvHost_SetRegionFile("/region", refused.c_str()), 0);
        const std::string err = stderr_of([] { EXPECT_EQ(Pcor__OpenShm("/region", kSize, kRo), nullptr); });
        EXPECT_EQ(lines(err), refused.empty() ? 0 : 1) << refused << ": " << err;
    }

    const std::string too_long_name = "/" + std::string(TARV_HOST_SHM_NAME_MAX, 'n');
    for (const char* name : {static_cast<const char*>(nullptr), "region", "/", "/a/b", too_long_name.c_str()})
        EXPECT_EQ(TarvHost_SetRegionFile(name, "x"), -1) << (name ? name : "null");
    EXPECT_EQ(TarvHost_SetRegionFile("/r2", std::string(TARV_HOST_REGION_PATH_MAX + 1, 'p').c_str()), -1);
    EXPECT_EQ(TarvHost_SetRegionFile("/r2", std::string(TARV_HOST_REGION_PATH_MAX, 'p').c_str()), 0);
    EXPECT_EQ(TarvHost_SetRegionFile("/r3", "x") + TarvHost_SetRegionFile("/r4", "x"), 0);
    EXPECT_EQ(TarvHost_SetRegionFile("/r5", "x"), -1) << "a fifth name";
    EXPECT_EQ(TarvHost_SetRegionFile("/r4", "y") + TarvHost_SetRegionFile("/r4", nullptr), 0);
    EXPECT_EQ(TarvHost_SetRegionFile("/r5", "x"), 0);
    TarvHost_Reset();
    for (const char* name : {"/r6", "/r7", "/r8", "/r9"}) EXPECT_EQ(TarvHost_SetRegionFile(name, "x"), 0);
}

// ---------------------------------------------------------------- traces

constexpr char kPath[] = "data/swch/api-tarv";

// One statement as the library makes it, gated by the platform only: debug at
// levels 4 to 7 as Tarv__ReadMEP, warnings with code 3, errors with code 12.
void trace(std::uint32_t level, std::uint32_t line, const char* text) {
    TRCD_TRACE* object = level > 2 ? &DBG_KELM : Trcd__GetTrace(TRCD_MODULE_KELM);
    WQ_beginImpl(object, level, kPath, line);
    if (level > 2) Pcor__PrintDebugTrace(object, level, "Tarv__ReadMEP", "%s", text);
    else if (level == 2) Pcor__PrintWarningTrace(object, "Tarv__GetConfig", TRCD_MODULE_KELM, 3, "%s", text);
    else Pcor__PrintErrorTrace(object, "Tarv__Open", TRCD_MODULE_KELM, 12, "%s", text);
    WQ_endImpl(object);
}

using TraceTest = HostTest;

// Debug lines need DBG_KELM's level; warnings and errors need module 142's,
// and neither level word plays a part in the other's lines. Other modules
// share one object of level 0. Each statement is one line with its level,
// function, code and the place its WQ_beginImpl gave on the same object,
// "?:0" outside such a statement; a message is cut to the 1023 characters
// its buffer holds.
TEST_F(TraceTest, LinesFollowTheirObjectsLevelWordAndCarryTheStatement) {
    TRCD_TRACE* other = Trcd__GetTrace(1);
    EXPECT_EQ(Trcd__GetTrace(0xFFFFFFFFu), other);
    EXPECT_TRUE(other != Trcd__GetTrace(TRCD_MODULE_KELM) && other != &DBG_KELM && other->lLevel == 0);
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, long> rows[] = {
        {4, 9, 5, 0}, {4, 0, 4, 1}, {0, 9, 4, 0}, {0xFFFFFFFFu, 0, 7, 1}, {9, 0, 1, 0}, {0, 1, 1, 1}, {9, 1, 2, 0},
        {0, 2, 2, 1}};
    for (const auto& [debug_word, module_word, level, printed] : rows) {
        TarvHost_SetDebugLevel(debug_word);
        TarvHost_SetModuleLevel(module_word);
        EXPECT_EQ(lines(stderr_of([&, level = level] { trace(level, 1, "text"); })), printed)
            << debug_word << "/" << module_word << " L" << level;
    }
    TarvHost_SetDebugLevel(7);
    TarvHost_SetModuleLevel(2);
    EXPECT_EQ(stderr_of([] {
                  WQ_beginImpl(&DBG_KELM, 5, kPath, 123);
                  Pcor__PrintDebugTrace(&DBG_KELM, 5, "Tarv__ReadMEP", "Mep %d of %s", 7, "MA-1");
                  WQ_endImpl(&DBG_KELM);
                  trace(1, 40, "KELM_SHARED_DATA");
                  trace(2, 77, "Class 999 unknown");
                  trace(4, 1, "two\r\nparts\r\n\n");
                  trace(4, 2, "");
                  Pcor__PrintDebugTrace(&DBG_KELM, 4, "Tarv__ReadMEP", "after end");
                  WQ_beginImpl(Trcd__GetTrace(TRCD_MODULE_KELM), 1, kPath, 9);
                  Pcor__PrintDebugTrace(&DBG_KELM, 4, "Tarv__ReadMEP", "other object");
                  WQ_endImpl(Trcd__GetTrace(TRCD_MODULE_KELM));
                  trace(4, 4, std::string(5000, 'x').c_str());
              }),
              "tarv L5 Tarv__ReadMEP code=- data/swch/api-tarv:123: Mep 7 of MA-1\n"
              "tarv L1 Tarv__Open code=12 data/swch/api-tarv:40: KELM_SHARED_DATA\n"
              "tarv L2 Tarv__GetConfig code=3 data/swch/api-tarv:77: Class 999 unknown\n"
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:1: two  parts\n"
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:2: \n"
              "tarv L4 Tarv__ReadMEP code=- ?:0: after end\n"
              "tarv L4 Tarv__ReadMEP code=- ?:0: other object\n"
              "tarv L4 Tarv__ReadMEP code=- data/swch/api-tarv:4: " +
                  std::string(1023, 'x') + "\n");
}

// ---------------------------------------------------------------- model

using ModelTest = HostTest;
using Mac = std::array<std::uint8_t, 6>;
using LagList = std::array<std::uint8_t, PRTM_LAG_PORT_LIST_SIZE>;

Mac base_mac() {
    Mac mac{};
    if (const std::uint8_t* p = Hwin__GetUserPortBaseMacAddress()) std::memcpy(mac.data(), p, mac.size());
    return mac;
}

// The member list of a LAG, from a buffer that held other bytes before.
LagList lag_list(std::uint32_t lag) {
    LagList list;
    list.fill(0xAA);
    EXPECT_EQ(Prtm__LagGetLagPortList(lag, list.data()), 0);
    return list;
}

// Everything the environment can change.
struct Snapshot {
    std::uint32_t debug_level = DBG_KELM.lLevel;
    std::uint32_t module_level = Trcd__GetTrace(TRCD_MODULE_KELM)->lLevel;
    Mac mac = base_mac();
    std::int32_t switch_mode = Lanx__GetSwitchMode();
    std::int32_t type_1_3 = Lanx__GetPbPortType(1, 3);
    LagList lag_5 = lag_list(5);
    std::string object = object_name("/kelm-data");
    bool operator==(const Snapshot&) const = default;
};

// Types for 64 ports, the most there can be, then 1/3 again: the later wins.
std::string full_port_types() {
    std::string types = "1/3=3,255/255=2147483647";
    for (int port = 1; port <= TARV_HOST_PORT_TYPES_MAX - 2; ++port) types += ",2/" + std::to_string(port) + "=-1";
    return types + ",1/3=2";
}

// The low 24 bits take 0x100 * slot + port and wrap; the top three bytes
// stay. Without a base MAC no port has an address and the buffer stays.
TEST_F(ModelTest, PortMacIsBaseMacPlusSlotAndPort) {
    const Mac base{0x00, 0x10, 0x20, 0x00, 0x00, 0x10}, high{0x00, 0x10, 0x20, 0xFF, 0xFF, 0xF0};
    const std::tuple<Mac, std::uint32_t, std::uint32_t, Mac> rows[] = {
        {base, 1, 3, {0x00, 0x10, 0x20, 0x00, 0x01, 0x13}}, {base, 1, 0x100, {0x00, 0x10, 0x20, 0x00, 0x02, 0x10}},
        {high, 0, 0x20, {0x00, 0x10, 0x20, 0x00, 0x00, 0x10}},
        {high, 0xFFFFFFFFu, 0, {0x00, 0x10, 0x20, 0xFF, 0xFE, 0xF0}}};
    for (const auto& [from, slot, port, want] : rows) {
        TarvHost_SetBaseMac(from.data());
        Mac mac{};
        EXPECT_EQ(Prtm__GetPortMacAddress(slot, port, mac.data()), 0);
        EXPECT_EQ(mac, want) << slot << "/" << port;
    }
    EXPECT_EQ(Prtm__GetPortMacAddress(1, 1, nullptr), -1);
    TarvHost_SetBaseMac(nullptr);
    EXPECT_EQ(Hwin__GetUserPortBaseMacAddress(), nullptr);
    Mac mac{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(Prtm__GetPortMacAddress(1, 1, mac.data()), -1);
    EXPECT_EQ(mac, (Mac{1, 2, 3, 4, 5, 6}));
}

// A LAG list is the count byte, the pairs, then zeros; refused settings
// change nothing.
TEST_F(ModelTest, SettersKeepWhatTheyAccept) {
    const std::vector<std::uint8_t> ones(20, 1);
    ASSERT_EQ(TarvHost_SetLagMembers(5, ones.data(), 2), 0);
    ASSERT_EQ(TarvHost_SetLagMembers(255, ones.data(), 9), 0);
    EXPECT_EQ(TarvHost_SetLagMembers(5, ones.data(), 10), -1);
    EXPECT_EQ(TarvHost_SetLagMembers(5, nullptr, 1), -1);
    EXPECT_EQ(TarvHost_SetLagMembers(256, ones.data(), 3), -1);
    EXPECT_EQ(lag_list(5), (LagList{2, 1, 1, 1, 1}));
    EXPECT_EQ(lag_list(255), (LagList{9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(lag_list(0), LagList{}) << "lag 256 must not wrap onto lag 0";
    EXPECT_EQ(Prtm__LagGetLagPortList(5, nullptr), -1);
    ASSERT_EQ(TarvHost_SetLagMembers(5, nullptr, 0), 0);
    EXPECT_EQ(lag_list(5), LagList{});
    ASSERT_EQ(TarvHost_SetPortType(9, 1, 3), 0);
    EXPECT_EQ(Lanx__GetPbPortType(9, 1), 3);
    EXPECT_EQ(Lanx__GetPbPortType(1, 9), 1);
}

TEST_F(ModelTest, EnvironmentSetsTheModelUpToItsLimits) {
    EXPECT_TRUE((Snapshot{} == Snapshot{0, 1, {0x02, 0x54, 0x41, 0x52, 0x56, 0x00}, 1, 1, {}, "/kelm-data"}));
    EXPECT_EQ(Lanx__GetPbPortType(70000, 70000), 1);

    const std::string prefix(TARV_HOST_SHM_PREFIX_MAX, 'a');
    for (const auto& [name, value] : {std::pair<const char*, std::string>{"TARV_DEBUG_LEVEL", "4294967295"},
                                      {"TARV_TRACE_LEVEL", "0"}, {"TARV_BASE_MAC", "00:10:20:aB:Cd:eF"},
                                      {"TARV_SWITCH_MODE", "-2147483648"}, {"TARV_PORT_TYPES", full_port_types()},
                                      {"TARV_LAGS", "5=1/1,1/2;7=;255=1/2,3/4,5/6,7/8,9/10,11/12,13/14,15/16,255/255"},
                                      {"TARV_SHM_PREFIX", prefix}})
        setenv(name, value.c_str(), 1);
    EXPECT_EQ(stderr_of(TarvHost_Reset), "");
    EXPECT_TRUE((Snapshot{} == Snapshot{0xFFFFFFFFu, 0, {0x00, 0x10, 0x20, 0xAB, 0xCD, 0xEF}, INT32_MIN, 2,
                                        LagList{2, 1, 1, 1, 2}, "/" + prefix + "kelm-data"}));
    EXPECT_EQ(Lanx__GetPbPortType(255, 255), INT32_MAX);
    EXPECT_EQ(Lanx__GetPbPortType(2, 62), -1);
    EXPECT_EQ(lag_list(7), LagList{});
    EXPECT_EQ(lag_list(255), (LagList{9, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 255, 255}));
    for (std::uint32_t lag : {256u, 0xFFFFFFFFu}) EXPECT_EQ(lag_list(lag), LagList{}) << "no LAG " << lag;

    // Reset forgets the setters and reads the environment again; an invalid
    // variable does not stop the others; empty lists are valid.
    TarvHost_SetSwitchMode(9);
    setenv("TARV_DEBUG_LEVEL", "loud", 1);
    for (const char* name : {"TARV_PORT_TYPES", "TARV_LAGS", "TARV_SHM_PREFIX"}) setenv(name, "", 1);
    EXPECT_EQ(lines(stderr_of(TarvHost_Reset)), 1);
    EXPECT_TRUE((Snapshot{} == Snapshot{0, 0, {0x00, 0x10, 0x20, 0xAB, 0xCD, 0xEF}, INT32_MIN, 1, {}, "/kelm-data"}));
    EXPECT_EQ(lag_list(255), LagList{});
}

TEST_F(ModelTest, InvalidValuesAreIgnoredWithOneLineEach) {
    const Snapshot defaults;
    const std::pair<const char*, std::string> rows[] = {
        {"TARV_DEBUG_LEVEL", "-1"}, {"TARV_DEBUG_LEVEL", "4294967296"}, {"TARV_TRACE_LEVEL", " 2"},
        {"TARV_BASE_MAC", "00:10:20:00:00"}, {"TARV_BASE_MAC", "0:10:20:00:00:10"},
        {"TARV_BASE_MAC", "00:10:20:00:00:1g"}, {"TARV_SWITCH_MODE", "2147483648"}, {"TARV_SWITCH_MODE", "1.5"},
        {"TARV_PORT_TYPES", "256/1=3"}, {"TARV_PORT_TYPES", "1/3=3,"}, {"TARV_PORT_TYPES", "1/3=3,4/2=x"},
        {"TARV_PORT_TYPES", full_port_types() + ",2/99=1"}, {"TARV_LAGS", "5=1"}, {"TARV_LAGS", "256=1/1"},
        {"TARV_LAGS", "5=1/1,1/2,1/3,1/4,1/5,1/6,1/7,1/8,1/9,1/10"}, {"TARV_SHM_PREFIX", "a/b"},
        {"TARV_SHM_PREFIX", std::string(TARV_HOST_SHM_PREFIX_MAX + 1, 'a')},
    };
    for (const auto& [name, value] : rows) {
        clean_environment();
        setenv(name, value.c_str(), 1);
        const std::string err = stderr_of(TarvHost_Reset);
        EXPECT_EQ(lines(err), 1) << name << "=" << value << ": " << err;
        EXPECT_EQ(err.rfind(std::string("tarv-host: ignoring ") + name + "=", 0), 0u) << err;
        EXPECT_TRUE(Snapshot{} == defaults) << name << "=" << value << " changed the model";
    }
}

}  // namespace
}  // namespace tarv::host::testing
