// The layout of the public types as a C++ compiler sees them, checked at
// compile time.
#include <cstddef>

#include "tarv/tarv.h"

#define TARV_PIN_SIZE(type, size) static_assert(sizeof(type) == (size), #type " size");
#define TARV_PIN_FIELD(type, field, offset, width)                                 \
    static_assert(offsetof(type, field) == (offset), #type "." #field " offset"); \
    static_assert(sizeof(type::field) == (width), #type "." #field " width");
#include "layout_pins.inc"
