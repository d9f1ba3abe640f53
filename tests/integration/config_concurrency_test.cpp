// The configuration writer and readers in separate processes over real shared
// memory: one process rewrites the MEP, MIP and class 581 tables in a loop
// while others, attached read-only, walk and read them. Readers may see a
// class empty or half written; they must never crash, hang or walk forever.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tarv/tarv.h"
#include "tarv_host.h"

namespace tarv::integration {
namespace {

using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;
constexpr auto kRunFor = std::chrono::milliseconds(1500);

// A forked child running body(); it exits 1 when a check failed and is ended
// by an alarm when it hangs.
template <typename Body>
pid_t spawn(Body body) {
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(20);
        body();
        std::fflush(nullptr);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    return pid;
}

int exit_status(pid_t pid) {
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// A full list of `slots` records of class `id` with a `key`-byte key whose
// last identifier is the slot + 1; every other slot only on odd rounds, so
// readers see slots come and go.
Bytes list(std::uint16_t id, std::uint32_t key, std::uint32_t record, std::uint32_t slots, std::uint32_t round) {
    Bytes l;
    for (std::uint32_t s = 0; s < slots; ++s) {
        if (round % 2 == 0 && s % 2 == 1) continue;
        Bytes t(key + record, static_cast<std::uint8_t>(round + s));
        t[0] = static_cast<std::uint8_t>(id), t[1] = static_cast<std::uint8_t>(id >> 8);
        for (std::uint32_t b = 0; b < 4; ++b) t[key - 4 + b] = static_cast<std::uint8_t>((s + 1) >> (8 * b));
        l.insert(l.end(), t.begin(), t.end());
    }
    l.resize(l.size() + key, 0);
    return l;
}

void write_for(Clock::time_point end, int to_readers, int readers) {
    Tarv__StorOpen();
    for (std::uint32_t round = 0; round == 0 || Clock::now() < end; ++round) {
        ASSERT_EQ(Tarv__SetConfig(532, list(532, 14, 48, 32, round).data()), 0);
        ASSERT_EQ(Tarv__SetConfig(575, list(575, 14, 14, 32, round).data()), 0);
        ASSERT_EQ(Tarv__SetConfig(581, list(581, 6, 16, 4096, round).data()), 0);
        if (round != 0) continue;
        for (int i = 0; i < readers; ++i) ASSERT_EQ(write(to_readers, "g", 1), 1);
    }
}

void read_for(Clock::time_point end, int from_writer) {
    TarvHost_SetModuleLevel(0);  // a MEP that vanishes between walk and read traces an error
    pollfd p{from_writer, POLLIN, 0};
    char go = 0;
    ASSERT_TRUE(poll(&p, 1, 10000) == 1 && read(from_writer, &go, 1) == 1);
    Tarv__Open();
    std::vector<std::uint8_t> buffer(4096 * 22 + 6);
    std::uint32_t walks = 0;
    while (Clock::now() < end) {
        // A MOID that vanishes under the walk restarts it at slot 0, so a walk
        // can take more than 32 steps, but not many more.
        int steps = 0;
        for (const TARV_MOID* m = Tarv__MEPMoidIterator(nullptr); m != nullptr; m = Tarv__MEPMoidIterator(m)) {
            ASSERT_LE(++steps, 32 * 32) << "the walk does not end";
            std::uint8_t mep[TARV_MEP_RECORD_SIZE];
            Tarv__ReadMEP(*m, mep);
        }
        ASSERT_EQ(Tarv__GetConfig(532, buffer.data(), 32), 0);
        ASSERT_EQ(Tarv__GetConfig(575, buffer.data(), 32), 0);
        ASSERT_EQ(Tarv__GetConfig(581, buffer.data(), 4096), 0);
        ++walks;
    }
    EXPECT_GT(walks, 0u);
}

TEST(ConfigConcurrencyTest, ReadersSurviveAWriterRewritingClasses) {
    const std::string prefix = "w" + std::to_string(getpid()) + "-";
    ASSERT_EQ(TarvHost_SetShmPrefix(prefix.c_str()), 0);
    char object[TARV_HOST_SHM_NAME_MAX + 1];
    ASSERT_EQ(TarvHost_ShmObjectName("/kelm-data", object, sizeof object), 0);
    shm_unlink(object);
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    constexpr int kReaders = 2;
    const Clock::time_point end = Clock::now() + kRunFor;
    const pid_t writer = spawn([&] { write_for(end, go[1], kReaders); });
    std::vector<pid_t> readers;
    for (int i = 0; i < kReaders; ++i) readers.push_back(spawn([&] { read_for(end, go[0]); }));

    EXPECT_EQ(exit_status(writer), 0);
    for (pid_t r : readers) EXPECT_EQ(exit_status(r), 0);
    close(go[0]), close(go[1]);
    shm_unlink(object);
    TarvHost_SetShmPrefix(nullptr);
}

}  // namespace
}  // namespace tarv::integration
