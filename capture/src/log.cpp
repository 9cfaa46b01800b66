#include "velqua/capture/log.h"

#include <cstdlib>

#include "velqua/capture/status.h"

namespace velqua_capture {

Logger::Logger(std::FILE* out) : out_(out), journal_(std::getenv("JOURNAL_STREAM") != nullptr) {}

void Logger::Write(int priority, const std::string& line) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (journal_) {
    std::fprintf(out_, "<%d>%s\n", priority, line.c_str());
  } else {
    std::fprintf(out_, "%s %s%s\n", IsoTime(NowMicros()).c_str(), priority <= 4 ? "warning: " : "",
                 line.c_str());
  }
  std::fflush(out_);
}

}  // namespace velqua_capture
