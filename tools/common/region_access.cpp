#include "region_access.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>

#include "class_catalog.h"
#include "platform/pcor.h"
#include "snapshot_file.h"
#include "status.h"
#include "tarv/tarv.h"
#include "tarv_host.h"

namespace tarvtool {
namespace {

constexpr char kPrefixRule[] = "at most 64 of A-Z a-z 0-9 . _ -";

[[noreturn]] void io_failure(const std::string& message) { throw Failure(kExitIo, message); }

// Checks that `path` is a readable regular file.
void check_region_file(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) io_failure(fmt::format("cannot read '{}': {}", path, error_text(errno)));
    if (!S_ISREG(st.st_mode)) io_failure(fmt::format("'{}' is not a regular file", path));
}

// The region of a snapshot file as a raw image the host platform can map:
// a private temporary file, removed once the library has mapped it.
class RawCopy {
public:
    explicit RawCopy(Bytes region) {
        const char* dir = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe)
        path_ = fmt::format("{}/tarvctl-region-XXXXXX", dir != nullptr && *dir != 0 ? dir : "/tmp");
        const int fd = mkstemp(path_.data());
        if (fd < 0) io_failure(fmt::format("cannot create a temporary file in {}: {}", path_, error_text(errno)));
        std::size_t done = 0;
        while (done < region.size()) {
            const ssize_t n = write(fd, region.data() + done, region.size() - done);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        close(fd);
        if (done != region.size()) {
            unlink(path_.c_str());
            io_failure(fmt::format("cannot write the temporary file {}", path_));
        }
    }
    RawCopy(const RawCopy&) = delete;
    RawCopy& operator=(const RawCopy&) = delete;
    ~RawCopy() { unlink(path_.c_str()); }
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
};

}  // namespace

void select_prefix(const Options& options) {
    if (!options.prefix.empty()) {
        if (TarvHost_SetShmPrefix(options.prefix.c_str()) != 0)
            throw Failure(kExitUsage, fmt::format("invalid --prefix '{}': {}", options.prefix, kPrefixRule));
        return;
    }
    // Read before any thread starts; the tools never change their environment.
    if (const char* env = std::getenv("TARV_SHM_PREFIX");  // NOLINT(concurrency-mt-unsafe)
        env != nullptr && TarvHost_SetShmPrefix(env) != 0)
        throw Failure(kExitUsage, fmt::format("invalid TARV_SHM_PREFIX '{}': {}", env, kPrefixRule));
}

void refuse_region_file(const Options& options, const char* command) {
    if (!options.region_file.empty())
        throw Failure(kExitUsage,
                      fmt::format("--region: '{}' writes shared memory and cannot run on a region file", command));
}

std::string object_name(const char* name) {
    char object[TARV_HOST_SHM_NAME_MAX + 1];
    if (TarvHost_ShmObjectName(name, object, sizeof object) != 0) return name;
    return object;
}

bool region_exists(const char* name) {
    const int fd = shm_open(object_name(name).c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0) return errno != ENOENT;
    close(fd);
    return true;
}

void require_region(const char* name) {
    if (region_exists(name)) return;
    const bool data = std::string_view(name) == kDataRegion;
    throw Failure(kExitNoRegion,
                  fmt::format("no OAM {} region {}: create one with 'tarvctl init', or choose another with --prefix{}",
                              data ? "data" : "checkpoint", object_name(name),
                              data ? ", TARV_SHM_PREFIX or --region FILE" : " or TARV_SHM_PREFIX"));
}

std::uint8_t* map_for_writing(const char* name, std::uint32_t size) {
    auto* base = static_cast<std::uint8_t*>(Pcor__OpenShm(name, size, PCOR_SHM_READ_WRITE));
    if (base == nullptr) io_failure(fmt::format("cannot map {} for writing", object_name(name)));
    return base;
}

DataRegion DataRegion::attach(const Options& options) {
    std::string described;
    std::unique_ptr<RawCopy> raw;  // a snapshot file's region, while it is mapped
    if (!options.region_file.empty()) {
        check_region_file(options.region_file);
        const Snapshot saved = read_snapshot(options.region_file, SnapshotForm::Either);
        if (saved.header) raw = std::make_unique<RawCopy>(saved.region);
        const std::string& mapped = raw ? raw->path() : options.region_file;
        if (TarvHost_SetRegionFile(kDataRegion, mapped.c_str()) != 0)
            io_failure(fmt::format("cannot use '{}' as a region file: the path is too long", mapped));
        described = "file " + options.region_file;
    } else {
        described = object_name(kDataRegion);
        require_region(kDataRegion);
    }
    const auto* base =
        static_cast<const std::uint8_t*>(Pcor__OpenShm(kDataRegion, kDataRegionSize, PCOR_SHM_READ_ONLY));
    if (base == nullptr) io_failure(fmt::format("cannot map {}", described));
    Tarv__Open();
    return {base, described};
}

Snapshot read_region_file(const std::string& path, SnapshotForm form) {
    if (path != "-") check_region_file(path);
    return read_snapshot(path, form);
}

std::vector<std::uint8_t> current_region() {
    require_region(kDataRegion);
    const auto* base =
        static_cast<const std::uint8_t*>(Pcor__OpenShm(kDataRegion, kDataRegionSize, PCOR_SHM_READ_ONLY));
    if (base == nullptr) io_failure(fmt::format("cannot map {}", object_name(kDataRegion)));
    return {base, base + kDataRegionSize};
}

}  // namespace tarvtool
