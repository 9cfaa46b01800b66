// What the output forms of stored calls share (call_output.cpp: CSV and
// JSON Lines; call_forms.cpp: the table and cdr-csv).
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "velqua/records/common.h"
#include "velqua/store/call_output.h"

namespace velqua_store {

// Bytes to a stream through one buffer.
class Buffer {
 public:
  explicit Buffer(std::FILE* out) : out_(out) {}
  std::string& text() { return text_; }
  void MaybeFlush() {
    if (text_.size() >= kBlock) Flush();
  }
  void Flush() {
    const bool written = std::fwrite(text_.data(), 1, text_.size(), out_) == text_.size();
    text_.clear();
    if (!written || std::fflush(out_) != 0)
      throw velqua_records::Failure("cannot write the output");
  }

 private:
  static constexpr size_t kBlock = 1 << 16;
  std::FILE* out_;
  std::string text_;
};

// The i-th text column of a call (dialled, extension, trunk, receiving
// extension, receiving trunk, account code).
inline const std::optional<std::string>* Texts(const StoredCall& c, size_t i) {
  const std::optional<std::string>* texts[] = {&c.dialled,         &c.extension,
                                               &c.trunk,           &c.receiving_extension,
                                               &c.receiving_trunk, &c.account_code};
  return texts[i];
}

std::unique_ptr<CallWriter> MakeTableWriter(std::FILE* out);
std::unique_ptr<CallWriter> MakeCdrCsvWriter(std::FILE* out);

}  // namespace velqua_store
