// Named shared memory of the host platform over POSIX shm_open and mmap.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host_model.h"
#include "platform/pcor.h"

namespace tarv::host {
namespace {

constexpr mode_t kCreateMode = 0660;

// Names served from files instead of shared memory; an empty name is a free
// entry.
struct RegionFile {
    char name[TARV_HOST_SHM_NAME_MAX + 1];
    char path[TARV_HOST_REGION_PATH_MAX + 1];
};
constinit RegionFile g_region_files[TARV_HOST_REGION_FILES_MAX]{};

RegionFile* region_file(const char* name) noexcept {
    for (RegionFile& f : g_region_files)
        if (f.name[0] != '\0' && std::strcmp(f.name, name) == 0) return &f;
    return nullptr;
}

// The text of an errno value; unlike strerror, safe beside other threads.
const char* error_text(int error) noexcept {
    const char* text = strerrordesc_np(error);
    return text != nullptr ? text : "unknown error";
}

// A private copy-on-write mapping of the first `size` bytes of a region file.
void* map_file(const char* name, const char* path, std::uint32_t size, bool read_only, std::int32_t flag) noexcept {
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        diagnostic("Pcor__OpenShm(\"%s\", %u, %d): file %s: %s", name, size, flag, path, error_text(errno));
        return nullptr;
    }
    struct stat st {};
    void* base = MAP_FAILED;
    if (fstat(fd, &st) != 0) {
        diagnostic("Pcor__OpenShm(\"%s\", %u, %d): file %s: fstat: %s", name, size, flag, path, error_text(errno));
    } else if (st.st_size < static_cast<off_t>(size)) {
        diagnostic("Pcor__OpenShm(\"%s\", %u, %d): file %s has %lld bytes, fewer than asked", name, size, flag, path,
                   static_cast<long long>(st.st_size));
    } else {
        base = mmap(nullptr, size, read_only ? PROT_READ : PROT_READ | PROT_WRITE, MAP_PRIVATE, fd, 0);
        if (base == MAP_FAILED)
            diagnostic("Pcor__OpenShm(\"%s\", %u, %d): file %s: mmap: %s", name, size, flag, path,
                       error_text(errno));
    }
    close(fd);
    return base == MAP_FAILED ? nullptr : base;
}

// A name of the form "/name" with no further slash.
bool valid_name(const char* name) noexcept {
    return name != nullptr && name[0] == '/' && name[1] != '\0' && std::strchr(name + 1, '/') == nullptr &&
           std::strlen(name) <= TARV_HOST_SHM_NAME_MAX;
}

// Object name for `name`: the prefix goes right after the leading slash.
bool object_name(const char* name, char* out, std::size_t size) noexcept {
    if (!valid_name(name)) return false;
    const char* prefix = model().shm_prefix;
    const std::size_t length = 1 + std::strlen(prefix) + std::strlen(name + 1);
    if (length > TARV_HOST_SHM_NAME_MAX || length >= size) return false;
    return std::snprintf(out, size, "/%s%s", prefix, name + 1) == static_cast<int>(length);
}

// Opens the object; for read-write access creates it when it is missing.
// Sets `created` when this call made the object.
int open_object(const char* object, bool read_only, bool& created) noexcept {
    created = false;
    if (read_only) return shm_open(object, O_RDONLY | O_CLOEXEC, 0);
    // The object can vanish between a refused exclusive create and the open
    // of the existing one; one more round settles that.
    for (int attempt = 0; attempt < 2; ++attempt) {
        int fd = shm_open(object, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kCreateMode);
        if (fd >= 0) {
            created = true;
            return fd;
        }
        if (errno != EEXIST) return -1;
        fd = shm_open(object, O_RDWR | O_CLOEXEC, 0);
        if (fd >= 0 || errno != ENOENT) return fd;
    }
    return -1;
}

void* map_object(const char* object, std::uint32_t size, bool read_only, std::int32_t flag) noexcept {
    bool created = false;
    const int fd = open_object(object, read_only, created);
    if (fd < 0) {
        if (!(read_only && errno == ENOENT))
            diagnostic("Pcor__OpenShm(\"%s\", %u, %d): open: %s", object, size, flag, error_text(errno));
        return nullptr;
    }
    const char* failed = nullptr;
    int error = 0;
    struct stat st {};
    if (created && fchmod(fd, kCreateMode) != 0) {
        failed = "fchmod";
    } else if (created && ftruncate(fd, static_cast<off_t>(size)) != 0) {
        failed = "ftruncate";
    } else if (fstat(fd, &st) != 0) {
        failed = "fstat";
    } else if (st.st_size < static_cast<off_t>(size)) {
        diagnostic("Pcor__OpenShm(\"%s\", %u, %d): the object has %lld bytes, fewer than asked", object, size, flag,
                   static_cast<long long>(st.st_size));
        close(fd);
        return nullptr;
    }
    if (failed != nullptr) {
        error = errno;
    } else {
        void* base = mmap(nullptr, size, read_only ? PROT_READ : PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        if (base != MAP_FAILED) {
            close(fd);  // the mapping keeps the object
            return base;
        }
        error = errno;
        failed = "mmap";
    }
    diagnostic("Pcor__OpenShm(\"%s\", %u, %d): %s: %s", object, size, flag, failed, error_text(error));
    close(fd);
    if (created) shm_unlink(object);  // leave no half-made object behind
    return nullptr;
}

}  // namespace

void forget_region_files() noexcept {
    for (RegionFile& f : g_region_files) f = RegionFile{};
}

}  // namespace tarv::host

extern "C" {

void* Pcor__OpenShm(const char* pName, uint32_t lSize, int32_t lReadOnly) {
    using namespace tarv::host;
    char object[TARV_HOST_SHM_NAME_MAX + 1];
    if (!object_name(pName, object, sizeof object)) {
        diagnostic("Pcor__OpenShm(\"%s\", %u, %d): not a valid object name", pName != nullptr ? pName : "(null)", lSize,
                   lReadOnly);
        return nullptr;
    }
    if (lReadOnly != PCOR_SHM_READ_ONLY && lReadOnly != PCOR_SHM_READ_WRITE) {
        diagnostic("Pcor__OpenShm(\"%s\", %u, %d): unknown access flag", object, lSize, lReadOnly);
        return nullptr;
    }
    if (lSize == 0) {
        diagnostic("Pcor__OpenShm(\"%s\", 0, %d): size 0", object, lReadOnly);
        return nullptr;
    }
    if (const RegionFile* file = region_file(pName))
        return map_file(pName, file->path, lSize, lReadOnly == PCOR_SHM_READ_ONLY, lReadOnly);
    return map_object(object, lSize, lReadOnly == PCOR_SHM_READ_ONLY, lReadOnly);
}

int TarvHost_SetRegionFile(const char* pName, const char* pPath) {
    using namespace tarv::host;
    if (!valid_name(pName)) return -1;
    RegionFile* file = region_file(pName);
    if (pPath == nullptr || pPath[0] == '\0') {
        if (file != nullptr) *file = RegionFile{};
        return 0;
    }
    if (std::strlen(pPath) > TARV_HOST_REGION_PATH_MAX) return -1;
    for (RegionFile& f : g_region_files)
        if (file == nullptr && f.name[0] == '\0') file = &f;
    if (file == nullptr) return -1;
    // Both lengths are checked above against the fields' sizes.
    std::memcpy(file->name, pName, std::strlen(pName) + 1);
    std::memcpy(file->path, pPath, std::strlen(pPath) + 1);
    return 0;
}

int TarvHost_ShmObjectName(const char* pName, char* pBuffer, size_t lSize) {
    if (pBuffer == nullptr) return -1;
    return tarv::host::object_name(pName, pBuffer, lSize) ? 0 : -1;
}

}  // extern "C"
