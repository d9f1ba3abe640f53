// Readers of the numbers the query subcommands take, each refusing with a
// usage error that says what it expected.
#ifndef TARVCTL_ARGS_H
#define TARVCTL_ARGS_H

#include <cstdint>
#include <string_view>

namespace tarvctl {

// A decimal number from `low` to `high` and nothing else; `what` names it
// in the error ("VID", "LAG id").
[[nodiscard]] std::uint32_t parse_number(std::string_view text, std::uint32_t low, std::uint32_t high,
                                         std::string_view what);

struct SlotPort {
    std::uint8_t slot;
    std::uint8_t port;
};

// "1/4": slot and port, each 0 to 255.
[[nodiscard]] SlotPort parse_slot_port(std::string_view text);

struct IdRange {
    std::uint32_t low;
    std::uint32_t high;
};

// "1-4094": two ids from 0 to 65535, the low end not above the high end (a
// reversed range is a typing error, never an empty range); `what` names the
// option.
[[nodiscard]] IdRange parse_range(std::string_view text, std::string_view what);

}  // namespace tarvctl

#endif
