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
constexpr char kLagsRule[] =
    "expected LAG=SLOT/PORT[,SLOT/PORT...][;LAG=...] with numbers 0 to 255, at most 9 members a LAG";
// The host platform's module trace level that prints errors and warnings.
constexpr std::uint32_t kWarningLevel = 2;

[[noreturn]] void io_failure(const std::string& message) { throw Failure(kExitIo, message); }

// Checks that `path` is a readable regular file.
void check_region_file(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) io_failure(fmt::format("cannot read '{}': {}", path, error_text(errno)));
    if (!S_ISREG(st.st_mode)) io_failure(fmt::format("'{}' is not a regular file", path));
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) io_failure(fmt::format("cannot read '{}': {}", path, error_text(errno)));
    close(fd);
}

// Why the shared-memory object of region `name` cannot be mapped with
// `flags` for `size` bytes, or "" when nothing stands in the way (a missing
// object included: the caller reports that, or has it created). Asked before
// the host platform maps it, whose failure carries no reason.
std::string why_unmappable(const char* name, int flags, std::uint32_t size) {
    const int fd = shm_open(object_name(name).c_str(), flags | O_CLOEXEC, 0);
    if (fd < 0) return errno == ENOENT ? "" : error_text(errno);
    struct stat st {};
    std::string why;
    if (fstat(fd, &st) != 0)
        why = error_text(errno);
    else if (!S_ISREG(st.st_mode))
        why = "it is not a regular file";
    else if (st.st_size < static_cast<off_t>(size))
        why = fmt::format("it has {} bytes, fewer than the region's {}", static_cast<long long>(st.st_size), size);
    close(fd);
    return why;
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
    RawCopy(RawCopy&&) = delete;
    RawCopy& operator=(RawCopy&&) = delete;
    ~RawCopy() { unlink(path_.c_str()); }
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
};

}  // namespace

void prepare_platform(const Options& options) {
    if (options.prefix) {
        if (TarvHost_SetShmPrefix(options.prefix->c_str()) != 0)
            throw Failure(kExitUsage, fmt::format("invalid --prefix '{}': {}", *options.prefix, kPrefixRule));
    } else if (const char* env = std::getenv("TARV_SHM_PREFIX");  // NOLINT(concurrency-mt-unsafe)
               env != nullptr && TarvHost_SetShmPrefix(env) != 0) {
        throw Failure(kExitUsage, fmt::format("invalid TARV_SHM_PREFIX '{}': {}", env, kPrefixRule));
    }
    const char* lags = std::getenv("TARV_LAGS");  // NOLINT(concurrency-mt-unsafe)
    if (lags != nullptr && !valid_lags(lags))
        throw Failure(kExitUsage, fmt::format("invalid TARV_LAGS '{}': {}", lags, kLagsRule));
    // Error traces name the library's functions and codes, which tell an
    // operator nothing; whoever debugs the library asks for them.
    if (std::getenv("TARV_TRACE_LEVEL") == nullptr)  // NOLINT(concurrency-mt-unsafe)
        TarvHost_SetModuleLevel(options.trace ? kWarningLevel : 0);
}

bool valid_lags(std::string_view text) {
    std::size_t at = 0;
    const auto eat = [&](char c) {
        if (at >= text.size() || text[at] != c) return false;
        ++at;
        return true;
    };
    const auto number = [&] {
        const std::size_t start = at;
        unsigned value = 0;
        for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
            value = value * 10 + static_cast<unsigned>(text[at] - '0');
            if (value > 255) return false;
        }
        return at > start;
    };
    if (text.empty()) return true;
    do {
        if (!number() || !eat('=')) return false;
        if (at == text.size() || text[at] == ';') continue;  // a LAG without members
        std::size_t members = 0;
        do {
            if (++members > TARV_HOST_LAG_MEMBERS_MAX || !number() || !eat('/') || !number()) return false;
        } while (eat(','));
    } while (eat(';'));
    return at == text.size();
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
    if (const std::string why = why_unmappable(name, O_RDWR, size); !why.empty())
        io_failure(fmt::format("cannot map {} for writing: {}", object_name(name), why));
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
        if (const std::string why = why_unmappable(kDataRegion, O_RDONLY, kDataRegionSize); !why.empty())
            io_failure(fmt::format("cannot map {}: {}", described, why));
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
