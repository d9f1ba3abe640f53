// The region's objects as the library hands them out: transfer lists of
// Tarv__GetConfig, and the MEPs through Tarv__MEPMoidIterator and
// Tarv__ReadMEP, decoded into plain values for the views.
#ifndef TARVTOOL_OBJECTS_H
#define TARVTOOL_OBJECTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "bytes.h"
#include "class_catalog.h"

namespace tarvtool {

// One class's transfer list, as Tarv__GetConfig writes it.
class TransferList {
public:
    static TransferList read(const ClassDef& c);

    [[nodiscard]] const ClassDef& def() const noexcept { return *def_; }
    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    [[nodiscard]] Bytes key(std::size_t i) const noexcept {
        return Bytes(buffer_).subspan(i * def_->transfer(), def_->key);
    }
    [[nodiscard]] Bytes record(std::size_t i) const noexcept {
        return Bytes(buffer_).subspan(i * def_->transfer() + def_->key, def_->record);
    }
    // The list's bytes, records only.
    [[nodiscard]] Bytes bytes() const noexcept { return Bytes(buffer_).first(count_ * def_->transfer()); }

private:
    const ClassDef* def_ = nullptr;
    std::vector<std::uint8_t> buffer_;
    std::size_t count_ = 0;
};

struct Md {
    std::uint32_t md;
    std::string name;  // bytes of the region (field_text): escaped() for people, put_name() for JSON
    std::int64_t level;  // the stored level code minus 1
};

struct MaComp {
    std::uint32_t md, ma, comp;
    std::uint32_t tagging;
    std::uint16_t vid;
};

struct Ma {
    std::uint32_t md, ma;
    std::string name;  // bytes, as Md::name
    std::uint32_t ccm_period;
};

struct Mep {
    std::uint32_t md, ma, mep;
    std::uint16_t id;
    std::uint32_t direction;
    std::uint16_t vid;
    std::string mac;
    std::uint8_t slot, port;
    std::uint16_t alarm_bits;  // as stored, before Tarv__GetAlarms masks bit 2
};

struct Mip {
    std::uint32_t md, ma, mip;
    std::string mac;
    std::uint8_t slot, port;
};

struct Throughput {
    std::uint32_t md, ma, mep, test;
    std::uint32_t status;
    std::uint32_t a;
    std::uint16_t b, c, d;
};

struct HistoryRecord {
    std::uint32_t id;
    std::string result;  // bytes, as Md::name
};

struct PmSession {
    std::uint32_t md, ma, mep;
    std::uint8_t session;
};

struct Bwn {
    std::uint32_t md, ma, mep;
    std::string data;  // the controller's 18 bytes, hex
};

// Everything the views show, read class by class: through the transfer
// lists, and the MEPs, throughput tests and bandwidth notifications through
// their iterators and readers.
struct Configuration {
    std::vector<Md> mds;
    std::vector<Ma> mas;
    std::vector<MaComp> comps;
    std::vector<Mep> meps;
    std::vector<Mip> mips;
    std::vector<Throughput> throughput;
    std::vector<HistoryRecord> history;
    std::vector<PmSession> pm;
    std::vector<Bwn> bwn;
    bool throughput_enabled = false;  // Tarv_GetEnableStatusofThroughput

    static Configuration read();

    [[nodiscard]] const Md* find_md(std::uint32_t md) const noexcept;
    [[nodiscard]] const Ma* find_ma(std::uint32_t md, std::uint32_t ma) const noexcept;
    [[nodiscard]] const Mep* find_mep(std::uint32_t md, std::uint32_t ma, std::uint32_t mep) const noexcept;
    // The MA's components in slot order; the first is the one the library
    // resolves a MEP's service by.
    [[nodiscard]] std::vector<const MaComp*> comps_of(std::uint32_t md, std::uint32_t ma) const;
};

// The alarm of one MEP slot: its word as Tarv__GetAlarms reports it, and
// the MOID and text Tarv__GetDetailsForAlarm gives for the slot.
struct MepAlarm {
    std::uint32_t slot;
    bool named;  // a current or old MOID names the MEP
    std::uint32_t md, ma, mep;
    std::uint16_t word;
    std::uint16_t stored;  // the MEP's wAlarmBits when it has a word, before bit 2 is masked
    std::string text;  // bytes, as Md::name
};

// The alarm of one PM slot: its key (Tarv__GetPMAlarmMoid), its word
// (Tarv__GetPMAlarms) and where the session runs
// (Tarv__GetMepInfoAbout1731Alarm; empty when the chain is broken).
struct PmAlarm {
    std::uint32_t slot;
    std::uint32_t md, ma, mep;
    std::uint8_t session;
    std::uint16_t word;
    std::string source;  // bytes, as Md::name: the library copies the MD and MA names in
};

struct Alarms {
    std::vector<MepAlarm> meps;  // slots with an alarm word or a text
    std::vector<PmAlarm> pm;     // slots with a PM alarm key or a word
    std::vector<std::uint8_t> hw;  // the MEP hardware alarm block

    static Alarms read(const Configuration& c);
};

// The numbers of the bits set in an alarm word, lowest first.
[[nodiscard]] std::vector<unsigned> bits_of(std::uint16_t word);

// Texts of the placement fields.
[[nodiscard]] std::string port_text(std::uint8_t slot, std::uint8_t port);  // "1/3", "lag 5"
[[nodiscard]] std::string tagging_text(std::uint32_t tagging);               // "C-VLAN", "S-VLAN", "VFI"
[[nodiscard]] std::string direction_text(std::uint32_t direction);           // "Down", "Up"
[[nodiscard]] std::string path_text(std::initializer_list<std::uint32_t> ids);  // "1/1/3"

// The library's values of the placement fields: taggings of an MA
// component, and the LAG pseudo-slot (a point on it sits on the LAG its port
// numbers).
using tarv::macomp::kCVlan;
using tarv::macomp::kSVlan;
using tarv::macomp::kVfi;
using tarv::mep::kLagSlot;

}  // namespace tarvtool

#endif
