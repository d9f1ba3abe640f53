// tarvctl show [VIEW] [--json]: what the region holds, as the library reads
// it, in aligned tables or JSON.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <string>

#include "commands.h"
#include "common/objects.h"
#include "show.h"
#include "common/status.h"
#include "style.h"
#include "tarv/tarv.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

std::string count_text(std::size_t n, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", n, n == 1 ? one : many);
}

// "-" for a name the region does not have.
std::string name_text(const std::string* name) { return name != nullptr ? escaped(*name) : "-"; }

// j[key] as put_name sets it, or null for a name the region does not have.
void put_name_or_null(Json& j, const std::string& key, const std::string* name) {
    if (name != nullptr)
        put_name(j, key, *name);
    else
        j[key] = nullptr;
}

const std::string* ma_name(const Configuration& c, std::uint32_t md, std::uint32_t ma) {
    const Ma* found = c.find_ma(md, ma);
    return found != nullptr ? &found->name : nullptr;
}

// "C-VLAN 100, S-VLAN 200" for the MA's components, "-" for none.
std::string components_text(const Configuration& c, const Ma& ma) {
    std::vector<std::string> parts;
    for (const MaComp* comp : c.comps_of(ma.md, ma.ma))
        parts.push_back(fmt::format("{} {}", tagging_text(comp->tagging), comp->vid));
    return parts.empty() ? "-" : fmt::format("{}", fmt::join(parts, ", "));
}

// The tagging the library resolves a point's service by: its MA's first
// component.
const MaComp* first_comp(const Configuration& c, std::uint32_t md, std::uint32_t ma) {
    const auto comps = c.comps_of(md, ma);
    return comps.empty() ? nullptr : comps.front();
}

std::size_t meps_in_ma(const Configuration& c, std::uint32_t md, std::uint32_t ma) {
    return static_cast<std::size_t>(
        std::count_if(c.meps.begin(), c.meps.end(), [&](const Mep& m) { return m.md == md && m.ma == ma; }));
}

void print_table_or_none(const Table& table, std::string_view none) {
    if (table.empty())
        fmt::print("{}\n", none);
    else
        table.print(stdout);
}

// ------------------------------------------------------------------ views

// How many of `objects` belong to MD `md`.
template <typename T>
std::size_t in_md(const std::vector<T>& objects, std::uint32_t md) {
    return static_cast<std::size_t>(
        std::count_if(objects.begin(), objects.end(), [&](const T& o) { return o.md == md; }));
}

void mds_text(const Configuration& c) {
    Table t({"MD", "NAME", "LEVEL", "MAS", "MEPS"});
    for (const Md& md : c.mds)
        t.add({std::to_string(md.md), escaped(md.name), std::to_string(md.level), std::to_string(in_md(c.mas, md.md)),
               std::to_string(in_md(c.meps, md.md))});
    print_table_or_none(t, "no MDs");
}

Json mds_json(const Configuration& c) {
    Json list = Json::array();
    for (const Md& md : c.mds) {
        Json j = {{"md", md.md}};
        put_name(j, "name", md.name);
        j["level"] = md.level;
        j["mas"] = in_md(c.mas, md.md);
        j["meps"] = in_md(c.meps, md.md);
        list.push_back(std::move(j));
    }
    return list;
}

std::size_t mips_in_ma(const Configuration& c, std::uint32_t md, std::uint32_t ma) {
    return static_cast<std::size_t>(
        std::count_if(c.mips.begin(), c.mips.end(), [&](const Mip& m) { return m.md == md && m.ma == ma; }));
}

void mas_text(const Configuration& c) {
    Table t({"MA", "NAME", "TAGGING", "CCM PERIOD", "MEPS", "MIPS"});
    for (const Ma& ma : c.mas)
        t.add({path_text({ma.md, ma.ma}), escaped(ma.name), components_text(c, ma), std::to_string(ma.ccm_period),
               std::to_string(meps_in_ma(c, ma.md, ma.ma)), std::to_string(mips_in_ma(c, ma.md, ma.ma))});
    print_table_or_none(t, "no MAs");
}

Json mas_json(const Configuration& c) {
    Json list = Json::array();
    for (const Ma& ma : c.mas) {
        Json comps = Json::array();
        for (const MaComp* comp : c.comps_of(ma.md, ma.ma))
            comps.push_back({{"component", comp->comp}, {"tagging", tagging_text(comp->tagging)}, {"vid", comp->vid}});
        Json j = {{"md", ma.md}, {"ma", ma.ma}};
        put_name(j, "name", ma.name);
        j["ccmPeriod"] = ma.ccm_period;
        j["components"] = std::move(comps);
        j["meps"] = meps_in_ma(c, ma.md, ma.ma);
        j["mips"] = mips_in_ma(c, ma.md, ma.ma);
        list.push_back(std::move(j));
    }
    return list;
}

void meps_text(const Configuration& c) {
    Table t({"MEP", "ID", "MA", "PORT", "VID", "TAGGING", "DIR", "MAC"});
    for (const Mep& m : c.meps) {
        const std::string* name = ma_name(c, m.md, m.ma);
        const MaComp* comp = first_comp(c, m.md, m.ma);
        t.add({path_text({m.md, m.ma, m.mep}), std::to_string(m.id), name_text(name),
               port_text(m.slot, m.port), std::to_string(m.vid), comp != nullptr ? tagging_text(comp->tagging) : "-",
               direction_text(m.direction), m.mac});
    }
    print_table_or_none(t, "no MEPs");
}

Json meps_json(const Configuration& c) {
    Json list = Json::array();
    for (const Mep& m : c.meps) {
        const MaComp* comp = first_comp(c, m.md, m.ma);
        Json j = mep_json(c, m.md, m.ma, m.mep);
        put_name_or_null(j, "maName", ma_name(c, m.md, m.ma));
        j["vid"] = m.vid;
        j["tagging"] = comp != nullptr ? Json(tagging_text(comp->tagging)) : Json(nullptr);
        j["direction"] = direction_text(m.direction);
        j["mac"] = m.mac;
        list.push_back(std::move(j));
    }
    return list;
}

void mips_text(const Configuration& c) {
    Table t({"MIP", "MA", "PORT", "MAC"});
    for (const Mip& m : c.mips) {
        const std::string* name = ma_name(c, m.md, m.ma);
        t.add({path_text({m.md, m.ma, m.mip}), name_text(name), port_text(m.slot, m.port), m.mac});
    }
    print_table_or_none(t, "no MIPs");
}

Json mips_json(const Configuration& c) {
    Json list = Json::array();
    for (const Mip& m : c.mips) {
        Json j = {{"md", m.md}, {"ma", m.ma}, {"mip", m.mip}, {"port", place_json(m.slot, m.port)}};
        put_name_or_null(j, "maName", ma_name(c, m.md, m.ma));
        j["mac"] = m.mac;
        list.push_back(std::move(j));
    }
    return list;
}

std::string mep_id_text(const Configuration& c, std::uint32_t md, std::uint32_t ma, std::uint32_t mep) {
    const Mep* m = c.find_mep(md, ma, mep);
    return m != nullptr ? std::to_string(m->id) : "-";
}

// A throughput test is enabled when its status is 2.
constexpr std::uint32_t kEnabled = 2;

void throughput_text(const Configuration& c) {
    Table t({"TEST", "MEP ID", "ENABLED", "A", "B", "C", "D"});
    for (const Throughput& x : c.throughput)
        t.add({path_text({x.md, x.ma, x.mep, x.test}), mep_id_text(c, x.md, x.ma, x.mep),
               x.status == kEnabled ? "yes" : "no", std::to_string(x.a), std::to_string(x.b), std::to_string(x.c),
               std::to_string(x.d)});
    print_table_or_none(t, "no throughput tests");
    fmt::print("a test enabled (Tarv_GetEnableStatusofThroughput): {}\n", c.throughput_enabled ? "yes" : "no");
    if (c.history.empty()) return;
    fmt::print("\n");
    Table h({"HISTORY", "RESULT"});
    for (const HistoryRecord& r : c.history) h.add({std::to_string(r.id), escaped(r.result)});
    h.print(stdout);
}

Json throughput_json(const Configuration& c) {
    Json tests = Json::array();
    for (const Throughput& x : c.throughput)
        tests.push_back({{"mep", mep_json(c, x.md, x.ma, x.mep)},
                         {"test", x.test},
                         {"enabled", x.status == kEnabled},
                         {"enableStatus", x.status},
                         {"operandA", x.a},
                         {"operandB", x.b},
                         {"operandC", x.c},
                         {"derived", x.d}});
    Json history = Json::array();
    for (const HistoryRecord& r : c.history) {
        Json j = {{"id", r.id}};
        put_name(j, "result", r.result);
        history.push_back(std::move(j));
    }
    return {{"tests", tests}, {"anyEnabled", c.throughput_enabled}, {"history", history}};
}

void pm_text(const Configuration& c) {
    Table t({"MEP", "SESSION", "MEP ID", "PORT", "MA"});
    for (const PmSession& s : c.pm) {
        const Mep* m = c.find_mep(s.md, s.ma, s.mep);
        const std::string* name = ma_name(c, s.md, s.ma);
        t.add({path_text({s.md, s.ma, s.mep}), std::to_string(s.session), m != nullptr ? std::to_string(m->id) : "-",
               m != nullptr ? port_text(m->slot, m->port) : "-", name_text(name)});
    }
    print_table_or_none(t, "no PM sessions");
}

Json pm_json(const Configuration& c) {
    Json list = Json::array();
    for (const PmSession& s : c.pm) {
        Json j = {{"mep", mep_json(c, s.md, s.ma, s.mep)}, {"session", s.session}};
        put_name_or_null(j, "maName", ma_name(c, s.md, s.ma));
        list.push_back(std::move(j));
    }
    return list;
}

void bwn_text(const Configuration& c) {
    Table t({"MEP", "MEP ID", "RECORD"});
    for (const Bwn& b : c.bwn) t.add({path_text({b.md, b.ma, b.mep}), mep_id_text(c, b.md, b.ma, b.mep), b.data});
    print_table_or_none(t, "no bandwidth notifications");
}

Json bwn_json(const Configuration& c) {
    Json list = Json::array();
    for (const Bwn& b : c.bwn)
        list.push_back({{"mep", mep_json(c, b.md, b.ma, b.mep)}, {"record", b.data}});
    return list;
}

// "0, 2" for the bits of an alarm word, "-" for none.
std::string bits_text(std::uint16_t word) {
    const auto bits = bits_of(word);
    return bits.empty() ? "-" : fmt::format("{}", fmt::join(bits, ", "));
}

// Not a braced return: {bits} would make an array holding the array.
Json bits_json(std::uint16_t word) { return Json(bits_of(word)); }  // NOLINT(modernize-return-braced-init-list)

std::string word_text(std::uint16_t word) { return fmt::format("{:#06x}", word); }

void alarms_text(const Configuration& c) {
    const Alarms a = Alarms::read(c);
    Table meps({"MEP", "INDEX", "ALARMS", "BITS", "TEXT"});
    for (const MepAlarm& m : a.meps) {
        std::string word = word_text(m.word);
        if (m.stored != m.word) word += fmt::format(" ({} stored)", word_text(m.stored));
        meps.add({m.named ? path_text({m.md, m.ma, m.mep}) : "-", std::to_string(m.slot), word, bits_text(m.word),
                  m.text.empty() ? "-" : escaped(m.text)});
    }
    print_table_or_none(meps, "no MEP alarms");
    fmt::print("\n");
    Table pm({"PM SESSION", "INDEX", "ALARMS", "BITS", "ALARM SOURCE"});
    for (const PmAlarm& p : a.pm)
        pm.add({fmt::format("{} #{}", path_text({p.md, p.ma, p.mep}), p.session), std::to_string(p.slot),
                word_text(p.word), bits_text(p.word), p.source.empty() ? "-" : escaped(p.source)});
    print_table_or_none(pm, "no PM alarms");
    fmt::print("\nMEP hardware alarm block: {}\n",
               all_zero(a.hw) ? fmt::format("{} zero bytes", a.hw.size()) : hex(a.hw));
}

Json alarms_json(const Configuration& c) {
    const Alarms a = Alarms::read(c);
    Json meps = Json::array();
    for (const MepAlarm& m : a.meps) {
        Json j = {{"index", m.slot},
                  {"mep", m.named ? mep_json(c, m.md, m.ma, m.mep) : Json(nullptr)},
                  {"alarms", m.word},
                  {"stored", m.stored},
                  {"bits", bits_json(m.word)}};
        put_name(j, "text", m.text);
        meps.push_back(std::move(j));
    }
    Json pm = Json::array();
    for (const PmAlarm& p : a.pm) {
        Json j = {{"index", p.slot},
                  {"mep", mep_json(c, p.md, p.ma, p.mep)},
                  {"session", p.session},
                  {"alarms", p.word},
                  {"bits", bits_json(p.word)}};
        if (p.source.empty())
            j["source"] = nullptr;
        else
            put_name(j, "source", p.source);
        pm.push_back(std::move(j));
    }
    return {{"meps", meps}, {"pm", pm}, {"hwBlock", hex(a.hw)}};
}

// ------------------------------------------------------------------ tree

// A MEP as one line of the tree: its VID is a VFI when its MA's service is.
std::vector<std::string> tree_mep(const Configuration& c, const Mep& m) {
    const MaComp* comp = first_comp(c, m.md, m.ma);
    const bool vfi = comp != nullptr && comp->tagging == kVfi;
    return {fmt::format("MEP {}", path_text({m.md, m.ma, m.mep})), fmt::format("id {}", m.id),
            port_text(m.slot, m.port), fmt::format("{} {}", vfi ? "VFI" : "VLAN", m.vid), direction_text(m.direction),
            m.mac};
}

void tree_text(const Configuration& c) {
    // One table for every MEP keeps the columns aligned across MAs.
    Table meps({"", "", "", "", "", ""});
    for (const Mep& m : c.meps) meps.add(tree_mep(c, m));
    auto mep_line = [&](const Mep& m) {
        return meps.row_line(static_cast<std::size_t>(&m - c.meps.data()));
    };

    for (const Md& md : c.mds) {
        const std::string heading = fmt::format("MD {} \"{}\", level {}", md.md, escaped(md.name), md.level);
        fmt::print("{}\n", paint(stdout, Tone::Heading, heading));
        for (const Ma& ma : c.mas) {
            if (ma.md != md.md) continue;
            fmt::print("  MA {} \"{}\": {}, CCM period {}\n", path_text({ma.md, ma.ma}), escaped(ma.name),
                       components_text(c, ma), ma.ccm_period);
            for (const Mep& m : c.meps)
                if (m.md == ma.md && m.ma == ma.ma) fmt::print("    {}\n", mep_line(m));
        }
    }

    std::vector<std::string> outside;
    for (const Ma& ma : c.mas)
        if (c.find_md(ma.md) == nullptr)
            outside.push_back(
                fmt::format("MA {} \"{}\": no MD {}", path_text({ma.md, ma.ma}), escaped(ma.name), ma.md));
    for (const Mep& m : c.meps)
        if (c.find_ma(m.md, m.ma) == nullptr || c.find_md(m.md) == nullptr) outside.push_back(mep_line(m));
    if (!outside.empty()) {
        fmt::print("{}\n", paint(stdout, Tone::Note, "outside the tree (tarvctl check tells why):"));
        for (const std::string& line : outside) fmt::print("  {}\n", line);
    }
    if (!c.mds.empty() || !outside.empty()) fmt::print("\n");
    fmt::print("{}\n", summary(c));
}

Json tree_json(const Configuration& c) {
    return {{"mds", mds_json(c)},   {"mas", mas_json(c)}, {"meps", meps_json(c)}, {"mips", mips_json(c)},
            {"throughput", throughput_json(c)}, {"pm", pm_json(c)}, {"bwn", bwn_json(c)}, {"alarms", alarms_json(c)}};
}

struct View {
    const char* name;
    void (*text)(const Configuration&);
    Json (*json)(const Configuration&);
};

constexpr View kViews[] = {
    {"tree", tree_text, tree_json},        {"mds", mds_text, mds_json},
    {"mas", mas_text, mas_json},           {"meps", meps_text, meps_json},
    {"mips", mips_text, mips_json},        {"throughput", throughput_text, throughput_json},
    {"pm", pm_text, pm_json},              {"bwn", bwn_text, bwn_json},
    {"alarms", alarms_text, alarms_json},
};

// The checkpoint record as Tarv__GetChkpData copies it, 16 bytes a line
// with their characters, a run of equal lines shown once and then "*".
int show_chkp(const Options& options, bool json) {
    if (!options.region_file.empty())
        throw Failure(kExitUsage, "--region: a saved region holds the data region only, not the checkpoint region");
    require_region(kChkpRegion);
    Tarv__ChkpOpen();
    std::array<std::uint8_t, TARV_CHKP_DATA_SIZE> record{};
    std::uint16_t section_value = 0;
    Tarv__GetChkpData(TARV_CHKP_SECTION_ID, &section_value, record.data(), TARV_CHKP_DATA_SIZE);
    const std::string where = object_name(kChkpRegion);
    if (json) {
        print_json({{"region", where}, {"sectionValue", section_value}, {"record", hex(record)}});
        return kExitOk;
    }
    fmt::print("{}: checkpoint record, {} bytes, section {} value {}\n", where, record.size(), TARV_CHKP_SECTION_ID,
               section_value);
    std::string previous;
    bool starred = false;
    for (std::size_t at = 0; at < record.size(); at += 16) {
        const Bytes line = Bytes(record).subspan(at, std::min<std::size_t>(16, record.size() - at));
        std::string hex_part;
        for (std::uint8_t b : line) hex_part += fmt::format(" {:02x}", b);
        if (hex_part == previous && line.size() == 16) {
            if (!starred) fmt::print("*\n");
            starred = true;
            continue;
        }
        previous = hex_part;
        starred = false;
        std::string chars;
        for (std::uint8_t b : line) chars += b >= 0x20 && b < 0x7F ? static_cast<char>(b) : '.';
        fmt::print("{:04x} {:<48}  {}\n", at, hex_part, chars);
    }
    fmt::print("{:04x}\n", record.size());
    return kExitOk;
}

}  // namespace

void print_tree(const Configuration& c) { tree_text(c); }

Json place_json(std::uint8_t slot, std::uint8_t port) {
    if (slot == kLagSlot) return {{"lag", port}};
    return {{"slot", slot}, {"port", port}};
}

Json mep_json(const Configuration& c, std::uint32_t md, std::uint32_t ma, std::uint32_t mep) {
    const Mep* m = c.find_mep(md, ma, mep);
    return {{"md", md},
            {"ma", ma},
            {"mep", mep},
            {"mepId", m != nullptr ? Json(m->id) : Json(nullptr)},
            {"port", m != nullptr ? place_json(m->slot, m->port) : Json(nullptr)}};
}

std::string summary(const Configuration& c) {
    return fmt::format("{}, {}, {}, {}, {}, {}, {}", count_text(c.mds.size(), "MD", "MDs"),
                       count_text(c.mas.size(), "MA", "MAs"), count_text(c.meps.size(), "MEP", "MEPs"),
                       count_text(c.mips.size(), "MIP", "MIPs"),
                       count_text(c.throughput.size(), "throughput test", "throughput tests"),
                       count_text(c.pm.size(), "PM session", "PM sessions"),
                       count_text(c.bwn.size(), "bandwidth notification", "bandwidth notifications"));
}

void add_show(CLI::App& app, const Options& options, Commands& commands) {
    struct Args {
        std::string view = "tree";
        bool json = false;
    };
    auto args = std::make_shared<Args>();
    std::vector<std::string> names;
    for (const View& v : kViews) names.emplace_back(v.name);
    names.emplace_back("chkp");

    CLI::App* show = app.add_subcommand("show", "Show what the region holds, through the library");
    show->footer(
        "Show what the region holds, as the library reads it: the MD/MA/MEP tree (the default), or one view:\n"
        "  mds         maintenance domains with their level and counts\n"
        "  mas         maintenance associations with their components' tagging and CCM period\n"
        "  meps        MEPs: MEP id, MA, port (a LAG as lag N), VID, tagging, direction, MAC\n"
        "  mips        MIPs: MA, port, MAC\n"
        "  throughput  throughput tests, through their iterator and reader; whether one is enabled; the history\n"
        "  pm          PM sessions with their MEP\n"
        "  bwn         bandwidth notifications, through their iterator and reader, with their MEP and record\n"
        "  alarms      alarm words of the MEPs by bit number, with their texts; PM alarms with the Y.1731 alarm\n"
        "              source text of their session; the MEP hardware alarm block. A MEP's word is shown as\n"
        "              Tarv__GetAlarms reports it, the stored one after it when they differ (bit 2 is reported\n"
        "              only when the MEP's bAlarmBit2Enabled is set)\n"
        "  chkp        the checkpoint record, in hex (not on a saved region)");
    show->add_option("view", args->view, "What to show (default: tree)")->check(CLI::IsMember(names));
    show->add_flag("--json", args->json, "JSON on standard output, for scripts");
    commands.add(show, [&options, args]() -> int {
        if (args->view == "chkp") return show_chkp(options, args->json);
        const DataRegion region = DataRegion::attach(options);
        const Configuration c = Configuration::read();
        for (const View& v : kViews) {
            if (args->view != v.name) continue;
            if (args->json) {
                // A view of one list is the object {"<view>": [...]}.
                Json j = v.json(c);
                print_json(j.is_array() ? Json{{v.name, std::move(j)}} : j);
            } else
                v.text(c);
        }
        return kExitOk;
    });
}

}  // namespace tarvctl
