// What arrives in the store, told to every live page: one thread asks the
// store four times a second for calls and unrecognised records stored
// since its last look (by import, capture or any other writer, on any
// site). Each look's events are turned into server-sent events once, as one
// block of text that every page shares: a page that is up to date sends a
// look's events in one write, without copying or serialising them again.
// The latest events are kept numbered; a page that falls more of them
// behind than are kept, or names an event this server never sent (it
// reconnects after a restart), is told to reload.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velqua_web {

class LiveFeed {
 public:
  // Events kept for pages that are behind: 10 seconds at 2,000 calls a
  // second, about 12 MB however many pages there are.
  static constexpr size_t kKeptEvents = 20000;

  // Starts watching the store at `url` from what it holds now, keeping at
  // least `kept` events for pages that are behind.
  explicit LiveFeed(std::string url, size_t kept = kKeptEvents);
  ~LiveFeed();
  LiveFeed(const LiveFeed&) = delete;
  LiveFeed& operator=(const LiveFeed&) = delete;

  // The events of one look, numbered on from `first`, each framed as
  // "id: N\ndata: {...}\n\n" where the JSON's "kind" is "call" or
  // "unrecognised".
  struct Block {
    int64_t first = 0;
    std::string text;
    std::vector<size_t> starts;  // where each event begins in `text`
    int64_t last() const { return first + static_cast<int64_t>(starts.size()) - 1; }
  };

  // What a page has still to send: `blocks` from byte `skip` of the first.
  struct Pending {
    bool lost = false;  // events it had not sent are gone, or it named an unknown one
    std::vector<std::shared_ptr<const Block>> blocks;
    size_t skip = 0;
    int64_t last = 0;  // the number of the last event in them (the page's mark if none)
    bool empty() const { return blocks.empty(); }
    // The text to send, in one piece.
    std::string Text() const;
  };

  // The events after `after`, waiting up to `wait_ms` for one. Returns at
  // once, empty, once the feed is stopping.
  Pending After(int64_t after, int wait_ms);
  // The number of the latest event (0: none yet).
  int64_t Latest();
  bool stopping();
  void Stop();

 private:
  void Watch();
  // Adds a look's events as one block; false when there were none.
  bool Add(std::shared_ptr<Block> block);

  std::string url_;
  size_t kept_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::shared_ptr<const Block>> blocks_;
  size_t events_ = 0;  // in blocks_
  int64_t next_ = 1;
  bool stop_ = false;
  std::thread thread_;
};

// The feed number a reconnecting browser's Last-Event-ID header names, or
// `fallback` when the header is absent or not a number of up to 18 digits.
int64_t LastEventId(const std::string& header, int64_t fallback);

}  // namespace velqua_web
