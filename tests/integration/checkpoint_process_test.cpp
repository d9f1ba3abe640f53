// The checkpoint region between two processes over the host platform's
// shared memory: one writes the section, another reads the whole record.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <vector>

#include "spawn.h"
#include "tarv/tarv.h"
#include "tarv_host.h"

namespace tarv::integration {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(CheckpointProcessTest, ReaderGetsTheRecordThatAnotherProcessWrote) {
    const std::string prefix = "c" + std::to_string(getpid()) + "-";
    setenv("TARV_SHM_PREFIX", prefix.c_str(), 1);
    TarvHost_Reset();
    char object[TARV_HOST_SHM_NAME_MAX + 1];
    ASSERT_EQ(TarvHost_ShmObjectName("/kelm-chkp-data", object, sizeof object), 0);
    shm_unlink(object);
    Bytes record(280), head(10, 0xFF);
    for (std::size_t i = 0; i < record.size(); ++i) record[i] = static_cast<std::uint8_t>(i * 37 + 1);
    record[279] = 0;
    Signal written;

    const pid_t writer = spawn([&] {
        Tarv__ChkpOpen();
        Tarv__SetChkpData(16, 1, record.data(), 280);
        Tarv__SetChkpData(16, 1, head.data(), 10);  // a prefix: the rest stays
        written.send('w');
    });
    const pid_t reader = spawn([&] {
        ASSERT_TRUE(written.await('w'));
        Tarv__ChkpOpen();
        std::uint16_t value = 0;
        Bytes got(300, 0xCC);
        Tarv__GetChkpData(16, &value, got.data(), 300);
        Bytes want = head;
        want.insert(want.end(), record.begin() + 10, record.end());
        want.resize(300, 0xCC);
        EXPECT_EQ(value, 1);
        EXPECT_EQ(got, want);
    });
    EXPECT_EQ(wait_for(writer), 0);
    EXPECT_EQ(wait_for(reader), 0);
    struct stat st {};
    const int fd = shm_open(object, O_RDONLY, 0);
    EXPECT_TRUE(fd >= 0 && fstat(fd, &st) == 0 && st.st_size == 280);
    if (fd >= 0) close(fd);
    shm_unlink(object);
}

}  // namespace
}  // namespace tarv::integration
