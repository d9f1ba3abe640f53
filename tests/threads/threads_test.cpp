// The library from several threads at once. Every operation runs in the
// caller's thread and keeps no state between calls, so concurrent calls must
// give each caller exactly what it gets alone.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <string>
#include <thread>
#include <vector>

#include "byteorder.h"
#include "region.h"
#include "support/fake_platform.h"
#include "support/operations.h"

namespace tarv::testing {
namespace {

constexpr int kThreads = 4;

// Runs body(t) on kThreads threads at once and waits for them.
template <typename Body>
void on_threads(Body body) {
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) threads.emplace_back(body, t);
    for (auto& th : threads) th.join();
}

// Every operation that does not write the region, from every thread at once,
// each thread in its own order, gives the digest it gives alone. Trace levels
// stay 0: the recording fake platform is not made for several threads.
TEST(ThreadsTest, ReadingOperationsAnswerBesideEachOtherAsAlone) {
    fake().reset();
    pSharedData = nullptr;
    pStorData = nullptr;
    Tarv__StorOpen();
    populate_region(pSharedData);
    fake().keep_traces = false;  // the fake then logs no platform request either

    std::vector<const Operation*> rows;
    for (const Operation& op : operations())
        if (op.kind != OperationKind::Write) rows.push_back(&op);
    std::vector<std::uint64_t> alone;
    {
        Scratch scratch;
        for (const Operation* op : rows) alone.push_back(run_row(*op, scratch));
    }

    std::vector<std::vector<std::string>> differences(kThreads);
    on_threads([&](int t) {
        Scratch scratch;
        for (int round = 0; round < 20; ++round) {
            for (std::size_t i = 0; i < rows.size(); ++i) {
                const std::size_t k = (i * 7 + static_cast<std::size_t>(t * 13 + round)) % rows.size();
                if (run_row(*rows[k], scratch) != alone[k]) differences[static_cast<std::size_t>(t)].push_back(row_name(*rows[k]));
            }
        }
    });
    for (int t = 0; t < kThreads; ++t)
        EXPECT_TRUE(differences[static_cast<std::size_t>(t)].empty())
            << "thread " << t << ": " << differences[static_cast<std::size_t>(t)].front();
    pSharedData = nullptr;
    pStorData = nullptr;
    fake().reset();
}

// The DM and LM converters in threads of different numeric locales at once:
// every text carries its own thread's decimal point and reads back in it.
// A converter that kept a locale's decimal point between calls, or read it
// from process-wide state, mixes them up.
TEST(ThreadsTest, PmConvertersFollowTheirOwnThreadsLocale) {
    const char* names[kThreads] = {"C", "de_DE.UTF-8", "C", "ps_AF.UTF-8"};
    locale_t locales[kThreads];
    for (int t = 0; t < kThreads; ++t) {
        locales[t] = newlocale(LC_NUMERIC_MASK, names[t], static_cast<locale_t>(nullptr));
        if (locales[t] == static_cast<locale_t>(nullptr)) {
            for (int u = 0; u < t; ++u) freelocale(locales[u]);
            const char* required = std::getenv("TARV_REQUIRE_LOCALES");
            if (required != nullptr && std::strcmp(required, "0") == 0) GTEST_SKIP() << "no locale " << names[t];
            FAIL() << "locale " << names[t] << " is not installed: scripts/install-deps generates it (localedef)";
        }
    }

    std::vector<std::vector<std::string>> differences(kThreads);
    on_threads([&](int t) {
        uselocale(locales[t]);
        auto& out = differences[static_cast<std::size_t>(t)];
        for (int i = 0; i < 3000 && out.size() < 5; ++i) {
            const double value = (i - 1500) * 1.25 + t * 0.005;
            DMRecordMS dm{};
            store_le<double>(reinterpret_cast<std::uint8_t*>(&dm) + 48, value);
            DMRecordIM dm_im{};
            Tarv__DMRecordMS2IM(&dm_im, &dm);
            LMRecordMS lm{};
            store_le<double>(reinterpret_cast<std::uint8_t*>(&lm) + 49, value);
            LMRecordIM lm_im{};
            Tarv__LMRecordMS2IM(&lm_im, &lm);

            char want[64];
            std::snprintf(want, sizeof want, "%.2f us", value);
            if (std::strcmp(dm_im.dUs1, want) != 0) out.push_back(std::string(dm_im.dUs1) + " for " + want);
            std::snprintf(want, sizeof want, "%.2f %%", value);
            if (std::strcmp(lm_im.dPct1, want) != 0) out.push_back(std::string(lm_im.dPct1) + " for " + want);

            double read = 0;
            if (std::sscanf(dm_im.dUs1, "%lf", &read) != 1) read = NAN;
            DMRecordMS back{};
            Tarv__DMRecordIM2MS(&back, &dm_im);
            if (load_le<double>(reinterpret_cast<const std::uint8_t*>(&back) + 48) != read)
                out.push_back(std::string("read back ") + dm_im.dUs1);
        }
        uselocale(LC_GLOBAL_LOCALE);
    });
    for (int t = 0; t < kThreads; ++t) {
        freelocale(locales[t]);
        EXPECT_TRUE(differences[static_cast<std::size_t>(t)].empty())
            << names[t] << ": " << differences[static_cast<std::size_t>(t)].front();
    }
}

}  // namespace
}  // namespace tarv::testing
