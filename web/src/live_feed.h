// What arrives in the store, told to every live page: one thread asks the
// store four times a second for calls and unrecognised records stored
// since its last look (by import, capture or any other writer, on any
// site), and keeps the latest events numbered, so that each live page
// sends those it has not sent yet. A page that falls more than the kept
// events behind is told to reload.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velqua_web {

class LiveFeed {
 public:
  // Starts watching the store at `url` from what it holds now.
  explicit LiveFeed(std::string url);
  ~LiveFeed();
  LiveFeed(const LiveFeed&) = delete;
  LiveFeed& operator=(const LiveFeed&) = delete;

  struct Event {
    int64_t number = 0;
    std::string json;  // {"kind": "call" | "unrecognised", ...}
  };

  // The events after `after` (at most the kept ones), waiting up to
  // `wait_ms` for one; `lost` is set when events after `after` were
  // dropped. Returns at once, empty, once the feed is stopping.
  std::vector<Event> After(int64_t after, int wait_ms, bool* lost);
  // The number of the latest event (0: none yet).
  int64_t Latest();
  bool stopping();
  void Stop();

 private:
  void Watch();

  std::string url_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<Event> events_;
  int64_t next_ = 1;
  bool stop_ = false;
  std::thread thread_;
};

// The feed number a reconnecting browser's Last-Event-ID header names, or
// `fallback` when the header is absent or not a number of up to 18 digits.
int64_t LastEventId(const std::string& header, int64_t fallback);

}  // namespace velqua_web
