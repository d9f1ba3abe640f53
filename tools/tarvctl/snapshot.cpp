// tarvctl init, snapshot save FILE, snapshot load FILE: making regions and
// moving a data region's bytes between shared memory and files.
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

#include "commands.h"
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

int save(const Options& options, const std::string& path) {
    const DataRegion region = DataRegion::attach(options);
    const std::vector<std::uint8_t> bytes = region.copy();
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (out) out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (out) out.close();
    if (!out) throw Failure(kExitIo, fmt::format("cannot write '{}': {}", path, error_text(errno)));
    fmt::print("saved {} to {} ({} bytes)\n", region.where(), path, bytes.size());
    return kExitOk;
}

int load(const std::string& path) {
    const std::vector<std::uint8_t> bytes = read_region_file(path);
    std::uint8_t* base = map_for_writing(kDataRegion, kDataRegionSize);
    std::memcpy(base, bytes.data(), bytes.size());
    fmt::print("loaded {} into {}\n", path, object_name(kDataRegion));
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
        "Copy the data region {} to a file or back: a saved region is exactly {} bytes. Read-only subcommands "
        "run on a saved region with --region FILE.",
        kDataRegion, kDataRegionSize));
    snapshot->require_subcommand(1);

    auto save_path = std::make_shared<std::string>();
    CLI::App* save_cmd = snapshot->add_subcommand("save", "Save the data region to FILE");
    save_cmd->add_option("file", *save_path, "File to write")->required();
    commands.add(save_cmd, [&options, save_path] { return save(options, *save_path); });

    auto load_path = std::make_shared<std::string>();
    CLI::App* load_cmd = snapshot->add_subcommand("load", "Load FILE into the data region (created if missing)");
    load_cmd->add_option("file", *load_path, "Saved region to load")->required();
    commands.add(load_cmd, [&options, load_path] {
        refuse_region_file(options, "snapshot load");
        return load(*load_path);
    });
}

}  // namespace tarvctl
