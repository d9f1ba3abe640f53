#include "backup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>

#include "common/snapshot_file.h"
#include "common/status.h"

namespace tarvctl {
namespace {

// Creates `dir` and its parents (mode 0700: backups hold the whole
// configuration).
void make_dirs(const std::string& dir) {
    for (std::size_t at = 1; at <= dir.size(); ++at) {
        if (at != dir.size() && dir[at] != '/') continue;
        const std::string part = dir.substr(0, at);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
            throw Failure(kExitIo, fmt::format("cannot create the backup directory '{}': {}", part, error_text(errno)));
    }
}

void write_all(int fd, Bytes bytes, const std::string& path) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            const int error = errno;
            close(fd);
            unlink(path.c_str());
            throw Failure(kExitIo, fmt::format("cannot write the backup '{}': {}", path, error_text(error)));
        }
        done += static_cast<std::size_t>(n);
    }
    if (close(fd) != 0) throw Failure(kExitIo, fmt::format("cannot write the backup '{}': {}", path, error_text(errno)));
}

}  // namespace

std::string backup_dir() {
    // Read before any thread starts; the tools never change their environment.
    const auto env = [](const char* name) -> std::string {
        const char* v = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
        return v != nullptr ? v : "";
    };
    if (std::string dir = env("TARV_BACKUP_DIR"); !dir.empty()) return dir;
    if (const std::string state = env("XDG_STATE_HOME"); !state.empty()) return state + "/tarvctl";
    const std::string home = env("HOME");
    if (home.empty())
        throw Failure(kExitIo, "no place for the backup: set TARV_BACKUP_DIR, XDG_STATE_HOME or HOME, or give --backup");
    return home + "/.local/state/tarvctl";
}

std::string write_backup(Bytes region, const std::string& path) {
    const std::vector<std::uint8_t> file = encode_snapshot(region, now_ms());
    if (!path.empty()) {
        write_output_file(path, file);
        return path;
    }
    const std::string dir = backup_dir();
    make_dirs(dir);
    std::string object = object_name(kDataRegion).substr(1);
    const std::string stem = fmt::format("{}/{}-{}", dir, object, file_time(now_ms()));
    for (int n = 1; n <= 1000; ++n) {
        std::string name = n == 1 ? stem + ".snap" : fmt::format("{}-{}.snap", stem, n);
        const int fd = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0 && errno == EEXIST) continue;
        if (fd < 0) throw Failure(kExitIo, fmt::format("cannot create the backup '{}': {}", name, error_text(errno)));
        write_all(fd, file, name);
        return name;
    }
    throw Failure(kExitIo, fmt::format("cannot create the backup: '{}.snap' and 999 more names are taken", stem));
}

std::string undo_command(const Options& options, const std::string& backup) {
    if (!options.prefix) return fmt::format("tarvctl snapshot load --force {}", backup);
    return fmt::format("tarvctl --prefix {} snapshot load --force {}",
                       options.prefix->empty() ? "''" : *options.prefix, backup);
}

}  // namespace tarvctl
