// Texts of the DM and LM record conversions against the C library itself:
// doubles at every turn of the formatter as snprintf formats them, texts at
// every turn of the reader as sscanf reads them, in every rounding mode and
// in locales with other decimal points. The place of every field and the
// bytes that must stay are pinned by the pm_record fuzz target.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfenv>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <ostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "byteorder.h"
#include "support/guard_page.h"
#include "tarv/tarv.h"

namespace tarv::testing {
namespace {

constexpr std::size_t kText33 = 33;
using Bytes = std::vector<std::uint8_t>;
using Offsets = std::vector<std::pair<std::size_t, std::size_t>>;  // MS, IM

// One record kind: its size in both forms, the unit of its texts, the
// offsets of its Real fields (float64 in MS form, text33 in IM form) and its
// two converters over raw bytes.
struct Form {
    const char* name;
    std::size_t ms_size, im_size;
    const char* unit;
    Offsets reals;
    void (*ms2im)(std::uint8_t* im, const std::uint8_t* ms);
    void (*im2ms)(std::uint8_t* ms, const std::uint8_t* im);
};

template <typename To, typename From, void (*Convert)(To*, const From*)>
void on_bytes(std::uint8_t* to, const std::uint8_t* from) {
    Convert(reinterpret_cast<To*>(to), reinterpret_cast<const From*>(from));
}

const Form kDm{"DM", sizeof(DMRecordMS), sizeof(DMRecordIM), " us",
               {{48, 48}, {64, 89}, {80, 130}, {98, 229}, {114, 270}, {132, 369}, {165, 427}, {173, 460},
                {181, 493}, {189, 526}, {197, 559}, {205, 592}},
               on_bytes<DMRecordIM, DMRecordMS, Tarv__DMRecordMS2IM>, on_bytes<DMRecordMS, DMRecordIM, Tarv__DMRecordIM2MS>};
const Form kLm{"LM", sizeof(LMRecordMS), sizeof(LMRecordIM), " %",
               {{49, 48}, {57, 81}, {65, 114}, {73, 147}, {81, 180}, {89, 213}},
               on_bytes<LMRecordIM, LMRecordMS, Tarv__LMRecordMS2IM>, on_bytes<LMRecordMS, LMRecordIM, Tarv__LMRecordIM2MS>};

// The zero-terminated text at the start of a text33 field (all 33 bytes when
// it has no terminator).
std::string text33(const std::uint8_t* field) {
    const auto* end = std::find(field, field + kText33, std::uint8_t{0});
    return {reinterpret_cast<const char*>(field), static_cast<std::size_t>(end - field)};
}

// Writes text with its terminator into a text33 field; a text of 33 or more
// characters fills the field without one.
void put_text(std::uint8_t* field, const char* text) {
    std::memcpy(field, text, std::min(std::strlen(text) + 1, kText33));
}

// What the C library prints for value with "%.2f" and the unit; when that
// is longer than 32 characters, "%.17g" and the unit instead.
std::string reference_text(double value, const char* unit) {
    char buf[400];
    int n = std::snprintf(buf, sizeof buf, "%.2f%s", value, unit);
    if (n > 32) n = std::snprintf(buf, sizeof buf, "%.17g%s", value, unit);
    return {buf, static_cast<std::size_t>(n)};
}

// The bits of what sscanf("%lf") reads from a text33 field, ended after its
// 33 bytes; none when it reads nothing.
std::optional<std::uint64_t> reference_value(const std::uint8_t* field) {
    char buf[kText33 + 1] = {};
    std::memcpy(buf, field, kText33);
    double value = 0;
    if (std::sscanf(buf, "%lf", &value) != 1) return std::nullopt;
    return std::bit_cast<std::uint64_t>(value);
}

constexpr std::uint64_t kUntouched = 0x7FF4DEADBEEF0001u;  // a NaN no text gives

// Doubles at every turn of a two-decimal formatter: the special values and
// signed zeros; exact binary ties (to the even hundredth) and decimal
// near-ties; the last scale that still rounds and the first that gives zero;
// both sides of 2^32 hundredths; integers from 2^52 on; both sides of the
// 32-character limit of each unit and of 2^90.
const double kDoubles[] = {
    0.0, -0.0, NAN, -NAN, INFINITY, -INFINITY, 0.125, 0.375, 0.625, -0.125, 2.675, 0.005, 0.015, 1.005, 12.345,
    -3.0, 250.5, 0.004999999999, 123456.789, DBL_TRUE_MIN, DBL_MIN, -DBL_MIN, std::ldexp(0x1FFFFFFFFFFFFFp0, -60),
    std::ldexp(0x1FFFFFFFFFFFFFp0, -61), std::ldexp(1.0, -8), 42949672.95, 42949672.955, 42949672.96, 4294967295.5,
    -123456789012.345, 0x1p52, 0x1p52 + 0.5, 0x1p53 + 2, 0x1p63, 0x1p64, -0x1p64, std::nextafter(0x1p84, 0.0), 0x1p89,
    std::nextafter(0x1p90, 0.0), 0x1p90, std::nextafter(1e25, 0.0), -std::nextafter(1e25, 0.0), 1e25,
    std::nextafter(1e26, 0.0), -std::nextafter(1e26, 0.0), 1e26, 1e27, 1e30, DBL_MAX, -DBL_MAX, 999999999.995,
    99999999999999999.0, 0.1, 0.7, 1e-300};

// Texts without a number and texts around the limits of a plain decimal that
// the library reads by itself (15 significant digits, 22 decimals), some of
// whose last digit forces a rounding; texts that run past the field's 33
// bytes, or whose digits end exactly at its end, have no terminator.
const char* const kTexts[] = {
    "", "   ", "abc", "-", "+", ".", "-.", "us 5", "e5", "1e", "1e+", "0x", "0xg", "0x1.8p1 us", "infinit", "nanx",
    "  -inf", "nan(12)", "\t\n\v\f\r 12", "5.", "+.5", "1,5", "1.5e3us", "12.35\x01", "7.5x", "250.50 us", "-0.00 us",
    "-Infinity us", "NaN(12ab)", "9007199254740993", "123456789012345", "1234567890123456", "999999999999999.9",
    "0.123456789012345", "0.1234567890123456", "0.0000000000000000000001", "0.00000000000000000000001",
    "000000000000000000000001.5", "0.30000000000000004", "2.2250738585072014e-308", "4.9e-324", "1e400", "-1e-400",
    "12345678901234567890123456789012345", "111111111111111111111111111111111", "-0.1 us", "0.1 us", "-2.675",
    "-123456789012.345", "-0.000000000000000000001", "-999999.123456789 us", "42949672.955 %",
    "                 1.23456789012345", "                  123456789012345"};

// Every double in every Real field of both forms must get the C library's
// text (in the default rounding mode: the texts round ties to even whatever
// the mode, printf follows it); every text in every Real field must give sscanf's value, or keep the
// field's bytes when sscanf finds no number.
void expect_c_library_texts(bool format) {
    for (const Form* form : {&kDm, &kLm}) {
        Bytes ms(form->ms_size, 0), im(form->im_size, 0);
        for (std::size_t k = 0; format && k < std::size(kDoubles); k += form->reals.size()) {
            for (std::size_t f = 0; f < form->reals.size(); ++f)
                store_le<double>(&ms[form->reals[f].first], kDoubles[(k + f) % std::size(kDoubles)]);
            form->ms2im(im.data(), ms.data());
            for (const auto& [m, i] : form->reals)
                EXPECT_EQ(text33(&im[i]), reference_text(load_le<double>(&ms[m]), form->unit))
                    << form->name << " " << std::hexfloat << load_le<double>(&ms[m]);
        }
        for (std::size_t k = 0; k < std::size(kTexts); k += form->reals.size()) {
            for (std::size_t f = 0; f < form->reals.size(); ++f) {
                put_text(&im[form->reals[f].second], kTexts[(k + f) % std::size(kTexts)]);
                store_le<std::uint64_t>(&ms[form->reals[f].first], kUntouched);
            }
            form->im2ms(ms.data(), im.data());
            for (const auto& [m, i] : form->reals)
                EXPECT_EQ(load_le<std::uint64_t>(&ms[m]), reference_value(&im[i]).value_or(kUntouched))
                    << form->name << " \"" << text33(&im[i]) << '"';
        }
    }
}

// Both records end at an inaccessible page, so that a read or write past the
// last byte of either faults: unterminated texts, and the longest text of
// each unit that fits, in every Real field.
TEST(PmRecord, ConversionsStayInsideBothRecords) {
    const std::tuple<const Form&, double, const char*> rows[] = {
        {kDm, -std::nextafter(1e25, 0.0), "-9999999999999998758486016.00 us"},
        {kLm, -std::nextafter(1e26, 0.0), "-99999999999999987584860160.00 %"}};
    for (const auto& [form, longest, text] : rows) {
        GuardedBytes ms(form.ms_size), im(form.im_size);
        im.fill('7');
        form.im2ms(ms.data(), im.data());
        EXPECT_EQ(load_le<double>(ms.data() + form.reals.back().first), 777777777777777777777777777777777.0);
        for (const auto& [m, i] : form.reals) store_le<double>(ms.data() + m, longest);
        form.ms2im(im.data(), ms.data());
        EXPECT_EQ(text33(im.data() + form.reals.back().second), text) << form.name;
    }
}

// The process owns the rounding mode and the numeric locale: texts are read
// and written as the C library has them in each of the four modes (negative
// texts included: the sign must take part in the one rounding step) and in
// locales whose decimal point is a comma and a character of two bytes
// (U+066B in UTF-8). A missing locale fails its rows, naming how to make
// it; TARV_REQUIRE_LOCALES=0 skips them instead (the cross builds, whose
// emulated C library has no locale data).
struct Mode {
    int round;
    const char* locale;
};
void PrintTo(const Mode& m, std::ostream* os) { *os << m.round << " " << m.locale; }

class PmRecordMode : public ::testing::TestWithParam<Mode> {
protected:
    void TearDown() override {
        std::fesetround(FE_TONEAREST);
        std::setlocale(LC_NUMERIC, "C");
    }
};

TEST_P(PmRecordMode, TextsAsTheCLibraryHasThem) {
    const auto [mode, locale] = GetParam();
    if (std::setlocale(LC_NUMERIC, locale) == nullptr) {
        const char* required = std::getenv("TARV_REQUIRE_LOCALES");
        if (required != nullptr && std::strcmp(required, "0") == 0) GTEST_SKIP() << "no locale " << locale;
        FAIL() << "locale " << locale << " is not installed: scripts/install-deps generates it (localedef)";
    }
    ASSERT_EQ(std::fesetround(mode), 0);
    expect_c_library_texts(mode == FE_TONEAREST);
}

INSTANTIATE_TEST_SUITE_P(PmRecord, PmRecordMode,
                         ::testing::Values(Mode{FE_TONEAREST, "C"}, Mode{FE_UPWARD, "C"}, Mode{FE_DOWNWARD, "C"},
                                           Mode{FE_TOWARDZERO, "C"}, Mode{FE_TONEAREST, "de_DE.UTF-8"},
                                           Mode{FE_TONEAREST, "ps_AF.UTF-8"}),
                         [](const auto& p) {
                             const int mode = p.param.round;
                             return std::string(mode == FE_UPWARD       ? "Upward"
                                                : mode == FE_DOWNWARD   ? "Downward"
                                                : mode == FE_TOWARDZERO ? "TowardZero"
                                                                        : "ToNearest") +
                                    "_" + std::string(p.param.locale).substr(0, 2);
                         });

}  // namespace
}  // namespace tarv::testing
