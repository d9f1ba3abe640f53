// Field placement of the DM and LM record conversions: every field of both
// forms in both directions, and every byte that must stay as it was.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "pm_test_support.h"
#include "support/guard_page.h"

namespace tarv::testing {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

::testing::AssertionResult same_bytes(const Bytes& actual, const Bytes& expected) {
    const auto diff = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (diff.first == actual.end()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "first difference at byte " << (diff.first - actual.begin()) << ": got "
                                         << int{*diff.first} << ", expected " << int{*diff.second};
}

// The MS record holds distinct non-zero bytes (each char[20] is 20 characters
// long) with reals[k] and counts[k] in the k-th Real and Count field. The IM
// record starts as 0xEE, so a byte written where nothing belongs, or left
// where a terminator belongs, shows; bytes after a terminator stay 0xEE.
void expect_ms_to_im(const Form& form, const std::vector<std::pair<double, const char*>>& reals,
                     const std::vector<std::pair<std::uint32_t, const char*>>& counts) {
    Bytes ms(form.ms_size), im(form.im_size, 0xEE), expected(form.im_size, 0xEE);
    for (std::size_t i = 0; i < ms.size(); ++i) ms[i] = static_cast<std::uint8_t>(i + 1);
    std::size_t r = 0, c = 0;
    for (const Field& f : form.fields) {
        if (f.kind == Kind::Word || f.kind == Kind::Byte || f.kind == Kind::Text) {
            std::memcpy(&expected[f.im], &ms[f.ms], im_width(f.kind));
            if (f.kind == Kind::Text) expected[f.im + 19] = 0;  // the 20th character is dropped
        } else if (f.kind == Kind::Real) {
            store_le<double>(&ms[f.ms], reals.at(r).first);
            put_text(&expected[f.im], reals.at(r++).second);
        } else if (f.kind == Kind::Count) {
            store_le<std::uint32_t>(&ms[f.ms], counts.at(c).first);
            put_text(&expected[f.im], counts.at(c++).second);
        }
    }
    ASSERT_TRUE(r == reals.size() && c == counts.size()) << form.name;
    form.ms2im(im.data(), ms.data());
    EXPECT_TRUE(same_bytes(im, expected)) << form.name;
}

// The IM record holds a byte pattern that differs within any 256 bytes, the
// texts of reals in its Real fields and "123 us" in its Count fields; the MS
// record starts as 0x5A, which its Count fields and MS-only bytes keep, and
// so does a Real field whose text has no number.
void expect_im_to_ms(const Form& form, const std::vector<std::pair<const char*, std::optional<double>>>& reals) {
    Bytes im(form.im_size), ms(form.ms_size, 0x5A), expected(form.ms_size, 0x5A);
    for (std::size_t i = 0; i < im.size(); ++i) im[i] = static_cast<std::uint8_t>(i * 7 + 1);
    std::size_t r = 0;
    for (const Field& f : form.fields) {
        if (f.kind == Kind::Word || f.kind == Kind::Byte || f.kind == Kind::Text) {
            std::memcpy(&expected[f.ms], &im[f.im], ms_width(f.kind));  // a char[20] as is, no terminator
        } else if (f.kind == Kind::Real) {
            put_text(&im[f.im], reals.at(r).first);
            if (const auto value = reals.at(r++).second) store_le<double>(&expected[f.ms], *value);
        } else if (f.kind == Kind::Count) {
            put_text(&im[f.im], "123 us");
        }
    }
    ASSERT_EQ(r, reals.size()) << form.name;
    form.im2ms(ms.data(), im.data());
    EXPECT_TRUE(same_bytes(ms, expected)) << form.name;
}

TEST(PmRecordFields, MsToImWritesEveryFieldInItsPlaceAndNothingElse) {
    expect_ms_to_im(kDm,
                    {{12.345, "12.35 us"}, {0.005, "0.01 us"}, {-3.0, "-3.00 us"}, {250.5, "250.50 us"},
                     {2.675, "2.67 us"}, {0.125, "0.12 us"}, {0.375, "0.38 us"}, {-0.0, "-0.00 us"},
                     {std::nan(""), "nan us"}, {-kInf, "-inf us"}, {1e30, "1e+30 us"}, {123456.789, "123456.79 us"}},
                    {{0, "0 us"}, {4294967295u, "4294967295 us"}, {7, "7 us"}, {1000000, "1000000 us"}});
    expect_ms_to_im(kLm,
                    {{12.5, "12.50 %"}, {0.125, "0.12 %"}, {100.0, "100.00 %"}, {-1.5, "-1.50 %"},
                     {1e27, "1e+27 %"}, {3.14159, "3.14 %"}},
                    {});
}

TEST(PmRecordFields, ImToMsReadsEveryFieldAndLeavesTheMsOnlyPartsAlone) {
    // The 33 ones have no terminator; the digit that starts the next field's
    // text must not join them.
    expect_im_to_ms(kDm, {{"250.50 us", 250.5}, {" 7.5 ms", 7.5}, {"abc", std::nullopt}, {"-0.00 us", -0.0},
                          {"1e3", 1000.0}, {"0x1.8p1 us", 3.0}, {"  -inf", -kInf}, {"12.35", 12.35},
                          {"111111111111111111111111111111111", 111111111111111111111111111111111.0},
                          {"5 %", 5.0}, {"+.5", 0.5}, {"", std::nullopt}});
    expect_im_to_ms(kLm, {{"12.50 %", 12.5}, {"5 %", 5.0}, {"% 5", std::nullopt}, {"-250 %", -250.0},
                          {"  1e2%", 100.0}, {"3.14 %", 3.14}});
}

// Source and destination each end at an inaccessible page, so that a read or
// write past the last byte of either record faults. Every IM text is
// unterminated; every MS value has the longest text that fits.
TEST(PmRecordFields, ConversionsStayInsideBothRecords) {
    const std::tuple<const Form&, double, const char*> rows[] = {
        {kDm, -std::nextafter(1e25, 0.0), "-9999999999999998758486016.00 us"},
        {kLm, -std::nextafter(1e26, 0.0), "-99999999999999987584860160.00 %"}};
    for (const auto& [form, longest, text] : rows) {
        GuardedBytes ms(form.ms_size), im(form.im_size);
        const Field last = form.of(Kind::Real).back();
        im.fill('7');
        form.im2ms(ms.data(), im.data());
        EXPECT_EQ(load_le<double>(ms.data() + last.ms), 777777777777777777777777777777777.0) << form.name;
        for (const Field& f : form.of(Kind::Real)) store_le<double>(ms.data() + f.ms, longest);
        for (const Field& f : form.of(Kind::Count)) store_le<std::uint32_t>(ms.data() + f.ms, 4294967295u);
        form.ms2im(im.data(), ms.data());
        EXPECT_EQ(text33(im.data() + last.im), text);
    }
}

}  // namespace
}  // namespace tarv::testing
