// Saved regions: the snapshot file tarvctl writes (a 64-byte header, then
// the region's bytes) and the raw image a switch dumps (the region's bytes
// alone), and the time the tools stamp on what they write.
//
// Header, little-endian:
//   0  8  magic "TARVSNAP"
//   8  4  header size (64)        12  4  format version (1)
//  16  4  region size             20  4  layout: fingerprint of the table directory
//  24  1  byte order of the region's integers (1: little-endian), 25..31 zero
//  32  8  time saved, milliseconds since 1970-01-01 UTC
//  40  4  CRC-32 of the region's bytes
//  44  4  CRC-32 of header bytes 0 to 43
//  48 16  zero
#ifndef TARVTOOL_SNAPSHOT_FILE_H
#define TARVTOOL_SNAPSHOT_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bytes.h"

namespace tarvtool {

inline constexpr std::uint32_t kSnapshotHeaderSize = 64;
inline constexpr std::uint32_t kSnapshotFormat = 1;
inline constexpr std::uint8_t kLittleEndian = 1;

// The layout this build knows: a fingerprint of the region's table
// directory, so that a snapshot of another layout is not loaded as this one.
[[nodiscard]] std::uint32_t layout_fingerprint() noexcept;

struct SnapshotHeader {
    std::uint32_t format = kSnapshotFormat;
    std::uint32_t region_size = 0;
    std::uint32_t layout = 0;
    std::uint8_t byte_order = kLittleEndian;
    std::uint64_t time_ms = 0;
    std::uint32_t region_crc = 0;
    std::uint32_t header_crc = 0;
};

// Which forms a reader takes: a snapshot file, a raw image, or either (told
// apart by the magic; for read-only use).
enum class SnapshotForm : std::uint8_t { Headered, Raw, Either };

struct Snapshot {
    std::vector<std::uint8_t> region;      // exactly one region
    std::optional<SnapshotHeader> header;  // none for a raw image
};

[[nodiscard]] std::uint32_t crc32(Bytes bytes) noexcept;

// The snapshot file of one region's bytes, stamped with `time_ms`.
[[nodiscard]] std::vector<std::uint8_t> encode_snapshot(Bytes region, std::uint64_t time_ms);

// The region in a file's bytes. Throws kExitIo with a message naming `path`
// and what is wrong: no magic where a snapshot is asked for, a short file,
// a header or region checksum that does not match, another region size,
// layout or byte order, a raw image of the wrong size.
[[nodiscard]] Snapshot decode_snapshot(std::vector<std::uint8_t> file, const std::string& path, SnapshotForm form);

// A whole file's bytes, standard input for "-"; throws kExitIo.
[[nodiscard]] std::vector<std::uint8_t> read_input_file(const std::string& path);
// Writes (replacing) a file, standard output for "-"; throws kExitIo.
void write_output_file(const std::string& path, Bytes bytes);

// Reads and decodes a saved region.
[[nodiscard]] Snapshot read_snapshot(const std::string& path, SnapshotForm form);

// Now, in milliseconds since 1970-01-01 UTC; TARV_TIME (RFC 3339 in UTC,
// e.g. 2026-11-25T01:35:00.123Z) fixes it, for reproducible output.
[[nodiscard]] std::uint64_t now_ms();
// "2026-11-25T01:35:00.123Z".
[[nodiscard]] std::string rfc3339(std::uint64_t ms);
// "20261125T013500.123Z", for file names.
[[nodiscard]] std::string file_time(std::uint64_t ms);

}  // namespace tarvtool

#endif
