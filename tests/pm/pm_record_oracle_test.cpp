// The conversions against the C library itself: over a million doubles of
// every magnitude, sign and class formatted as snprintf formats them, and
// generated texts read as sscanf reads them.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "pm_test_support.h"

namespace tarv::testing {
namespace {

double from_bits(std::uint64_t b) {
    double v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}

// Doubles drawn from the shapes that stress a two-decimal formatter.
class DoubleSource {
public:
    explicit DoubleSource(std::uint64_t seed) : rng_(seed) {}

    double next() {
        const double v = unsigned_value();
        return (rng_() & 1u) != 0u ? -v : v;
    }

private:
    std::uint64_t bits(int n) { return n == 0 ? 0 : rng_() >> (64 - n); }
    double with_exponent(int e) { return std::ldexp(static_cast<double>(bits(53) | (1ull << 52)), e - 52); }

    double unsigned_value() {
        switch (rng_() % 12) {
            case 0:  // any bit pattern: every class, mostly far out of range
                return std::fabs(from_bits(rng_()));
            case 1:  // the magnitudes that print in full
            case 2:
                return with_exponent(static_cast<int>(rng_() % 130) - 40);
            case 3: {  // hundredths, as the controller produces them
                const double v = static_cast<double>(bits(40)) / 100.0;
                return (rng_() & 1u) != 0u ? v : std::nextafter(v, (rng_() & 1u) != 0u ? 0.0 : DBL_MAX);
            }
            case 4:  // decimal near-ties x.xx5, just above or below in binary
                return static_cast<double>(bits(static_cast<int>(rng_() % 40)) * 10 + 5) / 1000.0;
            case 5:  // exact binary ties: odd multiples of 1/8
                return static_cast<double>(bits(static_cast<int>(rng_() % 47))) + static_cast<double>(2 * (rng_() % 4) + 1) / 8.0;
            case 6:  // subnormals and the smallest normals
                return from_bits(bits(53) & ((rng_() & 1u) != 0u ? 0x000FFFFFFFFFFFFFu : 0x001FFFFFFFFFFFFFu));
            case 7: {  // around the 32-character limit, both units
                const double p = std::pow(10.0, static_cast<double>(24 + rng_() % 5));
                double v = p;
                const int steps = static_cast<int>(rng_() % 64);
                const double toward = (rng_() & 1u) != 0u ? 0.0 : DBL_MAX;
                for (int i = 0; i < steps; ++i) v = std::nextafter(v, toward);
                return v;
            }
            case 8: {  // around powers of two where integer handling changes
                const int e[] = {52, 53, 63, 64, 84, 89, 90, 1023};
                double v = std::ldexp(1.0, e[rng_() % 8]);
                for (int i = static_cast<int>(rng_() % 4); i > 0; --i) v = std::nextafter(v, (rng_() & 1u) != 0u ? 0.0 : DBL_MAX);
                return v;
            }
            case 9:  // integers
                return static_cast<double>(bits(static_cast<int>(rng_() % 65)));
            case 10: {  // special values
                const double specials[] = {0.0, DBL_MAX, DBL_MIN, DBL_TRUE_MIN, INFINITY,
                                           from_bits(0x7FF0000000000000u | (bits(52) | 1u)), 0.005, 0.015};
                return specials[rng_() % 8];
            }
            default:  // values just below the rounding threshold of a hundredth
                return std::nextafter(static_cast<double>(bits(30) * 2 + 1) / 200.0, (rng_() & 1u) != 0u ? 0.0 : DBL_MAX);
        }
    }

    std::mt19937_64 rng_;
};

constexpr std::size_t kDmRealsIm[] = {48, 89, 130, 229, 270, 369, 427, 460, 493, 526, 559, 592};
constexpr std::size_t kDmRealsMs[] = {48, 64, 80, 98, 114, 132, 165, 173, 181, 189, 197, 205};
constexpr std::size_t kLmRealsIm[] = {48, 81, 114, 147, 180, 213};
constexpr std::size_t kLmRealsMs[] = {49, 57, 65, 73, 81, 89};

TEST(PmRecordOracle, FormattingMatchesSnprintfForAMillionDoubles) {
    DoubleSource source(20240611);
    DMRecordMS dm_ms;
    DMRecordIM dm_im;
    LMRecordMS lm_ms;
    LMRecordIM lm_im;
    std::memset(&dm_ms, 0, sizeof dm_ms);
    std::memset(&lm_ms, 0, sizeof lm_ms);
    std::size_t checked = 0;
    int failures = 0;
    double values[12];
    for (int round = 0; round < 60000 && failures < 20; ++round) {
        for (std::size_t k = 0; k < 12; ++k) store_le<double>(raw(dm_ms) + kDmRealsMs[k], values[k] = source.next());
        Tarv__DMRecordMS2IM(&dm_im, &dm_ms);
        for (std::size_t k = 0; k < 12; ++k) {
            const std::string expected = reference_text(values[k], " us");
            const std::string actual = text33(raw(dm_im) + kDmRealsIm[k]);
            if (actual != expected) {
                ADD_FAILURE() << std::hexfloat << values[k] << ": \"" << actual << "\" instead of \"" << expected << '"';
                ++failures;
            }
        }
        for (std::size_t k = 0; k < 6; ++k) store_le<double>(raw(lm_ms) + kLmRealsMs[k], values[k] = source.next());
        Tarv__LMRecordMS2IM(&lm_im, &lm_ms);
        for (std::size_t k = 0; k < 6; ++k) {
            const std::string expected = reference_text(values[k], " %");
            const std::string actual = text33(raw(lm_im) + kLmRealsIm[k]);
            if (actual != expected) {
                ADD_FAILURE() << std::hexfloat << values[k] << ": \"" << actual << "\" instead of \"" << expected << '"';
                ++failures;
            }
        }
        checked += 18;
    }
    EXPECT_GE(checked, 1000000u);
}

// Texts of the shapes a reader meets: the library's own, other printf
// conversions, hexadecimal, the spelled-out values in any case, long digit
// runs, random junk, with and without a terminator inside 33 bytes.
class TextSource {
public:
    explicit TextSource(std::uint64_t seed) : rng_(seed), doubles_(seed + 1) {}

    // Fills a text33 field; returns nothing, the field is the text.
    void next(std::uint8_t* field) {
        std::string t = make();
        if (t.size() >= kText33) {
            std::memcpy(field, t.data(), kText33);  // unterminated
        } else {
            std::memcpy(field, t.c_str(), t.size() + 1);
        }
    }

private:
    std::string pick(const char* const* list, std::size_t n) { return list[rng_() % n]; }

    std::string printed(double v) {
        char buf[400];
        switch (rng_() % 11) {
            case 0: std::snprintf(buf, sizeof buf, "%.2f", v); break;
            case 1: std::snprintf(buf, sizeof buf, "%.0f", v); break;
            case 2: std::snprintf(buf, sizeof buf, "%.1f", v); break;
            case 3: std::snprintf(buf, sizeof buf, "%.6f", v); break;
            case 4: std::snprintf(buf, sizeof buf, "%.15g", v); break;
            case 5: std::snprintf(buf, sizeof buf, "%.17g", v); break;
            case 6: std::snprintf(buf, sizeof buf, "%g", v); break;
            case 7: std::snprintf(buf, sizeof buf, "%e", v); break;
            case 8: std::snprintf(buf, sizeof buf, "%a", v); break;
            case 9: std::snprintf(buf, sizeof buf, "%.3a", v); break;
            default: std::snprintf(buf, sizeof buf, "%.22f", v); break;
        }
        return buf;
    }

    std::string make() {
        static const char* const spaces[] = {"", "", "", " ", "  ", "\t", "\n ", "\v\f\r"};
        static const char* const suffixes[] = {"", "", " us", " %", "us", "%", " ms", "e", "e+", "e-3", "x", ".",
                                               "..5", " 1", "p3", "(", "\x01", "\xC3\xA9"};
        static const char* const words[] = {"inf", "INF", "Inf", "infinity", "INFINITY", "InFiNiTy", "nan", "NAN",
                                            "NaN", "nan()", "nan(123)", "nan(0x1f)", "nan(", "infin", "infinit", "na",
                                            "i", "n", "-nan", "+inf"};
        static const char alphabet[] = "0123456789.+-eEpPxXaAbBcfFiInNtTyY() \t%us,";
        std::string t = pick(spaces, 8);
        switch (rng_() % 8) {
            case 0:
            case 1:
                t += printed(doubles_.next());
                break;
            case 2: {  // short numbers in the common shape
                t += (rng_() % 3 == 0) ? "-" : ((rng_() % 5 == 0) ? "+" : "");
                const int a = static_cast<int>(rng_() % 18), b = static_cast<int>(rng_() % 25);
                for (int i = 0; i < a; ++i) t += static_cast<char>('0' + rng_() % 10);
                if (rng_() % 4 != 0) t += '.';
                for (int i = 0; i < b; ++i) t += static_cast<char>('0' + rng_() % 10);
                break;
            }
            case 3:
                t += pick(words, 20);
                break;
            case 4: {  // long runs of zeros and digits around a point
                t += std::string(static_cast<std::size_t>(rng_() % 30), '0');
                t += std::to_string(rng_() % 1000000);
                if (rng_() % 2 != 0) t += "." + std::string(static_cast<std::size_t>(rng_() % 25), '0') + std::to_string(rng_() % 1000);
                break;
            }
            case 5: {  // hexadecimal by hand
                t += (rng_() % 2 != 0) ? "0x" : "0X";
                for (int i = static_cast<int>(rng_() % 12); i > 0; --i) t += "0123456789abcdefABCDEF."[rng_() % 23];
                if (rng_() % 2 != 0) t += "p" + std::to_string(static_cast<int>(rng_() % 2100) - 1100);
                break;
            }
            default:  // junk
                for (int i = static_cast<int>(rng_() % 40); i > 0; --i) t += alphabet[rng_() % (sizeof alphabet - 1)];
                break;
        }
        t += pick(suffixes, 18);
        if (rng_() % 16 == 0) t += std::string(40, '9');  // push past 33 bytes
        return t;
    }

    std::mt19937_64 rng_;
    DoubleSource doubles_;
};

TEST(PmRecordOracle, ParsingMatchesSscanfOnGeneratedTexts) {
    TextSource source(99);
    DMRecordIM im;
    std::memset(&im, 0, sizeof im);
    DMRecordMS ms;
    constexpr std::uint64_t kUntouched = 0x7FF4DEADBEEF0002u;
    int failures = 0;
    for (int round = 0; round < 25000 && failures < 20; ++round) {
        for (std::size_t k = 0; k < 12; ++k) {
            source.next(raw(im) + kDmRealsIm[k]);
            store_le<std::uint64_t>(raw(ms) + kDmRealsMs[k], kUntouched);
        }
        Tarv__DMRecordIM2MS(&ms, &im);
        for (std::size_t k = 0; k < 12; ++k) {
            double expected = 0;
            const std::uint64_t want =
                reference_parse(raw(im) + kDmRealsIm[k], expected) ? bits_of(expected) : kUntouched;
            const std::uint64_t got = load_le<std::uint64_t>(raw(ms) + kDmRealsMs[k]);
            if (got != want) {
                ADD_FAILURE() << '"' << text33(raw(im) + kDmRealsIm[k]) << "\": got " << std::hex << got << ", sscanf "
                              << want;
                ++failures;
            }
        }
    }
}

}  // namespace
}  // namespace tarv::testing
