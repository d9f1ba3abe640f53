#include "snapshot_file.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <string_view>
#include <iterator>

#include "api-tarv/region.h"
#include "class_catalog.h"
#include "status.h"

namespace tarvtool {
namespace {

constexpr char kMagic[8] = {'T', 'A', 'R', 'V', 'S', 'N', 'A', 'P'};
constexpr std::uint32_t kHeaderCrcEnd = 44;

constexpr std::array<std::uint32_t, 256> crc_table() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < 256; ++n) {
        std::uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = (c & 1) != 0 ? 0xEDB88320U ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}
constexpr auto kCrcTable = crc_table();

// FNV-1a over every table's base, entry size, slot count and key size.
consteval std::uint32_t directory_fingerprint() {
    std::uint32_t h = 2166136261U;
    auto mix = [&h](std::uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            h ^= (v >> (8 * i)) & 0xFF;
            h *= 16777619U;
        }
    };
    for (const tarv::TableInfo& t : tarv::kDirectory) {
        mix(t.base);
        mix(t.entry);
        mix(t.slots);
        mix(t.key);
    }
    return h;
}

[[noreturn]] void refuse(const std::string& path, const std::string& what) {
    throw Failure(kExitIo, fmt::format("'{}': {}", path, what));
}

std::uint64_t le64(const std::uint8_t* p) noexcept {
    return le32(p) | (std::uint64_t{le32(p + 4)} << 32);
}

}  // namespace

std::uint32_t layout_fingerprint() noexcept { return directory_fingerprint(); }

std::uint32_t crc32(Bytes bytes) noexcept {
    std::uint32_t c = 0xFFFFFFFFU;
    for (std::uint8_t b : bytes) c = kCrcTable[(c ^ b) & 0xFF] ^ (c >> 8);
    return c ^ 0xFFFFFFFFU;
}

std::vector<std::uint8_t> encode_snapshot(Bytes region, std::uint64_t time_ms) {
    std::vector<std::uint8_t> file(kSnapshotHeaderSize, 0);
    std::copy(std::begin(kMagic), std::end(kMagic), file.begin());
    std::uint8_t* h = file.data();
    store_le32(h + 8, kSnapshotHeaderSize);
    store_le32(h + 12, kSnapshotFormat);
    store_le32(h + 16, static_cast<std::uint32_t>(region.size()));
    store_le32(h + 20, layout_fingerprint());
    h[24] = kLittleEndian;
    store_le32(h + 32, static_cast<std::uint32_t>(time_ms));
    store_le32(h + 36, static_cast<std::uint32_t>(time_ms >> 32));
    store_le32(h + 40, crc32(region));
    store_le32(h + 44, crc32(Bytes(file).first(kHeaderCrcEnd)));
    file.insert(file.end(), region.begin(), region.end());
    return file;
}

Snapshot decode_snapshot(std::vector<std::uint8_t> file, const std::string& path, SnapshotForm form) {
    const bool magic = file.size() >= sizeof kMagic && std::equal(std::begin(kMagic), std::end(kMagic), file.begin());
    if (!magic) {
        if (form == SnapshotForm::Headered)
            refuse(path, file.size() == kDataRegionSize
                             ? "a raw region image, not a snapshot file: load it with --raw"
                             : "not a snapshot file (no TARVSNAP header)");
        if (file.size() != kDataRegionSize)
            refuse(path, fmt::format("has {} bytes, but a raw region image has exactly {}", file.size(),
                                     kDataRegionSize));
        return {std::move(file), std::nullopt};
    }
    if (form == SnapshotForm::Raw) refuse(path, "a snapshot file, not a raw region image: load it without --raw");
    if (file.size() < kSnapshotHeaderSize)
        refuse(path, fmt::format("the header is cut short: {} bytes of {}", file.size(), kSnapshotHeaderSize));
    const std::uint8_t* h = file.data();
    SnapshotHeader header;
    header.format = le32(h + 12);
    header.region_size = le32(h + 16);
    header.layout = le32(h + 20);
    header.byte_order = h[24];
    header.time_ms = le64(h + 32);
    header.region_crc = le32(h + 40);
    header.header_crc = le32(h + 44);
    const std::uint32_t header_crc = crc32(Bytes(file).first(kHeaderCrcEnd));
    if (header.header_crc != header_crc)
        refuse(path, fmt::format("the header checksum is {:08x}, its bytes give {:08x}: the header is corrupt",
                                 header.header_crc, header_crc));
    if (le32(h + 8) != kSnapshotHeaderSize || header.format != kSnapshotFormat)
        refuse(path, fmt::format("snapshot format {} with a {}-byte header: this tool reads format {}",
                                 header.format, le32(h + 8), kSnapshotFormat));
    if (header.byte_order != kLittleEndian)
        refuse(path, fmt::format("byte order {}: this tool reads little-endian (1) regions", header.byte_order));
    if (header.region_size != kDataRegionSize || header.layout != layout_fingerprint())
        refuse(path, fmt::format("a region of {} bytes and layout {:08x}; this tool's has {} bytes and layout {:08x}",
                                 header.region_size, header.layout, kDataRegionSize, layout_fingerprint()));
    if (file.size() != kSnapshotHeaderSize + kDataRegionSize)
        refuse(path, fmt::format("has {} bytes after the header, the region has {}", file.size() - kSnapshotHeaderSize,
                                 kDataRegionSize));
    std::vector<std::uint8_t> region(file.begin() + kSnapshotHeaderSize, file.end());
    const std::uint32_t region_crc = crc32(region);
    if (header.region_crc != region_crc)
        refuse(path, fmt::format("the region checksum is {:08x}, its bytes give {:08x}: the region is corrupt",
                                 header.region_crc, region_crc));
    return {std::move(region), header};
}

std::vector<std::uint8_t> read_input_file(const std::string& path) {
    if (path == "-") {
        std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
        if (std::cin.bad()) throw Failure(kExitIo, "cannot read standard input");
        return bytes;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) throw Failure(kExitIo, fmt::format("cannot read '{}': {}", path, error_text(errno)));
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw Failure(kExitIo, fmt::format("cannot read '{}'", path));
    return bytes;
}

void write_output_file(const std::string& path, Bytes bytes) {
    if (path == "-") {
        if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || std::fflush(stdout) != 0)
            throw Failure(kExitIo, fmt::format("cannot write standard output: {}", error_text(errno)));
        return;
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (out) out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (out) out.close();
    if (!out) throw Failure(kExitIo, fmt::format("cannot write '{}': {}", path, error_text(errno)));
}

Snapshot read_snapshot(const std::string& path, SnapshotForm form) {
    return decode_snapshot(read_input_file(path), path, form);
}

std::uint64_t now_ms() {
    // Read before any thread starts; the tools never change their environment.
    if (const char* fixed = std::getenv("TARV_TIME")) {  // NOLINT(concurrency-mt-unsafe)
        // "2026-11-25T01:35:00.123Z": digits and separators at fixed places.
        const std::string_view t(fixed);
        constexpr std::string_view kShape = "dddd-dd-ddTdd:dd:dd.dddZ";
        bool valid = t.size() == kShape.size();
        for (std::size_t i = 0; valid && i < t.size(); ++i)
            valid = kShape[i] == 'd' ? t[i] >= '0' && t[i] <= '9' : t[i] == kShape[i];
        auto number = [&](std::size_t at, std::size_t digits) {
            int value = 0;
            for (std::size_t i = at; i < at + digits; ++i) value = value * 10 + (t[i] - '0');
            return value;
        };
        std::tm tm{};
        int ms = 0;
        if (valid) {
            tm.tm_year = number(0, 4);
            tm.tm_mon = number(5, 2);
            tm.tm_mday = number(8, 2);
            tm.tm_hour = number(11, 2);
            tm.tm_min = number(14, 2);
            tm.tm_sec = number(17, 2);
            ms = number(20, 3);
        }
        if (!valid)
            throw Failure(kExitUsage, fmt::format("invalid TARV_TIME '{}': expected UTC such as "
                                                  "2026-11-25T01:35:00.123Z",
                                                  fixed));
        tm.tm_year -= 1900;
        tm.tm_mon -= 1;
        return static_cast<std::uint64_t>(timegm(&tm)) * 1000 + static_cast<std::uint64_t>(ms);
    }
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                          std::chrono::system_clock::now().time_since_epoch())
                                          .count());
}

namespace {
std::string utc(std::uint64_t ms, bool separators) {
    const auto seconds = static_cast<std::time_t>(ms / 1000);
    std::tm tm{};
    gmtime_r(&seconds, &tm);
    const char* dash = separators ? "-" : "";
    const char* colon = separators ? ":" : "";
    return fmt::format("{:04}{}{:02}{}{:02}T{:02}{}{:02}{}{:02}.{:03}Z", tm.tm_year + 1900, dash, tm.tm_mon + 1, dash,
                       tm.tm_mday, tm.tm_hour, colon, tm.tm_min, colon, tm.tm_sec, ms % 1000);
}
}  // namespace

std::string rfc3339(std::uint64_t ms) { return utc(ms, true); }
std::string file_time(std::uint64_t ms) { return utc(ms, false); }

}  // namespace tarvtool
