// tarvctl watch: polls the region and prints what changed, class by class,
// and the alarm bits raised and cleared, until interrupted (or for --count
// polls).
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "show.h"
#include "stop.h"
#include "common/status.h"
#include "tarv/tarv.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

// The controller may rewrite a class while it is read: a list counts once
// two reads in a row agree (or after a few tries, the last one).
TransferList settled_read(const ClassDef& c) {
    TransferList list = TransferList::read(c);
    for (int attempt = 0; attempt < 4; ++attempt) {
        TransferList again = TransferList::read(c);
        const Bytes a = list.bytes();
        const Bytes b = again.bytes();
        const bool same = a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
        list = std::move(again);
        if (same) break;
    }
    return list;
}

// The objects of one class by key, in list order.
class ClassWatch {
public:
    explicit ClassWatch(const ClassDef& c) : def_(&c) { keys_ = read(); }

    // Lines for the objects removed, then those added, since the last poll.
    void poll(std::vector<std::string>& changes) {
        std::vector<std::vector<std::uint8_t>> now = read();
        for (const auto& k : keys_)
            if (std::find(now.begin(), now.end(), k) == now.end()) changes.push_back("- " + label(*def_, k));
        for (const auto& k : now)
            if (std::find(keys_.begin(), keys_.end(), k) == keys_.end()) changes.push_back("+ " + label(*def_, k));
        keys_ = std::move(now);
    }

private:
    [[nodiscard]] std::vector<std::vector<std::uint8_t>> read() const {
        const TransferList list = settled_read(*def_);
        std::vector<std::vector<std::uint8_t>> keys;
        for (std::size_t i = 0; i < list.size(); ++i) keys.emplace_back(list.key(i).begin(), list.key(i).end());
        return keys;
    }

    const ClassDef* def_;
    std::vector<std::vector<std::uint8_t>> keys_;
};

// The alarm words of the MEP slots (Tarv__GetAlarms) and of the PM slots
// (Tarv__GetPMAlarms), each slot named by the MOID or key the library gives
// for it.
class AlarmWatch {
public:
    AlarmWatch() { read(meps_, pm_); }

    // Lines for the bits raised and cleared since the last poll.
    void poll(std::vector<std::string>& changes) {
        Words meps{};
        Words pm{};
        read(meps, pm);
        for (std::uint32_t slot = 0; slot < TARV_MEP_SLOTS; ++slot)
            if (meps[slot] != meps_[slot]) report(mep_name(slot), meps_[slot], meps[slot], changes);
        for (std::uint32_t slot = 0; slot < TARV_PM_SLOTS; ++slot)
            if (pm[slot] != pm_[slot]) report(pm_name(slot), pm_[slot], pm[slot], changes);
        meps_ = meps;
        pm_ = pm;
    }

private:
    using Words = std::array<std::uint16_t, TARV_MEP_SLOTS>;

    static void read(Words& meps, Words& pm) {
        Tarv__GetAlarms(meps.data());
        std::array<std::uint8_t, TARV_PM_ALARM_BLOCK_SIZE> block{};
        Tarv__GetPMAlarms(block.data());
        for (std::uint32_t slot = 0; slot < TARV_PM_SLOTS; ++slot) pm[slot] = le16(block.data() + static_cast<std::size_t>(slot) * 2);
    }

    static void report(const std::string& name, std::uint16_t before, std::uint16_t now,
                       std::vector<std::string>& changes) {
        for (std::string& line : alarm_changes(name, before, now)) changes.push_back(std::move(line));
    }

    static std::string mep_name(std::uint32_t slot) {
        TARV_MOID moid{};
        char text[TARV_ALARM_TEXT_SIZE];
        Tarv__GetDetailsForAlarm(slot, &moid, text);
        const Bytes key(reinterpret_cast<const std::uint8_t*>(&moid), TARV_MOID_SIZE);
        return all_zero(key) ? fmt::format("MEP slot {}", slot) : label(class_of(cls::kMep), key);
    }

    static std::string pm_name(std::uint32_t slot) {
        TARV_PM_KEY key{};
        Tarv__GetPMAlarmMoid(slot, &key);
        const Bytes key_bytes(reinterpret_cast<const std::uint8_t*>(&key), TARV_PM_KEY_SIZE);
        return all_zero(key_bytes) ? fmt::format("PM slot {}", slot) : label(class_of(cls::kPmSession), key_bytes);
    }

    Words meps_{};
    Words pm_{};
};

int watch(const Options& options, std::uint32_t interval_ms, std::uint32_t count) {
    catch_stop_signals();
    const DataRegion region = DataRegion::attach(options);
    std::vector<std::function<void(std::vector<std::string>&)>> watches;
    for (const ClassDef& c : classes()) {
        if (c.rule != Rule::List && c.rule != Rule::History) continue;
        auto w = std::make_shared<ClassWatch>(c);
        watches.emplace_back([w](std::vector<std::string>& changes) { w->poll(changes); });
    }
    auto alarms = std::make_shared<AlarmWatch>();
    watches.emplace_back([alarms](std::vector<std::string>& changes) { alarms->poll(changes); });
    fmt::print("watching {} every {} ms: {}\n", region.where(), interval_ms, summary(Configuration::read()));
    flush_stdout();
    for (std::uint32_t polls = 1; count == 0 || polls < count; ++polls) {
        if (!sleep_ms(interval_ms)) break;
        std::vector<std::string> changes;
        for (const auto& w : watches) w(changes);
        for (const std::string& line : changes) fmt::print("{}\n", line);
        flush_stdout();
    }
    return kExitOk;
}

}  // namespace

void add_watch(CLI::App& app, const Options& options, Commands& commands) {
    struct Args {
        std::uint32_t interval = 1000;
        std::uint32_t count = 0;
    };
    auto args = std::make_shared<Args>();
    CLI::App* cmd = app.add_subcommand("watch", "Print what changes in the region, until interrupted");
    cmd->footer(
        "Poll the region and print each change as it is seen, class by class: \"+ MEP 1/1/4\" for an object "
        "added, \"- MIP 1/1/2\" for one removed; then the alarm bits of MEPs and PM sessions, \"* MEP 1/1/2: alarm "
        "bits 0, 2 raised\" or \"... cleared\". A class counts once two reads in a row agree, so a class the "
        "controller is rewriting is not reported half written. Runs until interrupted (SIGINT, SIGTERM; exit "
        "status 0) or for --count polls.");
    cmd->add_option("--interval", args->interval, "Milliseconds between polls (default 1000)")
        ->check(CLI::Range(1u, 3600000u));
    cmd->add_option("--count", args->count, "Stop after this many polls, the first included (default 0: never)");
    commands.add(cmd, [&options, args] { return watch(options, args->interval, args->count); });
}

}  // namespace tarvctl
