// Writing the region as its two writers do: the configuration-database
// manager, class by class through Tarv__SetConfig, and the OAM controller,
// straight into the tables it owns (alarm words and texts, old MOIDs, PM
// alarm keys and words, throughput status, history results, bandwidth
// notification records). Shared by `demo` and `simulate`.
#ifndef TARVCTL_CONTROLLER_H
#define TARVCTL_CONTROLLER_H

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "common/records.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

// One class's transfer list, built record by record and written whole
// through Tarv__SetConfig (the region attached with Tarv__StorOpen).
class ListWriter {
public:
    explicit ListWriter(std::uint32_t class_id) : def_(class_of(class_id)) {}

    // Appends an object; returns its record's bytes, zero-filled, to be set.
    MutableBytes add(std::initializer_list<std::uint32_t> ids, std::uint8_t session = 0);
    // Appends a transfer record as a list holds it: the key, then the record.
    void add(Bytes key, Bytes record);
    // The record of a singleton.
    MutableBytes single();
    // Writes the list; throws kExitIo when the library refuses the class.
    void write();

private:
    const ClassDef& def_;
    std::vector<std::uint8_t> bytes_;
};

// The controller's writes, on the region mapped read-write at `region`.
// Each leaves the region consistent once it returns.

// A MEP slot's alarm word (wAlarmBits of its record) and alarm text (cut to
// the 80 characters the table holds).
void put_mep_alarm(std::uint8_t* region, std::uint32_t slot, std::uint16_t bits, std::string_view text);
// A MEP slot's old MOID, which names the slot's alarm once the MEP is gone.
void put_mep_old_moid(std::uint8_t* region, std::uint32_t slot, Bytes moid);
// A PM slot's old key, alarm key and alarm word.
void put_pm_alarm(std::uint8_t* region, std::uint32_t slot, Bytes key, std::uint16_t word);
// eEnableStatus of the throughput test in `slot` (2: running).
void put_throughput_status(std::uint8_t* region, std::uint32_t slot, std::uint32_t status);

}  // namespace tarvctl

#endif
