// tarvctl set CLASS FILE: the inverse of `get`. Reads a class's transfer
// list in either form `get` prints (hex lines or JSON), appends the
// terminator and hands it to Tarv__SetConfig, which replaces everything the
// region holds for the class, as the configuration-database manager does.
//
// What the library would take without a word and lose is refused before
// anything is written: an empty list (unless --allow-empty), keys of
// another class, two records for one key or one slot, a record for no slot,
// a write that would stop a running throughput test. A MEP write carries
// the bandwidth notifications over, as the manager writes class 848 after
// 532. Every write first leaves a backup; --dry-run runs the write on a
// private copy of the region and prints what would change.
#include <sys/mman.h>
#include <unistd.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "backup.h"
#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "common/region_diff.h"
#include "common/status.h"
#include "platform/pcor.h"
#include "tarv/tarv.h"
#include "tarv_host.h"
#include "transfer.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

struct SetArgs {
    std::string class_name;
    std::string file;
    bool allow_empty = false;
    bool dry_run = false;
    bool drop_bwn = false;
    bool stop_tests = false;
    std::string backup;
};

std::string read_input(const std::string& path) {
    if (path == "-") return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    std::ifstream in(path, std::ios::binary);
    if (!in) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    return text;
}

std::string class_text(const ClassDef& c) {
    return c.name.empty() ? fmt::format("class {}", c.id) : fmt::format("{} ({})", c.name, c.id);
}

[[noreturn]] void refuse(int code, const std::string& path, const std::string& where, const std::string& what) {
    throw Failure(code, fmt::format("'{}' {}: {}; the region is unchanged", path, where, what));
}

// The slot the library would put an entry in, or -1 when the key addresses
// none; the packed classes take records in order.
long slot_of(const ClassDef& c, const TransferEntry& e, std::size_t position) {
    if (c.placement == Placement::Packed) return static_cast<long>(position);
    const KeyIds ids = key_ids(c, e.key);
    const long last = static_cast<long>(ids.id[ids.count - 1] & 0xFFFF);
    const long slot = c.session_keyed() ? static_cast<long>(ids.session) : last - 1;
    return slot >= 0 && slot < static_cast<long>(c.slots) ? slot : -1;
}

// What the library would store without a word and lose.
void check_entries(const ClassDef& c, const std::vector<TransferEntry>& entries, const std::string& path,
                   bool allow_empty, Bytes region) {
    if (c.rule != Rule::List && c.rule != Rule::History) return;
    const std::size_t held = stored_objects(c, region).size();
    if (entries.empty() && held > 0 && !allow_empty)
        throw Failure(kExitUsage, fmt::format("'{}' holds no records: the write would remove all {} {} objects of the "
                                              "region; give --allow-empty to empty the class",
                                              path, held, class_text(c)));
    if (entries.size() > c.slots)
        refuse(kExitUsage, path, entries[c.slots].where, fmt::format("class {} holds at most {} records", c.id, c.slots));
    std::vector<long> slots;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const TransferEntry& e = entries[i];
        if (c.rule == Rule::List && key_ids(c, e.key).cls != c.id)
            refuse(kExitUsage, path, e.where,
                   fmt::format("the key is of class {}, not {}", key_ids(c, e.key).cls, c.id));
        for (std::size_t j = 0; j < i; ++j)
            if (entries[j].key == e.key)
                refuse(kExitUsage, path, e.where, fmt::format("the same key as {}", entries[j].where));
        const long slot = slot_of(c, e, i);
        if (slot < 0)
            refuse(kExitUsage, path, e.where,
                   fmt::format("{} addresses no slot of the {} the class has", label(c, e.key), c.slots));
        const auto taken = std::find(slots.begin(), slots.end(), slot);
        if (taken != slots.end())
            refuse(kExitUsage, path, e.where,
                   fmt::format("{} takes slot {} as {} does: the library would keep only the later",
                               label(c, e.key), slot, entries[static_cast<std::size_t>(taken - slots.begin())].where));
        slots.push_back(slot);
    }
}

// A throughput write stores eEnableStatus 1 in every test it writes: a
// test the controller runs (another status) would stop.
void check_running_tests(const ClassDef& c, const std::vector<TransferEntry>& entries, Bytes region,
                         const std::string& path) {
    if (c.id != cls::kThroughput) return;
    for (const StoredObject& stored : stored_objects(c, region)) {
        const std::uint32_t status = value(stored.record, field::eEnableStatus);
        if (status == 1) continue;
        const auto it = std::find_if(entries.begin(), entries.end(), [&stored](const TransferEntry& e) {
            return std::equal(e.key.begin(), e.key.end(), stored.key.begin(), stored.key.end());
        });
        if (it != entries.end())
            refuse(kExitRefused, path, it->where,
                   fmt::format("{} has eEnableStatus {} in the region and a write stores 1, which stops the "
                               "running test; give --stop-running-tests to write anyway",
                               label(c, stored.key), status));
    }
}

// The write itself, on the region the process has attached read-write: the
// class, then for MEPs the bandwidth notifications the region held for MEPs
// that stay (the MEP write keys an empty one per MEP).
struct Written {
    std::size_t notifications = 0;  // carried over
};
Written apply(const ClassDef& c, const std::vector<std::uint8_t>& list, bool carry_bwn, const std::string& path) {
    Tarv__StorOpen();
    std::vector<std::uint8_t> kept_bwn;
    if (carry_bwn) {
        const TransferList old = TransferList::read(class_of(cls::kBwn));
        kept_bwn.assign(old.bytes().begin(), old.bytes().end());
    }
    const std::int32_t result = Tarv__SetConfig(c.id, list.data());
    if (result == TARV_SET_CONFIG_NOT_ATTACHED)
        throw Failure(kExitIo, fmt::format("cannot attach {} for writing", object_name(kDataRegion)));
    if (result == TARV_SET_CONFIG_REFUSED)
        throw Failure(kExitUsage, fmt::format("'{}': the library refused the list, the region is unchanged: a record "
                                              "addresses no slot of {} (--trace shows the library's error trace "
                                              "naming it)",
                                              path, class_text(c)));
    Written written;
    if (!carry_bwn) return written;
    const ClassDef& bwn = class_of(cls::kBwn);
    const TransferList keyed = TransferList::read(bwn);
    std::vector<std::uint8_t> again(keyed.bytes().begin(), keyed.bytes().end());
    for (std::size_t i = 0; i < keyed.size(); ++i) {
        for (std::size_t at = 0; at < kept_bwn.size(); at += bwn.transfer()) {
            if (!std::equal(keyed.key(i).begin(), keyed.key(i).end(), kept_bwn.begin() + static_cast<long>(at)))
                continue;
            std::copy_n(kept_bwn.begin() + static_cast<long>(at + bwn.key), bwn.record,
                        again.begin() + static_cast<long>(i * bwn.transfer() + bwn.key));
            ++written.notifications;
        }
    }
    again.resize(again.size() + bwn.key);  // the terminator
    Tarv__SetConfig(bwn.id, again.data());
    return written;
}

// The region as the write would leave it: the write runs on a private
// shared-memory copy under a prefix of this process's own, removed again.
std::vector<std::uint8_t> dry_run(Bytes before, const ClassDef& c, const std::vector<std::uint8_t>& list,
                                  bool carry_bwn, const std::string& path) {
    const std::string prefix = fmt::format("tarvctl-dry-run-{}-", getpid());
    if (TarvHost_SetShmPrefix(prefix.c_str()) != 0) throw Failure(kExitIo, "cannot name a private copy of the region");
    struct Remove {
        Remove() = default;
        Remove(const Remove&) = delete;
        Remove& operator=(const Remove&) = delete;
        Remove(Remove&&) = delete;
        Remove& operator=(Remove&&) = delete;
        ~Remove() { shm_unlink(object_name(kDataRegion).c_str()); }
    } remove;
    std::uint8_t* copy = map_for_writing(kDataRegion, kDataRegionSize);
    std::memcpy(copy, before.data(), before.size());
    apply(c, list, carry_bwn, path);
    return {copy, copy + kDataRegionSize};
}

int set(const Options& options, const SetArgs& args) {
    refuse_region_file(options, "set");
    const ClassDef& c = parse_class(args.class_name);
    const std::string& path = args.file;
    const std::vector<TransferEntry> entries = parse_transfer(c, read_input(path), path);
    const std::vector<std::uint8_t> before = current_region();
    check_entries(c, entries, path, args.allow_empty, before);
    const std::vector<std::uint8_t> list = transfer_list(c, entries, path);
    if (!args.stop_tests) check_running_tests(c, entries, before, path);
    const bool carry_bwn = c.id == cls::kMep && !args.drop_bwn;
    if (args.dry_run) {
        const std::vector<std::uint8_t> after = dry_run(before, c, list, carry_bwn, path);
        std::size_t count = 0;
        for (const Change& change : diff_regions(before, after))
            for (const std::string& line : change_lines(change)) fmt::print("{}\n", line), ++count;
        fmt::print("dry run: {} {} from {}; nothing written\n", count, count == 1 ? "change" : "changes",
                   class_text(c));
        return kExitOk;
    }
    const std::string backup = write_backup(before, args.backup);
    const Written written = apply(c, list, carry_bwn, path);
    fmt::print("{}: {} record{} written to {}\n", class_text(c), entries.size(), entries.size() == 1 ? "" : "s",
               object_name(kDataRegion));
    if (carry_bwn)
        fmt::print("bandwidth notifications: {} carried over\n", written.notifications);
    else if (c.id == cls::kMep)
        fmt::print("bandwidth notifications: emptied, one keyed per MEP\n");
    fmt::print("backup: {}\nundo: {}\n", backup, undo_command(options, backup));
    if (c.id == 673 && entries.front().record[0] == 0)
        fmt::print(stderr, "tarvctl: note: class 673 keeps its stored value when the first byte given is 0\n");
    return kExitOk;
}

}  // namespace

void add_set(CLI::App& app, const Options& options, Commands& commands) {
    auto args = std::make_shared<SetArgs>();
    CLI::App* cmd = app.add_subcommand("set", "Replace a class in the region by a transfer list");
    cmd->footer(
        "Replace everything the region holds for one class by the objects in FILE, through Tarv__SetConfig,\n"
        "as the configuration-database manager does. FILE is in either form 'tarvctl get' prints: hex lines,\n"
        "or JSON when it starts with '{' or '['; '-' reads standard input. The terminator is appended.\n"
        "The library derives or resets on every write, whatever FILE holds: the MAC address (abyMacAddress)\n"
        "of MEPs and MIPs from their port, the MEP fields lStored1 and lStored2 (1), the class 526 and 528\n"
        "fields at record offsets 13 and 9 (1), a throughput test's eEnableStatus (1) and wDerived; the\n"
        "companion keys of classes 572, 577 and 578, whose data it empties. A MEP write also re-keys the\n"
        "bandwidth notifications: set carries over the notification of every MEP that stays (as the manager\n"
        "writes class bwn after mep); --drop-bandwidth-notifications leaves them empty.\n"
        "Before writing, set leaves a backup snapshot of the region in --backup FILE or in the directory\n"
        "TARV_BACKUP_DIR, else $XDG_STATE_HOME/tarvctl, else ~/.local/state/tarvctl (named after the region\n"
        "and the UTC time), and prints the command that undoes the write. --dry-run writes on a private copy\n"
        "and prints what would change: \"+ MEP 1/1/7\", \"- MIP 2/2/2\", \"* MEP 1/1/1: wVid 100 -> 101\".\n"
        "Refused with the region unchanged (exit status 2): a malformed file; an empty one (no records)\n"
        "unless --allow-empty, when the class holds objects; a key of another class; two records with one key or one slot; more records\n"
        "than the class has slots; a record whose instance or session id addresses no slot; an all-zero key.\n"
        "Refused with exit status 5: a throughput write over a test whose stored eEnableStatus is not 1 (the\n"
        "write would stop it), unless --stop-running-tests.\n"
        "CLASS: " +
        class_choices());
    cmd->add_option("class", args->class_name, "Class id or name")->required();
    cmd->add_option("file", args->file, "Transfer list, as 'tarvctl get' prints it; - for standard input")
        ->required();
    cmd->add_flag("--allow-empty", args->allow_empty, "Accept a list without records: empty the class");
    cmd->add_flag("--dry-run", args->dry_run, "Print what would change, and write nothing");
    cmd->add_option("--backup", args->backup, "Leave the backup snapshot in this file");
    cmd->add_flag("--drop-bandwidth-notifications", args->drop_bwn,
                  "MEP writes: leave the bandwidth notifications empty, as the library keys them");
    cmd->add_flag("--stop-running-tests", args->stop_tests,
                  "Throughput writes: write even where a running test would stop");
    commands.add(cmd, [&options, args] { return set(options, *args); });
}

}  // namespace tarvctl
