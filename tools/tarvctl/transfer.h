// A class's transfer list in the two forms `get` prints and `set` reads
// back, and as Tarv__SetConfig takes it.
//
// Hex form: one line per object, the key's hex digits, a blank, the
// record's hex digits (a singleton's line is its record alone); blank lines
// are skipped. JSON form: {"class": N, "records": [{"key": {...},
// "record": {...}}, ...]}, each key and record as records.h describes.
#ifndef TARVCTL_TRANSFER_H
#define TARVCTL_TRANSFER_H

#include <cstdint>
#include <string>
#include <vector>

#include "common/bytes.h"
#include "common/class_catalog.h"
#include "common/records.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

struct TransferEntry {
    std::string where;  // "line 3", "record 2", for messages
    std::vector<std::uint8_t> key;
    std::vector<std::uint8_t> record;
};

// One object as `get` prints it: its hex line (no newline), or its JSON.
[[nodiscard]] std::string hex_line(const ClassDef& c, Bytes key, Bytes record);
[[nodiscard]] Json object_json(const ClassDef& c, Bytes key, Bytes record);

// The objects of `text`: JSON when it starts with '{' or '[', hex lines
// otherwise. Throws a usage error naming `path` and the line or record.
[[nodiscard]] std::vector<TransferEntry> parse_transfer(const ClassDef& c, const std::string& text,
                                                        const std::string& path);

// The list Tarv__SetConfig takes: the objects back to back, then the
// terminator where the class has one (not after a singleton, nor after a
// full throughput history). Refuses what the library would pass over
// without a word: an all-zero key inside the list (it would end the list
// there) and objects past the last slot of the packed classes; and any
// object for the class without storage, and a singleton count other than 1.
[[nodiscard]] std::vector<std::uint8_t> transfer_list(const ClassDef& c, const std::vector<TransferEntry>& entries,
                                                      const std::string& path);

}  // namespace tarvctl

#endif
