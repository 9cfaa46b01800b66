// Hiding the end of dialled numbers in what the program prints
// (--mask-digits N): the last N digits become 'X', every other character
// stays, so that a report shows where calls went (country, area, operator)
// without showing whom they called.
#pragma once

#include <string>
#include <string_view>

#include "velqua/records/call_row.h"

namespace velqua_records {

// "0301234567" with 4 → "030123XXXX"; "+34 91 555 12 34" with 4 →
// "+34 91 555 XX XX". A number with N digits or fewer has all of them
// masked; 0 masks nothing.
std::string MaskDigits(std::string_view number, int digits);
std::u16string MaskDigits(std::u16string_view number, int digits);

// `text` (a record as the switch sent it) with every occurrence of `number`
// masked as MaskDigits masks it, so that the raw record does not show what
// its dialled field hides. A number without digits leaves the text as it is.
std::string MaskNumberIn(std::string_view text, std::string_view number, int digits);

// Passes each row on with its dialled number masked (and its record text,
// where the number appears in it).
class MaskingSink : public RowSink {
 public:
  MaskingSink(RowSink& next, int digits) : next_(next), digits_(digits) {}
  void Write(const Row& row) override;
  void Flush() override { next_.Flush(); }

 private:
  RowSink& next_;
  int digits_;
  Row row_;
  std::u16string text_;
};

}  // namespace velqua_records
