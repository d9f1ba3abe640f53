// tarvctl check: consistency of the region, which no library call checks on
// its own. It works on one copy of the region's bytes, slot by slot, since
// what it looks for (keys in the wrong slot, records behind empty keys,
// duplicates) is exactly what the library's lists and lookups pass over.
// It also checks the values of the fields the library acts on: a value it
// does not know makes it answer for a place or service that does not exist.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "commands.h"
#include "consistency.h"
#include "common/records.h"
#include "common/status.h"
#include "style.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

class Checker {
public:
    explicit Checker(Bytes region) : region_(region) {}

    std::vector<Finding> run() {
        for (const ClassDef& c : classes()) {
            if (c.rule != Rule::List && c.rule != Rule::History) continue;
            seen_.clear();
            for (std::uint32_t s = 0; s < c.slots; ++s) check_slot(c, s);
        }
        return std::move(findings_);
    }

private:
    // A parent an object needs: the class and how many of the object's
    // identifiers form the parent's key.
    struct Parent {
        std::uint32_t child;
        std::uint32_t parent;
        std::uint32_t ids;
        const char* what;
    };
    static constexpr std::array<Parent, 9> kParents{{
        {cls::kMaNet, cls::kMd, 1, "MD"},
        {cls::kMaComp, cls::kMaNet, 2, "MA"},
        {cls::kMep, cls::kMaNet, 2, "MA"},
        {cls::kMep, cls::kMd, 1, "MD"},
        {cls::kMip, cls::kMaNet, 2, "MA"},
        {cls::kMip, cls::kMd, 1, "MD"},
        {cls::kThroughput, cls::kMep, 3, "MEP"},
        {cls::kPmSession, cls::kMep, 3, "MEP"},
        {cls::kBwn, cls::kMep, 3, "MEP"},
    }};

    [[nodiscard]] Bytes key(const ClassDef& c, std::uint32_t slot) const {
        return region_.subspan(c.keys.base + std::size_t{slot} * c.key, c.key);
    }
    [[nodiscard]] Bytes record(const ClassDef& c, std::uint32_t slot) const {
        return region_.subspan(c.data.base + std::size_t{slot} * c.record, c.record);
    }
    // Whether the library lists the slot.
    [[nodiscard]] bool listed(const ClassDef& c, std::uint32_t slot) const {
        if (c.session_keyed()) return slot > 0 && key(c, slot)[tarv::moid::kSessionIdOffset] == slot;
        return !all_zero(key(c, slot));
    }
    // Whether class c lists an object whose key starts with these bytes.
    [[nodiscard]] bool exists(const ClassDef& c, Bytes prefix) const {
        for (std::uint32_t s = 0; s < c.slots; ++s)
            if (listed(c, s) && std::equal(prefix.begin(), prefix.end(), key(c, s).begin())) return true;
        return false;
    }

    void add(std::string_view table, std::uint32_t slot, std::string_view kind, std::string problem) {
        findings_.push_back(Finding{table, slot, kind, std::move(problem)});
    }

    void check_slot(const ClassDef& c, std::uint32_t s) {
        const Bytes k = key(c, s);
        if (all_zero(k)) {
            if (!all_zero(record(c, s)))
                add(c.data.name, s, "recordBehindEmptyKey", "record bytes behind an empty key");
            return;
        }
        const std::string name = label(c, k);
        const KeyIds ids = key_ids(c, k);
        if (c.rule == Rule::List && !c.session_keyed() && ids.cls != c.id)
            add(c.keys.name, s, "wrongClass",
                fmt::format("{}: key of class {} in the table of class {}", name, ids.cls, c.id));
        if (c.placement == Placement::LastId) {
            const std::uint32_t instance = ids.id[ids.count - 1] & 0xFFFFu;
            if (instance == 0 || instance > c.slots)
                add(c.keys.name, s, "noSlot",
                    fmt::format("{}: instance {} has no slot (instances run from 1 to {})", name, instance, c.slots));
            else if (instance - 1 != s)
                add(c.keys.name, s, "wrongSlot", fmt::format("{}: belongs in slot {}", name, instance - 1));
        }
        if (c.session_keyed()) {
            if (s == 0)
                add(c.keys.name, s, "slotZero", fmt::format("{}: slot 0 is never used", name));
            else if (ids.session != s)
                add(c.keys.name, s, "sessionMismatch",
                    fmt::format("{}: session id {} does not match the slot", name, ids.session));
        }
        const auto [first, fresh] = seen_.try_emplace(std::string(k.begin(), k.end()), s);
        if (!fresh)
            add(c.keys.name, s, "duplicateKey", fmt::format("{}: same key as slot {}", name, first->second));
        if (!listed(c, s)) return;
        for (const Parent& p : kParents) {
            if (p.child != c.id) continue;
            std::array<std::uint8_t, 14> parent{};
            parent[0] = static_cast<std::uint8_t>(p.parent);
            parent[1] = static_cast<std::uint8_t>(p.parent >> 8);
            std::copy_n(k.begin() + 2, 4 * p.ids, parent.begin() + 2);
            if (!exists(class_of(p.parent), Bytes(parent).first(2 + 4 * p.ids))) {
                std::vector<std::uint32_t> path(ids.id, ids.id + p.ids);
                add(c.keys.name, s, "missingParent",
                    fmt::format("{}: its {} {} is missing", name, p.what, fmt::join(path, "/")));
            }
        }
        if (c.id == cls::kMaNet) check_components(c, s, k);
        check_values(c, s, k, name);
    }

    // The CCM intervals of IEEE 802.1ag (dot1agCfmMaNetCcmInterval): 1 for
    // 3.3 ms up to 7 for 10 min; 0 is "invalid".
    static constexpr std::uint32_t kCcmPeriods = 7;
    static constexpr std::int64_t kTopLevel = 7;

    // The fields the library acts on hold values it knows: MD levels 0-7,
    // CCM intervals, a MEP's direction, places the chassis has (the port
    // library numbers slots and ports from 1; a LAG id is any byte), a MEP
    // VID that one of its MA's components carries.
    void check_values(const ClassDef& c, std::uint32_t s, Bytes k, const std::string& name) {
        using namespace field;
        const Bytes r = record(c, s);
        if (c.id != cls::kMd && c.id != cls::kMaNet && c.id != cls::kMep && c.id != cls::kMip) return;
        if (all_zero(r)) {
            // Every value of such a record is wrong: one finding says so.
            add(c.data.name, s, "emptyRecord", fmt::format("{}: its record is all zero bytes", name));
            return;
        }
        if (c.id == cls::kMd) {
            const std::int64_t level = std::int64_t{value(r, eMdLevel)} - 1;
            if (level < 0 || level > kTopLevel)
                add(c.data.name, s, "mdLevel",
                    fmt::format("{}: level {} outside 0-{} (level code {})", name, level, kTopLevel, level + 1));
        } else if (c.id == cls::kMaNet) {
            const std::uint32_t period = value(r, dwCcmPeriod);
            if (period == 0 || period > kCcmPeriods)
                add(c.data.name, s, "ccmPeriod",
                    fmt::format("{}: CCM period {} is no CCM interval (1 to {})", name, period, kCcmPeriods));
        } else if (c.id == cls::kMep) {
            const std::uint32_t direction = value(r, eDirection);
            if (direction != tarv::mep::kDown && direction != tarv::mep::kUp)
                add(c.data.name, s, "direction",
                    fmt::format("{}: direction {} is neither Down ({}) nor Up ({})", name, direction,
                                tarv::mep::kDown, tarv::mep::kUp));
            check_place(c, s, name, value(r, byMepSlot), value(r, byMepPort));
            check_vid(c, s, k, name, value(r, wMepVid));
        } else if (c.id == cls::kMip) {
            check_place(c, s, name, value(r, byMipSlot), value(r, byMipPort));
        }
    }

    void check_place(const ClassDef& c, std::uint32_t s, const std::string& name, std::uint32_t slot,
                     std::uint32_t port) {
        if (slot == 0)
            add(c.data.name, s, "place", fmt::format("{}: on slot 0, which the chassis does not have", name));
        else if (slot != tarv::mep::kLagSlot && port == 0)
            add(c.data.name, s, "place", fmt::format("{}: on port 0 of slot {}, which the chassis does not have",
                                                     name, slot));
    }

    // A MEP's VID is the one of its service: some component of its MA must
    // carry it (an MA without components is a finding of its own).
    void check_vid(const ClassDef& mep, std::uint32_t s, Bytes k, const std::string& name, std::uint32_t vid) {
        const ClassDef& comps = class_of(cls::kMaComp);
        std::vector<std::uint32_t> carried;
        for (std::uint32_t i = 0; i < comps.slots; ++i) {
            const Bytes ck = key(comps, i);
            if (listed(comps, i) && std::equal(k.begin() + 2, k.begin() + 10, ck.begin() + 2))
                carried.push_back(value(record(comps, i), field::wCompVid));
        }
        if (!carried.empty() && std::find(carried.begin(), carried.end(), vid) == carried.end())
            add(mep.data.name, s, "vid",
                fmt::format("{}: VID {} is not the VID of its MA's components ({})", name, vid,
                            fmt::join(carried, ", ")));
    }

    // An MA with MEPs needs a component: the library resolves a MEP's
    // tagging through it.
    void check_components(const ClassDef& manet, std::uint32_t s, Bytes k) {
        std::array<std::uint8_t, 10> ma{};
        std::copy_n(k.begin() + 2, 8, ma.begin() + 2);
        auto has = [&](std::uint32_t id) {
            const std::uint16_t cls = static_cast<std::uint16_t>(id);
            ma[0] = static_cast<std::uint8_t>(cls);
            ma[1] = static_cast<std::uint8_t>(cls >> 8);
            return exists(class_of(id), Bytes(ma));
        };
        if (has(cls::kMep) && !has(cls::kMaComp))
            add(manet.keys.name, s, "noComponent", fmt::format("{}: has MEPs but no MA component", label(manet, k)));
    }

    Bytes region_;
    std::vector<Finding> findings_;
    std::unordered_map<std::string, std::uint32_t> seen_;  // keys of the class so far, by first slot
};

}  // namespace

std::vector<Finding> find_inconsistencies(Bytes region) { return Checker(region).run(); }

void add_check(CLI::App& app, const Options& options, Commands& commands) {
    struct Args {
        bool json = false;
        std::size_t max_findings = 20;
    };
    auto args = std::make_shared<Args>();
    CLI::App* check = app.add_subcommand("check", "Check the region's consistency");
    check->footer(
        "Check the region's consistency, as no library call does: objects whose MD, MA or MEP is missing, MAs "
        "with MEPs but no MA component, keys whose identifier does not match their slot or whose class does not "
        "match their table, duplicate keys, records behind empty keys, PM entries whose session id does not "
        "match their slot; and field values the library does not know: a record of zero bytes only, an MD level "
        "outside 0-7, a CCM period "
        "that is no CCM interval (1 to 7), a MEP direction other than Down (1) and Up (2), a MEP or MIP on slot 0 "
        "or on port 0, a MEP VID that no component of its MA carries.\n"
        "One line per finding (table, index, what is wrong), at most --max-findings of them, then a summary with "
        "the count of each kind. Exit status 0 when there is none, 1 with findings.");
    check->add_flag("--json", args->json, "JSON on standard output, for scripts");
    check->add_option("--max-findings", args->max_findings, "List at most N findings (default 20; 0: all)")
        ->type_name("N")
        ->check(CLI::Range(0, 1000000));
    commands.add(check, [&options, args] {
        const DataRegion region = DataRegion::attach(options);
        const std::vector<std::uint8_t> bytes = region.copy();
        const std::vector<Finding> findings = find_inconsistencies(bytes);
        const std::size_t listed =
            args->max_findings == 0 ? findings.size() : std::min(findings.size(), args->max_findings);
        std::map<std::string_view, std::size_t> counts;
        for (const Finding& f : findings) ++counts[f.kind];
        if (args->json) {
            Json list = Json::array();
            for (std::size_t i = 0; i < listed; ++i) {
                const Finding& f = findings[i];
                list.push_back({{"table", f.table}, {"index", f.slot}, {"kind", f.kind}, {"problem", f.problem}});
            }
            Json by_kind = Json::object();
            for (const auto& count : counts) by_kind[std::string(count.first)] = count.second;
            print_json(
                {{"region", region.where()}, {"total", findings.size()}, {"counts", by_kind}, {"findings", list}});
            return findings.empty() ? kExitOk : kExitFindings;
        }
        for (std::size_t i = 0; i < listed; ++i) {
            const Finding& f = findings[i];
            fmt::print("{} slot {}: {}\n", paint(stdout, Tone::Note, f.table), f.slot, f.problem);
        }
        if (listed < findings.size())
            fmt::print("... {} more not listed (--max-findings)\n", findings.size() - listed);
        if (findings.empty()) {
            fmt::print("{}\n", paint(stdout, Tone::Good, fmt::format("no findings in {}", region.where())));
            return kExitOk;
        }
        std::vector<std::string> kinds;
        kinds.reserve(counts.size());
        for (const auto& count : counts) kinds.push_back(fmt::format("{} {}", count.first, count.second));
        fmt::print("{}\n", paint(stdout, Tone::Bad,
                                 fmt::format("{} finding{} in {}: {}", findings.size(), findings.size() == 1 ? "" : "s",
                                             region.where(), fmt::join(kinds, ", "))));
        return kExitFindings;
    });
}

}  // namespace tarvctl
