// Texts of the PM record conversions: the C library's "%.2f" and "%lf"
// behaviour on the cases that matter, the 32-character limit and the locale's
// decimal point.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <random>

#include "pm_test_support.h"

namespace tarv::testing {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

double from_bits(std::uint64_t b) {
    double v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}

// The text a DM time field (dUs1) receives.
std::string dm_text(double value) {
    DMRecordMS ms;
    std::memset(&ms, 0, sizeof ms);
    store_le<double>(raw(ms) + 48, value);
    DMRecordIM im;
    std::memset(&im, 0xEE, sizeof im);
    Tarv__DMRecordMS2IM(&im, &ms);
    return text33(raw(im) + 48);
}

// The text an LM percentage field (dPct1) receives.
std::string lm_text(double value) {
    LMRecordMS ms;
    std::memset(&ms, 0, sizeof ms);
    store_le<double>(raw(ms) + 49, value);
    LMRecordIM im;
    std::memset(&im, 0xEE, sizeof im);
    Tarv__LMRecordMS2IM(&im, &ms);
    return text33(raw(im) + 48);
}

// The value a DM time field (dUs2) receives from text; nullopt when the MS
// field kept its bytes.
std::optional<std::uint64_t> dm_parse(const char* text) {
    DMRecordIM im;
    std::memset(&im, 0, sizeof im);
    std::memcpy(raw(im) + 89, text, std::min(std::strlen(text) + 1, kText33));
    DMRecordMS ms;
    constexpr std::uint64_t kUntouched = 0x7FF4DEADBEEF0001u;
    std::memset(&ms, 0, sizeof ms);
    store_le<std::uint64_t>(raw(ms) + 64, kUntouched);
    Tarv__DMRecordIM2MS(&ms, &im);
    const std::uint64_t bits = load_le<std::uint64_t>(raw(ms) + 64);
    if (bits == kUntouched) return std::nullopt;
    return bits;
}

std::optional<std::uint64_t> sscanf_parse(const char* text) {
    std::uint8_t field[kText33] = {};
    std::memcpy(field, text, std::min(std::strlen(text) + 1, kText33));
    double v;
    if (!reference_parse(field, v)) return std::nullopt;
    return bits_of(v);
}

TEST(PmRecordFormat, RoundsTheExactBinaryValueHalfToEven) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {250.5, "250.50 us"}, {2.675, "2.67 us"},  {0.125, "0.12 us"},  {0.375, "0.38 us"},
        {0.625, "0.62 us"},   {0.875, "0.88 us"},  {1.125, "1.12 us"},  {12.345, "12.35 us"},
        {0.005, "0.01 us"},   {1.005, "1.00 us"},  {9.995, "9.99 us"},  {99.995, "100.00 us"},
        {9.999, "10.00 us"},  {0.996, "1.00 us"},  {-3.0, "-3.00 us"},  {0.0, "0.00 us"},
        {-0.0, "-0.00 us"},   {-0.001, "-0.00 us"}, {-0.005, "-0.01 us"}, {5e-324, "0.00 us"},
        {-5e-324, "-0.00 us"}, {9007199254740992.0, "9007199254740992.00 us"},
        {18446744073709551616.0, "18446744073709551616.00 us"}, {1e20, "100000000000000000000.00 us"},
    };
    for (const auto& c : cases) EXPECT_EQ(dm_text(c.value), c.text) << c.value;
}

TEST(PmRecordFormat, PercentagesAndSpecialValues) {
    EXPECT_EQ(lm_text(12.5), "12.50 %");
    EXPECT_EQ(lm_text(0.125), "0.12 %");
    EXPECT_EQ(lm_text(100.0), "100.00 %");
    EXPECT_EQ(lm_text(3.14159), "3.14 %");
    EXPECT_EQ(lm_text(-250.0), "-250.00 %");

    EXPECT_EQ(dm_text(kInf), "inf us");
    EXPECT_EQ(dm_text(-kInf), "-inf us");
    EXPECT_EQ(dm_text(from_bits(0x7FF8000000000000u)), "nan us");
    EXPECT_EQ(dm_text(from_bits(0xFFF8000000000000u)), "-nan us");
    EXPECT_EQ(dm_text(from_bits(0x7FF0000000000001u)), "nan us");  // signalling, smallest payload
    EXPECT_EQ(lm_text(from_bits(0xFFFFFFFFFFFFFFFFu)), "-nan %");
    EXPECT_EQ(lm_text(-kInf), "-inf %");
}

// The longest "%.2f" text that fits has 32 characters; one more and the
// value is written as "%.17g" with the unit, which reads back exactly.
TEST(PmRecordFormat, TextsBeyond32CharactersSwitchToSeventeenDigits) {
    EXPECT_EQ(dm_text(std::nextafter(1e26, 0.0)), "99999999999999987584860160.00 us");
    EXPECT_EQ(dm_text(1e26), "1e+26 us");
    EXPECT_EQ(dm_text(-std::nextafter(1e25, 0.0)), "-9999999999999998758486016.00 us");
    EXPECT_EQ(dm_text(-1e25), "-1.0000000000000001e+25 us");
    EXPECT_EQ(lm_text(std::nextafter(1e27, 0.0)), "999999999999999875848601600.00 %");
    EXPECT_EQ(lm_text(1e27), "1e+27 %");
    EXPECT_EQ(lm_text(-std::nextafter(1e26, 0.0)), "-99999999999999987584860160.00 %");
    EXPECT_EQ(lm_text(-1e26), "-1e+26 %");
    EXPECT_EQ(dm_text(-std::numeric_limits<double>::max()), "-1.7976931348623157e+308 us");

    for (double v : {1e26, -1e25, 1.2345678901234567e25, 1e300, -std::numeric_limits<double>::max()}) {
        const std::string text = dm_text(v);
        ASSERT_LE(text.size(), 32u);
        const auto back = dm_parse(text.c_str());
        ASSERT_TRUE(back.has_value()) << text;
        EXPECT_EQ(*back, bits_of(v)) << text;
    }
}

TEST(PmRecordParse, TakesTheLeadingNumberAndIgnoresTheRest) {
    EXPECT_EQ(dm_parse("250.50 us"), bits_of(250.5));
    EXPECT_EQ(dm_parse("250.5"), bits_of(250.5));
    EXPECT_EQ(dm_parse(" 7.5 ms"), bits_of(7.5));
    EXPECT_EQ(dm_parse("\t\n\v\f\r 12"), bits_of(12.0));
    EXPECT_EQ(dm_parse("-0.00 us"), bits_of(-0.0));
    EXPECT_EQ(dm_parse("+.5"), bits_of(0.5));
    EXPECT_EQ(dm_parse("5."), bits_of(5.0));
    EXPECT_EQ(dm_parse("1e5 us"), bits_of(1e5));
    EXPECT_EQ(dm_parse("0x1.8p1"), bits_of(3.0));
    EXPECT_EQ(dm_parse("1,5"), bits_of(1.0));  // the C locale's point is the period
    EXPECT_EQ(dm_parse("INF"), bits_of(kInf));
    EXPECT_EQ(dm_parse("-Infinity us"), bits_of(-kInf));
    EXPECT_TRUE(std::isnan(from_bits(dm_parse("nan").value_or(0))));
    EXPECT_TRUE(std::isnan(from_bits(dm_parse("NaN(12ab)").value_or(0))));
}

TEST(PmRecordParse, TextWithoutANumberLeavesTheFieldAlone) {
    for (const char* text : {"", "   ", "abc", "-", "+", ".", "-.", "us 5", "e5", "% 5"}) {
        EXPECT_EQ(dm_parse(text), std::nullopt) << '"' << text << '"';
        EXPECT_EQ(sscanf_parse(text), std::nullopt) << '"' << text << '"';
    }
}

// Around the limits of the exact short-cut: 15 significant digits, 22
// decimals; and the C library's own partial-match behaviour.
TEST(PmRecordParse, AgreesWithSscanfAroundTheShortCutLimits) {
    const char* texts[] = {
        "123456789012345",          "1234567890123456",          "999999999999999.9",
        "0.123456789012345",        "0.1234567890123456",        "0.0000000000000000000001",
        "0.00000000000000000000001", "000000000000000000000001.5", "9007199254740993",
        "0.30000000000000004",      "2.2250738585072014e-308",   "4.9e-324",
        "1e400",                    "-1e-400",                    "1e",
        "1e+",                      "0x",                         "0xg",
        "infinit",                  "nanx",                       "1.5e3us",
        "12345678901234567890123456789012345",
    };
    for (const char* t : texts) EXPECT_EQ(dm_parse(t), sscanf_parse(t)) << '"' << t << '"';
}

// --- Locale ----------------------------------------------------------------

// Values of every magnitude that prints in full, and their texts read back.
void agrees_with_the_c_library_in_this_locale() {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 20000; ++i) {
        const double v = std::ldexp(static_cast<double>(rng() >> 11), static_cast<int>(rng() % 140) - 100) *
                         ((rng() & 1u) != 0u ? -1.0 : 1.0);
        const std::string text = dm_text(v);
        ASSERT_EQ(text, reference_text(v, " us")) << v;
        ASSERT_EQ(dm_parse(text.c_str()), sscanf_parse(text.c_str())) << text;
    }
}

TEST(PmRecordLocale, CommaLocaleFormatsAndParsesWithItsDecimalPoint) {
    TARV_ENTER_LOCALE(german, "de_DE.UTF-8");
    EXPECT_EQ(dm_text(250.5), "250,50 us");
    EXPECT_EQ(dm_text(-3.0), "-3,00 us");
    EXPECT_EQ(lm_text(12.5), "12,50 %");
    EXPECT_EQ(dm_text(1.5e30), "1,4999999999999999e+30 us");
    EXPECT_EQ(dm_text(-kInf), "-inf us");
    EXPECT_EQ(dm_parse("7,5 us"), bits_of(7.5));
    EXPECT_EQ(dm_parse("7.5 us"), bits_of(7.0));
    EXPECT_EQ(dm_parse("-0,00 us"), bits_of(-0.0));

    agrees_with_the_c_library_in_this_locale();
}

// A decimal point of more than one byte (U+066B in UTF-8). Skipped where the
// locale is not installed.
TEST(PmRecordLocale, MultiByteDecimalPoint) {
    NumericLocale pashto("ps_AF.UTF-8");
    if (!pashto.ok()) GTEST_SKIP() << "locale ps_AF.UTF-8 is not installed";
    ASSERT_GT(std::strlen(std::localeconv()->decimal_point), 1u);
    agrees_with_the_c_library_in_this_locale();
}

}  // namespace
}  // namespace tarv::testing
