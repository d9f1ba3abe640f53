// Texts of the PM record conversions against the C library itself: over a
// million doubles of every magnitude, sign and class formatted as snprintf
// formats them (around the 32-character limit too), generated texts read as
// sscanf reads them, in every rounding mode, in the C locale and in locales
// with other decimal points.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <string>

#include "pm_test_support.h"

namespace tarv::testing {
namespace {

// Doubles drawn from the shapes that stress a two-decimal formatter, and
// texts of the shapes a reader meets.
class Source {
public:
    explicit Source(std::uint64_t seed) : rng_(seed) {}

    double next_double() {
        const double v = magnitude();
        return coin() ? -v : v;
    }

    // printf conversions, plain decimals, hexadecimal, the spelled-out values
    // in any case, long digit runs and junk, after assorted blanks and before
    // assorted tails; one in sixteen runs past the field's 33 bytes and is
    // stored without a terminator.
    void next_text(std::uint8_t* field) {
        static const char* const spaces[] = {"", "", "", " ", "  ", "\t", "\n ", "\v\f\r"};
        static const char* const tails[] = {"", "", " us", " %", "us", "%", " ms", "e", "e+", "e-3", "x", ".",
                                            "..5", " 1", "p3", "(", "\x01", "\xC3\xA9"};
        static const char* const words[] = {"inf", "INF", "Inf", "infinity", "INFINITY", "InFiNiTy", "nan",
                                            "NAN", "NaN", "nan()", "nan(123)", "nan(0x1f)", "nan(", "infin",
                                            "infinit", "na", "i", "n", "-nan", "+inf"};
        static const char junk[] = "0123456789.+-eEpPxXaAbBcfFiInNtTyY() \t%us,";
        std::string t = pick(spaces);
        char buf[400];
        const int p = below(23);
        switch (rng_() % 12) {
            case 0: std::snprintf(buf, sizeof buf, "%.2f", next_double()); t += buf; break;
            case 1: std::snprintf(buf, sizeof buf, "%.*f", p, next_double()); t += buf; break;
            case 2: std::snprintf(buf, sizeof buf, "%.*g", p + 1, next_double()); t += buf; break;
            case 3: std::snprintf(buf, sizeof buf, "%.*e", p, next_double()); t += buf; break;
            case 4: std::snprintf(buf, sizeof buf, "%.*a", p % 14, next_double()); t += buf; break;
            case 5:
            case 6:  // the common shape, up to 17 + 24 digits
                t += pick({"", "", "-", "+"});
                digits(t, below(18));
                if (rng_() % 4 != 0) t += '.';
                digits(t, below(25));
                break;
            case 7: t += pick(words); break;
            case 8:  // long runs of zeros around a point
                t += std::string(static_cast<std::size_t>(below(30)), '0') + std::to_string(rng_() % 1000000);
                if (coin()) t += "." + std::string(static_cast<std::size_t>(below(25)), '0') + std::to_string(rng_() % 1000);
                break;
            case 9:  // hexadecimal by hand
                t += pick({"0x", "0X"});
                for (int i = below(12); i > 0; --i) t += "0123456789abcdefABCDEF."[below(23)];
                if (coin()) t += "p" + std::to_string(below(2100) - 1100);
                break;
            default:
                for (int i = below(40); i > 0; --i) t += junk[below(sizeof junk - 1)];
                break;
        }
        t += pick(tails);
        if (rng_() % 16 == 0) t += std::string(40, '9');
        put_text(field, t.c_str());
    }

private:
    bool coin() { return (rng_() & 1u) != 0u; }
    int below(std::uint64_t n) { return static_cast<int>(rng_() % n); }
    std::uint64_t bits(int n) { return n == 0 ? 0 : rng_() >> (64 - n); }
    template <std::size_t N>
    const char* pick(const char* const (&list)[N]) { return list[rng_() % N]; }
    void digits(std::string& t, int n) { for (; n > 0; --n) t += static_cast<char>('0' + below(10)); }
    double nudged(double v, int steps) {  // a few representable steps up or down
        const double toward = coin() ? 0.0 : DBL_MAX;
        for (; steps > 0; --steps) v = std::nextafter(v, toward);
        return v;
    }

    // Every class from any bit pattern; magnitudes that print in full;
    // hundredths as the controller produces them; decimal near-ties x.xx5;
    // exact binary ties (odd multiples of 1/8); subnormals and the smallest
    // normals; around the 32-character limit of both units; around powers of
    // two where integer handling changes; integers; special values; just
    // beside the rounding threshold of a hundredth.
    double magnitude() {
        const int e[] = {52, 53, 63, 64, 84, 89, 90, 1023};
        switch (rng_() % 12) {
            case 0: return std::fabs(std::bit_cast<double>(rng_()));
            case 1:
            case 2: return std::ldexp(static_cast<double>(bits(53) | (1ull << 52)), below(130) - 92);
            case 3: return nudged(static_cast<double>(bits(40)) / 100.0, below(2));
            case 4: return static_cast<double>(bits(below(40)) * 10 + 5) / 1000.0;
            case 5: return static_cast<double>(bits(below(47))) + static_cast<double>(2 * below(4) + 1) / 8.0;
            case 6: return std::bit_cast<double>(bits(53) & (coin() ? 0x000FFFFFFFFFFFFFu : 0x001FFFFFFFFFFFFFu));
            case 7: return nudged(std::pow(10.0, static_cast<double>(24 + below(5))), below(64));
            case 8: return nudged(std::ldexp(1.0, e[below(8)]), below(4));
            case 9: return static_cast<double>(bits(below(65)));
            case 10: {
                const double specials[] = {0.0,      DBL_MAX, DBL_MIN, DBL_TRUE_MIN, INFINITY,
                                           std::bit_cast<double>(0x7FF0000000000000u | bits(52) | 1u), 0.005, 0.015};
                return specials[below(8)];
            }
            default: return nudged(static_cast<double>(bits(30) * 2 + 1) / 200.0, 1);
        }
    }

    std::mt19937_64 rng_;
};

constexpr std::uint64_t kUntouched = 0x7FF4DEADBEEF0001u;  // a NaN no text gives

// Runs the Real fields of each form through both converters, a record at a
// time, until `per_form` doubles have been formatted: each must get the C
// library's text. Every `read_every`-th record, generated texts are read
// back: each must give sscanf's value, or keep the field's bytes when sscanf
// finds no number. Returns how many doubles were formatted.
std::size_t expect_c_library_texts(std::uint64_t seed, std::size_t per_form, std::size_t read_every) {
    Source source(seed);
    std::size_t formatted = 0;
    int failures = 0;
    for (const Form* form : kForms) {
        Bytes ms(form->ms_size, 0), im(form->im_size, 0);  // im keeps the tails of earlier texts
        const std::vector<Field> reals = form->of(Kind::Real);
        for (std::size_t round = 0; round * reals.size() < per_form && failures < 20; ++round) {
            for (const Field& f : reals) store_le<double>(&ms[f.ms], source.next_double());
            form->ms2im(im.data(), ms.data());
            for (const Field& f : reals) {
                const double v = load_le<double>(&ms[f.ms]);
                const std::string want = reference_text(v, form->unit), got = text33(&im[f.im]);
                EXPECT_EQ(got, want) << std::hexfloat << v;
                failures += got != want;
            }
            formatted += reals.size();
            if (round % read_every != 0) continue;

            for (const Field& f : reals) {
                source.next_text(&im[f.im]);
                store_le<std::uint64_t>(&ms[f.ms], kUntouched);
            }
            form->im2ms(ms.data(), im.data());
            for (const Field& f : reals) {
                const std::uint64_t want = reference_value(&im[f.im]).value_or(kUntouched);
                const auto got = load_le<std::uint64_t>(&ms[f.ms]);
                EXPECT_EQ(got, want) << '"' << text33(&im[f.im]) << '"';
                failures += got != want;
            }
        }
    }
    return formatted;
}

TEST(PmRecordOracle, AMillionDoublesAndTheirTextsAsTheCLibraryHasThem) {
    EXPECT_GE(expect_c_library_texts(20240611, 540000, 3), 1000000u);
}

// The bits the first Real field of form receives from text; none when it
// keeps its own.
std::optional<std::uint64_t> value_of(const Form& form, const char* text) {
    const Field f = form.of(Kind::Real).front();
    Bytes ms(form.ms_size, 0), im(form.im_size, 0);
    put_text(&im[f.im], text);
    store_le<std::uint64_t>(&ms[f.ms], kUntouched);
    form.im2ms(ms.data(), im.data());
    const auto got = load_le<std::uint64_t>(&ms[f.ms]);
    return got == kUntouched ? std::nullopt : std::optional(got);
}

// The process owns the rounding mode: texts are read as sscanf reads them in
// each of the four modes, negative texts included (the sign must take part in
// the one rounding step). Generated texts first, then texts without a number
// and texts around the limits of a plain decimal that the library may read
// by itself (15 significant digits, 22 decimals), some of whose last digit
// forces a rounding.
class PmRecordRoundingMode : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { ASSERT_EQ(std::fesetround(GetParam()), 0); }
    void TearDown() override { std::fesetround(FE_TONEAREST); }
};

TEST_P(PmRecordRoundingMode, ReadsTextsAsSscanfDoesInTheCurrentMode) {
    Source source(static_cast<std::uint64_t>(GetParam()) + 77);
    std::mt19937_64 rng(static_cast<std::uint64_t>(GetParam()));
    for (int i = 0; i < 4000; ++i) {
        std::uint8_t field[kText33] = {};
        if (i % 2 == 0) {
            source.next_text(field);
        } else {
            char text[kText33 + 1];
            const auto whole = static_cast<unsigned long long>(rng() % 1000000u);
            const int decimals = 1 + static_cast<int>(rng() % 9u);  // zero-padded to at least this many
            const auto fraction = static_cast<unsigned long long>(rng() % 1000000000u);
            std::snprintf(text, sizeof text, "%s%llu.%0*llu us", rng() % 2u ? "-" : "", whole, decimals, fraction);
            put_text(field, text);
        }
        char shown[kText33 + 1] = {};
        std::memcpy(shown, field, kText33);
        EXPECT_EQ(value_of(kDm, shown), reference_value(field)) << '"' << shown << '"';
        if (HasFailure()) break;
    }
    for (const char* t : {"", "   ", "abc", "-", "+", ".", "-.", "us 5", "e5", "1e", "1e+", "0x", "0xg", "infinit",
                          "nanx", "\t\n\v\f\r 12", "5.", "1,5", "1.5e3us", "-Infinity us", "NaN(12ab)",
                          "9007199254740993", "123456789012345", "1234567890123456", "999999999999999.9",
                          "0.123456789012345", "0.1234567890123456", "0.0000000000000000000001",
                          "0.00000000000000000000001", "000000000000000000000001.5", "0.30000000000000004",
                          "2.2250738585072014e-308", "4.9e-324", "1e400", "-1e-400",
                          "12345678901234567890123456789012345", "-0.1 us", "0.1 us", "-2.675", "-123456789012.345",
                          "-0.000000000000000000001"}) {
        std::uint8_t field[kText33] = {};
        put_text(field, t);
        EXPECT_EQ(value_of(kLm, t), reference_value(field)) << '"' << t << '"';
    }
}

INSTANTIATE_TEST_SUITE_P(PmRecord, PmRecordRoundingMode,
                         ::testing::Values(FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO),
                         [](const auto& p) {
                             return std::string(p.param == FE_UPWARD     ? "Upward"
                                                : p.param == FE_DOWNWARD ? "Downward"
                                                : p.param == FE_TOWARDZERO ? "TowardZero" : "ToNearest");
                         });

// Locales whose decimal point is a comma and a character of two bytes (U+066B
// in UTF-8). A missing locale skips the test, unless TARV_REQUIRE_LOCALES=1
// asks that it fail (CI generates the locales it needs).
class PmRecordLocale : public ::testing::TestWithParam<const char*> {
protected:
    void TearDown() override { std::setlocale(LC_NUMERIC, "C"); }
};

TEST_P(PmRecordLocale, TextsAsTheCLibraryHasThemInTheLocale) {
    if (std::setlocale(LC_NUMERIC, GetParam()) == nullptr) {
        const char* required = std::getenv("TARV_REQUIRE_LOCALES");
        if (required != nullptr && std::strcmp(required, "1") == 0) FAIL() << "no locale " << GetParam();
        GTEST_SKIP() << "locale " << GetParam() << " is not installed (localedef -i ... -f UTF-8)";
    }
    expect_c_library_texts(static_cast<std::uint8_t>(GetParam()[0]), 20000, 1);
}

INSTANTIATE_TEST_SUITE_P(PmRecord, PmRecordLocale, ::testing::Values("de_DE.UTF-8", "ps_AF.UTF-8"),
                         [](const auto& p) { return std::string(p.param).substr(0, 5); });

}  // namespace
}  // namespace tarv::testing
