#include "velqua/capture/spool.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "capture_test.h"
#include "velqua/capture/spool_format.h"

namespace velqua_capture {
namespace {

std::vector<SpoolEntry> ReadAll(const std::string& dir, int64_t from, std::string* log = nullptr,
                                int64_t limit = INT64_MAX) {
  SpoolReader reader(dir, from, [log](const std::string& line) {
    if (log != nullptr) *log += line + "\n";
  });
  std::vector<SpoolEntry> entries;
  SpoolEntry entry;
  while (reader.Next(limit, &entry)) entries.push_back(entry);
  return entries;
}

std::string Summary(const std::vector<SpoolEntry>& entries) {
  std::string out;
  for (const SpoolEntry& e : entries) {
    out += std::to_string(static_cast<int>(e.kind)) + ":" + e.source + ":" +
           std::to_string(e.received_us) + ":" + e.bytes + " ";
  }
  return out;
}

TEST(Spool, RecordsReadBackInOrderFromAnyPositionAcrossSegments) {
  const std::string dir = velqua_capture_test::TempDir("spool-roundtrip");
  std::vector<int64_t> positions;
  {
    SpoolWriter writer(dir, FsyncPolicy::kNever, [](const std::string&) {});
    writer.set_segment_bytes(100);  // a new segment every two or three records
    positions.push_back(writer.Append(SpoolKind::kStart, "service", 1, ""));
    positions.push_back(writer.Append(SpoolKind::kConnect, "pbx", 2, "10.0.0.1:2300"));
    for (int i = 0; i < 6; ++i) {
      positions.push_back(
          writer.Append(SpoolKind::kData, "pbx", 3 + i, "chunk" + std::to_string(i)));
    }
    positions.push_back(writer.Append(SpoolKind::kDisconnect, "pbx", 9, "reset by peer"));
    EXPECT_GT(ListSegments(dir).size(), 2u);
  }
  const std::vector<SpoolEntry> all = ReadAll(dir, 0);
  ASSERT_EQ(all.size(), positions.size());
  EXPECT_EQ(Summary(all),
            "5:service:1: 2:pbx:2:10.0.0.1:2300 1:pbx:3:chunk0 1:pbx:4:chunk1 1:pbx:5:chunk2 "
            "1:pbx:6:chunk3 1:pbx:7:chunk4 1:pbx:8:chunk5 3:pbx:9:reset by peer ");
  for (size_t i = 0; i < all.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(all[i].position, positions[i]);
    EXPECT_EQ(all[i].data_position,
              positions[i] + 8 + 10 + static_cast<int64_t>(all[i].source.size()));
    if (i > 0) {
      EXPECT_GT(positions[i], positions[i - 1]);
    }
    // From a record's position, or from just after the previous one, the
    // reader starts at that record.
    EXPECT_EQ(ReadAll(dir, positions[i]).size(), all.size() - i);
    if (i > 0) {
      EXPECT_EQ(ReadAll(dir, positions[i - 1] + 1).size(), all.size() - i);
    }
  }
  // From a byte inside a data record (where a record the framer held open
  // began): that record's bytes from there on, then the rest.
  for (const int64_t into : {0, 3}) {
    SCOPED_TRACE(into);
    const std::vector<SpoolEntry> tail = ReadAll(dir, all[4].data_position + into);
    ASSERT_EQ(tail.size(), all.size() - 4);
    EXPECT_EQ(tail[0].bytes, std::string("chunk2").substr(static_cast<size_t>(into)));
    EXPECT_EQ(tail[0].data_position, all[4].data_position + into);
  }
  // Only what the writer has completed is read.
  EXPECT_EQ(ReadAll(dir, 0, nullptr, positions[3]).size(), 3u);
}

// Each way a machine can stop mid-write leaves the last segment with a bad
// tail; reopening cuts exactly that tail, logs its size, keeps every whole
// record and never gives a position of the old file again.
TEST(Spool, TornTailIsCutAtTheFirstBadRecord) {
  struct Damage {
    const char* name;
    int64_t cut_bytes;     // bytes removed from the end of the file (then...)
    std::string appended;  // ... bytes added
    int flip_from_end;     // a byte flipped this far from the end (0: none)
    size_t records_left;   // whole records that survive
    bool logged;
    const char* stream;  // the stream a cut record names, when its name survives
  };
  const Damage damages[] = {
      {"clean file", 0, "", 0, 3, false, ""},
      {"last record cut short", 5, "", 0, 2, true, "pbx"},
      {"only part of a length", 0, "\x07\x00", 0, 3, true, ""},
      {"garbage after the last record", 0, std::string(40, '\xAB'), 0, 3, true, ""},
      {"last record's data damaged", 0, "", 2, 2, true, "pbx"},
      {"a zero-filled tail (a file extended but never written)", 0, std::string(64, '\0'), 0, 3,
       true, ""},
  };
  for (const Damage& d : damages) {
    SCOPED_TRACE(d.name);
    const std::string dir = velqua_capture_test::TempDir("spool-torn");
    int64_t end = 0;
    {
      SpoolWriter writer(dir, FsyncPolicy::kAlways, [](const std::string&) {});
      for (int i = 0; i < 3; ++i)
        writer.Append(SpoolKind::kData, "pbx", i, "record " + std::to_string(i));
      end = writer.End();
    }
    const std::string segment = ListSegments(dir).back().second;
    std::filesystem::resize_file(
        segment, std::filesystem::file_size(segment) - static_cast<uintmax_t>(d.cut_bytes));
    {
      std::fstream f(segment, std::ios::in | std::ios::out | std::ios::binary | std::ios::ate);
      f << d.appended;
      if (d.flip_from_end > 0) {
        f.seekp(-d.flip_from_end, std::ios::end);
        f.put('#');
      }
    }
    std::string log;
    SpoolWriter writer(dir, FsyncPolicy::kAlways, [&log](const std::string& line) { log += line; });
    EXPECT_EQ(!log.empty(), d.logged) << log;
    EXPECT_EQ(writer.torn_stream(), d.stream);
    EXPECT_EQ(ReadAll(dir, 0).size(), d.records_left);
    const int64_t next = writer.Append(SpoolKind::kData, "pbx", 9, "after");
    EXPECT_GE(next, end + static_cast<int64_t>(d.appended.size()));
    const std::vector<SpoolEntry> entries = ReadAll(dir, 0);
    ASSERT_EQ(entries.size(), d.records_left + 1);
    EXPECT_EQ(entries.back().bytes, "after");
  }
}

TEST(Spool, DamageInsideAnOlderSegmentSkipsTheRestOfIt) {
  const std::string dir = velqua_capture_test::TempDir("spool-damage");
  {
    SpoolWriter writer(dir, FsyncPolicy::kNever, [](const std::string&) {});
    writer.set_segment_bytes(80);
    for (int i = 0; i < 8; ++i)
      writer.Append(SpoolKind::kData, "pbx", i, "data " + std::to_string(i));
  }
  const auto segments = ListSegments(dir);
  ASSERT_GE(segments.size(), 3u);
  {
    std::fstream f(segments[0].second, std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(static_cast<std::streamoff>(spool_format::kSegmentHeaderSize + 12));
    f.put('#');  // the first record of the first segment
  }
  std::string log;
  const std::vector<SpoolEntry> entries = ReadAll(dir, 0, &log);
  EXPECT_NE(log.find("damaged record at position " + std::to_string(segments[0].first + 16)),
            std::string::npos)
      << log;
  ASSERT_FALSE(entries.empty());
  EXPECT_EQ(entries.front().position, segments[1].first + 16);
  EXPECT_EQ(entries.back().bytes, "data 7");
}

// A segment whose header is cut short or is not its own is never read as
// records: the reader says so and goes on with the next segment, and a
// writer finding it last removes it whole.
TEST(Spool, ASegmentWithoutItsHeaderIsSkipped) {
  struct Case {
    const char* name;
    size_t keep;  // bytes of the segment kept
    int flip;     // a header byte with every bit turned (-1: none)
  } const cases[] = {
      {"only the magic", 8, -1}, {"half the first position", 12, -1}, {"an empty file", 0, -1},
      {"another magic", 64, 3},  {"another first position", 64, 10},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string dir = velqua_capture_test::TempDir("spool-header");
    {
      SpoolWriter writer(dir, FsyncPolicy::kNever, [](const std::string&) {});
      writer.set_segment_bytes(80);
      for (int i = 0; i < 10; ++i)
        writer.Append(SpoolKind::kData, "pbx", i, "data " + std::to_string(i));
    }
    const auto segments = ListSegments(dir);
    ASSERT_GE(segments.size(), 3u);
    const std::string middle = segments[1].second;
    std::filesystem::resize_file(middle,
                                 std::min<uintmax_t>(c.keep, std::filesystem::file_size(middle)));
    if (c.flip >= 0) {
      // Every bit turned, not a fixed byte: the first position is the
      // writer's, and a fixed byte may be the one already there.
      std::fstream f(middle, std::ios::in | std::ios::out | std::ios::binary);
      f.seekg(c.flip);
      const int was = f.get();
      f.seekp(c.flip);
      f.put(static_cast<char>(was ^ 0xff));
    }
    const auto kept = static_cast<int64_t>(std::filesystem::file_size(middle));
    std::string log;
    const std::vector<SpoolEntry> entries = ReadAll(dir, 0, &log);
    EXPECT_NE(log.find("segment " + middle + " has no valid header: skipped"), std::string::npos)
        << log;
    ASSERT_FALSE(entries.empty());
    for (const SpoolEntry& e : entries) {
      EXPECT_TRUE(e.position < segments[1].first || e.position >= segments[2].first) << e.position;
    }
    EXPECT_EQ(entries.back().bytes, "data 9");

    // Last in the folder, it is the writer's torn tail: removed, and its
    // positions never given again.
    for (size_t i = 2; i < segments.size(); ++i) std::filesystem::remove(segments[i].second);
    std::string cut;
    SpoolWriter writer(dir, FsyncPolicy::kNever, [&cut](const std::string& line) { cut += line; });
    EXPECT_EQ(c.keep == 0, cut.empty()) << cut;
    EXPECT_FALSE(std::filesystem::exists(middle) && c.keep > 0);
    EXPECT_GE(writer.Append(SpoolKind::kData, "pbx", 9, "after"), segments[1].first + kept);
  }
}

TEST(Spool, ReleaseDeletesOnlyWhollyPassedSegments) {
  const std::string dir = velqua_capture_test::TempDir("spool-release");
  SpoolWriter writer(dir, FsyncPolicy::kNever, [](const std::string&) {});
  writer.set_segment_bytes(60);
  std::vector<int64_t> positions;
  for (int i = 0; i < 6; ++i) positions.push_back(writer.Append(SpoolKind::kData, "pbx", i, "x"));
  const size_t before = ListSegments(dir).size();
  writer.Release(positions[3]);
  const std::vector<SpoolEntry> left = ReadAll(dir, 0);
  ASSERT_FALSE(left.empty());
  EXPECT_LE(left.front().position, positions[3]);  // nothing at or after the position goes
  EXPECT_LT(ListSegments(dir).size(), before);
  writer.Release(INT64_MAX);
  EXPECT_EQ(ListSegments(dir).size(), 1u);  // the segment being written stays
  for (int i = 0; i < 6; ++i) writer.Append(SpoolKind::kData, "pbx", i, "x");
  ASSERT_GT(ListSegments(dir).size(), 1u);
  writer.Release(writer.End());  // segments started since the last release go too
  EXPECT_EQ(ListSegments(dir).size(), 1u);
}

// A segment takes records until it holds its size: the record that brings
// it to its size exactly is its last, and the next starts a new segment.
TEST(Spool, ASegmentThatHoldsItsSizeTakesNoMoreRecords) {
  const auto header = static_cast<int64_t>(spool_format::kSegmentHeaderSize);
  const auto record =
      static_cast<int64_t>(spool_format::kRecordPrefixSize + spool_format::kFixedBodySize + 3 +
                           5);  // source "pbx", bytes "chunk"
  const struct {
    int64_t size;
    size_t segments;  // after three records
  } rows[] = {{header + record - 1, 3},
              {header + record, 3},
              {header + record + 1, 2},
              {header + 2 * record, 2},
              {header + 2 * record + 1, 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.size);
    const std::string dir = velqua_capture_test::TempDir("spool-size");
    {
      SpoolWriter writer(dir, FsyncPolicy::kNever, [](const std::string&) {});
      writer.set_segment_bytes(row.size);
      for (int i = 0; i < 3; ++i) writer.Append(SpoolKind::kData, "pbx", i, "chunk");
    }
    EXPECT_EQ(ListSegments(dir).size(), row.segments);
    EXPECT_EQ(Summary(ReadAll(dir, 0)), "1:pbx:0:chunk 1:pbx:1:chunk 1:pbx:2:chunk ");
  }
}

// A disk that refuses writes (here a file-size limit) leaves the segment
// ending with its last whole record; once there is room again the same
// append goes through and nothing in between is damaged.
TEST(Spool, AFullDiskRefusesAnAppendWithoutTearingTheSegment) {
  const std::string dir = velqua_capture_test::TempDir("spool-full");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit saved{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
  SpoolWriter writer(dir, FsyncPolicy::kAlways, [](const std::string&) {});
  writer.Append(SpoolKind::kData, "pbx", 0, "first");
  rlimit small = saved;
  small.rlim_cur = 200;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  int appended = 1;
  bool refused = false;
  for (int i = 0; i < 20 && !refused; ++i) {
    try {
      writer.Append(SpoolKind::kData, "pbx", i, std::string(30, 'a' + static_cast<char>(i)));
      ++appended;
    } catch (const SpoolFull& e) {
      refused = true;
      EXPECT_NE(std::string(e.what()).find("File too large"), std::string::npos) << e.what();
    }
  }
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &saved), 0);
  ASSERT_TRUE(refused);
  writer.Append(SpoolKind::kData, "pbx", 99, "after the disk had room again");
  const std::vector<SpoolEntry> entries = ReadAll(dir, 0);
  ASSERT_EQ(entries.size(), static_cast<size_t>(appended) + 1);
  EXPECT_EQ(entries.back().bytes, "after the disk had room again");
}

}  // namespace
}  // namespace velqua_capture
