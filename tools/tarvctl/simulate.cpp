// tarvctl simulate: plays the OAM controller on a region that holds a
// configuration, for the views, `watch` and `metrics` to have something to
// follow. One change per round, printed as one line:
//
// - fault episodes on MEPs: a CFM defect raised, cleared a few rounds later;
//   the alarm text names the highest-priority defect left;
// - the same for the alarm words of PM sessions;
// - throughput tests that run for a few rounds and leave a history result;
// - bandwidth notification records that change;
// - now and then a MEP removed and put back later, as the
//   configuration-database manager does it: through Tarv__SetConfig, its
//   throughput tests and PM sessions before it on removal and after it on
//   return, the bandwidth notifications written after the MEPs (the MEP
//   write keys them anew) with what they held carried over.
//
// What the controller owns is written straight into the region, as it
// does. Each change is complete before the next round and before a stop
// signal is honoured, so `tarvctl check` never finds fault with the region
// between rounds. The choices come from one seeded generator and from the
// region in slot order: the same seed on the same region makes the same
// changes, whatever the rate.
#include <time.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "common/status.h"
#include "controller.h"
#include "stop.h"
#include "tarv/tarv.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

// splitmix64: small, and the same numbers on every platform and compiler.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint32_t below(std::uint32_t n) {
        state_ += 0x9e3779b97f4a7c15ULL;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return static_cast<std::uint32_t>((z ^ (z >> 31)) % n);
    }
    std::uint32_t between(std::uint32_t low, std::uint32_t high) { return low + below(high - low + 1); }

private:
    std::uint64_t state_;
};

// The CFM defects of IEEE 802.1ag the controller reports in a MEP's alarm
// word, highest priority first; the alarm text names the highest one raised.
struct Defect {
    unsigned bit;
    const char* name;
    const char* text;  // {} is the remote MEP id
};
constexpr Defect kDefects[] = {
    {4, "cross-connect", "CCMs of another MA from MEP {}"},
    {3, "errored CCM", "errored CCMs from MEP {}"},
    {1, "loss of continuity", "CCMs from MEP {} lost"},
    {2, "MAC status", "MAC status defect reported by MEP {}"},
    {0, "RDI", "RDI received from MEP {}"},
};
constexpr unsigned kPmBits = 5;  // PM thresholds: delay, delay variation, near and far frame loss, availability

// The transfer records of one class, as Tarv__GetConfig lists them.
using Records = std::vector<std::vector<std::uint8_t>>;

Records records_of(std::uint32_t class_id) {
    const TransferList list = TransferList::read(class_of(class_id));
    Records out;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Bytes key = list.key(i);
        const Bytes record = list.record(i);
        std::vector<std::uint8_t> t(key.begin(), key.end());
        t.insert(t.end(), record.begin(), record.end());
        out.push_back(std::move(t));
    }
    return out;
}

// Whether a transfer record (of a MEP, PM session, throughput test or
// bandwidth notification) belongs to the MEP with this key: lId1..lId3 equal.
bool of_mep(Bytes transfer, Bytes mep_key) {
    return std::equal(mep_key.begin() + 2, mep_key.begin() + TARV_MOID_SIZE, transfer.begin() + 2);
}

// What a MEP removal takes out, to be put back.
struct Removed {
    std::vector<std::uint8_t> mep;
    Records bwn, tests, sessions;
};

struct Pending {
    enum class Kind { MepBit, PmBit, TestDone, MepBack } kind;
    std::uint64_t due;
    std::vector<std::uint8_t> key;  // of the MEP, PM session or throughput test
    unsigned bit = 0;
    std::shared_ptr<Removed> removed;
};

struct Change {
    std::string text;
    Json json;  // the event's own members
};

class Simulator {
public:
    Simulator(std::uint8_t* region, std::uint64_t seed) : region_(region), random_(seed) {}

    Change step(std::uint64_t round) {
        round_ = round;
        meps_ = records_of(cls::kMep);
        // Each pass either makes a change or drops a pending one.
        for (;;) {
            auto due = std::min_element(pending_.begin(), pending_.end(),
                                        [](const Pending& a, const Pending& b) { return a.due < b.due; });
            if (due != pending_.end() && due->due <= round) {
                if (auto c = finish(due)) return std::move(*c);
                continue;
            }
            if (auto c = something_new()) return std::move(*c);
            // Everything is busy: the first pending change comes early.
            if (due == pending_.end()) throw Failure(kExitIo, "the region no longer holds a MEP to simulate");
            if (auto c = finish(due)) return std::move(*c);
        }
    }

private:
    // A change of a kind chosen by weight; a kind without a candidate passes
    // to the next.
    std::optional<Change> something_new() {
        constexpr std::array<std::uint32_t, 5> kWeights{36, 20, 14, 20, 10};
        std::uint32_t pick = random_.below(100);
        std::size_t kind = 0;
        while (pick >= kWeights[kind]) pick -= kWeights[kind++];
        for (std::size_t tried = 0; tried < kWeights.size(); ++tried, kind = (kind + 1) % kWeights.size()) {
            std::optional<Change> c;
            switch (kind) {
                case 0: c = mep_fault(); break;
                case 1: c = pm_fault(); break;
                case 2: c = test_start(); break;
                case 3: c = bwn_update(); break;
                default: c = mep_remove(); break;
            }
            if (c) return c;
        }
        return std::nullopt;
    }

    [[nodiscard]] bool pending(Pending::Kind kind, Bytes key, unsigned bit = 0) const {
        return std::any_of(pending_.begin(), pending_.end(), [&](const Pending& p) {
            return p.kind == kind && p.bit == bit && std::equal(key.begin(), key.end(), p.key.begin(), p.key.end());
        });
    }
    // Whether any pending change concerns the MEP or its tests and sessions.
    [[nodiscard]] bool busy(Bytes mep_key) const {
        return std::any_of(pending_.begin(), pending_.end(),
                           [&](const Pending& p) {
                               return p.kind == Pending::Kind::MepBack || of_mep(p.key, mep_key);
                           });
    }
    void later(Pending::Kind kind, Bytes key, unsigned bit, std::uint32_t low, std::uint32_t high,
               std::shared_ptr<Removed> removed = nullptr) {
        pending_.push_back(Pending{kind, round_ + random_.between(low, high), {key.begin(), key.end()}, bit,
                                   std::move(removed)});
    }

    // The slot of a key the library has just listed; only another writer
    // could have taken it away in between.
    [[nodiscard]] std::uint32_t slot(tarv::Table table, Bytes key) const {
        const std::uint32_t s = tarv::find_slot(region_, table, key.data(),
                                                tarv::slot_hint(key.data(), static_cast<std::uint32_t>(key.size())));
        if (s == tarv::kNotFound)
            throw Failure(kExitIo,
                          fmt::format("the key {} vanished from the region: is another writer at work?", hex(key)));
        return s;
    }

    // The MEP reference of the JSON events, from its transfer record.
    static Json mep_json(Bytes transfer) {
        const KeyIds k = key_ids(class_of(cls::kMep), transfer);
        const Bytes r = transfer.subspan(TARV_MOID_SIZE);
        const auto s = static_cast<std::uint8_t>(value(r, field::byMepSlot));
        const auto p = static_cast<std::uint8_t>(value(r, field::byMepPort));
        return {{"md", k.id[0]},
                {"ma", k.id[1]},
                {"mep", k.id[2]},
                {"mepId", value(r, field::wMepId)},
                {"port", s == kLagSlot ? Json{{"lag", p}} : Json{{"slot", s}, {"port", p}}}};
    }
    [[nodiscard]] const std::vector<std::uint8_t>* find_mep(Bytes key) const {
        for (const auto& m : meps_)
            if (of_mep(m, key)) return &m;
        return nullptr;
    }
    [[nodiscard]] static std::string name(std::uint32_t class_id, Bytes key) { return label(class_of(class_id), key); }

    // The alarm text of a word: the highest-priority defect raised, naming
    // another MEP of the same MA as the remote one.
    [[nodiscard]] std::string alarm_text(Bytes mep, std::uint16_t word) const {
        std::uint32_t remote = value(mep.subspan(TARV_MOID_SIZE), field::wMepId) + 1;
        for (const auto& m : meps_)  // same MD and MA, another MEP
            if (std::equal(m.begin() + 2, m.begin() + 10, mep.begin() + 2) && !of_mep(m, mep)) {
                remote = value(Bytes(m).subspan(TARV_MOID_SIZE), field::wMepId);
                break;
            }
        for (const Defect& d : kDefects)
            if (((unsigned{word} >> d.bit) & 1U) != 0) return fmt::format(fmt::runtime(d.text), remote);
        return {};
    }

    Change flip_mep_bit(const std::vector<std::uint8_t>& mep, unsigned bit) {
        const std::uint32_t s = slot(tarv::Table::MepMoidArray, Bytes(mep).first(TARV_MOID_SIZE));
        const std::uint8_t* record = tarv::entry(region_, tarv::Table::MepDataArray, s);
        const auto word = static_cast<std::uint16_t>(tarv::get(record, tarv::mep::wAlarmBits) ^ (1U << bit));
        const std::string text = alarm_text(mep, word);
        put_mep_alarm(region_, s, word, text);
        put_mep_old_moid(region_, s, Bytes(mep).first(TARV_MOID_SIZE));
        const bool raised = ((unsigned{word} >> bit) & 1U) != 0;
        const Defect& d =
            *std::find_if(std::begin(kDefects), std::end(kDefects), [bit](const Defect& x) { return x.bit == bit; });
        return {fmt::format("{}: alarm bit {} ({}) {}{}", name(cls::kMep, mep), bit, d.name,
                            raised ? "raised" : "cleared",
                            text.empty() ? "" : ", text \"" + text + "\""),
                {{"event", raised ? "mepAlarmRaised" : "mepAlarmCleared"},
                 {"mep", mep_json(mep)},
                 {"bit", bit},
                 {"defect", d.name},
                 {"alarms", word},
                 {"text", text}}};
    }

    std::optional<Change> mep_fault() {
        std::vector<std::pair<const std::vector<std::uint8_t>*, unsigned>> candidates;
        for (const auto& m : meps_)
            for (const Defect& d : kDefects)
                if (!pending(Pending::Kind::MepBit, Bytes(m).first(TARV_MOID_SIZE), d.bit))
                    candidates.emplace_back(&m, d.bit);
        if (candidates.empty()) return std::nullopt;
        const auto& [mep, bit] = candidates[random_.below(static_cast<std::uint32_t>(candidates.size()))];
        const std::vector<std::uint8_t> m = *mep;
        const unsigned b = bit;
        later(Pending::Kind::MepBit, Bytes(m).first(TARV_MOID_SIZE), b, 3, 12);
        return flip_mep_bit(m, b);
    }

    Change flip_pm_bit(Bytes key, unsigned bit) {
        const std::uint32_t s = key[tarv::moid::kSessionIdOffset];
        const auto word =
            static_cast<std::uint16_t>(le16(tarv::entry(region_, tarv::Table::PMAlarmBlock, s)) ^ (1U << bit));
        put_pm_alarm(region_, s, key, word);
        const bool raised = ((unsigned{word} >> bit) & 1U) != 0;
        const auto* mep = find_mep(key);
        return {fmt::format("{}: alarm bit {} {}", name(cls::kPmSession, key), bit, raised ? "raised" : "cleared"),
                {{"event", raised ? "pmAlarmRaised" : "pmAlarmCleared"},
                 {"mep", mep != nullptr ? mep_json(*mep) : Json(nullptr)},
                 {"session", s},
                 {"bit", bit},
                 {"alarms", word}}};
    }

    std::optional<Change> pm_fault() {
        const Records sessions = records_of(cls::kPmSession);
        std::vector<std::pair<Bytes, unsigned>> candidates;
        for (const auto& s : sessions)
            for (unsigned bit = 0; bit < kPmBits; ++bit)
                if (!pending(Pending::Kind::PmBit, Bytes(s).first(TARV_PM_KEY_SIZE), bit))
                    candidates.emplace_back(Bytes(s).first(TARV_PM_KEY_SIZE), bit);
        if (candidates.empty()) return std::nullopt;
        const auto& [key, bit] = candidates[random_.below(static_cast<std::uint32_t>(candidates.size()))];
        later(Pending::Kind::PmBit, key, bit, 3, 12);
        return flip_pm_bit(key, bit);
    }

    std::optional<Change> test_start() {
        const Records tests = records_of(cls::kThroughput);
        std::vector<Bytes> candidates;
        for (const auto& t : tests)
            if (const Bytes key = Bytes(t).first(TARV_THROUGHPUT_KEY_SIZE); !pending(Pending::Kind::TestDone, key))
                candidates.push_back(key);
        if (candidates.empty()) return std::nullopt;
        const Bytes key = candidates[random_.below(static_cast<std::uint32_t>(candidates.size()))];
        put_throughput_status(region_, slot(tarv::Table::ThroughputMoidArray, key), 2);
        later(Pending::Kind::TestDone, key, 0, 2, 6);
        const KeyIds k = key_ids(class_of(cls::kThroughput), key);
        const auto* mep = find_mep(key);
        return Change{fmt::format("{} started", name(cls::kThroughput, key)),
                      {{"event", "throughputStarted"},
                       {"mep", mep != nullptr ? mep_json(*mep) : Json(nullptr)},
                       {"test", k.id[3]}}};
    }

    // The test's result goes to the first free history slot, or over the
    // oldest record when all are taken; record first, then its id.
    Change test_done(Bytes key) {
        const KeyIds k = key_ids(class_of(cls::kThroughput), key);
        const std::uint32_t centi_mbps = random_.between(100, 100000);
        const std::uint32_t centi_loss = random_.below(10) < 7 ? 0 : random_.between(1, 500);
        const std::string result = fmt::format("{}/{}/{} test {}: {}.{:02} Mbit/s, frame loss {}.{:02} %", k.id[0],
                                               k.id[1], k.id[2], k.id[3], centi_mbps / 100, centi_mbps % 100,
                                               centi_loss / 100, centi_loss % 100);
        const ClassDef& h = class_of(cls::kHistory);
        std::uint32_t free = h.slots;
        std::uint32_t oldest = 0;
        std::uint32_t newest = 0;
        for (std::uint32_t s = 0; s < h.slots; ++s) {
            const std::uint32_t id = le32(tarv::entry(region_, tarv::Table::ThroughputHistoryIdArray, s));
            if (id == 0) {
                free = s;
                break;
            }
            if (id < le32(tarv::entry(region_, tarv::Table::ThroughputHistoryIdArray, oldest))) oldest = s;
            newest = std::max(newest, id);
        }
        const std::uint32_t s = free < h.slots ? free : oldest;
        const std::uint32_t id = newest + 1;
        std::uint8_t* record = tarv::entry(region_, tarv::Table::ThroughputHistoryDataArray, s);
        std::memset(record, 0, h.record);
        store_le32(record, 1);
        record[4] = static_cast<std::uint8_t>(k.id[3]);
        put_text(MutableBytes(record, h.record), field::acResult, result);
        store_le32(tarv::entry(region_, tarv::Table::ThroughputHistoryIdArray, s), id);
        put_throughput_status(region_, slot(tarv::Table::ThroughputMoidArray, key), 1);
        const auto* mep = find_mep(key);
        return {fmt::format("{} finished, history record {}: {}", name(cls::kThroughput, key), id, result),
                {{"event", "throughputFinished"},
                 {"mep", mep != nullptr ? mep_json(*mep) : Json(nullptr)},
                 {"test", k.id[3]},
                 {"historyId", id},
                 {"rateBitsPerSecond", std::uint64_t{centi_mbps} * 10000},
                 {"frameLossRatio", centi_loss / 10000.0}}};
    }

    // The controller's record of a notification: a state word (1: sent),
    // the bandwidth in Mbit/s and a priority byte.
    std::optional<Change> bwn_update() {
        const Records bwns = records_of(cls::kBwn);
        if (bwns.empty()) return std::nullopt;
        const Bytes key = Bytes(bwns[random_.below(static_cast<std::uint32_t>(bwns.size()))]).first(TARV_MOID_SIZE);
        constexpr std::uint32_t kRates[] = {10, 100, 250, 500, 1000, 2500, 10000};
        const std::uint32_t mbps = kRates[random_.below(std::size(kRates))];
        const auto priority = static_cast<std::uint8_t>(random_.below(8));
        std::uint8_t* record = tarv::entry(region_, tarv::Table::BandwidthNotificationDataArray,
                                           slot(tarv::Table::BandwidthNotificationMoidArray, key));
        std::memset(record, 0, TARV_BANDWIDTH_NOTIFICATION_RECORD_SIZE);
        store_le32(record, 1);
        store_le32(record + 4, mbps);
        record[8] = priority;
        const auto* mep = find_mep(key);
        return Change{fmt::format("{}: {} Mbit/s, priority {}", name(cls::kBwn, key), mbps, priority),
                      {{"event", "bandwidthNotification"},
                       {"mep", mep != nullptr ? mep_json(*mep) : Json(nullptr)},
                       {"bitsPerSecond", std::uint64_t{mbps} * 1000000},
                       {"priority", priority}}};
    }

    // A class rewritten as the configuration-database manager does it; the
    // throughput write stores every test as not running, so the controller
    // then marks the running ones again.
    void write_class(std::uint32_t class_id, const Records& list) {
        ListWriter w(class_id);
        const ClassDef& c = class_of(class_id);
        for (const auto& t : list) w.add(Bytes(t).first(c.key), Bytes(t).subspan(c.key));
        w.write();
        if (class_id != cls::kThroughput) return;
        for (const auto& t : list)
            if (value(Bytes(t).subspan(c.key), field::eEnableStatus) == 2)
                put_throughput_status(region_, slot(tarv::Table::ThroughputMoidArray, Bytes(t).first(c.key)), 2);
    }

    std::optional<Change> mep_remove() {
        if (meps_.size() < 2) return std::nullopt;
        std::vector<const std::vector<std::uint8_t>*> candidates;
        for (const auto& m : meps_)
            if (!busy(Bytes(m).first(TARV_MOID_SIZE))) candidates.push_back(&m);
        if (candidates.empty()) return std::nullopt;
        auto removed = std::make_shared<Removed>();
        removed->mep = *candidates[random_.below(static_cast<std::uint32_t>(candidates.size()))];
        const Bytes key = Bytes(removed->mep).first(TARV_MOID_SIZE);
        // Keeps what is not the MEP's; moves what is to `taken`.
        auto split = [key](Records list, Records& taken) {
            const auto mine =
                std::stable_partition(list.begin(), list.end(), [key](const auto& t) { return !of_mep(t, key); });
            taken.assign(mine, list.end());
            list.erase(mine, list.end());
            return list;
        };
        Records none;
        const Records tests = split(records_of(cls::kThroughput), removed->tests);
        const Records sessions = split(records_of(cls::kPmSession), removed->sessions);
        const Records bwns = split(records_of(cls::kBwn), removed->bwn);
        const Records meps = split(meps_, none);
        if (!removed->tests.empty()) write_class(cls::kThroughput, tests);
        if (!removed->sessions.empty()) write_class(cls::kPmSession, sessions);
        write_class(cls::kMep, meps);
        write_class(cls::kBwn, bwns);
        later(Pending::Kind::MepBack, key, 0, 4, 15, removed);
        return Change{fmt::format("{} removed through Tarv__SetConfig, with {} throughput test{} and {} PM session{}",
                                  name(cls::kMep, key), removed->tests.size(), removed->tests.size() == 1 ? "" : "s",
                                  removed->sessions.size(), removed->sessions.size() == 1 ? "" : "s"),
                      {{"event", "mepRemoved"},
                       {"mep", mep_json(removed->mep)},
                       {"throughputTests", removed->tests.size()},
                       {"pmSessions", removed->sessions.size()}}};
    }

    Change mep_back(const Removed& r) {
        auto with = [](Records list, const Records& more) {
            list.insert(list.end(), more.begin(), more.end());
            return list;
        };
        const Records bwns = with(records_of(cls::kBwn), r.bwn);
        write_class(cls::kMep, with(meps_, {r.mep}));
        write_class(cls::kBwn, bwns);
        if (!r.tests.empty()) write_class(cls::kThroughput, with(records_of(cls::kThroughput), r.tests));
        if (!r.sessions.empty()) write_class(cls::kPmSession, with(records_of(cls::kPmSession), r.sessions));
        return {fmt::format("{} put back through Tarv__SetConfig", name(cls::kMep, r.mep)),
                {{"event", "mepRestored"},
                 {"mep", mep_json(r.mep)},
                 {"throughputTests", r.tests.size()},
                 {"pmSessions", r.sessions.size()}}};
    }

    // The pending change at `it`; nothing when its MEP is gone.
    std::optional<Change> finish(std::vector<Pending>::iterator it) {
        const Pending p = std::move(*it);
        pending_.erase(it);
        switch (p.kind) {
            case Pending::Kind::MepBit: {
                const auto* mep = find_mep(p.key);
                if (mep == nullptr) return std::nullopt;
                return flip_mep_bit(*mep, p.bit);
            }
            case Pending::Kind::PmBit: return flip_pm_bit(p.key, p.bit);
            case Pending::Kind::TestDone: return test_done(p.key);
            case Pending::Kind::MepBack: return mep_back(*p.removed);
        }
        return std::nullopt;
    }

    std::uint8_t* region_;
    Random random_;
    std::uint64_t round_ = 0;
    Records meps_;
    std::vector<Pending> pending_;
};

// "2026-11-25T01:35:00.123Z".
std::string utc_now() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm t{};
    gmtime_r(&now.tv_sec, &t);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,
                       t.tm_hour, t.tm_min, t.tm_sec, now.tv_nsec / 1000000);
}

struct Args {
    std::optional<std::uint64_t> seed;
    double rate = 2;
    double duration = 0;
    std::uint64_t changes = 0;
    bool quiet = false;
    bool json = false;
    bool force = false;
};

int simulate(const Options& options, const Args& args) {
    refuse_region_file(options, "simulate");
    const std::string where = object_name(kDataRegion);
    if (where == kDataRegion && !args.force)
        throw Failure(kExitRefused, fmt::format("{} is the real region, which the OAM controller writes: choose a "
                                                "private one with --prefix or TARV_SHM_PREFIX ('simulate --force' "
                                                "plays the controller there)",
                                                where));
    require_region(kDataRegion);
    std::uint8_t* region = map_for_writing(kDataRegion, kDataRegionSize);
    Tarv__StorOpen();
    if (TransferList::read(class_of(cls::kMep)).size() == 0)
        throw Failure(kExitRefused, fmt::format("{} holds no MEP, so there is nothing to simulate: write a "
                                                "configuration first ('tarvctl demo' or 'tarvctl snapshot load')",
                                                where));
    std::uint64_t seed = 0;
    if (args.seed) {
        seed = *args.seed;
    } else {
        seed = std::random_device{}();
        fmt::print(stderr, "simulating with seed {} (--seed {} repeats it)\n", seed, seed);
    }
    catch_stop_signals();
    Simulator sim(region, seed);
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const auto period = std::chrono::duration<double>(1.0 / args.rate);
    const auto end = start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(args.duration));
    for (std::uint64_t round = 0; !stop_requested() && (args.changes == 0 || round < args.changes); ++round) {
        if (args.duration > 0 && Clock::now() >= end) break;
        const Change c = sim.step(round);
        if (args.json) {
            Json line = {{"schema", 1}, {"time", utc_now()}};
            line.update(c.json);
            fmt::print("{}\n", line.dump(-1, ' ', false, Json::error_handler_t::replace));
        } else if (!args.quiet) {
            fmt::print("{}\n", c.text);
        }
        (void)std::fflush(stdout);
        if (args.changes != 0 && round + 1 == args.changes) break;
        auto next = start + std::chrono::duration_cast<Clock::duration>(period * static_cast<double>(round + 1));
        if (args.duration > 0) next = std::min(next, end);
        const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count();
        if (wait > 0 && !sleep_ms(static_cast<std::uint32_t>(wait))) break;
    }
    return kExitOk;
}

}  // namespace

void add_simulate(CLI::App& app, const Options& options, Commands& commands) {
    auto args = std::make_shared<Args>();
    CLI::App* cmd = app.add_subcommand("simulate", "Play the OAM controller on the region, until interrupted");
    cmd->footer(
        "Change the region as the OAM controller would, from what it holds (after 'tarvctl demo' or a loaded "
        "snapshot), one change per round: MEP alarm bits raised and cleared after a few rounds (bit 0 RDI, 1 loss "
        "of continuity, 2 MAC status, 3 errored CCM, 4 cross-connect) with the alarm text of the highest defect; "
        "PM session alarm bits the same way; throughput tests that run and leave a history result; bandwidth "
        "notification records; now and then a MEP removed and put back through Tarv__SetConfig with its "
        "throughput tests, PM sessions and bandwidth notification. One line per change.\n"
        "Runs until interrupted (SIGINT, SIGTERM; exit status 0), for --duration seconds or --changes changes; "
        "a change is always completed, so 'tarvctl check' finds nothing between them. The same --seed on the "
        "same region makes the same changes. Refuses the real region unless --force (on a switch it would fight "
        "the controller) and a region without MEPs (exit status 5).");
    cmd->add_option("--seed", args->seed, "Seed of the choices (default: random, printed on standard error)");
    cmd->add_option("--rate", args->rate, "Changes per second (default 2)")->check(CLI::Range(0.01, 100000.0));
    cmd->add_option("--duration", args->duration, "Stop after this many seconds (default 0: never)")
        ->check(CLI::Range(0.0, 1e7));
    cmd->add_option("--changes", args->changes, "Stop after this many changes (default 0: never)");
    cmd->add_flag("--quiet", args->quiet, "Print nothing");
    cmd->add_flag("--json", args->json, "One JSON object per change and line");
    cmd->add_flag("--force", args->force, "Also on the real region");
    commands.add(cmd, [&options, args] { return simulate(options, *args); });
}

}  // namespace tarvctl
