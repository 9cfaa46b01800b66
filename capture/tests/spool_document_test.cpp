// doc/formats/spool.md read as a contract: a reader written from the
// document alone (this file; it shares nothing with the service's code)
// reads a spool the service wrote, and finds each stored call's first byte
// at the position the store keeps.
#include <gtest/gtest.h>
#include <signal.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "capture_test.h"
#include "service_support.h"
#include "velqua/store/store.h"

namespace velqua_capture_test {
namespace {

uint64_t Little(const std::string& bytes, size_t at, int size) {
  uint64_t v = 0;
  for (int i = size - 1; i >= 0; --i) {
    v = (v << 8) | static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
  }
  return v;
}

struct DocRecord {
  uint64_t position;
  int kind;
  std::string source;
  std::string data;
};

// Every record of every segment ("NNNN….spool", first position in the name
// and in the header), the checksum checked.
std::vector<DocRecord> ReadSpool(const std::string& folder) {
  std::vector<std::string> segments;
  for (const auto& e : std::filesystem::directory_iterator(folder)) {
    if (e.path().extension() == ".spool") segments.push_back(e.path().string());
  }
  std::sort(segments.begin(), segments.end());
  std::vector<DocRecord> records;
  for (const std::string& path : segments) {
    const std::string file = ReadFile(path);
    EXPECT_EQ(file.substr(0, 8), "VQSPOOL1");
    const uint64_t first = Little(file, 8, 8);
    EXPECT_EQ(std::to_string(first),
              std::filesystem::path(path).stem().string().substr(
                  std::filesystem::path(path).stem().string().find_first_not_of('0')));
    for (size_t at = 16; at + 8 <= file.size();) {
      const auto length = static_cast<size_t>(Little(file, at, 4));
      const auto checksum = static_cast<uint32_t>(Little(file, at + 4, 4));
      const uLong crc =
          crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef*>(file.data() + at), 4);
      EXPECT_EQ(crc32(crc, reinterpret_cast<const Bytef*>(file.data() + at + 8),
                      static_cast<uInt>(length)),
                checksum);
      DocRecord r;
      r.position = first + at;
      r.kind = static_cast<unsigned char>(file[at + 8]);
      const auto n = static_cast<size_t>(static_cast<unsigned char>(file[at + 9]));
      r.source = file.substr(at + 10, n);
      r.data = file.substr(at + 18 + n, length - 10 - n);
      records.push_back(r);
      at += 8 + length;
    }
  }
  return records;
}

TEST(SpoolDocument, AReaderWrittenFromTheDocumentReadsTheServicesSpool) {
  const std::string dir = TempDir("spool-document");
  const int port = FreePort();
  const std::string store = dir + "/calls.db";
  const std::string config = WriteConfig(dir, store, "", ListenSource(port));
  const std::vector<std::string> records = GenerateRecords(dir + "/records.txt", 200);
  auto service = StartService(config, dir);
  auto pusher = Pusher(port, dir + "/records.txt", "0", {"--cut-every", "120"});
  ASSERT_TRUE(WaitForRecords(store, records.size())) << ReadFile(dir + "/service.log");
  ASSERT_EQ(service->Stop(SIGTERM), 0);

  // The data bytes of every stream, by position, as the document places them.
  std::map<uint64_t, char> bytes;
  std::map<int, int> kinds;
  for (const DocRecord& r : ReadSpool(dir + "/spool")) {
    ++kinds[r.kind];
    if (r.kind != 1) continue;
    EXPECT_EQ(r.source, "ipo/127.0.0.1");
    const uint64_t data = r.position + 18 + r.source.size();
    for (size_t i = 0; i < r.data.size(); ++i) bytes[data + i] = r.data[i];
  }
  EXPECT_EQ(kinds[5], 1);  // one start
  EXPECT_EQ(kinds[2], 2);  // two connections: the cut
  auto s = velqua_store::OpenStore(store);
  const auto stored = s->ReadStored("pbx", true, 0, 1000);
  ASSERT_EQ(stored.size(), records.size());
  for (const velqua_store::StoredRecord& call : stored) {
    SCOPED_TRACE(call.raw);
    std::string at_position;
    for (size_t i = 0; i < call.raw.size(); ++i) {
      const auto it = bytes.find(static_cast<uint64_t>(call.position) + i);
      if (it == bytes.end()) break;
      at_position += it->second;
    }
    EXPECT_EQ(at_position, call.raw);
  }
}

}  // namespace
}  // namespace velqua_capture_test
