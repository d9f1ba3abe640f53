// tarvctl watch: polls the region and prints what changed, object by
// object and field by field, and the alarm bits raised and cleared, until
// interrupted (or for --count polls).
//
// Each poll maps the shared-memory object anew (not through the library,
// which maps the region once per process), so a region that is removed and
// created again is followed: the removal and the return are reported, and
// the new region is compared with the last one seen.
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "common/objects.h"
#include "common/records.h"
#include "common/region_diff.h"
#include "common/snapshot_file.h"
#include "common/status.h"
#include "show.h"
#include "stop.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

struct Image {
    ino_t inode = 0;
    std::vector<std::uint8_t> bytes;
};

// One copy of the shared-memory region, or nothing while it is missing (or
// not yet sized by whoever creates it).
std::optional<Image> map_once(const std::string& object) {
    const int fd = shm_open(object.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0) return std::nullopt;
    struct stat st {};
    void* base = MAP_FAILED;
    if (fstat(fd, &st) == 0 && st.st_size >= kDataRegionSize)
        base = mmap(nullptr, kDataRegionSize, PROT_READ, MAP_SHARED, fd, 0);
    close(fd);
    if (base == MAP_FAILED) return std::nullopt;
    const auto* bytes = static_cast<const std::uint8_t*>(base);
    Image image;
    image.inode = st.st_ino;
    image.bytes.assign(bytes, bytes + kDataRegionSize);
    munmap(base, kDataRegionSize);
    return image;
}

// The controller may rewrite a class while it is read: a copy counts once
// two in a row agree (or after a few tries, the last one).
std::optional<Image> settled_copy(const std::string& object) {
    std::optional<Image> image = map_once(object);
    for (int attempt = 0; image && attempt < 4; ++attempt) {
        std::optional<Image> again = map_once(object);
        const bool same = again && again->inode == image->inode && again->bytes == image->bytes;
        image = std::move(again);
        if (same) break;
    }
    return image;
}

class Printer {
public:
    explicit Printer(bool json) : json_(json) {}

    void start(const std::string& where, std::uint32_t interval, const std::string& summary) const {
        if (!json_) {
            fmt::print("watching {} every {} ms: {}\n", where, interval, summary);
        } else {
            Json j = stamp("start");
            j["region"] = where;
            j["intervalMs"] = interval;
            print(j);
        }
        flush_stdout();
    }
    void region(const char* event, const std::string& text, const std::string& where) const {
        if (!json_) {
            fmt::print("{} {} {}\n", rfc3339(now_ms()), where, text);
        } else {
            Json j = stamp(event);
            j["region"] = where;
            print(j);
        }
    }
    void change(const Change& change) const {
        if (!json_) {
            const std::string time = rfc3339(now_ms());
            for (const std::string& line : change_lines(change)) fmt::print("{} {}\n", time, line);
            return;
        }
        Json j = stamp("");
        const Json event = change_json(change);
        for (const auto& member : event.items()) j[member.key()] = member.value();
        print(j);
    }

private:
    static Json stamp(const char* event) {
        Json j = Json::object();
        j["schema"] = 1;
        j["time"] = rfc3339(now_ms());
        j["event"] = event;
        return j;
    }
    static void print(const Json& j) { fmt::print("{}\n", j.dump(-1, ' ', false, Json::error_handler_t::replace)); }

    bool json_;
};

struct WatchArgs {
    std::uint32_t interval = 1000;
    std::uint32_t count = 0;
    std::uint32_t gone_limit = 10;
    bool json = false;
};

int watch(const Options& options, const WatchArgs& args) {
    catch_stop_signals();
    const DataRegion region = DataRegion::attach(options);
    const Printer printer(args.json);
    const bool shared = options.region_file.empty();
    const std::string object = object_name(kDataRegion);
    std::optional<Image> last = shared ? settled_copy(object) : std::nullopt;
    if (!last) last = Image{0, region.copy()};
    printer.start(region.where(), args.interval, summary(Configuration::read()));
    // When the region was found missing, on the steady clock (TARV_TIME fixes only the stamps).
    bool gone = false;
    auto gone_since = std::chrono::steady_clock::now();
    for (std::uint32_t polls = 1; args.count == 0 || polls < args.count; ++polls) {
        if (!sleep_ms(args.interval)) break;
        if (!shared) continue;  // a region file does not change
        std::optional<Image> now = settled_copy(object);
        if (!now) {
            if (!gone) {
                gone = true;
                gone_since = std::chrono::steady_clock::now();
                printer.region("regionRemoved", "removed", object);
            } else if (args.gone_limit != 0 &&
                       std::chrono::steady_clock::now() - gone_since >= std::chrono::seconds(args.gone_limit)) {
                flush_stdout();
                throw Failure(kExitNoRegion, fmt::format("{} has been gone for {} s: watch ends", object,
                                                         args.gone_limit));
            }
            flush_stdout();
            continue;
        }
        if (gone)
            printer.region("regionCreated", "created again", object);
        else if (now->inode != last->inode)
            printer.region("regionReplaced", "replaced", object);
        gone = false;
        for (const Change& change : diff_regions(last->bytes, now->bytes)) printer.change(change);
        flush_stdout();
        last = std::move(now);
    }
    return kExitOk;
}

}  // namespace

void add_watch(CLI::App& app, const Options& options, Commands& commands) {
    auto args = std::make_shared<WatchArgs>();
    CLI::App* cmd = app.add_subcommand("watch", "Print what changes in the region, until interrupted");
    cmd->footer(
        "Poll the region and print each change as it is seen, each line after the UTC time (TARV_TIME fixes it): "
        "\"+ MEP 1/1/4\" for an object added, \"- MIP 1/1/2\" for one removed, \"* MEP 1/1/1: wVid 100 -> 101\" "
        "for the fields of one changed (named as 'tarvctl get --json' names them); then the alarm bits of MEPs "
        "(as their records store them) and PM sessions, \"* MEP 1/1/2: alarm bits 0, 2 raised\" or \"... "
        "cleared\"; then \"* table NAME: N bytes differ\" for tables outside every object. A copy counts once two "
        "reads in a row agree, so a class the controller is rewriting is not reported half written. Each poll "
        "maps the region anew: a region removed is reported (\"removed\") and followed when it is created again "
        "(\"created again\", or \"replaced\" between two polls) and compared with the last one seen; one gone "
        "for --gone-limit seconds ends watch with exit status 3. --json prints one JSON object per line, with "
        "\"schema\", \"time\" and \"event\" (start, added, removed, changed, alarm, table, regionRemoved, "
        "regionCreated, regionReplaced). Runs until interrupted (SIGINT, SIGTERM; exit status 0) or for --count "
        "polls.");
    cmd->add_option("--interval", args->interval, "Milliseconds between polls (default 1000)")
        ->check(CLI::Range(1u, 3600000u));
    cmd->add_option("--count", args->count, "Stop after this many polls, the first included (default 0: never)");
    cmd->add_option("--gone-limit", args->gone_limit,
                    "Seconds a removed region may stay away before watch ends with status 3 (default 10; 0: "
                    "wait for ever)");
    cmd->add_flag("--json", args->json, "One JSON object per event and line");
    commands.add(cmd, [&options, args] { return watch(options, *args); });
}

}  // namespace tarvctl
