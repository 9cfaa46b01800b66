#include "velqua/records/record_reader.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "velqua/lineas.h"
#include "velqua/records/common.h"

namespace velqua_records {

namespace {
constexpr size_t kReadSize = 1 << 16;
}

LineReader::LineReader(std::FILE* stream, int64_t offset)
    : stream_(stream), buffer_(kReadSize, '\0'), buffer_offset_(offset), line_offset_(offset) {}

LineReader::LineReader(std::FILE* stream, Live live)
    : stream_(stream),
      fd_(::fileno(stream)),
      live_(true),
      how_(std::move(live)),
      buffer_(kReadSize, '\0') {
  struct stat st {};
  if (::fstat(fd_, &st) == 0) inode_ = st.st_ino;
}

// Waits until the source has bytes, calling on_idle after each quiet spell;
// false when asked to stop.
bool LineReader::Wait() {
  for (;;) {
    if (how_.stop && how_.stop()) return false;
    pollfd p{fd_, POLLIN, 0};
    const int r = ::poll(&p, 1, how_.idle_ms);
    if (r > 0) return true;
    if (r < 0 && errno != EINTR)
      throw Failure(std::string("read error on input: ") + std::strerror(errno));
    if (r == 0 && how_.on_idle) how_.on_idle();
  }
}

// A followed file at its end: true when reading can go on (from a new file
// put in its place, or from the start of a truncated one).
bool LineReader::Reopened() {
  struct stat now {};
  if (::stat(how_.follow.c_str(), &now) != 0) return false;  // between rotation steps
  if (now.st_ino != inode_) {
    const int fd = ::open(how_.follow.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    ::dup2(fd, fd_);
    ::close(fd);
    inode_ = now.st_ino;
    offset_ = 0;
    buffer_offset_ = -static_cast<int64_t>(end_);  // the next read starts at 0
    return true;
  }
  if (now.st_size < offset_) {
    ::lseek(fd_, 0, SEEK_SET);
    offset_ = 0;
    buffer_offset_ = -static_cast<int64_t>(end_);
    return true;
  }
  return now.st_size > offset_;
}

bool LineReader::Refill() {
  if (eof_) return false;
  if (live_) {
    for (;;) {
      // A regular file always polls readable: follow it by its size instead.
      if (how_.follow.empty() && !Wait()) break;
      const ssize_t n = ::read(fd_, &buffer_[0], buffer_.size());
      if (n > 0) {
        offset_ += n;
        buffer_offset_ += static_cast<int64_t>(end_);
        begin_ = 0;
        end_ = static_cast<size_t>(n);
        return true;
      }
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) throw Failure(std::string("read error on input: ") + std::strerror(errno));
      if (how_.follow.empty()) break;  // end of a pipe or device
      int quiet_ms = 0;
      while (!Reopened()) {
        if (how_.stop && how_.stop()) {
          eof_ = true;
          return false;
        }
        ::usleep(200 * 1000);
        quiet_ms += 200;
        if (quiet_ms >= how_.idle_ms && how_.on_idle) {
          how_.on_idle();
          quiet_ms = 0;
        }
      }
    }
    eof_ = true;
    return false;
  }
  const size_t n = std::fread(&buffer_[0], 1, buffer_.size(), stream_);
  if (n < buffer_.size()) {
    if (std::ferror(stream_)) throw Failure("read error on input");
    eof_ = true;
  }
  buffer_offset_ += static_cast<int64_t>(end_);
  begin_ = 0;
  end_ = n;
  return n > 0;
}

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
    const size_t i = velqua::FinDeLinea(std::string_view(start, avail));
    if (!any) line_offset_ = buffer_offset_ + static_cast<int64_t>(begin_);
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

int64_t LinesBefore(std::FILE* file, int64_t end) {
  std::rewind(file);
  LineReader reader(file);
  std::string_view line;
  int64_t lines = 0;
  while (reader.Next(&line) && reader.line_offset() < end) ++lines;
  return lines;
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

}  // namespace velqua_records
