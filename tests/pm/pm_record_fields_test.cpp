// Field placement of the DM and LM record conversions: every field of both
// forms in both directions, and every byte that must stay as it was.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "pm_test_support.h"
#include "support/guard_page.h"

namespace tarv::testing {
namespace {

// The interface's layouts, written out independently of the library.
struct Span {
    std::size_t ms, im, size;
};
struct Place {
    std::size_t ms, im;
};

constexpr Span kDmCopied[] = {
    {20, 20, 4},   {44, 44, 4},   {56, 81, 4},   {60, 85, 4},   {72, 122, 4},  {76, 126, 4},  {106, 262, 4},
    {110, 266, 4}, {140, 402, 4}, {144, 406, 4}, {148, 410, 4}, {152, 414, 4}, {156, 418, 4}, {160, 422, 4},
    {164, 426, 1},
};
constexpr Span kDmTexts[] = {{0, 0, 20}, {24, 24, 20}};
constexpr Place kDmReals[] = {{48, 48},   {64, 89},   {80, 130},  {98, 229},  {114, 270}, {132, 369},
                              {165, 427}, {173, 460}, {181, 493}, {189, 526}, {197, 559}, {205, 592}};
constexpr Place kDmCounts[] = {{88, 163}, {93, 196}, {122, 303}, {127, 336}};

constexpr Span kLmCopied[] = {
    {21, 20, 4},   {45, 44, 4},   {97, 246, 4},  {101, 250, 4}, {105, 254, 4},
    {109, 258, 4}, {113, 262, 4}, {117, 266, 4}, {121, 270, 4}, {125, 274, 4}, {129, 278, 1},
};
constexpr Span kLmTexts[] = {{1, 0, 20}, {25, 24, 20}};
constexpr Place kLmReals[] = {{49, 48}, {57, 81}, {65, 114}, {73, 147}, {81, 180}, {89, 213}};

// Compares two byte images and names the first offset that differs.
::testing::AssertionResult same_bytes(const std::uint8_t* actual, const std::uint8_t* expected, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        if (actual[i] != expected[i]) {
            return ::testing::AssertionFailure() << "first difference at byte " << i << ": got "
                                                 << int{actual[i]} << ", expected " << int{expected[i]};
        }
    }
    return ::testing::AssertionSuccess();
}

void put_real_text(std::vector<std::uint8_t>& image, std::size_t offset, const char* text) {
    std::memcpy(image.data() + offset, text, std::strlen(text) + 1);
}

// --- DM, MS to IM ----------------------------------------------------------

struct DmSample {
    DMRecordMS ms;
    std::array<const char*, 12> real_texts;
    std::array<const char*, 4> count_texts;
};

DmSample dm_sample() {
    DmSample s{};
    // Every byte distinct and non-zero, so a misplaced copy or a lost text
    // terminator shows.
    for (std::size_t i = 0; i < sizeof s.ms; ++i) raw(s.ms)[i] = static_cast<std::uint8_t>(i + 1);
    const double reals[12] = {12.345, 0.005, -3.0, 250.5, 2.675, 0.125, 0.375, -0.0,
                              std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(),
                              1e30, 123456.789};
    s.real_texts = {"12.35 us", "0.01 us", "-3.00 us", "250.50 us", "2.67 us", "0.12 us",
                    "0.38 us",  "-0.00 us", "nan us",  "-inf us",   "1e+30 us", "123456.79 us"};
    for (std::size_t k = 0; k < 12; ++k) store_le<double>(raw(s.ms) + kDmReals[k].ms, reals[k]);
    const std::uint32_t counts[4] = {0, 4294967295u, 7, 1000000};
    s.count_texts = {"0 us", "4294967295 us", "7 us", "1000000 us"};
    for (std::size_t k = 0; k < 4; ++k) store_le<std::uint32_t>(raw(s.ms) + kDmCounts[k].ms, counts[k]);
    return s;
}

TEST(DmRecordMs2Im, WritesEveryFieldInItsPlaceAndNothingElse) {
    const DmSample s = dm_sample();
    DMRecordIM im;
    std::memset(&im, 0xEE, sizeof im);
    Tarv__DMRecordMS2IM(&im, &s.ms);

    std::vector<std::uint8_t> expected(sizeof im, 0xEE);
    for (const Span& f : kDmCopied) std::memcpy(&expected[f.im], raw(s.ms) + f.ms, f.size);
    for (const Span& f : kDmTexts) {
        std::memcpy(&expected[f.im], raw(s.ms) + f.ms, f.size);
        expected[f.im + 19] = 0;
    }
    for (std::size_t k = 0; k < 12; ++k) put_real_text(expected, kDmReals[k].im, s.real_texts[k]);
    for (std::size_t k = 0; k < 4; ++k) put_real_text(expected, kDmCounts[k].im, s.count_texts[k]);
    EXPECT_TRUE(same_bytes(raw(im), expected.data(), sizeof im));
}

// --- DM, IM to MS ----------------------------------------------------------

TEST(DmRecordIm2Ms, ReadsEveryFieldAndLeavesTheMsOnlyPartsAlone) {
    DMRecordIM im;
    for (std::size_t i = 0; i < sizeof im; ++i) raw(im)[i] = static_cast<std::uint8_t>(i * 7 + 1);
    const char* texts[12] = {"250.50 us", " 7.5 ms", "abc",     "-0.00 us", "1e3",   "0x1.8p1 us",
                             "  -inf",    "12.35",   "",        "5 %",      "+.5",   "000000000000000000000000000000025"};
    for (std::size_t k = 0; k < 11; ++k) put_text(raw(im) + kDmReals[k].im, texts[k]);
    std::memcpy(raw(im) + kDmReals[11].im, texts[11], kText33);  // no terminator: the record ends there
    for (const Place& f : kDmCounts) put_text(raw(im) + f.im, "123 us");

    DMRecordMS ms;
    std::memset(&ms, 0x5A, sizeof ms);
    Tarv__DMRecordIM2MS(&ms, &im);

    std::vector<std::uint8_t> expected(sizeof ms, 0x5A);
    for (const Span& f : kDmCopied) std::memcpy(&expected[f.ms], raw(im) + f.im, f.size);
    for (const Span& f : kDmTexts) std::memcpy(&expected[f.ms], raw(im) + f.im, f.size);  // as is, no terminator
    const double values[12] = {250.5, 7.5, 0, -0.0, 1000.0, 3.0, -std::numeric_limits<double>::infinity(), 12.35,
                               0,     5.0, 0.5, 25.0};
    for (std::size_t k = 0; k < 12; ++k) {
        if (k == 2 || k == 8) continue;  // no number: the MS field keeps its bytes
        store_le<double>(&expected[kDmReals[k].ms], values[k]);
    }
    EXPECT_TRUE(same_bytes(raw(ms), expected.data(), sizeof ms));
}

TEST(DmRecordIm2Ms, ReadsAnUnterminatedTextFromItsOwn33BytesOnly) {
    DMRecordIM im;
    std::memset(&im, 0, sizeof im);
    std::memset(raw(im) + 48, '1', kText33);  // dUs1, no terminator
    std::memcpy(raw(im) + 81, "9999", 4);     // lWord3 right after it holds digits too
    DMRecordMS ms;
    std::memset(&ms, 0, sizeof ms);
    Tarv__DMRecordIM2MS(&ms, &im);
    EXPECT_EQ(load_le<double>(raw(ms) + 48), 111111111111111111111111111111111.0);
}

TEST(DmRecord, RoundTripRestoresAllButTheDocumentedLosses) {
    DMRecordMS original;
    for (std::size_t i = 0; i < sizeof original; ++i) raw(original)[i] = static_cast<std::uint8_t>(0x80 | i);
    const double reals[12] = {250.5, -3, 0.25, 12.345, 0, 1e30, -1e30, 99.99, 1e-9, 4503599627370496.0, 7, -0.5};
    for (std::size_t k = 0; k < 12; ++k) store_le<double>(raw(original) + kDmReals[k].ms, reals[k]);

    DMRecordIM im;
    Tarv__DMRecordMS2IM(&im, &original);
    DMRecordMS back;
    std::memset(&back, 0, sizeof back);
    Tarv__DMRecordIM2MS(&back, &im);

    std::vector<std::uint8_t> expected(raw(original), raw(original) + sizeof original);
    expected[19] = 0;  // the 20th character of each text is dropped
    expected[43] = 0;
    const double rounded[12] = {250.5, -3, 0.25, 12.35, 0, 1e30, -1e30, 99.99, 0, 4503599627370496.0, 7, -0.5};
    for (std::size_t k = 0; k < 12; ++k) store_le<double>(&expected[kDmReals[k].ms], rounded[k]);
    for (std::size_t at = 88; at <= 97; ++at) expected[at] = 0;  // lUs1, lUs2 and their MS-only bytes
    for (std::size_t at = 122; at <= 131; ++at) expected[at] = 0;
    EXPECT_TRUE(same_bytes(raw(back), expected.data(), sizeof back));
}

// --- LM --------------------------------------------------------------------

TEST(LmRecordMs2Im, WritesEveryFieldInItsPlaceAndNothingElse) {
    LMRecordMS ms;
    for (std::size_t i = 0; i < sizeof ms; ++i) raw(ms)[i] = static_cast<std::uint8_t>(i + 1);
    const double reals[6] = {12.5, 0.125, 100.0, -1.5, 1e27, 3.14159};
    const char* texts[6] = {"12.50 %", "0.12 %", "100.00 %", "-1.50 %", "1e+27 %", "3.14 %"};
    for (std::size_t k = 0; k < 6; ++k) store_le<double>(raw(ms) + kLmReals[k].ms, reals[k]);

    LMRecordIM im;
    std::memset(&im, 0xEE, sizeof im);
    Tarv__LMRecordMS2IM(&im, &ms);

    std::vector<std::uint8_t> expected(sizeof im, 0xEE);
    for (const Span& f : kLmCopied) std::memcpy(&expected[f.im], raw(ms) + f.ms, f.size);
    for (const Span& f : kLmTexts) {
        std::memcpy(&expected[f.im], raw(ms) + f.ms, f.size);
        expected[f.im + 19] = 0;
    }
    for (std::size_t k = 0; k < 6; ++k) put_real_text(expected, kLmReals[k].im, texts[k]);
    EXPECT_TRUE(same_bytes(raw(im), expected.data(), sizeof im));
}

TEST(LmRecordIm2Ms, ReadsEveryFieldAndLeavesByteZeroAlone) {
    LMRecordIM im;
    for (std::size_t i = 0; i < sizeof im; ++i) raw(im)[i] = static_cast<std::uint8_t>(i * 7 + 1);
    const char* texts[6] = {"12.50 %", "5 %", "% 5", "-250 %", "  1e2%", "3.14 %"};
    for (std::size_t k = 0; k < 6; ++k) put_text(raw(im) + kLmReals[k].im, texts[k]);

    LMRecordMS ms;
    std::memset(&ms, 0x5A, sizeof ms);
    raw(ms)[0] = 7;
    Tarv__LMRecordIM2MS(&ms, &im);

    std::vector<std::uint8_t> expected(sizeof ms, 0x5A);
    expected[0] = 7;
    for (const Span& f : kLmCopied) std::memcpy(&expected[f.ms], raw(im) + f.im, f.size);
    for (const Span& f : kLmTexts) std::memcpy(&expected[f.ms], raw(im) + f.im, f.size);
    const double values[6] = {12.5, 5.0, 0, -250.0, 100.0, 3.14};
    for (std::size_t k = 0; k < 6; ++k) {
        if (k == 2) continue;  // "% 5" holds no number at its start
        store_le<double>(&expected[kLmReals[k].ms], values[k]);
    }
    EXPECT_TRUE(same_bytes(raw(ms), expected.data(), sizeof ms));
    EXPECT_EQ(load_le<double>(raw(ms) + 57), 5.0);
}

TEST(LmRecord, RoundTripRestoresEverythingButByteZero) {
    LMRecordMS original;
    for (std::size_t i = 0; i < sizeof original; ++i) raw(original)[i] = static_cast<std::uint8_t>(0x41 + i % 26);
    const double reals[6] = {99.5, 0, -12.25, 3.14159, 250, 1e-3};
    const double rounded[6] = {99.5, 0, -12.25, 3.14, 250, 0};
    for (std::size_t k = 0; k < 6; ++k) store_le<double>(raw(original) + kLmReals[k].ms, reals[k]);

    LMRecordIM im;
    Tarv__LMRecordMS2IM(&im, &original);
    LMRecordMS back;
    std::memset(&back, 0xC3, sizeof back);
    Tarv__LMRecordIM2MS(&back, &im);

    std::vector<std::uint8_t> expected(raw(original), raw(original) + sizeof original);
    expected[0] = 0xC3;
    expected[1 + 19] = 0;
    expected[25 + 19] = 0;
    for (std::size_t k = 0; k < 6; ++k) store_le<double>(&expected[kLmReals[k].ms], rounded[k]);
    EXPECT_TRUE(same_bytes(raw(back), expected.data(), sizeof back));
}

// --- Memory bounds ----------------------------------------------------------

// Source and destination each end at an inaccessible page: a read or write
// past the last byte of either record faults. Every text is unterminated and
// every number is as long as it can be.
TEST(PmRecordBounds, ConversionsStayInsideBothRecords) {
    GuardedBytes dm_ms(sizeof(DMRecordMS)), dm_im(sizeof(DMRecordIM));
    GuardedBytes lm_ms(sizeof(LMRecordMS)), lm_im(sizeof(LMRecordIM));

    dm_im.fill('7');
    lm_im.fill('7');
    Tarv__DMRecordIM2MS(reinterpret_cast<DMRecordMS*>(dm_ms.data()), reinterpret_cast<const DMRecordIM*>(dm_im.data()));
    Tarv__LMRecordIM2MS(reinterpret_cast<LMRecordMS*>(lm_ms.data()), reinterpret_cast<const LMRecordIM*>(lm_im.data()));
    EXPECT_EQ(load_le<double>(dm_ms.data() + 205), 777777777777777777777777777777777.0);
    EXPECT_EQ(load_le<double>(lm_ms.data() + 89), 777777777777777777777777777777777.0);
    EXPECT_EQ(lm_ms.data()[129], '7');

    for (std::size_t k = 0; k < 12; ++k) store_le<double>(dm_ms.data() + kDmReals[k].ms, -1.7976931348623157e308);
    for (std::size_t k = 0; k < 6; ++k) store_le<double>(lm_ms.data() + kLmReals[k].ms, -9.99e26);
    for (const Place& f : kDmCounts) store_le<std::uint32_t>(dm_ms.data() + f.ms, 4294967295u);
    Tarv__DMRecordMS2IM(reinterpret_cast<DMRecordIM*>(dm_im.data()), reinterpret_cast<const DMRecordMS*>(dm_ms.data()));
    Tarv__LMRecordMS2IM(reinterpret_cast<LMRecordIM*>(lm_im.data()), reinterpret_cast<const LMRecordMS*>(lm_ms.data()));
    EXPECT_EQ(text33(dm_im.data() + 592), "-1.7976931348623157e+308 us");
    EXPECT_EQ(text33(lm_im.data() + 213), "-9.9899999999999993e+26 %");
    EXPECT_EQ(lm_im.data()[278], '7');
}

}  // namespace
}  // namespace tarv::testing
