#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_reader.h"
#include "velqua/records/translation.h"

namespace velqua_records {
namespace {

using Lines = std::vector<std::string>;

// CR LF, LF and a lone CR each end a line, empty lines kept, the last line
// needing no end; each line's offset is that of its first byte, whatever
// ended the line before it, across the reader's 65,536-byte refills (a CR
// LF split between two counts once), counted from where the stream started.
TEST(LineReader, LinesAndOffsetsAcrossRefills) {
  struct Case {
    std::string bytes;
    int64_t start;
    std::vector<std::pair<int64_t, std::string>> lines;
    int64_t end;
  };
  const std::string big(65535, 'x');  // its CR ends the first read, the LF starts the next
  const std::string huge(200000, 'y');
  const Case cases[] = {
      // clang-format off
      {"a\r\nbb\ncc\rd", 0, {{0, "a"}, {3, "bb"}, {6, "cc"}, {9, "d"}}, 10},
      {"a\r\n\r\nb\n\nc\r\rd", 0, {{0, "a"}, {3, ""}, {5, "b"}, {7, ""}, {8, "c"}, {10, ""}, {11, "d"}}, 12},
      {"\n\nx\r\n", 0, {{0, ""}, {1, ""}, {2, "x"}}, 5},
      {"", 0, {}, 0},
      {"\r\n", 0, {{0, ""}}, 2},
      {"a\nb\n", 1000, {{1000, "a"}, {1002, "b"}}, 1004},
      {big + "\r\nnext\r\n", 0, {{0, big}, {65537, "next"}}, 65543},
      {huge + "\nz", 0, {{0, huge}, {200001, "z"}}, 200002},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bytes.substr(0, 20));
    std::unique_ptr<std::FILE, FileCloser> f(std::tmpfile());
    std::fwrite(c.bytes.data(), 1, c.bytes.size(), f.get());
    std::rewind(f.get());
    LineReader reader(f.get(), c.start);
    std::vector<std::pair<int64_t, std::string>> lines;
    std::string line;
    while (reader.Next(&line)) lines.emplace_back(reader.line_offset(), line);
    EXPECT_EQ(lines, c.lines);
    EXPECT_EQ(reader.end_offset(), c.end);
  }
}

// A pipe gives each line as soon as it is whole (no waiting for a full block),
// and reports quiet spells so that a held-back call can be written.
TEST(LiveLineReader, PipeLinesComeAsTheyArrive) {
  int fds[2];
  ASSERT_EQ(::pipe(fds), 0);
  std::unique_ptr<std::FILE, FileCloser> in(::fdopen(fds[0], "rb"));
  std::atomic<int> idle{0};
  std::atomic<bool> closed{false};
  LineReader::Live live;
  live.idle_ms = 50;
  live.on_idle = [&] { ++idle; };
  LineReader reader(in.get(), live);
  std::thread writer([&] {
    ASSERT_EQ(::write(fds[1], "a\nb", 3), 3);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ASSERT_EQ(::write(fds[1], "\n", 1), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    closed = true;
    ::close(fds[1]);
  });
  std::string line;
  ASSERT_TRUE(reader.Next(&line));
  EXPECT_EQ(line, "a");
  EXPECT_FALSE(closed);
  ASSERT_TRUE(reader.Next(&line));
  EXPECT_EQ(line, "b");
  EXPECT_FALSE(closed);
  EXPECT_GE(idle.load(), 1);
  EXPECT_FALSE(reader.Next(&line));
  writer.join();
}

// A followed file: lines appended, the file rotated (renamed, a new one put in
// its place) and truncated all come through, until asked to stop.
TEST(LiveLineReader, FollowedFileSurvivesRotationAndTruncation) {
  const std::filesystem::path dir = std::filesystem::path(VELQUA_RECORDS_TEST_TMP) / "follow";
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "records.txt").string();
  std::ofstream(path, std::ios::trunc) << "a\n";
  std::unique_ptr<std::FILE, FileCloser> in(std::fopen(path.c_str(), "rb"));
  std::atomic<bool> stop{false};
  LineReader::Live live;
  live.follow = path;
  live.stop = [&] { return stop.load(); };
  LineReader reader(in.get(), live);
  const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(450)); };
  std::thread changes([&] {
    pause();
    std::ofstream(path, std::ios::app) << "b\n";
    pause();
    std::filesystem::rename(path, path + ".1");
    std::ofstream(path, std::ios::trunc) << "c\n";
    pause();
    { std::ofstream truncated(path, std::ios::trunc); }
    pause();
    std::ofstream(path, std::ios::app) << "d\n";
    pause();
    stop = true;
  });
  Lines lines;
  std::string line;
  while (reader.Next(&line)) lines.push_back(line);
  changes.join();
  EXPECT_EQ(lines, (Lines{"a", "b", "c", "d"}));
}

// Each header starts a call; lines before the first header form one.
TEST(CallGatherer, EachHeaderStartsACall) {
  CallGatherer g(u"|");
  std::u16string call;
  EXPECT_FALSE(g.Add(u"garbage", &call));
  ASSERT_TRUE(g.Add(u"  -------- 1", &call));
  EXPECT_EQ(call, u"garbage");
  EXPECT_FALSE(g.Add(u"00:00:00 OUTGOING CALL", &call));
  ASSERT_TRUE(g.Add(u"-------- 2", &call));
  EXPECT_EQ(call, u"  -------- 1|00:00:00 OUTGOING CALL");
  EXPECT_FALSE(g.Add(u"00:01:00 CALL RELEASED", &call));
  ASSERT_TRUE(g.Finish(&call));
  EXPECT_EQ(call, u"-------- 2|00:01:00 CALL RELEASED");
  EXPECT_FALSE(g.Finish(&call));
}

TEST(CallGatherer, ACallNeverGrowsPastTheLimit) {
  CallGatherer g(u"\r\n");
  std::u16string call;
  const std::u16string line(1000, u'x');
  size_t calls = 0;
  for (int i = 0; i < 100; ++i) {
    if (g.Add(line, &call)) {
      ++calls;
      EXPECT_LE(call.size(), CallGatherer::kMaxCallSize);
    }
  }
  EXPECT_GT(calls, 0u);
}

// Keeps what the store needs of each row: offset, text and type.
struct Kept : RowSink {
  std::vector<std::tuple<int64_t, std::string, int32_t>> rows;
  void Write(const Row& row) override { rows.emplace_back(row.offset, U8(row.text), row.type); }
};

// Rows carry the offset of their record's first byte and the record as
// translated: a multi-line call its header's offset and its lines joined; a
// resumed read counts from where it resumed.
TEST(Translation, RowsCarryTheirRecordsOffsetAndText) {
  const std::string dir = VELQUA_SOURCE_DIR "/examples/norstar/";
  const std::string path = std::string(VELQUA_RECORDS_TEST_TMP) + "/norstar-two-calls.txt";
  std::filesystem::create_directories(VELQUA_RECORDS_TEST_TMP);
  const std::string first =
      "-------- 02/03/26 08:01:12 LINE = 0003 STN = 7425\r\n"
      "00:00:00 OUTGOING CALL\r\n"
      "\r\n";
  const std::string second =
      "-------- 02/03/26 08:05:00 LINE = 0004 STN = 7426\r\n"
      "00:01:00 CALL RELEASED\n";
  std::ofstream(path, std::ios::binary) << first << second;
  const auto start = static_cast<int64_t>(first.size());
  const auto end = static_cast<int64_t>(first.size() + second.size());
  const auto cfg = LoadConfig(dir + "norstar.json");
  const std::string sep = U8(cfg->Separador());
  for (const int64_t from : {int64_t{0}, start}) {
    SCOPED_TRACE(from);
    Kept kept;
    Translation translation(cfg, kept, {});
    std::unique_ptr<std::FILE, FileCloser> f(std::fopen(path.c_str(), "rb"));
    std::fseek(f.get(), static_cast<long>(from), SEEK_SET);
    translation.Input(path, FechaHora{2026, 2, 4, 9, 0, 0}, from);
    translation.Stream(f.get());
    translation.Finish();
    EXPECT_EQ(translation.end_offset(), end);
    ASSERT_EQ(kept.rows.size(), from == 0 ? 2u : 1u);
    EXPECT_EQ(std::get<0>(kept.rows.back()), start);
    EXPECT_EQ(std::get<1>(kept.rows.back()),
              "-------- 02/03/26 08:05:00 LINE = 0004 STN = 7426" + sep + "00:01:00 CALL RELEASED");
    EXPECT_EQ(std::get<0>(kept.rows.front()), from);
  }
}

// The extension list is read through the translation's environment, which
// keeps it in memory between lookups: an edit still counts at the next
// record, whether it changes the list's size or only its modification time,
// and a list removed counts as none.
TEST(Translation, AnEditedExtensionListCountsAtTheNextRecord) {
  struct Extensions : RowSink {
    std::vector<std::string> seen;
    void Write(const Row& row) override { seen.push_back(U8(row.extension)); }
  } sink;
  const std::string list = std::string(VELQUA_RECORDS_TEST_TMP) + "/extensions-edited.txt";
  std::filesystem::create_directories(VELQUA_RECORDS_TEST_TMP);
  std::ofstream(list, std::ios::binary) << "1234;200\r\n";
  Translation::Settings settings;
  settings.extensions = list;
  settings.blank_random_extensions = true;
  Translation translation(LoadConfig(VELQUA_SOURCE_DIR "/examples/kx-tda/kx-tda.json"), sink,
                          settings);
  const std::u16string record =
      u"01/19/26 08:31AM *1234 02 00441632960123                 00:12'07";
  struct Step {
    const char* what;
    const char* content;  // nullptr: the list removed
    bool touched;         // its modification time moved a second on
    const char* extension;
  } const steps[] = {
      {"as written", "1234;201\r\n", false, "201"},
      {"read again, unchanged", "1234;201\r\n", false, "201"},
      {"longer", "1234;2201\r\n", false, "2201"},
      {"same size, later", "1234;2202\r\n", true, "2202"},
      {"removed", nullptr, false, ""},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    if (step.content == nullptr) {
      std::filesystem::remove(list);
    } else {
      const auto before = std::filesystem::last_write_time(list);
      std::ofstream(list, std::ios::binary | std::ios::trunc) << step.content;
      if (step.touched) std::filesystem::last_write_time(list, before + std::chrono::seconds(1));
    }
    translation.Record(record);
    ASSERT_FALSE(sink.seen.empty());
    EXPECT_EQ(sink.seen.back(), step.extension);
  }
}

}  // namespace
}  // namespace velqua_records
