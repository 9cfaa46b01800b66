// The layout of a spool segment (doc/formats/spool.md), shared by the writer
// and the reader, with explicit little-endian encoding.
//
//   segment:  magic "VQSPOOL1" | first position u64 | record | record | ...
//   record:   length u32 | checksum u32 | kind u8 | source size u8 | source |
//             received u64 (microseconds since 1970 UTC) | bytes
//
// `length` counts the bytes after the checksum; the checksum is the CRC-32 of
// the length field followed by those bytes. A position is the segment's first
// position plus the byte offset in its file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velqua_capture {
namespace spool_format {

constexpr char kMagic[8] = {'V', 'Q', 'S', 'P', 'O', 'O', 'L', '1'};
constexpr size_t kSegmentHeaderSize = 16;  // magic, first position
constexpr size_t kRecordPrefixSize = 8;    // length, checksum
constexpr size_t kFixedBodySize = 10;      // kind, source size, received time
// A record longer than this is damage, not data: sources append at most 64 KiB.
constexpr uint32_t kMaxLength = 1u << 20;
constexpr const char* kSegmentSuffix = ".spool";
static_assert(kSegmentHeaderSize == sizeof(kMagic) + 8, "magic then the first position");

inline void PutFixed32(std::string* out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out->push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

inline void PutFixed64(std::string* out, uint64_t v) {
  for (int i = 0; i < 8; ++i) out->push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

inline uint32_t DecodeFixed32(const char* p) {
  uint32_t v = 0;
  for (int i = 3; i >= 0; --i) v = (v << 8) | static_cast<unsigned char>(p[i]);
  return v;
}

inline uint64_t DecodeFixed64(const char* p) {
  uint64_t v = 0;
  for (int i = 7; i >= 0; --i) v = (v << 8) | static_cast<unsigned char>(p[i]);
  return v;
}

// CRC-32 (zlib's) of the four length bytes followed by the body.
uint32_t Checksum(const char* length_bytes, std::string_view body);

// The file name of the segment whose first position is `first`: twenty
// digits and ".spool", so that names sort as positions do.
std::string SegmentName(int64_t first);

// The first position of a segment file name, or -1 when the name is not one.
int64_t SegmentFirst(std::string_view name);

}  // namespace spool_format
}  // namespace velqua_capture
