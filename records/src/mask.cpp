#include "velqua/records/mask.h"

namespace velqua_records {
namespace {

template <typename Char>
std::basic_string<Char> Mask(std::basic_string_view<Char> number, int digits) {
  std::basic_string<Char> out(number);
  for (size_t i = out.size(); i > 0 && digits > 0; --i) {
    if (out[i - 1] >= '0' && out[i - 1] <= '9') {
      out[i - 1] = 'X';
      --digits;
    }
  }
  return out;
}

template <typename Char>
std::basic_string<Char> MaskIn(std::basic_string_view<Char> text,
                               std::basic_string_view<Char> number, int digits) {
  std::basic_string<Char> out(text);
  const std::basic_string<Char> masked = Mask(number, digits);
  if (digits <= 0 || number.empty() || masked == number) return out;
  for (size_t at = out.find(number); at != std::basic_string<Char>::npos;
       at = out.find(number, at + number.size())) {
    out.replace(at, number.size(), masked);
  }
  return out;
}

}  // namespace

std::string MaskDigits(std::string_view number, int digits) { return Mask(number, digits); }

std::u16string MaskDigits(std::u16string_view number, int digits) { return Mask(number, digits); }

std::string MaskNumberIn(std::string_view text, std::string_view number, int digits) {
  return MaskIn(text, number, digits);
}

void MaskingSink::Write(const Row& row) {
  if (digits_ <= 0 || row.dialled.empty()) return next_.Write(row);
  row_ = row;
  row_.dialled = MaskDigits(std::u16string_view(row.dialled), digits_);
  text_ = MaskIn(row.text, std::u16string_view(row.dialled), digits_);
  row_.text = text_;
  next_.Write(row_);
}

}  // namespace velqua_records
