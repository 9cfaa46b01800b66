// Cutting bytes into lines: CR LF, LF and a lone CR each end a line, a CR LF
// split between two pieces counting once. Bytes come in pieces cut
// anywhere; each complete line goes out with the offset of its first byte
// in the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velqua_records {

// The index of the first CR or LF in `bytes`, or its size when it has none.
size_t LineEnd(std::string_view bytes);

class LineCutter {
 public:
  // The next piece: `line(text, offset)` is called for each line it
  // completes, without its line end (the text is valid during the call);
  // an unfinished last line waits for the next piece.
  template <typename OnLine>
  void Feed(std::string_view bytes, OnLine&& line) {
    while (!bytes.empty()) {
      if (after_cr_) {
        after_cr_ = false;
        if (bytes.front() == '\n') {  // the LF of a CR LF cut between pieces
          bytes.remove_prefix(1);
          ++offset_;
          continue;
        }
      }
      const size_t end = LineEnd(bytes);
      if (end == bytes.size()) {
        pending_.append(bytes);
        return;
      }
      after_cr_ = bytes[end] == '\r';
      const int64_t at = offset_;
      offset_ += static_cast<int64_t>(pending_.size() + end) + 1;
      if (pending_.empty()) {
        line(bytes.substr(0, end), at);
      } else {
        pending_.append(bytes.data(), end);
        line(std::string_view(pending_), at);
        pending_.clear();
      }
      bytes.remove_prefix(end + 1);
    }
  }

  // The end of the input: the unfinished last line, if any, goes out.
  template <typename OnLine>
  void Finish(OnLine&& line) {
    if (pending_.empty()) return;
    const int64_t at = offset_;
    offset_ += static_cast<int64_t>(pending_.size());
    line(std::string_view(pending_), at);
    pending_.clear();
  }

 private:
  std::string pending_;    // an unfinished line
  int64_t offset_ = 0;     // of the next line's first byte in the input
  bool after_cr_ = false;  // the last line ended with a CR: an LF next belongs to it
};

}  // namespace velqua_records
