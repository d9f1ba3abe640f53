// The module's trace convention.
//
// A trace statement is always the triple WQ_beginImpl / print / WQ_endImpl on
// one trace control object, with the library's source path and the line of
// the statement. Debug traces (levels 4 to 7) go through DBG_KELM and run when
// its level word is at least the statement's level. Warnings (level 2) and
// errors (level 1) go through the object of module 142 and run when its level
// word is above 1, respectively not zero.
//
// The print functions are printf-like and checked by the compiler: an
// argument printed with %ld or %lx is passed as long (32 bits on the switch,
// 64 bits on a development host).
#ifndef TARV_TRACE_H
#define TARV_TRACE_H

#include <cstdint>

#include "platform/pcor.h"
#include "platform/trcd.h"
#include "platform/wq.h"

namespace tarv::trace {

inline constexpr char kSourcePath[] = "data/swch/api-tarv";
inline constexpr std::uint32_t kModule = TRCD_MODULE_KELM;

// Trace codes of warnings and errors.
enum Code : std::uint32_t {
    kNoCode = 0,        // no particular code
    kNotFound = 3,      // object or argument not found or out of range
    kNotAttached = 12,  // a shared-memory region could not be attached
    kNullData = 26,     // a caller's data pointer is null
};

enum Level : std::uint32_t {
    kError = 1,
    kWarning = 2,
    kSuspicious = 4,  // suspicious input that is corrected or ignored
    kOutcome = 5,     // query outcomes and saved records
    kEnter = 6,       // section entry, lookups behind alarm descriptions
    kDetail = 7,      // checkpoint details and detailed indices
};

// A 32-bit value for a %ld conversion, printed as the switch prints it: long
// is 32 bits there, so a value with the top bit set prints negative.
[[nodiscard]] constexpr long as_ld(std::uint32_t value) noexcept {
    return static_cast<long>(static_cast<std::int32_t>(value));
}
// A 32-bit value for a %lx conversion: the same eight hex digits on every host.
[[nodiscard]] constexpr unsigned long as_lx(std::uint32_t value) noexcept { return value; }

[[nodiscard]] inline bool debug_on(std::uint32_t level) noexcept {
    return DBG_KELM.lLevel > level - 1u;
}

// The object of module 142 when warnings or errors of `level` are printed,
// else null.
[[nodiscard]] inline TRCD_TRACE* module_object_for(std::uint32_t level) noexcept {
    TRCD_TRACE* obj = Trcd__GetTrace(kModule);
    if (obj == nullptr) return nullptr;
    const bool on = level == kError ? obj->lLevel != 0 : obj->lLevel > 1;
    return on ? obj : nullptr;
}

}  // namespace tarv::trace

#define TARV_SOURCE_LINE static_cast<std::uint32_t>(__LINE__)

// TARV_DEBUG(level, "Function", "format", args...)
#define TARV_DEBUG(level, function, ...)                                                        \
    do {                                                                                        \
        if (::tarv::trace::debug_on(level)) {                                                   \
            WQ_beginImpl(&DBG_KELM, (level), ::tarv::trace::kSourcePath, TARV_SOURCE_LINE);     \
            Pcor__PrintDebugTrace(&DBG_KELM, (level), (function), __VA_ARGS__);                 \
            WQ_endImpl(&DBG_KELM);                                                              \
        }                                                                                       \
    } while (0)

// TARV_WARNING("Function", code, "format", args...)
#define TARV_WARNING(function, code, ...)                                                       \
    do {                                                                                        \
        if (TRCD_TRACE* tarv_obj_ = ::tarv::trace::module_object_for(::tarv::trace::kWarning)) { \
            WQ_beginImpl(tarv_obj_, ::tarv::trace::kWarning, ::tarv::trace::kSourcePath,       \
                         TARV_SOURCE_LINE);                                                     \
            Pcor__PrintWarningTrace(tarv_obj_, (function), ::tarv::trace::kModule, (code),      \
                                    __VA_ARGS__);                                               \
            WQ_endImpl(tarv_obj_);                                                              \
        }                                                                                       \
    } while (0)

// TARV_ERROR("Function", code, "format", args...)
#define TARV_ERROR(function, code, ...)                                                         \
    do {                                                                                        \
        if (TRCD_TRACE* tarv_obj_ = ::tarv::trace::module_object_for(::tarv::trace::kError)) {  \
            WQ_beginImpl(tarv_obj_, ::tarv::trace::kError, ::tarv::trace::kSourcePath,         \
                         TARV_SOURCE_LINE);                                                     \
            Pcor__PrintErrorTrace(tarv_obj_, (function), ::tarv::trace::kModule, (code),        \
                                  __VA_ARGS__);                                                 \
            WQ_endImpl(tarv_obj_);                                                              \
        }                                                                                       \
    } while (0)

#endif
