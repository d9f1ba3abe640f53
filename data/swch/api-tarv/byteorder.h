// Little-endian scalar access to packed bytes.
//
// Every multi-byte value in the region and in the records exchanged with
// callers is little-endian and may sit at any byte offset. All raw scalar
// access goes through load_le/store_le, which copy bytes (never an aligned
// load) and are correct on big-endian hosts too.
#ifndef TARV_BYTEORDER_H
#define TARV_BYTEORDER_H

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace tarv {

template <typename T>
concept LeScalar = std::is_arithmetic_v<T> && (sizeof(T) == 1 || sizeof(T) == 2 ||
                                                sizeof(T) == 4 || sizeof(T) == 8);

template <std::size_t N>
struct UintOfSize;
template <> struct UintOfSize<1> { using type = std::uint8_t; };
template <> struct UintOfSize<2> { using type = std::uint16_t; };
template <> struct UintOfSize<4> { using type = std::uint32_t; };
template <> struct UintOfSize<8> { using type = std::uint64_t; };

// Reads a T stored little-endian at p (any alignment).
template <LeScalar T>
[[nodiscard]] inline T load_le(const void* p) noexcept {
    using U = typename UintOfSize<sizeof(T)>::type;
    U v;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&v, p, sizeof v);
    } else {
        unsigned char b[sizeof(T)];
        std::memcpy(b, p, sizeof b);
        v = 0;
        for (std::size_t i = sizeof(T); i-- > 0;) v = static_cast<U>((v << 8) | b[i]);
    }
    return std::bit_cast<T>(v);
}

// Stores value little-endian at p (any alignment).
template <LeScalar T>
inline void store_le(void* p, T value) noexcept {
    using U = typename UintOfSize<sizeof(T)>::type;
    U v = std::bit_cast<U>(value);
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(p, &v, sizeof v);
    } else {
        unsigned char b[sizeof(T)];
        for (std::size_t i = 0; i < sizeof(T); ++i) {
            b[i] = static_cast<unsigned char>(v & 0xFFu);
            if constexpr (sizeof(T) > 1) v = static_cast<U>(v >> 8);
        }
        std::memcpy(p, b, sizeof b);
    }
}

}  // namespace tarv

#endif
