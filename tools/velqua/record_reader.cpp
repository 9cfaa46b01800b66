#include "record_reader.h"

#include <cstring>
#include <utility>

#include "cli_common.h"

namespace velqua_cli {

namespace {
constexpr size_t kReadSize = 1 << 16;
}

LineReader::LineReader(std::FILE* stream) : stream_(stream), buffer_(kReadSize, '\0') {}

bool LineReader::Refill() {
  if (eof_) return false;
  const size_t n = std::fread(&buffer_[0], 1, buffer_.size(), stream_);
  if (n < buffer_.size()) {
    if (std::ferror(stream_)) throw CliError("read error on input");
    eof_ = true;
  }
  begin_ = 0;
  end_ = n;
  return n > 0;
}

bool LineReader::Next(std::string* line) {
  line->clear();
  bool any = false;  // something (a character or a line end) was consumed
  for (;;) {
    if (begin_ == end_ && !Refill()) return any;
    if (skip_lf_) {
      skip_lf_ = false;
      if (buffer_[begin_] == '\n') {
        ++begin_;
        continue;
      }
    }
    const char* start = buffer_.data() + begin_;
    const size_t avail = end_ - begin_;
    size_t i = 0;
    while (i < avail && start[i] != '\n' && start[i] != '\r') ++i;
    line->append(start, i);
    any = true;
    if (i == avail) {
      begin_ = end_;
      continue;
    }
    skip_lf_ = start[i] == '\r';
    begin_ += i + 1;
    return true;
  }
}

bool CallGatherer::IsHeader(std::u16string_view line) {
  size_t i = 0;
  while (i < line.size() && (line[i] == u' ' || line[i] == u'\t')) ++i;
  return line.substr(i, 8) == u"--------";
}

bool CallGatherer::Add(std::u16string_view line, std::u16string* call) {
  bool closed = false;
  const bool too_long = open_ && current_.size() + separator_.size() + line.size() > kMaxCallSize;
  if (open_ && (IsHeader(line) || too_long)) {
    *call = std::move(current_);
    current_.clear();
    open_ = false;
    closed = true;
  }
  if (open_) current_ += separator_;
  current_.append(line.data(), line.size());
  open_ = true;
  return closed;
}

bool CallGatherer::Finish(std::u16string* call) {
  if (!open_) return false;
  *call = std::move(current_);
  current_.clear();
  open_ = false;
  return true;
}

}  // namespace velqua_cli
