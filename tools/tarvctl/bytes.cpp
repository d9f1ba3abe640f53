#include "bytes.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarvctl {

bool all_zero(Bytes bytes) noexcept {
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == 0; });
}

std::string hex(Bytes bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(2 * bytes.size());
    for (std::uint8_t b : bytes) {
        out += kDigits[b >> 4];
        out += kDigits[b & 0xF];
    }
    return out;
}

std::string mac(Bytes six) {
    return fmt::format("{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", six[0], six[1], six[2], six[3], six[4], six[5]);
}

std::string display_text(Bytes field) {
    std::string out;
    for (std::uint8_t b : field) {
        if (b == 0) break;
        out += b >= 0x20 && b < 0x7F ? static_cast<char>(b) : '?';
    }
    return out;
}

std::string exact_text(Bytes field) {
    std::size_t end = field.size();
    while (end > 0 && field[end - 1] == 0) --end;
    std::string out;
    for (std::uint8_t b : field.first(end)) {
        if (b < 0x80) {
            out += static_cast<char>(b);
        } else {
            out += static_cast<char>(0xC0 | b >> 6);
            out += static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    return out;
}

}  // namespace tarvctl
