// Reading the packed little-endian records of the region, and the texts
// tarvctl makes of their bytes.
#ifndef TARVCTL_BYTES_H
#define TARVCTL_BYTES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tarvctl {

using Bytes = std::span<const std::uint8_t>;

[[nodiscard]] inline std::uint16_t le16(const std::uint8_t* p) noexcept {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
[[nodiscard]] inline std::uint32_t le32(const std::uint8_t* p) noexcept {
    return static_cast<std::uint32_t>(le16(p)) | static_cast<std::uint32_t>(le16(p + 2)) << 16;
}

[[nodiscard]] bool all_zero(Bytes bytes) noexcept;

// Lower-case hex digits, two per byte, no separators.
[[nodiscard]] std::string hex(Bytes bytes);

// "02:54:41:52:57:03".
[[nodiscard]] std::string mac(Bytes six);

// A text field for people: the bytes up to the first zero, each byte outside
// printable ASCII shown as '?'.
[[nodiscard]] std::string display_text(Bytes field);

// A text field for JSON without loss: each byte as the code point of the
// same value (UTF-8), trailing zero bytes dropped; zeros inside stay as
// U+0000. Reading it back means one byte per code point, zero-filled.
[[nodiscard]] std::string exact_text(Bytes field);

}  // namespace tarvctl

#endif
