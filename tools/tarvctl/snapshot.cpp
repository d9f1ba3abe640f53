// tarvctl init, snapshot save|load|info FILE: making regions and moving a
// data region's bytes between shared memory and files, with a backup of
// what a load replaces.
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

#include "backup.h"
#include "commands.h"
#include "common/region_diff.h"
#include "common/snapshot_file.h"
#include "consistency.h"
#include "common/status.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

struct RegionDef {
    const char* name;
    std::uint32_t size;
};
constexpr RegionDef kRegions[] = {{kDataRegion, kDataRegionSize}, {kChkpRegion, kChkpRegionSize}};

int init(bool force) {
    for (const RegionDef& r : kRegions) {
        const std::string object = object_name(r.name);
        const bool existed = region_exists(r.name);
        if (existed && !force) {
            fmt::print("{} exists: left as it is (init --force clears it)\n", object);
            continue;
        }
        std::uint8_t* base = map_for_writing(r.name, r.size);
        if (existed) {
            std::memset(base, 0, r.size);
            fmt::print("cleared {} ({} bytes)\n", object, r.size);
        } else {
            fmt::print("created {} ({} bytes, zero-filled)\n", object, r.size);
        }
    }
    return kExitOk;
}

struct SaveArgs {
    std::string file;
    bool raw = false;
};

int save(const Options& options, const SaveArgs& args) {
    const DataRegion region = DataRegion::attach(options);
    const std::vector<std::uint8_t> bytes = region.copy();
    write_output_file(args.file, args.raw ? bytes : encode_snapshot(bytes, now_ms()));
    // Standard output may be the snapshot itself.
    fmt::print(args.file == "-" ? stderr : stdout, "saved {} to {} ({}, {} bytes)\n", region.where(),
               args.file == "-" ? "standard output" : args.file, args.raw ? "raw image" : "snapshot", bytes.size());
    return kExitOk;
}

struct LoadArgs {
    std::string file;
    bool raw = false;
    bool force = false;
    bool dry_run = false;
    std::string backup;
};

int load(const Options& options, const LoadArgs& args) {
    const Snapshot saved = read_region_file(args.file, args.raw ? SnapshotForm::Raw : SnapshotForm::Headered);
    const bool existed = region_exists(kDataRegion);
    const std::vector<std::uint8_t> before = existed ? current_region() : std::vector<std::uint8_t>(kDataRegionSize);
    const std::string object = object_name(kDataRegion);
    if (args.dry_run) {
        std::size_t count = 0;
        for (const Change& change : diff_regions(before, saved.region))
            for (const std::string& line : change_lines(change)) fmt::print("{}\n", line), ++count;
        fmt::print("dry run: {} {} to {}; nothing written\n", count, count == 1 ? "change" : "changes", object);
        return kExitOk;
    }
    if (!args.force) {
        const std::vector<Finding> findings = find_inconsistencies(saved.region);
        if (!findings.empty())
            throw Failure(kExitRefused,
                          fmt::format("'{}': check finds {} inconsistenc{} (the first: {} slot {}: {}); give --force "
                                      "to load it anyway",
                                      args.file, findings.size(), findings.size() == 1 ? "y" : "ies",
                                      findings.front().table, findings.front().slot, findings.front().problem));
        if (!all_zero(before))
            throw Failure(kExitRefused, fmt::format("{} is not empty: give --force to replace it (a backup of it is "
                                                    "left first)",
                                                    object));
    }
    const std::string backup = existed && !all_zero(before) ? write_backup(before, args.backup) : "";
    std::uint8_t* base = map_for_writing(kDataRegion, kDataRegionSize);
    std::memcpy(base, saved.region.data(), saved.region.size());
    fmt::print("loaded {} into {}\n", args.file == "-" ? "standard input" : args.file, object);
    if (!backup.empty()) fmt::print("backup: {}\nundo: {}\n", backup, undo_command(options, backup));
    return kExitOk;
}

int info(const std::string& path) {
    const Snapshot saved = read_region_file(path, SnapshotForm::Either);
    fmt::print("file: {}\n", path == "-" ? "standard input" : path);
    if (!saved.header) {
        fmt::print("form: raw region image (no header), {} bytes\n", saved.region.size());
        return kExitOk;
    }
    const SnapshotHeader& h = *saved.header;
    fmt::print("form: snapshot, format {}, {}-byte header\n", h.format, kSnapshotHeaderSize);
    fmt::print("region: {} bytes, layout {:08x} (this tool's), little-endian\n", h.region_size, h.layout);
    fmt::print("saved: {}\n", rfc3339(h.time_ms));
    fmt::print("checksums: header {:08x}, region {:08x} (both verified)\n", h.header_crc, h.region_crc);
    return kExitOk;
}

}  // namespace

void add_init(CLI::App& app, const Options& options, Commands& commands) {
    auto force = std::make_shared<bool>(false);
    CLI::App* cmd = app.add_subcommand("init", "Create the OAM regions, zero-filled");
    cmd->footer(fmt::format(
        "Create the data region {} ({} bytes) and the checkpoint region {} ({} bytes) in shared memory, "
        "zero-filled, under the prefix of --prefix or TARV_SHM_PREFIX. A region that exists is left as it is.",
        kDataRegion, kDataRegionSize, kChkpRegion, kChkpRegionSize));
    cmd->add_flag("--force", *force, "Clear regions that exist already");
    commands.add(cmd, [&options, force] {
        refuse_region_file(options, "init");
        return init(*force);
    });
}

void add_snapshot(CLI::App& app, const Options& options, Commands& commands) {
    CLI::App* snapshot = app.add_subcommand("snapshot", "Save the data region to a file, or load it from one");
    snapshot->footer(fmt::format(
        "Copy the data region {} to a file or back. A snapshot file is a {}-byte header (magic TARVSNAP, format, "
        "region size, layout, byte order, time saved, CRC-32 checksums of header and region) followed by the "
        "region's {} bytes; a raw image (as dumped from a switch) is the region's bytes alone, written and loaded "
        "with --raw. FILE '-' is standard output or input. Read-only subcommands run on either form with --region "
        "FILE, told apart by the magic. A file whose header or checksum is wrong is refused (exit status 4).",
        kDataRegion, kSnapshotHeaderSize, kDataRegionSize));
    snapshot->require_subcommand(1);

    auto save_args = std::make_shared<SaveArgs>();
    CLI::App* save_cmd = snapshot->add_subcommand("save", "Save the data region to FILE");
    save_cmd->add_option("file", save_args->file, "File to write; - for standard output")->required();
    save_cmd->add_flag("--raw", save_args->raw, "Write a raw image, without the header");
    commands.add(save_cmd, [&options, save_args] { return save(options, *save_args); });

    auto load_args = std::make_shared<LoadArgs>();
    CLI::App* load_cmd = snapshot->add_subcommand("load", "Load FILE into the data region (created if missing)");
    load_cmd->footer(
        "Replace the whole data region by FILE. Refused (exit status 5) without --force: a region that is not "
        "empty, and a FILE in which 'tarvctl check' finds inconsistencies. Before replacing a region that is not "
        "empty, load leaves a backup snapshot of it (--backup FILE, or the directory TARV_BACKUP_DIR, else "
        "$XDG_STATE_HOME/tarvctl, else ~/.local/state/tarvctl) and prints the command that undoes the load. "
        "--dry-run prints what would change, object by object, and writes nothing.");
    load_cmd->add_option("file", load_args->file, "Snapshot to load; - for standard input")->required();
    load_cmd->add_flag("--raw", load_args->raw, "FILE is a raw image, without the header");
    load_cmd->add_flag("--force", load_args->force, "Replace a region that is not empty; load a FILE check rejects");
    load_cmd->add_flag("--dry-run", load_args->dry_run, "Print what would change, and write nothing");
    load_cmd->add_option("--backup", load_args->backup, "Leave the backup snapshot in this file");
    commands.add(load_cmd, [&options, load_args] {
        refuse_region_file(options, "snapshot load");
        return load(options, *load_args);
    });

    auto info_path = std::make_shared<std::string>();
    CLI::App* info_cmd = snapshot->add_subcommand("info", "Print the header of a snapshot FILE");
    info_cmd->add_option("file", *info_path, "Snapshot or raw image; - for standard input")->required();
    commands.add(info_cmd, [info_path] { return info(*info_path); });
}

}  // namespace tarvctl
