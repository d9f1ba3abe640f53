// tarvctl port, vlan, vfi, lag and slot: the questions the port, VLAN, VFI
// and LAG managers ask the library before they change something, asked the
// same way and answered in one view each. The exit status is 0 for "OAM
// uses it" (for `slot`: "a MEP fits"), 1 for "no", so that scripts can ask
// as the managers do.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <set>

#include "args.h"
#include "commands.h"
#include "common/objects.h"
#include "platform/prtm.h"
#include "query.h"
#include "show.h"
#include "common/records.h"
#include "common/status.h"
#include "style.h"
#include "tarv/tarv.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

constexpr std::uint32_t kMaxVid = 4094;
constexpr std::uint32_t kMaxId16 = 65535;

std::string yes_no(bool yes) { return yes ? "yes" : "no"; }

// Questions with their answers and the call that answered, as a table or
// as JSON ({"call": answer, ...}).
class Answers {
public:
    void add(std::string question, std::string call, Json answer) {
        rows_.push_back({std::move(question), std::move(call), std::move(answer)});
    }
    void print() const {
        Table t({"QUESTION", "ANSWER", "CALL"});
        for (const Row& r : rows_) t.add({r.question, text(r.answer), r.call});
        t.print(stdout);
    }
    [[nodiscard]] Json json() const {
        Json j = Json::object();
        for (const Row& r : rows_) j[r.call] = r.answer;
        return j;
    }
    // "1/1/3" for a MEP or MIP reference.
    static std::string point_text(const Json& point) {
        const Json& last = point.contains("mip") ? point.at("mip") : point.at("mep");
        return path_text({point.at("md").get<std::uint32_t>(), point.at("ma").get<std::uint32_t>(),
                          last.get<std::uint32_t>()});
    }
    // "yes", "no", a list of points, or "-" for an empty one.
    static std::string text(const Json& answer) {
        if (answer.is_boolean()) return yes_no(answer.get<bool>());
        if (answer.is_array()) {
            if (answer.empty()) return "-";
            std::vector<std::string> items;
            for (const Json& a : answer) items.push_back(a.is_object() ? point_text(a) : a.dump());
            return fmt::format("{}", fmt::join(items, ", "));
        }
        return answer.is_string() ? answer.get<std::string>() : answer.dump();
    }

private:
    struct Row {
        // cppcheck-suppress unusedStructMember ; print() and json() read both
        std::string question, call;
        Json answer;
    };
    std::vector<Row> rows_;
};

// A MEP's MOID as the library compares it: the region's little-endian
// bytes, whatever the host.
TARV_MOID moid_of(std::uint32_t md, std::uint32_t ma, std::uint32_t mep) {
    const std::vector<std::uint8_t> key = make_key(class_of(cls::kMep), {md, ma, mep});
    TARV_MOID moid{};
    std::memcpy(&moid, key.data(), sizeof moid);
    return moid;
}

// The MEP a MOID the library handed out names; its bytes are little-endian.
Json mep_of(const Configuration& c, const TARV_MOID& moid) {
    const auto* k = reinterpret_cast<const std::uint8_t*>(&moid);
    return mep_json(c, le32(k + 2), le32(k + 6), le32(k + 10));
}

// A MIP as JSON names it.
Json mip_json(const Mip& m) { return {{"md", m.md}, {"ma", m.ma}, {"mip", m.mip}}; }

// What the region places on (slot, port), as JSON: the MEPs with their
// direction and service, the MIPs.
Json points_json(const Configuration& c, std::uint8_t slot, std::uint8_t port) {
    Json meps = Json::array();
    for (const Mep& m : c.meps) {
        if (m.slot != slot || m.port != port) continue;
        const auto comps = c.comps_of(m.md, m.ma);
        Json j = mep_json(c, m.md, m.ma, m.mep);
        j["direction"] = direction_text(m.direction);
        j["tagging"] = comps.empty() ? Json(nullptr) : Json(tagging_text(comps.front()->tagging));
        j["vid"] = m.vid;
        meps.push_back(std::move(j));
    }
    Json mips = Json::array();
    for (const Mip& m : c.mips)
        if (m.slot == slot && m.port == port) mips.push_back(mip_json(m));
    return {{"meps", meps}, {"mips", mips}};
}

// "MEP 3/3/5 (id 301, Down, VFI 7), MIP 1/1/1 (MA 1/1)" for what the
// region places on (slot, port).
std::string points_text(const Configuration& c, std::uint8_t slot, std::uint8_t port) {
    std::vector<std::string> points;
    for (const Mep& m : c.meps) {
        if (m.slot != slot || m.port != port) continue;
        const auto comps = c.comps_of(m.md, m.ma);
        const bool vfi = !comps.empty() && comps.front()->tagging == kVfi;
        points.push_back(fmt::format("MEP {} (id {}, {}, {} {})", path_text({m.md, m.ma, m.mep}), m.id,
                                     direction_text(m.direction), vfi ? "VFI" : "VLAN", m.vid));
    }
    for (const Mip& m : c.mips)
        if (m.slot == slot && m.port == port)
            points.push_back(fmt::format("MIP {} (MA {})", path_text({m.md, m.ma, m.mip}), path_text({m.md, m.ma})));
    return points.empty() ? "no MEP or MIP in the region" : fmt::format("{}", fmt::join(points, ", "));
}

struct PortArgs {
    std::string place;
    std::vector<std::string> ids;
    std::string range = "1-4094";
    std::string new_range;
    bool json = false;
};

// A question about one VLAN or VFI id on the port (s, p).
struct IdQuestion {
    const char* question;
    const char* call;
    std::function<Json(std::int32_t)> ask;
};

std::vector<IdQuestion> id_questions(const Configuration& c, std::int32_t s, std::int32_t p) {
    auto yes = [](std::uint32_t answer) { return Json(answer != 0); };
    return {
        {"a MEP on the port with it as S-VLAN", "Tarv__IsOamEnabledOnPortSVlan",
         [=](std::int32_t v) { return yes(Tarv__IsOamEnabledOnPortSVlan(s, p, v)); }},
        {"a MIP on the port in an MA with it as S-VLAN", "Tarv__IsOamEnabledOnMIPPortSVlan",
         [=](std::int32_t v) { return yes(Tarv__IsOamEnabledOnMIPPortSVlan(s, p, v)); }},
        {"a MEP or MIP on the port with it as C-VLAN", "Tarv__IsOamEnabledOnCVlanPort",
         [=](std::int32_t v) { return yes(Tarv__IsOamEnabledOnCVlanPort(s, p, v)); }},
        {"a MEP on the port with it as VFI", "Tarv__IsOamEnabledOnPortVfi",
         [=](std::int32_t v) { return yes(Tarv__IsOamEnabledOnPortVfi(s, p, v)); }},
        {"tagging mode 0 conflicts with a MEP", "Tarv__CheckTagging",
         [=](std::int32_t v) {
             const auto u = [](std::int32_t x) { return static_cast<std::uint32_t>(x); };
             return Json(Tarv__CheckTagging(u(s), u(p), u(v), 0) == TARV_TAGGING_CONFLICT);
         }},
        {"a VID translation of it cuts off OAM", "Tarv__IsVidTranslationUsedByOam",
         [=](std::int32_t v) { return Json(Tarv__IsVidTranslationUsedByOam(s, p, v) != 0); }},
        {"registering it as C-VID cuts off OAM", "Tarv__IsCVidRegistrationsUsedByOam",
         [=](std::int32_t v) { return yes(Tarv__IsCVidRegistrationsUsedByOam(s, p, v, 0, 0, 0, 0)); }},
        {"the Down MEPs with it as C-VLAN", "Tarv__FindDownMepFromSomeWhereOnCVlanPort",
         [=, &c](std::int32_t v) {
             Json found = Json::array();
             TARV_MOID moid{};
             std::array<std::uint8_t, TARV_MEP_RECORD_SIZE> record{};
             // Each call hands out the next one from the index given.
             for (std::int32_t at = 0; Tarv__FindDownMepFromSomeWhereOnCVlanPort(s, p, v, &at, &moid, record.data()) != 0;
                  ++at)
                 found.push_back(mep_of(c, moid));
             return found;
         }},
        {"a MIP with it as C-VLAN", "Tarv__DoesMipExistOnCVlanPort",
         [=](std::int32_t v) {
             Json found = Json::array();
             TARV_MOID moid{};
             std::array<std::uint8_t, TARV_MIP_RECORD_SIZE> record{};
             if (Tarv__DoesMipExistOnCVlanPort(s, p, v, &moid, record.data()) != 0) {
                 const auto* k = reinterpret_cast<const std::uint8_t*>(&moid);
                 found.push_back({{"md", le32(k + 2)}, {"ma", le32(k + 6)}, {"mip", le32(k + 10)}});
             }
             return found;
         }},
    };
}

int port(const Options& options, const PortArgs& args) {
    const SlotPort at = parse_slot_port(args.place);
    std::set<std::uint32_t> ids;
    for (const std::string& id : args.ids) ids.insert(parse_number(id, 1, kMaxId16, "--vid"));
    const IdRange range = parse_range(args.range, "--range");
    const bool narrow = !args.new_range.empty();
    const IdRange narrowed = narrow ? parse_range(args.new_range, "--new-range") : IdRange{0, 0};

    DataRegion::attach(options);  // the library reads the region from here on
    const Configuration c = Configuration::read();
    const std::int32_t s = at.slot;
    const std::int32_t p = at.port;

    Answers answers;
    const bool used = Tarv__IsOamEnabledOnPort(s, p) != 0;
    answers.add("a MEP or MIP on the port", "Tarv__IsOamEnabledOnPort", used);
    answers.add("the same, entries told by their class", "Tarv__IsOamEnabledOnPortOpt",
                Tarv__IsOamEnabledOnPortOpt(s, p) != 0);
    answers.add("the same, a MEP looked for first", "Tarv__IsMPEnabledOnPort", Tarv__IsMPEnabledOnPort(s, p) != 0);
    Json down = Json::array();
    for (const Mep& m : c.meps)
        if (Tarv__IsOamEnabledForMepOnPort(s, p, moid_of(m.md, m.ma, m.mep)) != 0)
            down.push_back(mep_json(c, m.md, m.ma, m.mep));
    answers.add("Down MEPs on the port, asked MEP by MEP", "Tarv__IsOamEnabledForMepOnPort", down);
    // The range finders answer 0 when they find something.
    const std::string span = fmt::format("on a VLAN of {}-{}", range.low, range.high);
    answers.add("a MEP " + span, "Tarv__FindMepOnPort", Tarv__FindMepOnPort(s, p, range.low, range.high) == 0);
    answers.add("a MIP " + span, "Tarv__FindMipOnPort", Tarv__FindMipOnPort(s, p, range.low, range.high) == 0);
    if (narrow) {
        const auto low = static_cast<std::uint16_t>(narrowed.low);
        const auto high = static_cast<std::uint16_t>(narrowed.high);
        const std::string outside = fmt::format("{} outside {}-{}", span, low, high);
        answers.add("a MEP " + outside, "Tarv__FindAllMepOnPort",
                    Tarv__FindAllMepOnPort(s, p, range.low, range.high, low, high) == 0);
        answers.add("a MIP " + outside, "Tarv__FindAllMipOnPort",
                    Tarv__FindAllMipOnPort(s, p, range.low, range.high, low, high) == 0);
    }

    const std::vector<IdQuestion> questions = id_questions(c, s, p);
    const std::set<std::uint32_t> found = ids_on_port(c, at.slot, at.port);
    ids.insert(found.begin(), found.end());
    std::vector<std::vector<Json>> by_question(questions.size());  // a column per id
    for (std::uint32_t id : ids)
        for (std::size_t q = 0; q < questions.size(); ++q)
            by_question[q].push_back(questions[q].ask(static_cast<std::int32_t>(id)));
    const int status = used ? kExitOk : kExitFindings;

    if (args.json) {
        Json by_id = Json::object();
        std::size_t column = 0;
        for (std::uint32_t id : ids) {
            Json j = Json::object();
            for (std::size_t q = 0; q < questions.size(); ++q) j[questions[q].call] = by_question[q][column];
            by_id[std::to_string(id)] = j;
            ++column;
        }
        print_json({{"port", place_json(at.slot, at.port)},
                    {"points", points_json(c, at.slot, at.port)},
                    {"answers", answers.json()},
                    {"ids", by_id}});
        return status;
    }
    fmt::print("Port {}{}: {}\n\n", path_text({at.slot, at.port}),
               at.slot == kLagSlot ? fmt::format(" (LAG {})", at.port) : "", points_text(c, at.slot, at.port));
    answers.print();
    fmt::print("\n");
    if (ids.empty()) {
        fmt::print("No VLAN or VFI id to ask about: no MEP or MIP on the port names one (ask with --vid).\n");
        return status;
    }
    std::vector<std::string> heading{"QUESTION FOR EACH VLAN OR VFI ID"};
    for (std::uint32_t id : ids) heading.push_back(std::to_string(id));
    heading.emplace_back("CALL");
    Table t(heading);
    for (std::size_t q = 0; q < questions.size(); ++q) {
        std::vector<std::string> row{questions[q].question};
        for (const Json& answer : by_question[q]) row.push_back(Answers::text(answer));
        row.emplace_back(questions[q].call);
        t.add(std::move(row));
    }
    t.print(stdout);
    return status;
}

// The MA components with this id and tagging, for context.
std::vector<const MaComp*> components_with(const Configuration& c, std::uint32_t id,
                                           std::initializer_list<std::uint32_t> taggings) {
    std::vector<const MaComp*> found;
    for (const MaComp& comp : c.comps)
        if (comp.vid == id && std::find(taggings.begin(), taggings.end(), comp.tagging) != taggings.end())
            found.push_back(&comp);
    return found;
}

// "1/1/1 (C-VLAN of MA 1/1 "CustomerVPN-100")" for each, "none" for none.
std::string components_text(const Configuration& c, const std::vector<const MaComp*>& comps) {
    std::vector<std::string> texts;
    for (const MaComp* comp : comps) {
        const Ma* ma = c.find_ma(comp->md, comp->ma);
        texts.push_back(fmt::format("{} ({} of MA {}{})", path_text({comp->md, comp->ma, comp->comp}),
                                    tagging_text(comp->tagging), path_text({comp->md, comp->ma}),
                                    ma != nullptr ? fmt::format(" \"{}\"", escaped(ma->name)) : ""));
    }
    return texts.empty() ? "none" : fmt::format("{}", fmt::join(texts, ", "));
}

Json components_json(const Configuration& c, const std::vector<const MaComp*>& comps) {
    Json list = Json::array();
    for (const MaComp* comp : comps) {
        Json j = {{"md", comp->md},
                  {"ma", comp->ma},
                  {"component", comp->comp},
                  {"tagging", tagging_text(comp->tagging)}};
        const Ma* ma = c.find_ma(comp->md, comp->ma);
        if (ma != nullptr)
            put_name(j, "maName", ma->name);
        else
            j["maName"] = nullptr;
        list.push_back(std::move(j));
    }
    return list;
}

int switch_wide(const Options& options, bool vfi, const std::string& text, bool json) {
    const std::uint32_t id = vfi ? parse_number(text, 1, kMaxId16, "VFI") : parse_number(text, 1, kMaxVid, "VID");
    DataRegion::attach(options);  // the library reads the region from here on
    const Configuration c = Configuration::read();
    const auto v = static_cast<std::int32_t>(id);
    Answers answers;
    bool used = false;
    if (vfi) {
        used = Tarv__IsOamEnabledOnVfi(v) != 0;
        answers.add("an MA component has it as VFI", "Tarv__IsOamEnabledOnVfi", used);
    } else {
        const bool s = Tarv__IsOamEnabledOnSVlan(v) != 0;
        const bool cv = Tarv__IsOamEnabledOnCVlan(v) != 0;
        answers.add("an MA component has it as S-VLAN", "Tarv__IsOamEnabledOnSVlan", s);
        answers.add("an MA component has it as C-VLAN", "Tarv__IsOamEnabledOnCVlan", cv);
        used = s || cv;
    }
    const std::string what = vfi ? "VFI" : "VLAN";
    const auto comps = vfi ? components_with(c, id, {kVfi}) : components_with(c, id, {kCVlan, kSVlan});
    if (json) {
        print_json({{vfi ? "vfi" : "vid", id}, {"components", components_json(c, comps)}, {"answers", answers.json()}});
    } else {
        fmt::print("{} {}: MA components {}\n\n", what, id, components_text(c, comps));
        answers.print();
    }
    return used ? kExitOk : kExitFindings;
}

// The members of a LAG as the host platform's port library gives them.
LagMembers lag_members(std::uint8_t lag) {
    std::array<std::uint8_t, PRTM_LAG_PORT_LIST_SIZE> list{};
    Prtm__LagGetLagPortList(lag, list.data());
    LagMembers members;
    const std::size_t count = std::min<std::size_t>(list[0], (list.size() - 1) / 2);
    for (std::size_t k = 0; k < count; ++k) members.emplace_back(list[1 + 2 * k], list[2 + 2 * k]);
    return members;
}

std::string members_text(const LagMembers& members) {
    std::vector<std::string> texts;
    for (const auto& [member_slot, member_port] : members) texts.push_back(path_text({member_slot, member_port}));
    return texts.empty() ? "none" : fmt::format("{}", fmt::join(texts, ", "));
}

int lag(const Options& options, const std::string& text, bool json) {
    const auto id = static_cast<std::uint8_t>(parse_number(text, 0, 255, "LAG id"));
    DataRegion::attach(options);  // the library reads the region from here on
    const Configuration c = Configuration::read();
    std::uint32_t period = 0;
    const bool used = Tarv__IsOamEnabledOnLagOpt(id, &period) != 0;
    const auto members = lag_members(id);
    if (json) {
        Json m = Json::array();
        for (const auto& [member_slot, member_port] : members)
            m.push_back({{"slot", member_slot}, {"port", member_port}});
        print_json({{"lag", id},
                    {"points", points_json(c, kLagSlot, id)},
                    {"answers", {{"Tarv__IsOamEnabledOnLagOpt", used}}},
                    {"ccmPeriod", used ? Json(period) : Json(nullptr)},
                    {"members", m}});
        return used ? kExitOk : kExitFindings;
    }
    fmt::print("LAG {}: {}\n", id, points_text(c, kLagSlot, id));
    fmt::print("members, from the host platform (TARV_LAGS): {}\n\n", members_text(members));
    Answers answers;
    answers.add("a MEP or MIP on the LAG", "Tarv__IsOamEnabledOnLagOpt",
                used ? fmt::format("yes, CCM period {}", period) : "no");
    answers.print();
    fmt::print("\nThe port questions for the LAG: tarvctl port {}/{}\n", kLagSlot, id);
    return used ? kExitOk : kExitFindings;
}

// Whether a slot can take one more MEP, with the units each MEP puts on it.
int slot(const Options& options, const std::string& text, std::int32_t ccm_period, bool json) {
    const auto at = static_cast<std::uint8_t>(parse_number(text, 0, 255, "SLOT"));
    DataRegion::attach(options);  // the library reads the region from here on
    const Configuration c = Configuration::read();
    const bool fits = Tarv__MepResourcesAvailableOnSlot(at, ccm_period) != 0;
    constexpr std::uint32_t kLimit = 1000;

    Table t({"MEP", "PORT", "CCM PERIOD", "PORTS ON THE SLOT", "UNITS"});
    Json meps = Json::array();
    std::uint32_t total = 0;
    for (const Mep& m : c.meps) {
        const std::uint32_t ports = ports_on_slot(m, m.slot == kLagSlot ? lag_members(m.port) : LagMembers{}, at);
        if (ports == 0) continue;
        const Ma* ma = c.find_ma(m.md, m.ma);
        const std::uint32_t period = ma != nullptr ? ma->ccm_period : 0;  // the library's weight without its MA
        const std::uint32_t units = ports * mep_weight(period);
        total += units;
        t.add({path_text({m.md, m.ma, m.mep}), port_text(m.slot, m.port),
               ma != nullptr ? std::to_string(period) : "no MA", std::to_string(ports), std::to_string(units)});
        meps.push_back({{"mep", mep_json(c, m.md, m.ma, m.mep)},
                        {"ccmPeriod", ma != nullptr ? Json(period) : Json(nullptr)},
                        {"ports", ports},
                        {"units", units}});
    }
    const std::uint32_t added = mep_weight(static_cast<std::uint32_t>(ccm_period));
    if (json) {
        print_json({{"slot", at},
                    {"ccmPeriod", ccm_period},
                    {"answers", {{"Tarv__MepResourcesAvailableOnSlot", fits}}},
                    {"meps", meps},
                    {"units", total},
                    {"newMep", added},
                    {"limit", kLimit}});
        return fits ? kExitOk : kExitFindings;
    }
    fmt::print("Slot {}: room for a MEP of CCM period {}: {} (Tarv__MepResourcesAvailableOnSlot)\n\n", at,
               ccm_period, yes_no(fits));
    if (t.empty())
        fmt::print("no MEP uses the slot\n");
    else
        t.print(stdout);
    fmt::print("\n{} units in use, {} for the new MEP: {} of at most {}\n", total, added, total + added, kLimit);
    return fits ? kExitOk : kExitFindings;
}

// The CCM interval codes of IEEE 802.1ag that an MA's dwCcmPeriod holds:
// 1 (3.33 ms) to 7 (10 min); 0 is no interval.
constexpr char kFirstCcmPeriod = 1;
constexpr char kLastCcmPeriod = 7;

constexpr char kAnswerNote[] = "Exit status 0 when OAM uses it, 1 when not.";

}  // namespace

std::set<std::uint32_t> ids_on_port(const Configuration& c, std::uint8_t slot, std::uint8_t port) {
    std::set<std::uint32_t> ids;
    auto add_ma = [&](std::uint32_t md, std::uint32_t ma) {
        for (const MaComp* comp : c.comps_of(md, ma))
            if (comp->vid != 0) ids.insert(comp->vid);
    };
    for (const Mep& m : c.meps)
        if (m.slot == slot && m.port == port) {
            if (m.vid != 0) ids.insert(m.vid);
            add_ma(m.md, m.ma);
        }
    for (const Mip& m : c.mips)
        if (m.slot == slot && m.port == port) add_ma(m.md, m.ma);
    return ids;
}

std::uint32_t ports_on_slot(const Mep& m, const LagMembers& members, std::uint8_t slot) {
    if (m.slot != kLagSlot) return m.slot == slot ? 1 : 0;
    std::uint32_t ports = 0;
    for (const auto& [member_slot, member_port] : members)
        if (member_slot != 0 && member_slot == slot && member_port != 0) ++ports;
    return ports;
}

void add_queries(CLI::App& app, const Options& options, Commands& commands) {
    auto pa = std::make_shared<PortArgs>();
    CLI::App* p = app.add_subcommand("port", "Ask every usage question about a port");
    p->footer(fmt::format(
        "Ask the library every question it answers about the port SLOT/PORT (a LAG is 2/ID), as the port\n"
        "and VLAN managers ask before they change it: whether a MEP or MIP is on it, which MEPs are Down\n"
        "MEPs on it, whether a MEP or MIP uses a VLAN of --range (or of --range outside --new-range); and\n"
        "for each VLAN or VFI id of its MEPs and of the MAs of its MEPs and MIPs, and each --vid: its use as\n"
        "S-VLAN, C-VLAN or VFI, a tagging conflict, a VID translation, a C-VID registration (to S-VID 0),\n"
        "the Down MEPs and the MIP on it as C-VLAN. Some calls look at another port than the one given on\n"
        "slots 2 and 3 (port 24 and 23); the answers are the library's.\n{}",
        kAnswerNote));
    p->add_option("SLOT/PORT", pa->place, "The port, e.g. 1/4; a LAG is 2/ID")->required();
    p->add_option("--vid", pa->ids, "A VLAN or VFI id to ask about too (1 to 65535); repeatable")->type_name("ID");
    p->add_option("--range", pa->range, "VLANs of the range finders (default 1-4094)")->type_name("LOW-HIGH");
    p->add_option("--new-range", pa->new_range, "Ask which MEPs and MIPs narrowing --range to this cuts off")
        ->type_name("LOW-HIGH");
    p->add_flag("--json", pa->json, "JSON on standard output, for scripts");
    commands.add(p, [&options, pa] { return port(options, *pa); });

    struct IdArgs {
        std::string id;
        bool json = false;
    };
    for (const bool vfi : {false, true}) {
        auto args = std::make_shared<IdArgs>();
        CLI::App* cmd = app.add_subcommand(vfi ? "vfi" : "vlan", vfi ? "Ask whether OAM uses a VFI, switch-wide"
                                                                     : "Ask whether OAM uses a VLAN, switch-wide");
        cmd->footer(fmt::format("{}\n{}",
                                vfi ? "Whether an MA component is VFI-based with the VFI id VFI (1 to 65535)."
                                    : "Whether an MA component is S-tagged or C-tagged with the VLAN id VID (1 to "
                                      "4094).",
                                kAnswerNote));
        cmd->add_option(vfi ? "VFI" : "VID", args->id, vfi ? "VFI id" : "VLAN id")->required();
        cmd->add_flag("--json", args->json, "JSON on standard output, for scripts");
        commands.add(cmd, [&options, args, vfi] { return switch_wide(options, vfi, args->id, args->json); });
    }

    auto la = std::make_shared<IdArgs>();
    CLI::App* l = app.add_subcommand("lag", "Ask whether OAM uses a LAG");
    l->footer(fmt::format(
        "Whether a MEP or MIP sits on the LAG ID (0 to 255), and the CCM period of its MA; the LAG's member\n"
        "ports as the host platform gives them (TARV_LAGS: they are not in the region).\n{}",
        kAnswerNote));
    l->add_option("ID", la->id, "LAG id")->required();
    l->add_flag("--json", la->json, "JSON on standard output, for scripts");
    commands.add(l, [&options, la] { return lag(options, la->id, la->json); });

    struct SlotArgs {
        std::string slot;
        std::int32_t ccm_period = 0;
        bool json = false;
    };
    auto sa = std::make_shared<SlotArgs>();
    CLI::App* sl = app.add_subcommand("slot", "Ask whether a slot has room for one more MEP");
    sl->footer(
        "Whether the slot SLOT (0 to 255) can take one more MEP of CCM period N, and the resource units\n"
        "counted per MEP: 3 for a MEP whose MA has CCM period 2, else 1; a MEP on a LAG once for each member\n"
        "port on the slot (members from TARV_LAGS). A slot carries at most 1000 units. N is a CCM interval\n"
        "code from 1 (3.33 ms) to 7 (10 min), as an MA's dwCcmPeriod holds it.\n"
        "Exit status 0 when the MEP fits, 1 when not.");
    sl->add_option("SLOT", sa->slot, "Slot")->required();
    sl->add_option("--ccm-period", sa->ccm_period,
                   "CCM period code of the MEP to be added, as the MA's dwCcmPeriod holds it: 1 (3.33 ms), "
                   "2 (10 ms), 3 (100 ms), 4 (1 s), 5 (10 s), 6 (1 min) or 7 (10 min)")
        ->required()
        ->type_name("N")
        ->check(CLI::Validator(
            [](const std::string& text) -> std::string {
                const bool known =
                    text.size() == 1 && text[0] >= '0' + kFirstCcmPeriod && text[0] <= '0' + kLastCcmPeriod;
                return known ? ""
                             : fmt::format("'{}' is no CCM period code: expected 1 to 7 (3.33 ms to 10 min)", text);
            },
            "1..7"));
    sl->add_flag("--json", sa->json, "JSON on standard output, for scripts");
    commands.add(sl, [&options, sa] { return slot(options, sa->slot, sa->ccm_period, sa->json); });
}

}  // namespace tarvctl
