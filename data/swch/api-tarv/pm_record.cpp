// Performance-monitoring record conversion between the numeric MS form and
// the text IM form of delay-measurement (DM) and loss-measurement (LM)
// results.
//
// Both record kinds are described by one field map each: every field of the
// MS form with its place in the IM form and the rule that converts it. The
// four exported converters are that map walked in one direction or the
// other; nothing else knows an offset.
//
// The texts are those of the C library's "%.2f us", "%.2f %%", "%lu us" and
// "%lf" in the current C locale, byte for byte. They are produced and read
// here without the C library's formatted I/O on the usual path, because a
// PM reporter converts records in bulk and snprintf/sscanf dominate the cost;
// the rare texts that fall outside the fast shapes go to the C library.

#include <langinfo.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "byteorder.h"
#include "tarv/tarv.h"

namespace tarv {
namespace {

// ---------------------------------------------------------------------------
// Field maps
// ---------------------------------------------------------------------------

enum class Rule : std::uint8_t {
    Copy,    // same bytes in both forms
    Text20,  // char[20]; MS to IM also zeroes the IM field's last byte
    Real,    // float64 <-> text33: "%.2f" and the record's unit / "%lf"
    Count,   // uint32 -> text33 "%lu us"; IM to MS leaves the MS field alone
    MsOnly,  // byte of the MS form alone: not carried, not written
};

inline constexpr std::uint16_t kNoPlace = 0xFFFF;

struct FieldMap {
    std::uint16_t ms;       // offset in the MS form
    std::uint16_t ms_size;  // width in the MS form
    std::uint16_t im;       // offset in the IM form, kNoPlace for MS-only bytes
    std::uint16_t im_size;  // width in the IM form, 0 for MS-only bytes
    Rule rule;
};

#define TARV_PM_BOTH(Ms, Im, name, rule) \
    FieldMap { offsetof(Ms, name), sizeof(Ms::name), offsetof(Im, name), sizeof(Im::name), Rule::rule }
#define TARV_PM_MS_ONLY(Ms, name) FieldMap { offsetof(Ms, name), sizeof(Ms::name), kNoPlace, 0, Rule::MsOnly }

#define DM(name, rule) TARV_PM_BOTH(DMRecordMS, DMRecordIM, name, rule)
inline constexpr FieldMap kDmFields[] = {
    DM(acText1, Text20), DM(lWord1, Copy),  DM(acText2, Text20),
    DM(lWord2, Copy),    DM(dUs1, Real),    DM(lWord3, Copy),
    DM(lWord4, Copy),    DM(dUs2, Real),    DM(lWord5, Copy),
    DM(lWord6, Copy),    DM(dUs3, Real),    DM(lUs1, Count),
    TARV_PM_MS_ONLY(DMRecordMS, byMsOnly1), DM(lUs2, Count),
    TARV_PM_MS_ONLY(DMRecordMS, byMsOnly2), DM(dUs4, Real),
    DM(lWord7, Copy),    DM(lWord8, Copy),  DM(dUs5, Real),
    DM(lUs3, Count),     TARV_PM_MS_ONLY(DMRecordMS, byMsOnly3),
    DM(lUs4, Count),     TARV_PM_MS_ONLY(DMRecordMS, byMsOnly4),
    DM(dUs6, Real),      DM(lWord9, Copy),  DM(lWord10, Copy),
    DM(lWord11, Copy),   DM(lWord12, Copy), DM(lWord13, Copy),
    DM(lWord14, Copy),   DM(byTail, Copy),  DM(dUs7, Real),
    DM(dUs8, Real),      DM(dUs9, Real),    DM(dUs10, Real),
    DM(dUs11, Real),     DM(dUs12, Real),
};
#undef DM

#define LM(name, rule) TARV_PM_BOTH(LMRecordMS, LMRecordIM, name, rule)
inline constexpr FieldMap kLmFields[] = {
    TARV_PM_MS_ONLY(LMRecordMS, byMsOnly1),
    LM(acText1, Text20), LM(lWord1, Copy), LM(acText2, Text20), LM(lWord2, Copy),
    LM(dPct1, Real),     LM(dPct2, Real),  LM(dPct3, Real),     LM(dPct4, Real),
    LM(dPct5, Real),     LM(dPct6, Real),  LM(lWord3, Copy),    LM(lWord4, Copy),
    LM(lWord5, Copy),    LM(lWord6, Copy), LM(lWord7, Copy),    LM(lWord8, Copy),
    LM(lWord9, Copy),    LM(lWord10, Copy), LM(byTail, Copy),
};
#undef LM
#undef TARV_PM_BOTH
#undef TARV_PM_MS_ONLY

// A map is valid when its fields tile both forms in order, without gap or
// overlap, and every field has the widths its rule needs.
template <std::size_t N>
constexpr bool tiles(const FieldMap (&fields)[N], std::size_t ms_size, std::size_t im_size) {
    std::size_t ms = 0;
    std::size_t im = 0;
    for (const FieldMap& f : fields) {
        if (f.ms != ms) return false;
        ms += f.ms_size;
        if (f.rule == Rule::MsOnly) {
            if (f.ms_size != 1 || f.im != kNoPlace) return false;
            continue;
        }
        if (f.im != im) return false;
        im += f.im_size;
        switch (f.rule) {
            case Rule::Copy:
                if (f.ms_size != f.im_size) return false;
                break;
            case Rule::Text20:
                if (f.ms_size != 20 || f.im_size != 20) return false;
                break;
            case Rule::Real:
                if (f.ms_size != 8 || f.im_size != 33) return false;
                break;
            case Rule::Count:
                if (f.ms_size != 4 || f.im_size != 33) return false;
                break;
            case Rule::MsOnly:
                break;
        }
    }
    return ms == ms_size && im == im_size;
}

static_assert(tiles(kDmFields, sizeof(DMRecordMS), sizeof(DMRecordIM)));
static_assert(tiles(kLmFields, sizeof(LMRecordMS), sizeof(LMRecordIM)));

// The byte layouts are part of the interface: pin every field's place.
static_assert(sizeof(DMRecordMS) == TARV_DM_RECORD_MS_SIZE && TARV_DM_RECORD_MS_SIZE == 213);
static_assert(sizeof(DMRecordIM) == TARV_DM_RECORD_IM_SIZE && TARV_DM_RECORD_IM_SIZE == 625);
static_assert(sizeof(LMRecordMS) == TARV_LM_RECORD_MS_SIZE && TARV_LM_RECORD_MS_SIZE == 130);
static_assert(sizeof(LMRecordIM) == TARV_LM_RECORD_IM_SIZE && TARV_LM_RECORD_IM_SIZE == 279);

#define TARV_PIN(Rec, name, offset) static_assert(offsetof(Rec, name) == (offset), #Rec "." #name)
#define TARV_PIN2(Ms, Im, name, ms_offset, im_offset) \
    TARV_PIN(Ms, name, ms_offset);                    \
    TARV_PIN(Im, name, im_offset)

TARV_PIN2(DMRecordMS, DMRecordIM, acText1, 0, 0);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord1, 20, 20);
TARV_PIN2(DMRecordMS, DMRecordIM, acText2, 24, 24);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord2, 44, 44);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs1, 48, 48);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord3, 56, 81);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord4, 60, 85);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs2, 64, 89);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord5, 72, 122);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord6, 76, 126);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs3, 80, 130);
TARV_PIN2(DMRecordMS, DMRecordIM, lUs1, 88, 163);
TARV_PIN(DMRecordMS, byMsOnly1, 92);
TARV_PIN2(DMRecordMS, DMRecordIM, lUs2, 93, 196);
TARV_PIN(DMRecordMS, byMsOnly2, 97);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs4, 98, 229);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord7, 106, 262);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord8, 110, 266);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs5, 114, 270);
TARV_PIN2(DMRecordMS, DMRecordIM, lUs3, 122, 303);
TARV_PIN(DMRecordMS, byMsOnly3, 126);
TARV_PIN2(DMRecordMS, DMRecordIM, lUs4, 127, 336);
TARV_PIN(DMRecordMS, byMsOnly4, 131);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs6, 132, 369);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord9, 140, 402);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord10, 144, 406);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord11, 148, 410);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord12, 152, 414);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord13, 156, 418);
TARV_PIN2(DMRecordMS, DMRecordIM, lWord14, 160, 422);
TARV_PIN2(DMRecordMS, DMRecordIM, byTail, 164, 426);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs7, 165, 427);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs8, 173, 460);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs9, 181, 493);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs10, 189, 526);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs11, 197, 559);
TARV_PIN2(DMRecordMS, DMRecordIM, dUs12, 205, 592);

TARV_PIN(LMRecordMS, byMsOnly1, 0);
TARV_PIN2(LMRecordMS, LMRecordIM, acText1, 1, 0);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord1, 21, 20);
TARV_PIN2(LMRecordMS, LMRecordIM, acText2, 25, 24);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord2, 45, 44);
TARV_PIN2(LMRecordMS, LMRecordIM, dPct1, 49, 48);
TARV_PIN2(LMRecordMS, LMRecordIM, dPct2, 57, 81);
TARV_PIN2(LMRecordMS, LMRecordIM, dPct3, 65, 114);
TARV_PIN2(LMRecordMS, LMRecordIM, dPct4, 73, 147);
TARV_PIN2(LMRecordMS, LMRecordIM, dPct5, 81, 180);
TARV_PIN2(LMRecordMS, LMRecordIM, dPct6, 89, 213);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord3, 97, 246);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord4, 101, 250);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord5, 105, 254);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord6, 109, 258);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord7, 113, 262);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord8, 117, 266);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord9, 121, 270);
TARV_PIN2(LMRecordMS, LMRecordIM, lWord10, 125, 274);
TARV_PIN2(LMRecordMS, LMRecordIM, byTail, 129, 278);

#undef TARV_PIN2
#undef TARV_PIN

// ---------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------

inline constexpr std::size_t kTextField = 33;  // a text33 field
inline constexpr std::size_t kMaxText = 32;    // characters before its terminator

struct Piece {
    const char* text;
    std::size_t size;
};

inline constexpr Piece kUnitUs{" us", 3};
inline constexpr Piece kUnitPercent{" %", 2};

// The decimal point of the current C locale, as printf and scanf use it.
// Usually ".", but a locale may make it "," or a multi-byte character.
// nl_langinfo reads the locale's own data; localeconv would fill a static
// structure shared by every thread, so two reporters converting at the same
// time would race on it.
[[nodiscard]] Piece locale_decimal_point() noexcept {
    // glibc's nl_langinfo is safe beside other threads (MT-Safe locale).
    const char* point = nl_langinfo(RADIXCHAR);  // NOLINT(concurrency-mt-unsafe)
    return Piece{point, std::strlen(point)};
}

[[nodiscard]] bool is_period(Piece point) noexcept { return point.size == 1 && point.text[0] == '.'; }

// Builds one text in a local buffer, so that nothing is written into a field
// before it is known to fit.
struct TextBuilder {
    // Sign, up to 28 integer digits (below 2^90), a decimal point of at most
    // kMaxText bytes, two decimals and a unit: at most 1 + 28 + 32 + 2 + 3.
    char c[80];
    std::size_t n = 0;

    void put(char ch) noexcept { c[n++] = ch; }
    // Units and decimal points are a few bytes: a loop beats a memcpy call.
    void put(Piece p) noexcept {
        for (std::size_t i = 0; i < p.size; ++i) c[n++] = p.text[i];
    }
    void put(const char* s) noexcept { put(Piece{s, std::strlen(s)}); }
    // The decimal digits of v, without leading zeros ("0" for zero).
    void put_uint(std::uint32_t v) noexcept {
        char rev[10];
        std::size_t k = 0;
        do {
            rev[k++] = static_cast<char>('0' + v % 10u);
            v /= 10u;
        } while (v != 0u);
        while (k != 0u) c[n++] = rev[--k];
    }
    // Exactly nine decimal digits of v < 10^9, with leading zeros.
    void put_nine(std::uint32_t v) noexcept {
        for (std::size_t i = 9; i-- > 0;) {
            c[n + i] = static_cast<char>('0' + v % 10u);
            v /= 10u;
        }
        n += 9;
    }

    // Writes the text and its terminator from the field's first byte; the
    // bytes after the terminator are not touched.
    void store(std::uint8_t* field) const noexcept {
        for (std::size_t i = 0; i < n; ++i) field[i] = static_cast<std::uint8_t>(c[i]);
        field[n] = 0;
    }
};

// An unsigned integer in base 10^9, least significant limb first. Four limbs
// hold 36 digits, more than any integer part that can fit a text33 field.
struct Limbs {
    static constexpr std::uint32_t kBase = 1000000000u;
    static constexpr std::size_t kMax = 4;
    std::uint32_t limb[kMax] = {};
    std::size_t count = 1;

    // v < 10^18.
    explicit Limbs(std::uint64_t v) noexcept {
        limb[0] = static_cast<std::uint32_t>(v % kBase);
        limb[1] = static_cast<std::uint32_t>(v / kBase);
        count = limb[1] != 0u ? 2 : 1;
    }

    // Multiplies by 2^shift, 32 bits at a time: a limb is below 2^30, so
    // limb * 2^32 plus the carry stays below 2^63. The caller guarantees the
    // product stays below 10^36.
    void shift_left(int shift) noexcept {
        while (shift > 0) {
            const int k = shift < 32 ? shift : 32;
            std::uint64_t carry = 0;
            for (std::size_t i = 0; i < count; ++i) {
                const std::uint64_t t = (static_cast<std::uint64_t>(limb[i]) << k) + carry;
                limb[i] = static_cast<std::uint32_t>(t % kBase);
                carry = t / kBase;
            }
            // The product stays below 10^36, so the carry is spent before a
            // fifth limb would be needed: count < kMax never stops this loop,
            // it only keeps a wrong caller inside the array.
            while (carry != 0u && count < kMax) {
                limb[count++] = static_cast<std::uint32_t>(carry % kBase);
                carry /= kBase;
            }
            shift -= k;
        }
    }

    void put(TextBuilder& out) const noexcept {
        out.put_uint(limb[count - 1]);
        for (std::size_t i = count - 1; i-- > 0;) out.put_nine(limb[i]);
    }
};

// The text of "%.17g" followed by the unit, for the values whose "%.2f" text
// does not fit a text33 field (magnitudes of about 10^25 and above): at most
// 24 characters and the unit, and it reads back as the same double. Only a
// locale whose decimal point is many bytes long could make it exceed 32
// characters; it is then cut after the 32nd.
void store_long_real(std::uint8_t* field, double value, Piece unit) noexcept {
    char text[128];
    const int written = std::snprintf(text, sizeof text, "%.17g", value);
    std::size_t n = written > 0 ? static_cast<std::size_t>(written) : 0u;
    // Both cuts need a decimal point longer than 9 bytes, which no locale
    // has: no test can reach them.
    if (n > kMaxText) n = kMaxText;
    for (std::size_t i = 0; i < unit.size && n < kMaxText; ++i) text[n++] = unit.text[i];
    std::memcpy(field, text, n);
    field[n] = 0;
}

// Writes value as "%.2f" followed by unit into a text33 field, exactly as the
// C library prints it: the exact binary value rounded to two decimals, an
// exact tie to the even digit; a minus sign whenever the sign bit is set
// ("-0.00" for -0.0 and for small negative values); "nan", "-nan", "inf" and
// "-inf" for the special values.
void store_real(std::uint8_t* field, double value, Piece point, Piece unit) noexcept {
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    const bool negative = (bits >> 63) != 0u;
    const int biased = static_cast<int>((bits >> 52) & 0x7FFu);
    const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1u);

    TextBuilder out;
    if (negative) out.put('-');
    if (biased == 0x7FF) {
        out.put(fraction != 0u ? "nan" : "inf");
        out.put(unit);
        out.store(field);
        return;
    }
    // |value| = mantissa * 2^exponent exactly.
    const std::uint64_t mantissa = biased != 0 ? (fraction | (std::uint64_t{1} << 52)) : fraction;
    const int exponent = (biased != 0 ? biased : 1) - 1075;

    // 2^90 has 28 integer digits: no such value fits with any unit. A decimal
    // point longer than a whole field (no locale has one, so no test) would
    // leave no room for the digits either.
    if (biased - 1023 >= 90 || point.size > kMaxText) {
        store_long_real(field, value, unit);
        return;
    }

    std::uint32_t hundredths = 0;
    if (exponent >= 0) {
        // An integer of at least 2^52 and below 2^90.
        Limbs whole(mantissa);
        whole.shift_left(exponent);
        whole.put(out);
    } else {
        // value * 100 = mantissa * 100 / 2^shift, rounded to nearest, ties to
        // even. mantissa * 100 < 2^60, so from shift 61 on the quotient is
        // below one half and rounds to zero.
        const int shift = -exponent;
        std::uint64_t scaled = 0;
        if (shift <= 60) {
            const std::uint64_t product = mantissa * 100u;
            const std::uint64_t half = std::uint64_t{1} << (shift - 1);
            const std::uint64_t rest = product & ((half << 1) - 1u);
            scaled = product >> shift;
            if (rest > half || (rest == half && (scaled & 1u) != 0u)) ++scaled;
        }
        if (scaled <= UINT32_MAX) {
            // Below 43 million, the usual case: 32-bit arithmetic, which a
            // 32-bit CPU does without a library call.
            const auto small = static_cast<std::uint32_t>(scaled);
            hundredths = small % 100u;
            out.put_uint(small / 100u);
        } else {
            hundredths = static_cast<std::uint32_t>(scaled % 100u);
            Limbs(scaled / 100u).put(out);
        }
    }
    out.put(point);
    out.put(static_cast<char>('0' + hundredths / 10u));
    out.put(static_cast<char>('0' + hundredths % 10u));
    out.put(unit);
    if (out.n > kMaxText) {
        store_long_real(field, value, unit);
        return;
    }
    out.store(field);
}

// Writes value as "%lu us" into a text33 field (at most 13 characters).
void store_count(std::uint8_t* field, std::uint32_t value) noexcept {
    TextBuilder out;
    out.put_uint(value);
    out.put(kUnitUs);
    out.store(field);
}

// Powers of ten that doubles hold exactly.
inline constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
inline constexpr int kMaxFastDigits = 15;     // below 2^53: the mantissa is exact
inline constexpr int kMaxFastDecimals = 22;  // 10^22 is the largest exact power

[[nodiscard]] constexpr bool is_c_space(std::uint8_t c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
[[nodiscard]] constexpr bool is_digit(std::uint8_t c) noexcept { return c >= '0' && c <= '9'; }

// Reads the number at the start of a text33 field as sscanf("%lf") does;
// false when there is none. The field need not be terminated: its 33 bytes
// are the whole text.
//
// The usual text, [blanks][sign]digits[.digits] ended by its terminator or a
// blank, with at most 15 significant digits and 22 decimals, is read here:
// its digits form an exact integer and one division by an exact power of ten
// rounds once, as the C library does. Every other text goes to sscanf.
[[nodiscard]] bool parse_real(const std::uint8_t* field, bool period_is_point, double& value) noexcept {
    std::size_t i = 0;
    while (i < kTextField && is_c_space(field[i])) ++i;
    bool negative = false;
    if (i < kTextField && (field[i] == '+' || field[i] == '-')) {
        negative = field[i] == '-';
        ++i;
    }
    std::uint64_t digits = 0;
    int significant = 0;
    int decimals = 0;
    bool any = false;
    bool fast = true;
    for (; i < kTextField && is_digit(field[i]); ++i) {
        any = true;
        const unsigned d = field[i] - static_cast<unsigned>('0');
        if (digits != 0u || d != 0u) ++significant;
        digits = digits * 10u + d;
        if (significant > kMaxFastDigits) {
            fast = false;
            break;
        }
    }
    if (fast && period_is_point && i < kTextField && field[i] == '.') {
        for (++i; i < kTextField && is_digit(field[i]); ++i) {
            any = true;
            const unsigned d = field[i] - static_cast<unsigned>('0');
            if (digits != 0u || d != 0u) ++significant;
            digits = digits * 10u + d;
            if (significant > kMaxFastDigits || ++decimals > kMaxFastDecimals) {
                fast = false;
                break;
            }
        }
    }
    if (fast && any && (i == kTextField || field[i] == 0 || field[i] == ' ')) {
        // The sign goes on before the one rounding step, so that a rounding
        // mode toward an infinity rounds a negative value as the C library
        // does; the mantissa and the power of ten are exact.
        // From a signed integer: the mantissa is below 2^53 and the signed
        // conversion is one exact instruction, where some compilers convert
        // an unsigned 64-bit value by a subtraction that gives -0 for zero
        // when the mode rounds downward.
        double v = static_cast<double>(static_cast<std::int64_t>(digits));
        if (negative) v = -v;
        if (decimals != 0) v /= kPow10[decimals];
        value = v;
        return true;
    }

    char text[kTextField + 1];
    std::memcpy(text, field, kTextField);
    text[kTextField] = '\0';
    double parsed = 0.0;
    // The text is read as sscanf("%lf") reads it, by the record's contract;
    // its result tells whether a number was there.
    if (std::sscanf(text, "%lf", &parsed) != 1) return false;  // NOLINT(cert-err34-c)
    value = parsed;
    return true;
}

// ---------------------------------------------------------------------------
// Conversion
// ---------------------------------------------------------------------------

// Copies a field whose bytes are the same in both forms; the usual widths get
// a fixed-size copy the compiler inlines.
void copy_bytes(std::uint8_t* to, const std::uint8_t* from, std::size_t size) noexcept {
    switch (size) {
        case 1:
            *to = *from;
            break;
        case 4:
            std::memcpy(to, from, 4);
            break;
        case 20:
            std::memcpy(to, from, 20);
            break;
        default:
            // Every copied field of the DM and LM records is 1, 4 or 20 bytes
            // wide: no record reaches this case.
            std::memcpy(to, from, size);
            break;
    }
}

template <std::size_t N>
void ms_to_im(const FieldMap (&fields)[N], Piece unit, std::uint8_t* im, const std::uint8_t* ms) noexcept {
    const Piece point = locale_decimal_point();
    for (const FieldMap& f : fields) {
        // Every Rule has its case: the edge a compiler adds for other values
        // of the enumeration is never taken.
        switch (f.rule) {
            case Rule::Copy:
                copy_bytes(im + f.im, ms + f.ms, f.ms_size);
                break;
            case Rule::Text20:
                copy_bytes(im + f.im, ms + f.ms, f.ms_size);
                im[f.im + f.im_size - 1u] = 0;
                break;
            case Rule::Real:
                store_real(im + f.im, load_le<double>(ms + f.ms), point, unit);
                break;
            case Rule::Count:
                store_count(im + f.im, load_le<std::uint32_t>(ms + f.ms));
                break;
            case Rule::MsOnly:
                break;
        }
    }
}

template <std::size_t N>
void im_to_ms(const FieldMap (&fields)[N], std::uint8_t* ms, const std::uint8_t* im) noexcept {
    const bool period_is_point = is_period(locale_decimal_point());
    for (const FieldMap& f : fields) {
        // Every Rule has its case: the edge a compiler adds for other values
        // of the enumeration is never taken.
        switch (f.rule) {
            case Rule::Copy:
            case Rule::Text20:
                copy_bytes(ms + f.ms, im + f.im, f.ms_size);
                break;
            case Rule::Real: {
                double value = 0.0;
                if (parse_real(im + f.im, period_is_point, value)) store_le<double>(ms + f.ms, value);
                break;
            }
            case Rule::Count:
            case Rule::MsOnly:
                break;
        }
    }
}

template <typename T>
[[nodiscard]] std::uint8_t* bytes(T* record) noexcept {
    return reinterpret_cast<std::uint8_t*>(record);
}
template <typename T>
[[nodiscard]] const std::uint8_t* bytes(const T* record) noexcept {
    return reinterpret_cast<const std::uint8_t*>(record);
}

}  // namespace
}  // namespace tarv

extern "C" TARV_API void Tarv__DMRecordMS2IM(DMRecordIM* pIm, const DMRecordMS* pMs) {
    tarv::ms_to_im(tarv::kDmFields, tarv::kUnitUs, tarv::bytes(pIm), tarv::bytes(pMs));
}

extern "C" TARV_API void Tarv__DMRecordIM2MS(DMRecordMS* pMs, const DMRecordIM* pIm) {
    tarv::im_to_ms(tarv::kDmFields, tarv::bytes(pMs), tarv::bytes(pIm));
}

extern "C" TARV_API void Tarv__LMRecordMS2IM(LMRecordIM* pIm, const LMRecordMS* pMs) {
    tarv::ms_to_im(tarv::kLmFields, tarv::kUnitPercent, tarv::bytes(pIm), tarv::bytes(pMs));
}

extern "C" TARV_API void Tarv__LMRecordIM2MS(LMRecordMS* pMs, const LMRecordIM* pIm) {
    tarv::im_to_ms(tarv::kLmFields, tarv::bytes(pMs), tarv::bytes(pIm));
}
