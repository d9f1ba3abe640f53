/* The public types' layout as the C compiler lays them out. */
#ifndef TARV_TESTS_LAYOUT_C_H
#define TARV_TESTS_LAYOUT_C_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A type's size (field "") or a field's offset and width. */
typedef struct TarvLayoutEntry {
    const char* type;
    const char* field;
    size_t offset_or_size;
    size_t width;
} TarvLayoutEntry;

const TarvLayoutEntry* tarv_c_layout(size_t* count);

#ifdef __cplusplus
}
#endif

#endif
