/* The layout of the public types as a C11 compiler sees them: checked at
 * compile time, and listed for the run-time comparison with C++. */
#include <assert.h>
#include <stddef.h>

#include "layout_c.h"
#include "tarv/tarv.h"

#define TARV_PIN_SIZE(type, size) static_assert(sizeof(type) == (size), #type " size");
#define TARV_PIN_FIELD(type, field, offset, width)                                 \
    static_assert(offsetof(type, field) == (offset), #type "." #field " offset"); \
    static_assert(sizeof(((type*)0)->field) == (width), #type "." #field " width");
#include "layout_pins.inc"
#undef TARV_PIN_SIZE
#undef TARV_PIN_FIELD

#define TARV_PIN_SIZE(type, size) {#type, "", sizeof(type), 0},
#define TARV_PIN_FIELD(type, field, offset, width) {#type, #field, offsetof(type, field), sizeof(((type*)0)->field)},
static const TarvLayoutEntry kEntries[] = {
#include "layout_pins.inc"
};
#undef TARV_PIN_SIZE
#undef TARV_PIN_FIELD

const TarvLayoutEntry* tarv_c_layout(size_t* count) {
    *count = sizeof kEntries / sizeof kEntries[0];
    return kEntries;
}
