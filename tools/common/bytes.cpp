#include "bytes.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarvtool {

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

namespace {

int hex_digit(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> parse_hex(std::string_view text) {
    if (text.size() % 2 != 0) return std::nullopt;
    std::vector<std::uint8_t> out;
    out.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hex_digit(text[i]);
        const int low = hex_digit(text[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        out.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    return out;
}

std::optional<std::vector<std::uint8_t>> parse_mac(std::string_view text) {
    // Six pairs of digits with a colon after each but the last.
    if (text.size() != 17) return std::nullopt;
    std::string digits;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2) {
            if (text[i] != ':') return std::nullopt;
        } else {
            digits += text[i];
        }
    }
    return parse_hex(digits);
}

std::string mac(Bytes six) {
    return fmt::format("{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", six[0], six[1], six[2], six[3], six[4], six[5]);
}

std::string field_text(Bytes field) {
    const auto end = std::find(field.begin(), field.end(), std::uint8_t{0});
    return {field.begin(), end};
}

std::string escaped(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char ch : bytes) {
        const auto b = static_cast<std::uint8_t>(ch);
        if (ch == '\\')
            out += "\\\\";
        else if (b >= 0x20 && b < 0x7F)
            out += ch;
        else
            out += fmt::format("\\x{:02x}", b);
    }
    return out;
}

namespace {

// Length of the valid UTF-8 sequence at the start of `s`, 0 when there is
// none.
std::size_t utf8_length(std::string_view s) noexcept {
    const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(s[i]); };
    const std::uint8_t lead = at(0);
    if (lead < 0x80) return 1;
    std::size_t n = 0;
    std::uint8_t low = 0x80;  // the second byte's range, narrowed against
    std::uint8_t high = 0xBF; // overlong forms, surrogates and > U+10FFFF
    if (lead >= 0xC2 && lead <= 0xDF) {
        n = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        n = 3;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        n = 4;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return 0;
    }
    if (s.size() < n || at(1) < low || at(1) > high) return 0;
    for (std::size_t i = 2; i < n; ++i)
        if ((at(i) & 0xC0) != 0x80) return 0;
    return n;
}

}  // namespace

std::string utf8_or_replaced(std::string_view bytes, bool& valid) {
    valid = true;
    std::string out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t n = utf8_length(bytes);
        if (n == 0) {
            out += "\xEF\xBF\xBD";  // U+FFFD
            valid = false;
            bytes.remove_prefix(1);
        } else {
            out.append(bytes.substr(0, n));
            bytes.remove_prefix(n);
        }
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

std::optional<std::vector<std::uint8_t>> parse_exact_text(std::string_view text) {
    std::vector<std::uint8_t> out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto b = static_cast<std::uint8_t>(text[i]);
        if (b < 0x80) {
            out.push_back(b);
            continue;
        }
        // U+0080..U+00FF: lead byte 0xC2 or 0xC3, then one continuation.
        if ((b != 0xC2 && b != 0xC3) || i + 1 == text.size()) return std::nullopt;
        const auto next = static_cast<std::uint8_t>(text[++i]);
        if ((next & 0xC0) != 0x80) return std::nullopt;
        out.push_back(static_cast<std::uint8_t>((b & 0x03) << 6 | (next & 0x3F)));
    }
    return out;
}

}  // namespace tarvtool
