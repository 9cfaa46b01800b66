#include "velqua/records/text_table.h"

#include <algorithm>
#include <utility>

#include "velqua/records/common.h"

namespace velqua_records {
namespace {

size_t Width(const std::string& utf8) {
  size_t n = 0;
  for (char c : utf8) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return n;
}

}  // namespace

AlignedTable::AlignedTable(std::vector<std::string> heads, std::vector<bool> right)
    : heads_(std::move(heads)), right_(std::move(right)) {
  right_.resize(heads_.size(), false);
}

void AlignedTable::Add(std::vector<std::string> cells, std::string* out) {
  cells.resize(heads_.size());
  for (std::string& cell : cells) {
    if (!NeedsVisible(cell, false)) continue;
    std::string visible;
    AppendVisible(visible, cell, false);
    cell = std::move(visible);
  }
  if (widths_.empty()) {
    held_.push_back(std::move(cells));
    if (held_.size() >= kSizingRows) Release(out, false);
    return;
  }
  Emit(cells, out);
}

void AlignedTable::Finish(std::string* out) {
  if (widths_.empty()) Release(out, false);
}

void AlignedTable::Flush(std::string* out) {
  if (widths_.empty()) Release(out, true);
}

void AlignedTable::Release(std::string* out, bool live) {
  widths_.assign(heads_.size(), 0);
  for (size_t i = 0; i < heads_.size(); ++i) {
    widths_[i] = Width(heads_[i]);
    if (live && i < live_widths_.size()) widths_[i] = std::max(widths_[i], live_widths_[i]);
  }
  for (const auto& cells : held_) {
    for (size_t i = 0; i < cells.size(); ++i) widths_[i] = std::max(widths_[i], Width(cells[i]));
  }
  Emit(heads_, out);
  std::vector<std::string> rule(heads_.size());
  for (size_t i = 0; i < rule.size(); ++i) rule[i] = std::string(widths_[i], '-');
  Emit(rule, out);
  for (const auto& cells : held_) Emit(cells, out);
  held_.clear();
  held_.shrink_to_fit();
}

void AlignedTable::Emit(const std::vector<std::string>& cells, std::string* out) const {
  size_t last = cells.size();  // trailing blank cells are not padded
  while (last > 0 && cells[last - 1].empty()) --last;
  for (size_t i = 0; i < last; ++i) {
    if (i > 0) *out += "  ";
    const size_t width = Width(cells[i]);
    const size_t pad = widths_[i] > width ? widths_[i] - width : 0;
    if (right_[i]) out->append(pad, ' ');
    *out += cells[i];
    if (!right_[i] && i + 1 < last) out->append(pad, ' ');
  }
  *out += '\n';
}

}  // namespace velqua_records
