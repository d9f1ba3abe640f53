// Helpers shared by the PM record conversion tests: byte access to records,
// the C library's own texts as reference, and locale switching.
#ifndef TARV_TESTS_PM_TEST_SUPPORT_H
#define TARV_TESTS_PM_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "byteorder.h"
#include "tarv/tarv.h"

namespace tarv::testing {

inline constexpr std::size_t kText33 = 33;

template <typename Record>
std::uint8_t* raw(Record& r) {
    return reinterpret_cast<std::uint8_t*>(&r);
}
template <typename Record>
const std::uint8_t* raw(const Record& r) {
    return reinterpret_cast<const std::uint8_t*>(&r);
}

// The zero-terminated text at the start of a text33 field (all 33 bytes when
// it has no terminator).
inline std::string text33(const std::uint8_t* field) {
    std::size_t n = 0;
    while (n < kText33 && field[n] != 0) ++n;
    return std::string(reinterpret_cast<const char*>(field), n);
}

inline void put_text(std::uint8_t* field, const char* text) { std::memcpy(field, text, std::strlen(text) + 1); }

inline std::uint64_t bits_of(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

// What the C library prints for value with "%.2f" and the unit; when that
// is longer than 32 characters, "%.17g" and the unit instead.
inline std::string reference_text(double value, const char* unit) {
    char buf[400];
    int n = std::snprintf(buf, sizeof buf, "%.2f%s", value, unit);
    if (n > 32) n = std::snprintf(buf, sizeof buf, "%.17g%s", value, unit);
    return std::string(buf, static_cast<std::size_t>(n));
}

// What sscanf("%lf") reads from a text33 field, terminated after its 33
// bytes; false when it reads nothing.
inline bool reference_parse(const std::uint8_t* field, double& value) {
    char buf[kText33 + 1];
    std::memcpy(buf, field, kText33);
    buf[kText33] = '\0';
    return std::sscanf(buf, "%lf", &value) == 1;
}

// Switches LC_NUMERIC for the life of the object and back to "C" after.
class NumericLocale {
public:
    explicit NumericLocale(const char* name) : ok_(std::setlocale(LC_NUMERIC, name) != nullptr) {}
    NumericLocale(const NumericLocale&) = delete;
    NumericLocale& operator=(const NumericLocale&) = delete;
    ~NumericLocale() { std::setlocale(LC_NUMERIC, "C"); }
    [[nodiscard]] bool ok() const { return ok_; }

private:
    bool ok_;
};

// A missing locale skips the test, unless TARV_REQUIRE_LOCALES=1 asks that it
// fail (CI generates the locales it needs).
inline bool locales_required() {
    const char* v = std::getenv("TARV_REQUIRE_LOCALES");
    return v != nullptr && std::strcmp(v, "1") == 0;
}

#define TARV_ENTER_LOCALE(guard, name)                                                  \
    NumericLocale guard(name);                                                          \
    if (!guard.ok()) {                                                                  \
        if (locales_required()) FAIL() << "locale " name " is not installed";           \
        GTEST_SKIP() << "locale " name " is not installed (localedef -i ... -f UTF-8)"; \
    }

}  // namespace tarv::testing

#endif
