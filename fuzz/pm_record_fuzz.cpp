// Fuzzes the DM and LM record conversions.
//
// The input bytes are taken as IM records of both kinds and converted to MS
// form: every time and percentage field must hold what sscanf("%lf") reads
// from a terminated copy of its text, or keep its previous bytes when there
// is no number; every other MS byte must be the copied byte or untouched.
// The same bytes taken as MS records are converted to IM form: every text
// must be what snprintf prints ("%.2f", or "%.17g" where that would exceed
// 32 characters, then the unit; "%lu us" for counts), with the field's later
// bytes untouched. Records end at guard pages. The first input byte picks the
// numeric locale (C, or a comma locale when installed).
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fuzz_support.h"

namespace {

using tarv::load_le;
using tarv::fuzz::Input;
using tarv::testing::GuardedBytes;

constexpr std::uint8_t kUntouched = 0xA5;
constexpr std::size_t kText33 = 33;

struct Copied {
    std::size_t ms, im, size;
};
struct Place {
    std::size_t ms, im;
};
struct Kind {
    std::size_t ms_size, im_size;
    const Copied* copied;
    std::size_t copied_count;
    std::size_t text_terminator[2];  // IM bytes forced to zero
    const Place* reals;
    std::size_t real_count;
    const Place* counts;
    std::size_t count_count;
    const char* unit;
};

constexpr Copied kDmCopied[] = {
    {0, 0, 20},    {20, 20, 4},   {24, 24, 20},  {44, 44, 4},   {56, 81, 4},   {60, 85, 4},
    {72, 122, 4},  {76, 126, 4},  {106, 262, 4}, {110, 266, 4}, {140, 402, 4}, {144, 406, 4},
    {148, 410, 4}, {152, 414, 4}, {156, 418, 4}, {160, 422, 4}, {164, 426, 1},
};
constexpr Place kDmReals[] = {{48, 48},   {64, 89},   {80, 130},  {98, 229},  {114, 270}, {132, 369},
                              {165, 427}, {173, 460}, {181, 493}, {189, 526}, {197, 559}, {205, 592}};
constexpr Place kDmCounts[] = {{88, 163}, {93, 196}, {122, 303}, {127, 336}};
constexpr Copied kLmCopied[] = {
    {1, 0, 20},    {21, 20, 4},   {25, 24, 20},  {45, 44, 4},   {97, 246, 4},  {101, 250, 4},  {105, 254, 4},
    {109, 258, 4}, {113, 262, 4}, {117, 266, 4}, {121, 270, 4}, {125, 274, 4}, {129, 278, 1},
};
constexpr Place kLmReals[] = {{49, 48}, {57, 81}, {65, 114}, {73, 147}, {81, 180}, {89, 213}};

constexpr Kind kDm{213, 625, kDmCopied, 17, {19, 43}, kDmReals, 12, kDmCounts, 4, " us"};
constexpr Kind kLm{130, 279, kLmCopied, 13, {19, 43}, kLmReals, 6, nullptr, 0, " %"};

[[noreturn]] void fail(const char* what, std::size_t offset) {
    std::fprintf(stderr, "pm_record_fuzz: %s at byte %zu\n", what, offset);
    std::abort();
}

// The input, repeated as needed, as `n` bytes.
void spread(std::uint8_t* out, std::size_t n, const std::uint8_t* data, std::size_t size) {
    for (std::size_t i = 0; i < n; ++i) out[i] = size == 0 ? 0 : data[i % size];
}

template <typename Ms, typename Im>
void check_im_to_ms(const Kind& k, const Input& in, void (*convert)(Ms*, const Im*), const char* name) {
    static thread_local GuardedBytes im(k.im_size), ms(k.ms_size);  // one pair per record kind
    spread(im.data(), k.im_size, in.rest().data(), in.rest().size());
    ms.fill(kUntouched);
    tarv::fuzz::note(name);
    convert(reinterpret_cast<Ms*>(ms.data()), reinterpret_cast<const Im*>(im.data()));
    if (!tarv::fuzz::checking) return;

    std::uint8_t expected[256];
    std::memset(expected, kUntouched, k.ms_size);
    for (std::size_t i = 0; i < k.copied_count; ++i)
        std::memcpy(expected + k.copied[i].ms, im.data() + k.copied[i].im, k.copied[i].size);
    for (std::size_t i = 0; i < k.real_count; ++i) {
        char text[kText33 + 1];
        std::memcpy(text, im.data() + k.reals[i].im, kText33);
        text[kText33] = '\0';
        double v;
        if (std::sscanf(text, "%lf", &v) == 1) tarv::store_le<double>(expected + k.reals[i].ms, v);
    }
    for (std::size_t i = 0; i < k.ms_size; ++i)
        if (ms.data()[i] != expected[i]) fail("IM to MS differs from sscanf and the copies", i);
}

template <typename Im, typename Ms>
void check_ms_to_im(const Kind& k, const Input& in, void (*convert)(Im*, const Ms*), const char* name) {
    static thread_local GuardedBytes ms(k.ms_size), im(k.im_size);  // one pair per record kind
    spread(ms.data(), k.ms_size, in.rest().data(), in.rest().size());
    im.fill(kUntouched);
    tarv::fuzz::note(name);
    convert(reinterpret_cast<Im*>(im.data()), reinterpret_cast<const Ms*>(ms.data()));
    if (!tarv::fuzz::checking) return;

    std::uint8_t expected[640];
    std::memset(expected, kUntouched, k.im_size);
    for (std::size_t i = 0; i < k.copied_count; ++i)
        std::memcpy(expected + k.copied[i].im, ms.data() + k.copied[i].ms, k.copied[i].size);
    for (std::size_t t : k.text_terminator) expected[t] = 0;
    char text[400];
    for (std::size_t i = 0; i < k.real_count; ++i) {
        const double v = load_le<double>(ms.data() + k.reals[i].ms);
        int n = std::snprintf(text, sizeof text, "%.2f%s", v, k.unit);
        if (n > 32) n = std::snprintf(text, sizeof text, "%.17g%s", v, k.unit);
        if (n < 0 || n > 32) fail("reference text does not fit", k.reals[i].im);
        std::memcpy(expected + k.reals[i].im, text, static_cast<std::size_t>(n) + 1);
    }
    for (std::size_t i = 0; i < k.count_count; ++i) {
        const int n = std::snprintf(text, sizeof text, "%lu us",
                                    static_cast<unsigned long>(load_le<std::uint32_t>(ms.data() + k.counts[i].ms)));
        std::memcpy(expected + k.counts[i].im, text, static_cast<std::size_t>(n) + 1);
    }
    for (std::size_t i = 0; i < k.im_size; ++i)
        if (im.data()[i] != expected[i]) fail("MS to IM differs from snprintf and the copies", i);
}

// The first input byte picks the locale; the records are made of the whole
// input, that byte included.
bool prepare(Input& in, std::uint8_t*&) {
    const bool comma = !in.rest().empty() && (in.rest()[0] & 1u) != 0u;
    return std::setlocale(LC_NUMERIC, comma ? "de_DE.UTF-8" : "C") != nullptr;
}

// Each conversion on the records the input makes, named for the tally.
#define CONVERT(check, kind, function) {[](std::uint8_t*, Input& in) { check(kind, in, function, #function); }}
constexpr tarv::fuzz::Op kEachInput[] = {
    CONVERT(check_im_to_ms, kDm, Tarv__DMRecordIM2MS),
    CONVERT(check_im_to_ms, kLm, Tarv__LMRecordIM2MS),
    CONVERT(check_ms_to_im, kDm, Tarv__DMRecordMS2IM),
    CONVERT(check_ms_to_im, kLm, Tarv__LMRecordMS2IM),
};

}  // namespace

const tarv::fuzz::Target tarv::fuzz::pm_record_target{"pm_record", prepare, {}, kEachInput};
TARV_FUZZ_ENTRY(pm_record_target)
