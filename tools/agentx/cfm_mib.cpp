#include "cfm_mib.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include "common/bytes.h"
#include "common/status.h"

namespace tarvagentx {
namespace {

// Values of the MIB's textual conventions that the tables answer with.
constexpr std::int64_t kRowActive = 1;        // RowStatus active
constexpr std::int64_t kTrue = 1;             // TruthValue
constexpr std::int64_t kFalse = 2;            // TruthValue
constexpr std::int64_t kMdCharString = 4;     // Dot1agCfmMaintDomainNameType charString
constexpr std::int64_t kMaCharString = 2;     // Dot1agCfmMaintAssocNameType charString
constexpr std::int64_t kMdMhfNone = 1;        // dot1agCfmMdMhfCreation default, defMHFnone
constexpr std::int64_t kMdSendIdNone = 1;     // dot1agCfmMdMhfIdPermission default, sendIdNone
constexpr std::int64_t kCompMhfDefer = 4;     // dot1agCfmMaCompMhfCreation default, defMHFdefer
constexpr std::int64_t kCompSendIdDefer = 5;  // dot1agCfmMaCompIdPermission default, sendIdDefer
constexpr std::int64_t kIntervalInvalid = 0;  // Dot1agCfmCcmInterval intervalInvalid
constexpr std::uint32_t kMaxMepId = 8191;     // Dot1agCfmMepId
constexpr std::uint32_t kMaxLevel = 7;        // Dot1agCfmMDLevel
constexpr std::uint32_t kMaxVlanId = 4094;    // VlanIdOrNone
constexpr unsigned kDefectBits = 5;           // Dot1agCfmMepDefects: bDefRDICCM(0) .. bDefXconCCM(4)
constexpr std::int64_t kPortIfIndexPerSlot = 1000;
constexpr std::int64_t kLagIfIndexBase = 10000;

// Capacity of the MaNet table: MA numbers 1..128 address its slots, shared by all MDs.
constexpr std::uint32_t kMaSlots = 128;

enum Table : std::size_t { kMd, kMaNet, kMaComp, kMaMepList, kMep };

Value integer(std::int64_t v) { return {Value::Type::Integer, v, {}}; }
Value gauge(std::int64_t v) { return {Value::Type::Unsigned, v, {}}; }
Value octets(std::vector<std::uint8_t> v) { return {Value::Type::Octets, 0, std::move(v)}; }
Value text(const std::string& s, std::size_t max) {
    return octets({s.begin(), s.begin() + static_cast<std::ptrdiff_t>(std::min(s.size(), max))});
}

// Collects the instances of one table's rows.
class Rows {
public:
    Rows(std::vector<Instance>& out, Table table) : out_(out), def_(tables()[table]) {}

    void add(const Oid& index, std::uint32_t column, Value value) {
        Oid oid(std::begin(kCfmRoot), std::end(kCfmRoot));
        oid.insert(oid.end(), def_.oid.begin(), def_.oid.end());
        oid.push_back(1);  // the table's entry
        oid.push_back(column);
        oid.insert(oid.end(), index.begin(), index.end());
        out_.push_back({std::move(oid), std::move(value)});
    }

private:
    std::vector<Instance>& out_;
    const TableDef& def_;
};

// The region's CCM period codes are the MIB's interval numbers: 1 (3.3 ms)
// to 7 (10 min); anything else is not a valid interval.
std::int64_t ccm_interval(std::uint32_t period) {
    return period >= 1 && period <= 7 ? std::int64_t{period} : kIntervalInvalid;
}

// The next MA number no MaNet of the region uses, 0 when all are taken.
std::int64_t next_free_ma(const tarvtool::Configuration& c) {
    std::set<std::uint32_t> used;
    for (const tarvtool::Ma& m : c.mas) used.insert(m.ma);
    for (std::uint32_t n = 1; n <= kMaSlots; ++n)
        if (!used.contains(n)) return n;
    return 0;
}

void md_rows(std::vector<Instance>& out, const tarvtool::Configuration& c) {
    Rows rows(out, kMd);
    const std::int64_t next = next_free_ma(c);
    for (const tarvtool::Md& m : c.mds) {
        if (m.md == 0) continue;
        const Oid index{m.md};
        rows.add(index, 2, integer(kMdCharString));
        rows.add(index, 3, text(m.name, 43));
        if (m.level >= 0 && m.level <= std::int64_t{kMaxLevel}) rows.add(index, 4, integer(m.level));
        rows.add(index, 5, integer(kMdMhfNone));
        rows.add(index, 6, integer(kMdSendIdNone));
        rows.add(index, 7, gauge(next));
        rows.add(index, 8, integer(kRowActive));
    }
}

void ma_rows(std::vector<Instance>& out, const tarvtool::Configuration& c) {
    Rows rows(out, kMaNet);
    for (const tarvtool::Ma& m : c.mas) {
        if (m.md == 0 || m.ma == 0) continue;
        const Oid index{m.md, m.ma};
        rows.add(index, 2, integer(kMaCharString));
        rows.add(index, 3, text(m.name, 45));
        rows.add(index, 4, integer(ccm_interval(m.ccm_period)));
        rows.add(index, 5, integer(kRowActive));
    }
}

// An MA component is a row of the bridge component it tags on: component 1
// for a C-VLAN, 2 for an S-VLAN, 5 for a VFI, the region's tagging codes.
void comp_rows(std::vector<Instance>& out, const tarvtool::Configuration& c) {
    Rows rows(out, kMaComp);
    for (const tarvtool::MaComp& m : c.comps) {
        if (m.md == 0 || m.ma == 0) continue;
        if (m.tagging != tarvtool::kCVlan && m.tagging != tarvtool::kSVlan && m.tagging != tarvtool::kVfi) continue;
        const Oid index{m.tagging, m.md, m.ma};
        if (m.vid <= kMaxVlanId) rows.add(index, 2, integer(m.vid));
        rows.add(index, 3, integer(kCompMhfDefer));
        rows.add(index, 4, integer(kCompSendIdDefer));
        rows.add(index, 5, gauge(1));  // a component holds one VID
        rows.add(index, 6, integer(kRowActive));
    }
}

// The MIB's defects from a MEP's alarm word as Tarv__GetAlarms reports it:
// bit n (0..4) is the MIB's defect bit n (RDI, MAC status, remote CCM
// (loss of continuity), error CCM, cross-connect); higher bits have no
// defect. The highest-priority defect is the highest of them.
std::pair<std::int64_t, std::vector<std::uint8_t>> defects(std::uint16_t word) {
    std::int64_t highest = 0;
    std::uint8_t bits = 0;
    for (unsigned n = 0; n < kDefectBits; ++n) {
        if (((unsigned{word} >> n) & 1U) == 0) continue;
        highest = n + 1;
        bits = static_cast<std::uint8_t>(bits | (0x80U >> n));
    }
    return {highest, {bits}};
}

void mep_rows(std::vector<Instance>& out, const tarvtool::Configuration& c, const tarvtool::Alarms& a,
              const IfIndexMap& map) {
    Rows list(out, kMaMepList);
    Rows rows(out, kMep);
    for (const tarvtool::Mep& m : c.meps) {
        if (m.md == 0 || m.ma == 0 || m.id == 0 || m.id > kMaxMepId) continue;
        const Oid index{m.md, m.ma, m.id};
        list.add(index, 2, integer(kRowActive));
        rows.add(index, 2, integer(map.ifindex(m.slot, m.port)));
        if (m.direction == tarv::mep::kDown || m.direction == tarv::mep::kUp) rows.add(index, 3, integer(m.direction));
        rows.add(index, 4, gauge(m.vid));
        rows.add(index, 5, integer(kTrue));  // the controller runs every MEP the region holds
        const tarvtool::Ma* ma = c.find_ma(m.md, m.ma);
        const bool cci = ma != nullptr && ccm_interval(ma->ccm_period) != kIntervalInvalid;
        rows.add(index, 7, integer(cci ? kTrue : kFalse));
        if (const auto mac = tarvtool::parse_mac(m.mac)) rows.add(index, 9, octets(*mac));
        std::uint16_t word = 0;
        for (const tarvtool::MepAlarm& alarm : a.meps)
            if (alarm.named && alarm.md == m.md && alarm.ma == m.ma && alarm.mep == m.mep) word = alarm.word;
        auto [highest, bits] = defects(word);
        rows.add(index, 13, integer(highest));
        rows.add(index, 14, octets(std::move(bits)));
        rows.add(index, 45, integer(kRowActive));
    }
}

std::optional<std::int64_t> number(const std::string& word, std::int64_t max) {
    std::int64_t v = 0;
    const auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
    if (ec != std::errc{} || end != word.data() + word.size() || v < 0 || v > max) return std::nullopt;
    return v;
}

}  // namespace

const std::vector<TableDef>& tables() {
    static const std::vector<TableDef> defs = {
        {"dot1agCfmMdTable", {1, 5, 2}, {2, 3, 4, 5, 6, 7, 8}},
        {"dot1agCfmMaNetTable", {1, 6, 1}, {2, 3, 4, 5}},
        {"dot1agCfmMaCompTable", {1, 6, 2}, {2, 3, 4, 5, 6}},
        {"dot1agCfmMaMepListTable", {1, 6, 3}, {2}},
        {"dot1agCfmMepTable", {1, 7, 1}, {2, 3, 4, 5, 7, 9, 13, 14, 45}},
    };
    return defs;
}

bool oid_less(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

IfIndexMap IfIndexMap::load(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw tarvtool::Failure(tarvtool::kExitIo, fmt::format("cannot read the ifIndex map '{}'", path));
    IfIndexMap map;
    std::string line;
    for (int n = 1; std::getline(in, line); ++n) {
        if (const std::size_t hash = line.find('#'); hash != std::string::npos) line.resize(hash);
        std::istringstream words(line);
        std::vector<std::string> w;
        for (std::string word; words >> word;) w.push_back(word);
        if (w.empty()) continue;
        std::optional<std::int64_t> slot;
        std::optional<std::int64_t> port;
        std::optional<std::int64_t> number_given;
        if (w.size() == 3 && w[0] == "lag") {
            slot = tarvtool::kLagSlot;
            port = number(w[1], 255);
            number_given = number(w[2], 2147483647);
        } else if (w.size() == 2 && w[0].find('/') != std::string::npos) {
            const std::size_t slash = w[0].find('/');
            slot = number(w[0].substr(0, slash), 255);
            port = number(w[0].substr(slash + 1), 255);
            if (slot == tarvtool::kLagSlot) slot.reset();  // slot 2 numbers LAGs: "lag N"
            number_given = number(w[1], 2147483647);
        }
        if (!slot || !port || !number_given)
            throw tarvtool::Failure(tarvtool::kExitUsage,
                                    fmt::format("{}:{}: expected 'SLOT/PORT IFINDEX' or 'lag N IFINDEX'", path, n));
        map.entries_[{static_cast<std::uint8_t>(*slot), static_cast<std::uint8_t>(*port)}] = *number_given;
    }
    return map;
}

std::int64_t IfIndexMap::ifindex(std::uint8_t slot, std::uint8_t port) const {
    if (const auto it = entries_.find({slot, port}); it != entries_.end()) return it->second;
    return slot == tarvtool::kLagSlot ? kLagIfIndexBase + port : slot * kPortIfIndexPerSlot + port;
}

std::vector<Instance> instances(const tarvtool::Configuration& c, const tarvtool::Alarms& a, const IfIndexMap& map) {
    std::vector<Instance> out;
    md_rows(out, c);
    ma_rows(out, c);
    comp_rows(out, c);
    mep_rows(out, c, a, map);
    // A row the region holds twice (a half-written class, a duplicate MEP
    // id) is answered once, from its first reading.
    std::stable_sort(out.begin(), out.end(),
                     [](const Instance& x, const Instance& y) { return oid_less(x.oid, y.oid); });
    out.erase(std::unique(out.begin(), out.end(), [](const Instance& x, const Instance& y) { return x.oid == y.oid; }),
              out.end());
    return out;
}

}  // namespace tarvagentx
