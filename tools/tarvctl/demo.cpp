// tarvctl demo [--force]: a realistic OAM configuration in the data region.
//
// It is written as the configuration-database manager writes one: class by
// class through Tarv__StorOpen and Tarv__SetConfig, in an order that keeps
// every class (MEPs before their bandwidth notifications, since a MEP write
// keys them anew). Then what the controller owns is filled in directly, as
// the controller does: alarm bits in the MEP records, alarm texts, old
// MOIDs, PM alarm keys and words, the throughput test it runs, and its
// checkpoint record. On a switch the region is the controller's, so a
// region that is not empty is left alone unless --force is given.
#include <fmt/format.h>

#include <cstring>
#include <memory>

#include "commands.h"
#include "controller.h"
#include "common/objects.h"
#include "common/records.h"
#include "show.h"
#include "common/status.h"
#include "tarv/tarv.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

void fill(MutableBytes record, std::initializer_list<std::uint8_t> bytes, std::size_t offset = 0) {
    std::copy(bytes.begin(), bytes.end(), record.begin() + static_cast<std::ptrdiff_t>(offset));
}

struct DemoMd {
    std::uint32_t md;
    const char* name;
    std::uint32_t level;
};
constexpr DemoMd kMds[] = {{1, "Customer", 5}, {2, "Provider", 3}, {3, "Operator", 7}};

struct DemoMa {
    std::uint32_t md, ma;
    const char* name;
    std::uint32_t ccm_period;
    std::uint32_t tagging;  // of its one component, which has the MA's number
    std::uint16_t vid;
};
constexpr DemoMa kMas[] = {
    {1, 1, "CustomerVPN-100", 4, 1, 100},
    {2, 2, "Backbone-200", 2, 2, 200},
    {3, 3, "Metro-VFI-7", 4, kVfi, 7},
};

struct DemoMep {
    std::uint32_t md, ma, mep;
    std::uint16_t id;
    std::uint32_t direction;
    std::uint16_t vid;
    std::uint8_t slot, port;
    bool bit2_enabled;
    // The controller's part.
    std::uint16_t alarm_bits;
    const char* alarm_text;
};
constexpr DemoMep kMeps[] = {
    {1, 1, 1, 101, 1, 100, 1, 3, true, 0, ""},
    {1, 1, 2, 102, 2, 100, kLagSlot, 5, true, 0x0005, "RDI received from MEP 12"},
    {2, 2, 3, 201, 1, 200, 4, 2, true, 0, ""},
    {2, 2, 4, 202, 2, 200, 3, 7, false, 0x0006, "CCMs from MEP 201 lost"},
    {3, 3, 5, 301, 1, 7, 1, 4, true, 0, ""},
    {2, 2, 6, 203, 1, 200, kLagSlot, 6, true, 0, ""},
};

struct DemoMip {
    std::uint32_t md, ma, mip;
    std::uint8_t slot, port;
};
constexpr DemoMip kMips[] = {{1, 1, 1, 1, 4}, {2, 2, 2, kLagSlot, 6}};

struct DemoTest {
    std::uint32_t md, ma, mep, test;
    std::uint32_t a;
    std::uint16_t b, c;
    bool running;  // enabled by the controller
};
constexpr DemoTest kTests[] = {{1, 1, 1, 1, 2, 125, 4, true}, {2, 2, 3, 2, 100, 10, 1, false}};

struct DemoSession {
    std::uint8_t session;
    std::uint32_t md, ma, mep;
    std::uint16_t alarm_word;  // the controller's
};
constexpr DemoSession kSessions[] = {{1, 1, 1, 1, 0}, {2, 2, 2, 3, 0x0010}};

// The configuration-database manager's part, class by class.
void write_configuration() {
    using namespace field;
    ListWriter c519(519);
    fill(c519.single(), {0x01, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x2a});
    c519.write();
    ListWriter c523(523);
    fill(c523.single(), {0x10, 0x27, 0x00, 0x00, 0x01});
    c523.write();

    ListWriter mds(cls::kMd);
    for (const DemoMd& d : kMds) {
        const MutableBytes r = mds.add({d.md});
        put_text(r, acMdName, d.name);
        put(r, eMdLevel, d.level + 1);
    }
    mds.write();
    ListWriter mas(cls::kMaNet);
    ListWriter comps(cls::kMaComp);
    for (const DemoMa& a : kMas) {
        const MutableBytes r = mas.add({a.md, a.ma});
        fill(r, {0x01});
        put_text(r, acMaName, a.name);
        put(r, dwCcmPeriod, a.ccm_period);
        const MutableBytes comp = comps.add({a.md, a.ma, a.ma});
        put(comp, eTagging, a.tagging);
        put(comp, wCompVid, a.vid);
    }
    mas.write();
    comps.write();

    ListWriter meps(cls::kMep);
    ListWriter bwns(cls::kBwn);
    for (const DemoMep& m : kMeps) {
        const MutableBytes r = meps.add({m.md, m.ma, m.mep});
        put(r, wMepId, m.id);
        put(r, eDirection, m.direction);
        put(r, wMepVid, m.vid);
        put(r, bAlarmBit2Enabled, m.bit2_enabled ? 1 : 0);
        put(r, byMepSlot, m.slot);
        put(r, byMepPort, m.port);
        // Every MEP keeps its bandwidth notification; two carry a record.
        const MutableBytes b = bwns.add({m.md, m.ma, m.mep});
        if (m.mep == 1) fill(b, {0x01, 0x00, 0x00, 0x00, 0xe8, 0x03, 0x00, 0x00, 0x02});
        if (m.mep == 3) fill(b, {0x01, 0x00, 0x00, 0x00, 0x10, 0x27, 0x00, 0x00, 0x01});
    }
    meps.write();
    bwns.write();  // after the MEPs, whose write keys empty notifications

    ListWriter mips(cls::kMip);
    for (const DemoMip& m : kMips) {
        const MutableBytes r = mips.add({m.md, m.ma, m.mip});
        put(r, byMipSlot, m.slot);
        put(r, byMipPort, m.port);
    }
    mips.write();

    ListWriter tests(cls::kThroughput);
    for (const DemoTest& t : kTests) {
        const MutableBytes r = tests.add({t.md, t.ma, t.mep, t.test});
        put(r, lOperandA, t.a);
        put(r, wOperandB, t.b);
        put(r, wOperandC, t.c);
    }
    tests.write();
    ListWriter history(cls::kHistory);
    const MutableBytes h1 = history.add({1});
    fill(h1, {0x01, 0x00, 0x00, 0x00, 0x01});
    put_text(h1, acResult, "1/1/1 test 1: 96.40 Mbit/s, frame loss 0.00 %");
    const MutableBytes h2 = history.add({2});
    fill(h2, {0x01, 0x00, 0x00, 0x00, 0x02});
    put_text(h2, acResult, "2/2/3 test 2: 9.87 Mbit/s, frame loss 1.25 %");
    history.write();

    ListWriter pm(cls::kPmSession);
    for (const DemoSession& s : kSessions)
        fill(pm.add({s.md, s.ma, s.mep}, s.session), {0x02, 0x00, 0x00, 0x00, 0x0a, s.session});
    pm.write();

    ListWriter c581(581);
    fill(c581.add({1}), {0xde, 0xad, 0xbe, 0xef});
    fill(c581.add({4096}), {0x01}, 15);
    c581.write();
    ListWriter c665(665);
    fill(c665.add({1, 1, 1}, 1), {0x07});
    c665.write();
    ListWriter c673(673);
    fill(c673.single(), {0x03, 0x00, 0x00, 0x00, 0x01});
    c673.write();
}

// The controller's part, written straight into the region.
void write_controller_state(std::uint8_t* region) {
    for (const DemoMep& m : kMeps) {
        const std::uint32_t slot = m.mep - 1;
        put_mep_alarm(region, slot, m.alarm_bits, m.alarm_text);
        put_mep_old_moid(region, slot, make_key(class_of(cls::kMep), {m.md, m.ma, m.mep}));
    }
    for (const DemoSession& s : kSessions)
        put_pm_alarm(region, s.session, make_key(class_of(cls::kPmSession), {s.md, s.ma, s.mep}, s.session),
                     s.alarm_word);
    for (const DemoTest& t : kTests)
        if (t.running) put_throughput_status(region, t.test - 1, 2);
}

// The controller's checkpoint record: a sequence number and the number of
// MEPs and PM sessions it last saved.
void write_checkpoint() {
    std::uint8_t record[TARV_CHKP_DATA_SIZE] = {};
    store_le32(record, 1);
    store_le16(record + 4, static_cast<std::uint16_t>(std::size(kMeps)));
    store_le16(record + 6, static_cast<std::uint16_t>(std::size(kSessions)));
    Tarv__ChkpOpen();
    Tarv__SetChkpData(TARV_CHKP_SECTION_ID, TARV_CHKP_SECTION_VALUE, record, sizeof record);
}

int demo(const Options& options, bool force) {
    refuse_region_file(options, "demo");
    const std::string where = object_name(kDataRegion);
    std::uint8_t* region = map_for_writing(kDataRegion, kDataRegionSize);
    if (!all_zero(Bytes(region, kDataRegionSize))) {
        if (!force) {
            Tarv__Open();
            throw Failure(kExitRefused,
                          fmt::format("{} is not empty ({}); it may be a controller's: 'tarvctl demo --force' "
                                      "replaces it",
                                      where, summary(Configuration::read())));
        }
        std::memset(region, 0, kDataRegionSize);
    }
    Tarv__StorOpen();
    write_configuration();
    write_controller_state(region);
    write_checkpoint();
    fmt::print("wrote a demo configuration to {}:\n\n", where);
    print_tree(Configuration::read());
    fmt::print(
        "\nLAG members belong to the host platform, not to the region: 'tarvctl lag' and 'tarvctl slot'\n"
        "take them from TARV_LAGS, e.g. export TARV_LAGS='5=1/1,4/1;6=1/2,1/5'.\n");
    return kExitOk;
}

}  // namespace

void add_demo(CLI::App& app, const Options& options, Commands& commands) {
    auto force = std::make_shared<bool>(false);
    CLI::App* cmd = app.add_subcommand("demo", "Write a realistic demo configuration into the region");
    cmd->footer(
        "Write a demo configuration as the configuration-database manager writes one, class by class\n"
        "through Tarv__SetConfig: 3 MDs; 3 MAs with a C-VLAN, an S-VLAN and a VFI component; 6 MEPs of both\n"
        "directions on ports and LAGs with their bandwidth notifications; 2 MIPs; 2 throughput tests and\n"
        "their history; 2 PM sessions; records of some numbered classes. Then fill in what the controller\n"
        "owns: alarm bits and texts, old MOIDs, PM alarm keys and words, a running throughput test, the\n"
        "checkpoint record. Prints the overview.\n"
        "The regions are created when they are missing. A data region that is not empty is left alone\n"
        "(exit status 5) unless --force is given: on a switch it is the controller's. On a machine with a\n"
        "real region, choose a private one first: export TARV_SHM_PREFIX=demo-");
    cmd->add_flag("--force", *force, "Replace what the region holds");
    commands.add(cmd, [&options, force] { return demo(options, *force); });
}

}  // namespace tarvctl
