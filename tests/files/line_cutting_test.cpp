// The line cutter (CortadorLineas) gives the same lines and offsets however the bytes are cut
// into pieces: CR LF, LF and a lone CR each end one line, a CR LF split
// between pieces included, and the last line needs no end.
#include "velqua/lineas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velqua {
namespace {

// "text@offset" for every line, the input fed in pieces of `piece` bytes.
std::vector<std::string> Cut(const std::string& input, size_t piece) {
  std::vector<std::string> out;
  const auto keep = [&](std::string_view line, int64_t at) {
    out.push_back(std::string(line) + "@" + std::to_string(at));
  };
  CortadorLineas cutter;
  for (size_t at = 0; at < input.size(); at += piece) {
    cutter.Alimenta(std::string_view(input).substr(at, piece), keep);
  }
  cutter.Termina(keep);
  return out;
}

TEST(LineCutter, LinesAndOffsetsDoNotDependOnThePieces) {
  const struct {
    const char* name;
    std::string input;
    std::vector<std::string> lines;
  } rows[] = {
      {"CR LF", "ab\r\ncd\r\n", {"ab@0", "cd@4"}},
      {"LF", "ab\ncd\n", {"ab@0", "cd@3"}},
      {"lone CR", "ab\rcd\r", {"ab@0", "cd@3"}},
      {"mixed, and a last line without end", "a\r\n\nb\rc", {"a@0", "@3", "b@4", "c@6"}},
      {"CR CR is two ends", "a\r\rb", {"a@0", "@2", "b@3"}},
      {"LF CR is two ends", "a\n\rb", {"a@0", "@2", "b@3"}},
      {"empty input", "", {}},
      {"only an end", "\r\n", {"@0"}},
      {"NUL and other bytes are text", std::string("a\0b\tc\n", 6), {std::string("a\0b\tc@0", 7)}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    for (size_t piece : {size_t{1}, size_t{2}, size_t{3}, size_t{64}}) {
      SCOPED_TRACE(piece);
      EXPECT_EQ(Cut(row.input, piece), row.lines);
    }
  }
}

TEST(LineCutter, LineEndFindsTheFirstCrOrLf) {
  const struct {
    const char* bytes;
    size_t end;
  } rows[] = {{"abc", 3}, {"a\nb\r", 1}, {"ab\r\n", 2}, {"\n", 0}, {"a\rb\n", 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.bytes);
    EXPECT_EQ(FinDeLinea(row.bytes), row.end);
  }
}

}  // namespace
}  // namespace velqua
