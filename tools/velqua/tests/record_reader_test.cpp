#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli_common.h"
#include "record_reader.h"

namespace velqua_cli {
namespace {

std::vector<std::string> ReadAll(const std::string& bytes) {
  std::unique_ptr<std::FILE, FileCloser> f(std::tmpfile());
  std::fwrite(bytes.data(), 1, bytes.size(), f.get());
  std::rewind(f.get());
  LineReader reader(f.get());
  std::vector<std::string> lines;
  std::string line;
  while (reader.Next(&line)) lines.push_back(line);
  return lines;
}

using Lines = std::vector<std::string>;

TEST(LineReader, CrLfLfAndCrEachEndALine) {
  EXPECT_EQ(ReadAll("a\r\nb\nc\rd\r\n"), (Lines{"a", "b", "c", "d"}));
}

TEST(LineReader, LastLineNeedsNoLineEnd) { EXPECT_EQ(ReadAll("a\nb"), (Lines{"a", "b"})); }

TEST(LineReader, EmptyLinesAreKept) {
  EXPECT_EQ(ReadAll("a\r\n\r\nb\n\nc\r\rd"), (Lines{"a", "", "b", "", "c", "", "d"}));
}

TEST(LineReader, EmptyInputHasNoLine) {
  EXPECT_TRUE(ReadAll("").empty());
  EXPECT_EQ(ReadAll("\n"), (Lines{""}));
  EXPECT_EQ(ReadAll("\r\n"), (Lines{""}));
}

TEST(LineReader, CrLfSplitAcrossReadsCountsOnce) {
  // The reader takes 65536 bytes at a time: put the CR last in the first read.
  const std::string first(65535, 'x');
  const Lines lines = ReadAll(first + "\r\nnext\r\n");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], first);
  EXPECT_EQ(lines[1], "next");
}

TEST(LineReader, LongLineSpanningReads) {
  const std::string big(200000, 'y');
  EXPECT_EQ(ReadAll(big + "\nz"), (Lines{big, "z"}));
}

TEST(CallGatherer, EachHeaderStartsACall) {
  CallGatherer g(u"|");
  std::u16string call;
  EXPECT_FALSE(g.Add(u"-------- 1", &call));
  EXPECT_FALSE(g.Add(u"00:00:00 OUTGOING CALL", &call));
  ASSERT_TRUE(g.Add(u"-------- 2", &call));
  EXPECT_EQ(call, u"-------- 1|00:00:00 OUTGOING CALL");
  EXPECT_FALSE(g.Add(u"00:01:00 CALL RELEASED", &call));
  ASSERT_TRUE(g.Finish(&call));
  EXPECT_EQ(call, u"-------- 2|00:01:00 CALL RELEASED");
  EXPECT_FALSE(g.Finish(&call));
}

TEST(CallGatherer, LinesBeforeTheFirstHeaderFormACall) {
  CallGatherer g(u"\r\n");
  std::u16string call;
  EXPECT_FALSE(g.Add(u"garbage", &call));
  ASSERT_TRUE(g.Add(u"  -------- 1", &call));
  EXPECT_EQ(call, u"garbage");
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

}  // namespace
}  // namespace velqua_cli
