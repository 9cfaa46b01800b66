// A recording surface that fails on the n-th Print or the n-th Line, before
// recording it, to check that a drawing stops there and its error reaches the
// caller.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "velqua/error.h"
#include "velqua/superficie_grabadora.h"

namespace velqua_test {

// Line fails with velqua::Error(480, "Host", line_error); Print with a std::runtime_error.
class FailingSurface : public velqua::SuperficieGrabadora {
 public:
  explicit FailingSurface(std::u16string line_error = u"Line failed")
      : line_error_(std::move(line_error)) {}
  int fail_print = 0;  // 1-based number of the failing Print; 0: never
  int fail_line = 0;   // 1-based number of the failing Line; 0: never
  void Print(const std::u16string& text) override {
    if (++prints_ == fail_print) throw std::runtime_error("print failed");
    SuperficieGrabadora::Print(text);
  }
  void Line(int16_t flags, float x1, float y1, float x2, float y2, int32_t colour) override {
    if (++lines_ == fail_line) throw velqua::Error(480, u"Host", line_error_);
    SuperficieGrabadora::Line(flags, x1, y1, x2, y2, colour);
  }

 private:
  std::u16string line_error_;
  int prints_ = 0;
  int lines_ = 0;
};

}  // namespace velqua_test
