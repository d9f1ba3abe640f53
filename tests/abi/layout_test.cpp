// The public types' layout as a C++ compiler sees it, checked at compile
// time, and compared at run time with what the C compiler of the same build
// made of the same header: a caller in either language exchanges the same
// bytes with the library, on every architecture the build targets.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "layout_c.h"
#include "tarv/tarv.h"

namespace {

#define TARV_PIN_SIZE(type, size) static_assert(sizeof(type) == (size), #type " size");
#define TARV_PIN_FIELD(type, field, offset, width)                                 \
    static_assert(offsetof(type, field) == (offset), #type "." #field " offset"); \
    static_assert(sizeof(type::field) == (width), #type "." #field " width");
#include "layout_pins.inc"
#undef TARV_PIN_SIZE
#undef TARV_PIN_FIELD

struct Pin {
    const char* type;
    const char* field;
    std::size_t offset_or_size, width;
};
#define TARV_PIN_SIZE(type, size) {#type, "", sizeof(type), 0},
#define TARV_PIN_FIELD(type, field, offset, width) {#type, #field, offsetof(type, field), sizeof(type::field)},
constexpr Pin kCxx[] = {
#include "layout_pins.inc"
};
#undef TARV_PIN_SIZE
#undef TARV_PIN_FIELD

TEST(LayoutTest, CAndCxxLayOutEveryPublicTypeAlike) {
    std::size_t count = 0;
    const TarvLayoutEntry* c = tarv_c_layout(&count);
    ASSERT_EQ(count, std::size(kCxx));
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = std::string(kCxx[i].type) + "." + kCxx[i].field;
        EXPECT_EQ(std::string(c[i].type) + "." + c[i].field, name);
        EXPECT_EQ(c[i].offset_or_size, kCxx[i].offset_or_size) << name;
        EXPECT_EQ(c[i].width, kCxx[i].width) << name;
    }
}

}  // namespace
