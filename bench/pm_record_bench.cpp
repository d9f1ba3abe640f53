// DM and LM record conversion: the library against a baseline that formats
// and parses the same fields of the same layouts with snprintf and sscanf.
//
// Each conversion runs twice in the same process, library and baseline, over
// the same records; the summary at the end states ns per record for both and
// the ratio baseline / library (above 1: the library is faster).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "byteorder.h"
#include "ratio_reporter.h"
#include "tarv/tarv.h"

namespace {

using tarv::load_le;
using tarv::store_le;

// --- Layouts as the baseline sees them --------------------------------------

struct Copied {
    std::size_t ms, im, size;
};
struct Place {
    std::size_t ms, im;
};
struct Layout {
    std::vector<Copied> copied;  // includes the two 20-byte texts
    std::size_t text_im[2];      // IM offsets of the two texts
    std::vector<Place> reals;
    std::vector<Place> counts;
    const char* real_format;  // "%.2f us" or "%.2f %%"
};

const Layout kDm{
    {{0, 0, 20},    {20, 20, 4},   {24, 24, 20},  {44, 44, 4},   {56, 81, 4},   {60, 85, 4},
     {72, 122, 4},  {76, 126, 4},  {106, 262, 4}, {110, 266, 4}, {140, 402, 4}, {144, 406, 4},
     {148, 410, 4}, {152, 414, 4}, {156, 418, 4}, {160, 422, 4}, {164, 426, 1}},
    {19, 43},
    {{48, 48}, {64, 89}, {80, 130}, {98, 229}, {114, 270}, {132, 369}, {165, 427}, {173, 460}, {181, 493},
     {189, 526}, {197, 559}, {205, 592}},
    {{88, 163}, {93, 196}, {122, 303}, {127, 336}},
    "%.2f us",
};

const Layout kLm{
    {{1, 0, 20},    {21, 20, 4},   {25, 24, 20},  {45, 44, 4},   {97, 246, 4},  {101, 250, 4},
     {105, 254, 4}, {109, 258, 4}, {113, 262, 4}, {117, 266, 4}, {121, 270, 4}, {125, 274, 4}, {129, 278, 1}},
    {19, 43},
    {{49, 48}, {57, 81}, {65, 114}, {73, 147}, {81, 180}, {89, 213}},
    {},
    "%.2f %%",
};

// --- The baseline: the C library's formatted I/O, field by field -----------

void baseline_ms2im(const Layout& l, std::uint8_t* im, const std::uint8_t* ms) {
    for (const Copied& c : l.copied) std::memcpy(im + c.im, ms + c.ms, c.size);
    for (std::size_t t : l.text_im) im[t] = 0;
    char text[400];
    for (const Place& r : l.reals) {
        // Two literal formats so that the compiler checks them.
        const double v = load_le<double>(ms + r.ms);
        const int n = l.real_format[5] == 'u' ? std::snprintf(text, sizeof text, "%.2f us", v)
                                              : std::snprintf(text, sizeof text, "%.2f %%", v);
        const std::size_t len = n > 32 ? 32u : static_cast<std::size_t>(n);
        std::memcpy(im + r.im, text, len);
        im[r.im + len] = 0;
    }
    for (const Place& c : l.counts) {
        std::snprintf(reinterpret_cast<char*>(im + c.im), 33, "%lu us",
                      static_cast<unsigned long>(load_le<std::uint32_t>(ms + c.ms)));
    }
}

void baseline_im2ms(const Layout& l, std::uint8_t* ms, const std::uint8_t* im) {
    for (const Copied& c : l.copied) std::memcpy(ms + c.ms, im + c.im, c.size);
    for (const Place& r : l.reals) {
        char text[34];
        std::memcpy(text, im + r.im, 33);
        text[33] = '\0';
        double v;
        if (std::sscanf(text, "%lf", &v) == 1) store_le<double>(ms + r.ms, v);
    }
}

// --- Records -----------------------------------------------------------------

constexpr std::size_t kRecords = 256;

// Measurement results as a PM session produces them: delays of microseconds
// to a second with a fraction, percentages from 0 to 100, some zeros.
struct Data {
    std::vector<DMRecordMS> dm_ms;
    std::vector<DMRecordIM> dm_im;
    std::vector<LMRecordMS> lm_ms;
    std::vector<LMRecordIM> lm_im;

    Data() : dm_ms(kRecords), dm_im(kRecords), lm_ms(kRecords), lm_im(kRecords) {
        std::mt19937_64 rng(1);
        std::uniform_real_distribution<double> delay(0.0, 1e6), percent(0.0, 100.0);
        for (std::size_t i = 0; i < kRecords; ++i) {
            auto* dm = reinterpret_cast<std::uint8_t*>(&dm_ms[i]);
            auto* lm = reinterpret_cast<std::uint8_t*>(&lm_ms[i]);
            for (std::size_t b = 0; b < sizeof(DMRecordMS); ++b) dm[b] = static_cast<std::uint8_t>('A' + rng() % 26);
            for (std::size_t b = 0; b < sizeof(LMRecordMS); ++b) lm[b] = static_cast<std::uint8_t>('A' + rng() % 26);
            for (const Place& r : kDm.reals) store_le<double>(dm + r.ms, rng() % 8 == 0 ? 0.0 : delay(rng));
            for (const Place& c : kDm.counts) store_le<std::uint32_t>(dm + c.ms, static_cast<std::uint32_t>(rng() % 1000000));
            for (const Place& r : kLm.reals) store_le<double>(lm + r.ms, rng() % 4 == 0 ? 0.0 : percent(rng));
            Tarv__DMRecordMS2IM(&dm_im[i], &dm_ms[i]);
            Tarv__LMRecordMS2IM(&lm_im[i], &lm_ms[i]);
        }
    }
};

const Data& data() {
    static const Data d;
    return d;
}

template <typename Dst, typename Src, typename Fn>
void run(benchmark::State& state, const std::vector<Src>& sources, Fn convert) {
    std::vector<Dst> out(kRecords);
    std::size_t i = 0;
    for (auto _ : state) {
        convert(&out[i], &sources[i]);
        benchmark::ClobberMemory();
        i = (i + 1) % kRecords;
    }
    state.SetItemsProcessed(state.iterations());
}

template <typename T>
std::uint8_t* bytes(T* p) {
    return reinterpret_cast<std::uint8_t*>(p);
}
template <typename T>
const std::uint8_t* bytes(const T* p) {
    return reinterpret_cast<const std::uint8_t*>(p);
}

void register_all() {
    benchmark::RegisterBenchmark("DM_MS2IM/library", [](benchmark::State& s) {
        run<DMRecordIM>(s, data().dm_ms, [](DMRecordIM* d, const DMRecordMS* m) { Tarv__DMRecordMS2IM(d, m); });
    });
    benchmark::RegisterBenchmark("DM_MS2IM/baseline", [](benchmark::State& s) {
        run<DMRecordIM>(s, data().dm_ms, [](DMRecordIM* d, const DMRecordMS* m) { baseline_ms2im(kDm, bytes(d), bytes(m)); });
    });
    benchmark::RegisterBenchmark("DM_IM2MS/library", [](benchmark::State& s) {
        run<DMRecordMS>(s, data().dm_im, [](DMRecordMS* d, const DMRecordIM* m) { Tarv__DMRecordIM2MS(d, m); });
    });
    benchmark::RegisterBenchmark("DM_IM2MS/baseline", [](benchmark::State& s) {
        run<DMRecordMS>(s, data().dm_im, [](DMRecordMS* d, const DMRecordIM* m) { baseline_im2ms(kDm, bytes(d), bytes(m)); });
    });
    benchmark::RegisterBenchmark("LM_MS2IM/library", [](benchmark::State& s) {
        run<LMRecordIM>(s, data().lm_ms, [](LMRecordIM* d, const LMRecordMS* m) { Tarv__LMRecordMS2IM(d, m); });
    });
    benchmark::RegisterBenchmark("LM_MS2IM/baseline", [](benchmark::State& s) {
        run<LMRecordIM>(s, data().lm_ms, [](LMRecordIM* d, const LMRecordMS* m) { baseline_ms2im(kLm, bytes(d), bytes(m)); });
    });
    benchmark::RegisterBenchmark("LM_IM2MS/library", [](benchmark::State& s) {
        run<LMRecordMS>(s, data().lm_im, [](LMRecordMS* d, const LMRecordIM* m) { Tarv__LMRecordIM2MS(d, m); });
    });
    benchmark::RegisterBenchmark("LM_IM2MS/baseline", [](benchmark::State& s) {
        run<LMRecordMS>(s, data().lm_im, [](LMRecordMS* d, const LMRecordIM* m) { baseline_im2ms(kLm, bytes(d), bytes(m)); });
    });
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return tarv::bench::run_with_ratios(argc, argv, "conversion");
}
