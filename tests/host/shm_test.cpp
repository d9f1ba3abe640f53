// Pcor__OpenShm over real POSIX shared memory.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "host_test_support.h"
#include "platform/pcor.h"

namespace tarv::host::testing {
namespace {

constexpr std::uint32_t kRegionSize = 453075;

class ShmTest : public ::testing::Test {
protected:
    void SetUp() override {
        clean_environment();
        prefix_ = unique_prefix();
        ASSERT_EQ(TarvHost_SetShmPrefix(prefix_.c_str()), 0);
    }
    void TearDown() override {
        for (const std::string& name : created_) shm_unlink(name.c_str());
        clean_environment();
    }

    // The object behind `name`, removed when the test ends.
    std::string object(const char* name) {
        created_.push_back(object_name(name));
        return created_.back();
    }

    // Creates the object behind `name` directly, `size` bytes long.
    void make_object(const char* name, off_t size) {
        const int fd = shm_open(object(name).c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
        ASSERT_GE(fd, 0);
        ASSERT_EQ(ftruncate(fd, size), 0);
        close(fd);
    }

    // Size and permission bits of the object behind `name`; size -1 when absent.
    struct Stat {
        off_t size = -1;
        mode_t mode = 0;
    };
    Stat stat_of(const char* name) {
        Stat s;
        const int fd = shm_open(object_name(name).c_str(), O_RDONLY, 0);
        if (fd < 0) return s;
        struct stat st {};
        if (fstat(fd, &st) == 0) s = {st.st_size, static_cast<mode_t>(st.st_mode & 0777)};
        close(fd);
        return s;
    }

    std::string prefix_;
    std::vector<std::string> created_;
};

TEST_F(ShmTest, ReadWriteOpenCreatesAZeroFilledObjectOpenToTheGroup) {
    object("/region");
    const mode_t old_mask = umask(077);  // would narrow the mode without fchmod
    auto* p = static_cast<std::uint8_t*>(Pcor__OpenShm("/region", kRegionSize, PCOR_SHM_READ_WRITE));
    umask(old_mask);
    ASSERT_NE(p, nullptr);

    const Stat s = stat_of("/region");
    EXPECT_EQ(s.size, static_cast<off_t>(kRegionSize));
    EXPECT_EQ(s.mode, 0660u);
    const std::vector<std::uint8_t> zeros(kRegionSize);
    EXPECT_EQ(std::memcmp(p, zeros.data(), kRegionSize), 0);
    p[0] = 1;
    p[kRegionSize - 1] = 2;  // writable up to its last byte
}

TEST_F(ShmTest, ReadOnlyOpenOfAMissingObjectFailsQuietlyAndCreatesNothing) {
    object("/absent");
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Pcor__OpenShm("/absent", kRegionSize, PCOR_SHM_READ_ONLY), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(stat_of("/absent").size, -1);
}

TEST_F(ShmTest, ObjectSmallerThanAskedIsRefusedInBothModes) {
    make_object("/short", kRegionSize - 1);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Pcor__OpenShm("/short", kRegionSize, PCOR_SHM_READ_ONLY), nullptr);
    EXPECT_EQ(Pcor__OpenShm("/short", kRegionSize, PCOR_SHM_READ_WRITE), nullptr);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("fewer than asked"), std::string::npos) << err;
    EXPECT_EQ(stat_of("/short").size, static_cast<off_t>(kRegionSize - 1)) << "a refused object is not resized";

    make_object("/exact", kRegionSize);
    EXPECT_NE(Pcor__OpenShm("/exact", kRegionSize, PCOR_SHM_READ_ONLY), nullptr);
    EXPECT_NE(Pcor__OpenShm("/exact", kRegionSize, PCOR_SHM_READ_WRITE), nullptr);
}

TEST_F(ShmTest, ReadOnlyMappingFaultsOnWrite) {
    object("/region");
    ASSERT_NE(Pcor__OpenShm("/region", kRegionSize, PCOR_SHM_READ_WRITE), nullptr);
    auto* p = static_cast<volatile std::uint8_t*>(Pcor__OpenShm("/region", kRegionSize, PCOR_SHM_READ_ONLY));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p[kRegionSize - 1], 0);
    EXPECT_DEATH(p[kRegionSize - 1] = 1, "");
}

TEST_F(ShmTest, EveryOpenMapsTheSameBytes) {
    object("/region");
    auto* writer = static_cast<std::uint8_t*>(Pcor__OpenShm("/region", kRegionSize, PCOR_SHM_READ_WRITE));
    auto* second = static_cast<std::uint8_t*>(Pcor__OpenShm("/region", kRegionSize, PCOR_SHM_READ_WRITE));
    auto* reader = static_cast<const std::uint8_t*>(Pcor__OpenShm("/region", kRegionSize, PCOR_SHM_READ_ONLY));
    // A smaller request maps the start of the object and shrinks nothing.
    auto* part = static_cast<const std::uint8_t*>(Pcor__OpenShm("/region", 1000, PCOR_SHM_READ_ONLY));
    ASSERT_TRUE(writer && second && reader && part);
    EXPECT_NE(writer, second);

    writer[0] = 0x11;
    writer[kRegionSize - 1] = 0x22;
    second[999] = 0x33;
    EXPECT_EQ(reader[0], 0x11);
    EXPECT_EQ(reader[kRegionSize - 1], 0x22);
    EXPECT_EQ(writer[999], 0x33);
    EXPECT_EQ(part[999], 0x33);
    EXPECT_EQ(stat_of("/region").size, static_cast<off_t>(kRegionSize));
}

TEST_F(ShmTest, PrefixGoesAfterTheLeadingSlash) {
    EXPECT_EQ(object_name("/kelm-data"), "/" + prefix_ + "kelm-data");
    const std::string plain = "/hostshm-" + std::to_string(getpid()) + "-plain";
    object(plain.c_str());
    ASSERT_NE(Pcor__OpenShm(plain.c_str(), 64, PCOR_SHM_READ_WRITE), nullptr);
    EXPECT_EQ(stat_of(plain.c_str()).size, 64);
    const int fd = shm_open(plain.c_str(), O_RDONLY, 0);  // the name without the prefix
    EXPECT_EQ(fd, -1);
    if (fd >= 0) close(fd);

    // 1 slash + prefix + rest may use 255 characters, not 256.
    const std::string longest = "/" + std::string(TARV_HOST_SHM_NAME_MAX - 1 - prefix_.size(), 'n');
    EXPECT_EQ(object_name(longest.c_str()).size(), std::size_t{TARV_HOST_SHM_NAME_MAX});
    EXPECT_EQ(object_name((longest + "n").c_str()), "<invalid>");
    char small[8];
    EXPECT_EQ(TarvHost_ShmObjectName("/kelm-data", small, sizeof small), -1);

    // Invalid prefixes leave the previous one; none at all leaves names alone.
    const std::string max(TARV_HOST_SHM_PREFIX_MAX, 'p');
    EXPECT_EQ(TarvHost_SetShmPrefix(max.c_str()), 0);
    EXPECT_EQ(TarvHost_SetShmPrefix((max + "p").c_str()), -1);
    EXPECT_EQ(TarvHost_SetShmPrefix("a/b"), -1);
    EXPECT_EQ(object_name("/x"), "/" + max + "x");
    EXPECT_EQ(TarvHost_SetShmPrefix(""), 0);
    EXPECT_EQ(object_name("/kelm-data"), "/kelm-data");
}

TEST_F(ShmTest, InvalidRequestsAreRefusedAndCreateNothing) {
    object("/valid");
    const std::string too_long = "/" + std::string(TARV_HOST_SHM_NAME_MAX, 'n');
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Pcor__OpenShm(nullptr, 64, PCOR_SHM_READ_WRITE), nullptr);
    EXPECT_EQ(Pcor__OpenShm("valid", 64, PCOR_SHM_READ_WRITE), nullptr);
    EXPECT_EQ(Pcor__OpenShm("/", 64, PCOR_SHM_READ_WRITE), nullptr);
    EXPECT_EQ(Pcor__OpenShm("/a/b", 64, PCOR_SHM_READ_WRITE), nullptr);
    EXPECT_EQ(Pcor__OpenShm(too_long.c_str(), 64, PCOR_SHM_READ_WRITE), nullptr);
    EXPECT_EQ(Pcor__OpenShm("/valid", 64, 2), nullptr);
    EXPECT_EQ(Pcor__OpenShm("/valid", 64, -1), nullptr);
    EXPECT_EQ(Pcor__OpenShm("/valid", 0, PCOR_SHM_READ_WRITE), nullptr);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 8) << err;
    EXPECT_EQ(stat_of("/valid").size, -1);
}

}  // namespace
}  // namespace tarv::host::testing
