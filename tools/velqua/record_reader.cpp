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

namespace {

// The index of the first CR or LF in p[0, n), or n: two vectorised memchr
// calls rather than a loop over the bytes.
size_t FindLineEnd(const char* p, size_t n) {
  const void* lf = std::memchr(p, '\n', n);
  const size_t k = lf != nullptr ? static_cast<size_t>(static_cast<const char*>(lf) - p) : n;
  const void* cr = std::memchr(p, '\r', k);
  return cr != nullptr ? static_cast<size_t>(static_cast<const char*>(cr) - p) : k;
}

}  // namespace

bool LineReader::Next(std::string* line) {
  std::string_view view;
  const bool found = Next(&view);
  line->assign(view.data(), view.size());
  return found;
}

bool LineReader::Next(std::string_view* line) {
  carry_.clear();
  bool any = false;      // something (a character or a line end) was consumed
  bool carried = false;  // the line so far is in carry_
  for (;;) {
    if (begin_ == end_ && !Refill()) {
      *line = carried ? std::string_view(carry_) : std::string_view();
      return any;
    }
    if (skip_lf_) {
      skip_lf_ = false;
      if (buffer_[begin_] == '\n') {
        ++begin_;
        continue;
      }
    }
    const char* start = buffer_.data() + begin_;
    const size_t avail = end_ - begin_;
    const size_t i = FindLineEnd(start, avail);
    any = true;
    if (i == avail) {
      carry_.append(start, i);
      carried = true;
      begin_ = end_;
      continue;
    }
    skip_lf_ = start[i] == '\r';
    begin_ += i + 1;
    if (carried) {
      carry_.append(start, i);
      *line = carry_;
    } else {
      *line = std::string_view(start, i);
    }
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
