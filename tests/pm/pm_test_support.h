// Helpers shared by the PM record conversion tests: both record layouts,
// written out independently of the library, and the C library's own texts as
// reference.
#ifndef TARV_TESTS_PM_TEST_SUPPORT_H
#define TARV_TESTS_PM_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "byteorder.h"
#include "tarv/tarv.h"

namespace tarv::testing {

inline constexpr std::size_t kText33 = 33;
using Bytes = std::vector<std::uint8_t>;

// How a field travels: Word (uint32) and Byte are copied, Text is a char[20],
// Real a float64 shown as "%.2f" text, Count a uint32 shown as "%lu us" and
// never read back, MsOnly a byte the IM form does not have.
enum class Kind : std::uint8_t { Word, Byte, Text, Real, Count, MsOnly };
inline constexpr std::size_t kMsWidth[] = {4, 1, 20, 8, 4, 1};
inline constexpr std::size_t kImWidth[] = {4, 1, 20, 33, 33, 0};
constexpr std::size_t ms_width(Kind k) { return kMsWidth[static_cast<std::size_t>(k)]; }
constexpr std::size_t im_width(Kind k) { return kImWidth[static_cast<std::size_t>(k)]; }

struct Field {
    Kind kind;
    std::size_t ms, im;  // offsets; im is meaningless for MsOnly
};

// Every field of both forms in order: the conversion tests compare whole
// records, so a field left out here shows as a difference.
namespace layout {
inline constexpr Kind W = Kind::Word, B = Kind::Byte, T = Kind::Text, R = Kind::Real, C = Kind::Count,
                      M = Kind::MsOnly;
inline constexpr Field kDm[] = {
    {T, 0, 0},     {W, 20, 20},   {T, 24, 24},   {W, 44, 44},   {R, 48, 48},   {W, 56, 81},   {W, 60, 85},
    {R, 64, 89},   {W, 72, 122},  {W, 76, 126},  {R, 80, 130},  {C, 88, 163},  {M, 92, 0},   {C, 93, 196},
    {M, 97, 0},    {R, 98, 229},  {W, 106, 262}, {W, 110, 266}, {R, 114, 270}, {C, 122, 303}, {M, 126, 0},
    {C, 127, 336}, {M, 131, 0},   {R, 132, 369}, {W, 140, 402}, {W, 144, 406}, {W, 148, 410}, {W, 152, 414},
    {W, 156, 418}, {W, 160, 422}, {B, 164, 426}, {R, 165, 427}, {R, 173, 460}, {R, 181, 493}, {R, 189, 526},
    {R, 197, 559}, {R, 205, 592},
};
inline constexpr Field kLm[] = {
    {M, 0, 0},     {T, 1, 0},     {W, 21, 20},   {T, 25, 24},   {W, 45, 44},   {R, 49, 48},   {R, 57, 81},
    {R, 65, 114},  {R, 73, 147},  {R, 81, 180},  {R, 89, 213},  {W, 97, 246},  {W, 101, 250}, {W, 105, 254},
    {W, 109, 258}, {W, 113, 262}, {W, 117, 266}, {W, 121, 270}, {W, 125, 274}, {B, 129, 278},
};
}  // namespace layout

// One record kind: its layout, the unit of its Real texts and its two
// converters over raw bytes.
struct Form {
    const char* name;
    std::span<const Field> fields;
    std::size_t ms_size, im_size;
    const char* unit;
    void (*ms2im)(std::uint8_t* im, const std::uint8_t* ms);
    void (*im2ms)(std::uint8_t* ms, const std::uint8_t* im);

    [[nodiscard]] std::vector<Field> of(Kind kind) const {
        std::vector<Field> out;
        std::copy_if(fields.begin(), fields.end(), std::back_inserter(out), [&](const Field& f) { return f.kind == kind; });
        return out;
    }
};

template <typename To, typename From, void (*Convert)(To*, const From*)>
void on_bytes(std::uint8_t* to, const std::uint8_t* from) {
    Convert(reinterpret_cast<To*>(to), reinterpret_cast<const From*>(from));
}

inline constexpr Form kDm{"DM", layout::kDm, sizeof(DMRecordMS), sizeof(DMRecordIM), " us",
                          on_bytes<DMRecordIM, DMRecordMS, Tarv__DMRecordMS2IM>,
                          on_bytes<DMRecordMS, DMRecordIM, Tarv__DMRecordIM2MS>};
inline constexpr Form kLm{"LM", layout::kLm, sizeof(LMRecordMS), sizeof(LMRecordIM), " %",
                          on_bytes<LMRecordIM, LMRecordMS, Tarv__LMRecordMS2IM>,
                          on_bytes<LMRecordMS, LMRecordIM, Tarv__LMRecordIM2MS>};
inline constexpr const Form* kForms[] = {&kDm, &kLm};

// The zero-terminated text at the start of a text33 field (all 33 bytes when
// it has no terminator).
inline std::string text33(const std::uint8_t* field) {
    const auto* end = std::find(field, field + kText33, std::uint8_t{0});
    return std::string(reinterpret_cast<const char*>(field), static_cast<std::size_t>(end - field));
}

// Writes text with its terminator into a text33 field; a text of 33 or more
// characters fills the field without one.
inline void put_text(std::uint8_t* field, const char* text) {
    std::memcpy(field, text, std::min(std::strlen(text) + 1, kText33));
}

// What the C library prints for value with "%.2f" and the unit; when that
// is longer than 32 characters, "%.17g" and the unit instead.
inline std::string reference_text(double value, const char* unit) {
    char buf[400];
    int n = std::snprintf(buf, sizeof buf, "%.2f%s", value, unit);
    if (n > 32) n = std::snprintf(buf, sizeof buf, "%.17g%s", value, unit);
    return std::string(buf, static_cast<std::size_t>(n));
}

// The bits of what sscanf("%lf") reads from a text33 field, ended after its
// 33 bytes; none when it reads nothing.
inline std::optional<std::uint64_t> reference_value(const std::uint8_t* field) {
    char buf[kText33 + 1] = {};
    std::memcpy(buf, field, kText33);
    double value = 0;
    if (std::sscanf(buf, "%lf", &value) != 1) return std::nullopt;
    return std::bit_cast<std::uint64_t>(value);
}

}  // namespace tarv::testing

#endif
