// tarvctl check: consistency of the region, which no library call checks on
// its own. It works on one copy of the region's bytes, slot by slot, since
// what it looks for (keys in the wrong slot, records behind empty keys,
// duplicates) is exactly what the library's lists and lookups pass over.
#include <fmt/format.h>

#include <fmt/ranges.h>

#include <algorithm>
#include <array>
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

    void add(std::string_view table, std::uint32_t slot, std::string problem) {
        findings_.push_back(Finding{table, slot, std::move(problem)});
    }

    void check_slot(const ClassDef& c, std::uint32_t s) {
        const Bytes k = key(c, s);
        if (all_zero(k)) {
            if (!all_zero(record(c, s))) add(c.data.name, s, "record bytes behind an empty key");
            return;
        }
        const std::string name = label(c, k);
        const KeyIds ids = key_ids(c, k);
        if (c.rule == Rule::List && !c.session_keyed() && ids.cls != c.id)
            add(c.keys.name, s, fmt::format("{}: key of class {} in the table of class {}", name, ids.cls, c.id));
        if (c.placement == Placement::LastId) {
            const std::uint32_t instance = ids.id[ids.count - 1] & 0xFFFFu;
            if (instance == 0 || instance > c.slots)
                add(c.keys.name, s,
                    fmt::format("{}: instance {} has no slot (instances run from 1 to {})", name, instance, c.slots));
            else if (instance - 1 != s)
                add(c.keys.name, s, fmt::format("{}: belongs in slot {}", name, instance - 1));
        }
        if (c.session_keyed()) {
            if (s == 0)
                add(c.keys.name, s, fmt::format("{}: slot 0 is never used", name));
            else if (ids.session != s)
                add(c.keys.name, s, fmt::format("{}: session id {} does not match the slot", name, ids.session));
        }
        const auto [first, fresh] = seen_.try_emplace(std::string(k.begin(), k.end()), s);
        if (!fresh) add(c.keys.name, s, fmt::format("{}: same key as slot {}", name, first->second));
        if (!listed(c, s)) return;
        for (const Parent& p : kParents) {
            if (p.child != c.id) continue;
            std::array<std::uint8_t, 14> parent{};
            parent[0] = static_cast<std::uint8_t>(p.parent);
            parent[1] = static_cast<std::uint8_t>(p.parent >> 8);
            std::copy_n(k.begin() + 2, 4 * p.ids, parent.begin() + 2);
            if (!exists(class_of(p.parent), Bytes(parent).first(2 + 4 * p.ids))) {
                std::vector<std::uint32_t> path(ids.id, ids.id + p.ids);
                add(c.keys.name, s, fmt::format("{}: its {} {} is missing", name, p.what, fmt::join(path, "/")));
            }
        }
        if (c.id == cls::kMaNet) check_components(c, s, k);
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
            add(manet.keys.name, s, fmt::format("{}: has MEPs but no MA component", label(manet, k)));
    }

    Bytes region_;
    std::vector<Finding> findings_;
    std::unordered_map<std::string, std::uint32_t> seen_;  // keys of the class so far, by first slot
};

}  // namespace

std::vector<Finding> find_inconsistencies(Bytes region) { return Checker(region).run(); }

void add_check(CLI::App& app, const Options& options, Commands& commands) {
    auto json = std::make_shared<bool>(false);
    CLI::App* check = app.add_subcommand("check", "Check the region's consistency");
    check->footer(
        "Check the region's consistency, as no library call does: objects whose MD, MA or MEP is missing, MAs "
        "with MEPs but no MA component, keys whose identifier does not match their slot or whose class does not "
        "match their table, duplicate keys, records behind empty keys, PM entries whose session id does not "
        "match their slot.\nOne line per finding: table, slot, what is wrong. Exit status 0 when there is none, 1 "
        "with findings.");
    check->add_flag("--json", *json, "JSON on standard output, for scripts");
    commands.add(check, [&options, json] {
        const DataRegion region = DataRegion::attach(options);
        const std::vector<std::uint8_t> bytes = region.copy();
        const std::vector<Finding> findings = find_inconsistencies(bytes);
        if (*json) {
            Json list = Json::array();
            for (const Finding& f : findings)
                list.push_back({{"table", f.table}, {"slot", f.slot}, {"problem", f.problem}});
            print_json({{"region", region.where()}, {"findings", list}});
        } else {
            for (const Finding& f : findings)
                fmt::print("{} slot {}: {}\n", paint(stdout, Tone::Note, f.table), f.slot, f.problem);
            if (findings.empty())
                fmt::print("{}\n", paint(stdout, Tone::Good, fmt::format("no findings in {}", region.where())));
            else
                fmt::print("{}\n", paint(stdout, Tone::Bad,
                                         fmt::format("{} finding{} in {}", findings.size(),
                                                     findings.size() == 1 ? "" : "s", region.where())));
        }
        return findings.empty() ? kExitOk : kExitFindings;
    });
}

}  // namespace tarvctl
