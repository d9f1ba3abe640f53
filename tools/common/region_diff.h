// What changed between two images of the data region, object by object:
// the objects of every class added, removed or changed (by their key, field
// by field as `get --json` names the fields), the alarm words of the MEPs
// and PM sessions, and the bytes of tables no class transfers. One engine
// for `set --dry-run`, `snapshot load --dry-run` and `watch`.
#ifndef TARVTOOL_REGION_DIFF_H
#define TARVTOOL_REGION_DIFF_H

#include <cstdint>
#include <string>
#include <vector>

#include "bytes.h"
#include "class_catalog.h"
#include "records.h"

namespace tarvtool {

struct FieldChange {
    std::string name;  // "wVid", "abyMacAddress", "opaque8"
    Json before;
    Json after;
};

struct Change {
    enum class Kind : std::uint8_t {
        Added,    // an object of `def`
        Removed,  // an object of `def`
        Changed,  // an object of `def`, its record's `fields`
        Alarm,    // the alarm word of a MEP or PM slot: `word_before`, `word_after`
        Table,    // `count` bytes of table `name`, outside every object
    };
    Kind kind;
    const ClassDef* def = nullptr;  // objects and alarms (MEP or PM session class)
    std::string name;               // "MEP 1/1/7", "PM session 1/1/1 #1", "MEP slot 3", a table name
    std::vector<std::uint8_t> key;  // objects; a named alarm slot
    std::vector<std::uint8_t> record;  // objects: the record after (before, for a removed one)
    std::vector<FieldChange> fields;
    std::uint16_t word_before = 0;
    std::uint16_t word_after = 0;
    std::uint32_t count = 0;
};

// An occupied slot of a class in one image: its key is not all zero (a
// singleton's one record always is).
struct StoredObject {
    std::uint32_t slot;
    Bytes key;
    Bytes record;
};
[[nodiscard]] std::vector<StoredObject> stored_objects(const ClassDef& c, Bytes region);

// The changes from `before` to `after` (each exactly one region long): class
// by class in the library's order, in each class the objects removed, then
// added, then changed, each in slot order; then the alarm words (MEP slots,
// PM slots), then the other tables. A MEP's stored alarm bits are reported
// as its alarm word, not as a field.
[[nodiscard]] std::vector<Change> diff_regions(Bytes before, Bytes after);

// One line for people: "+ MEP 1/1/7", "- MIP 2/2/2",
// "* MEP 1/1/1: wVid 100 -> 101, abyMacAddress 02:..:03 -> 02:..:09",
// "* MEP 1/1/2: alarm bits 0, 2 cleared" (raised bits and cleared bits give
// a line each), "* table MepAlarmTextArray: 81 bytes differ".
[[nodiscard]] std::vector<std::string> change_lines(const Change& change);

// The same change as JSON members: "event" ("added", "removed", "changed",
// "alarm", "table"), "class", "object", "key", and "fields"
// ({"wVid": {"before": 100, "after": 101}}), "raised"/"cleared" bit lists
// or "bytes" as they apply.
[[nodiscard]] Json change_json(const Change& change);

}  // namespace tarvtool

#endif
