// Reading the packed little-endian records of the region, and the texts
// the tools make of their bytes.
#ifndef TARVTOOL_BYTES_H
#define TARVTOOL_BYTES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "api-tarv/byteorder.h"

namespace tarvtool {

using Bytes = std::span<const std::uint8_t>;
using MutableBytes = std::span<std::uint8_t>;

// Scalars of the region and its records, as the library reads them.
[[nodiscard]] inline std::uint16_t le16(const std::uint8_t* p) noexcept { return tarv::load_le<std::uint16_t>(p); }
[[nodiscard]] inline std::uint32_t le32(const std::uint8_t* p) noexcept { return tarv::load_le<std::uint32_t>(p); }
inline void store_le16(std::uint8_t* p, std::uint16_t v) noexcept { tarv::store_le(p, v); }
inline void store_le32(std::uint8_t* p, std::uint32_t v) noexcept { tarv::store_le(p, v); }

[[nodiscard]] bool all_zero(Bytes bytes) noexcept;

// Lower-case hex digits, two per byte, no separators.
[[nodiscard]] std::string hex(Bytes bytes);

// The bytes of an even number of hex digits (either case), or nothing.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> parse_hex(std::string_view text);

// "02:54:41:52:57:03".
[[nodiscard]] std::string mac(Bytes six);
// The six bytes of such an address, or nothing.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> parse_mac(std::string_view text);

// A text field as the region holds it: its bytes up to the first zero,
// whatever they are. Names and texts stay bytes until they are shown.
[[nodiscard]] std::string field_text(Bytes field);

// Such bytes for a terminal: printable ASCII as it is, a backslash doubled,
// every control byte and every byte from 0x7f up as \xHH (lower case).
[[nodiscard]] std::string escaped(std::string_view bytes);

// Such bytes as UTF-8 for JSON: what is valid UTF-8 (no overlong forms, no
// surrogates, nothing above U+10FFFF) as it is, each other byte as U+FFFD.
// `valid` tells whether nothing had to be replaced.
[[nodiscard]] std::string utf8_or_replaced(std::string_view bytes, bool& valid);

// A text field for JSON without loss: each byte as the code point of the
// same value (UTF-8), trailing zero bytes dropped; zeros inside stay as
// U+0000. Reading it back means one byte per code point, zero-filled.
[[nodiscard]] std::string exact_text(Bytes field);
// The bytes of such a text, or nothing when it holds a code point above
// U+00FF or is not UTF-8.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> parse_exact_text(std::string_view text);

}  // namespace tarvtool

#endif
