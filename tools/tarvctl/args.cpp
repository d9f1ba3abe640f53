#include "args.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>

#include "common/status.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

constexpr std::uint32_t kMaxId = 65535;

std::optional<std::uint32_t> number_in(std::string_view text, std::uint32_t low, std::uint32_t high) {
    std::uint32_t v = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size() || v < low || v > high)
        return std::nullopt;
    return v;
}

}  // namespace

std::uint32_t parse_number(std::string_view text, std::uint32_t low, std::uint32_t high, std::string_view what) {
    const auto v = number_in(text, low, high);
    if (!v)
        throw Failure(kExitUsage,
                      fmt::format("malformed {} '{}': expected a number from {} to {}", what, text, low, high));
    return *v;
}

SlotPort parse_slot_port(std::string_view text) {
    const std::size_t slash = text.find('/');
    const auto slot = number_in(text.substr(0, slash), 0, 255);
    const auto port = slash == std::string_view::npos ? std::nullopt : number_in(text.substr(slash + 1), 0, 255);
    if (!slot || !port)
        throw Failure(kExitUsage,
                      fmt::format("malformed SLOT/PORT '{}': expected two numbers from 0 to 255, as in 1/4", text));
    return {static_cast<std::uint8_t>(*slot), static_cast<std::uint8_t>(*port)};
}

IdRange parse_range(std::string_view text, std::string_view what) {
    const std::size_t dash = text.find('-');
    const auto low = number_in(text.substr(0, dash), 0, kMaxId);
    const auto high = dash == std::string_view::npos ? std::nullopt : number_in(text.substr(dash + 1), 0, kMaxId);
    if (!low || !high)
        throw Failure(kExitUsage, fmt::format("malformed {} '{}': expected LOW-HIGH, two numbers from 0 to {}", what,
                                              text, kMaxId));
    const IdRange range{*low, *high};
    if (range.low > range.high)
        throw Failure(kExitUsage, fmt::format("reversed {} '{}': LOW must not be above HIGH", what, text));
    return range;
}

}  // namespace tarvctl
