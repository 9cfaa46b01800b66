#include "live_feed.h"

#include <chrono>
#include <cstdio>
#include <optional>

#include "call_json.h"
#include "velqua/store/browse.h"

namespace velqua_web {
namespace {

// Records read a look: four looks a second keep up with 8,000 calls a
// second, each look a short read of its own (the store's writers wait for
// no reader).
constexpr int64_t kBatch = 2000;
constexpr auto kLook = std::chrono::milliseconds(250);

void Frame(LiveFeed::Block& block, nlohmann::json j, const char* kind) {
  j["kind"] = kind;
  block.starts.push_back(block.text.size());
  block.text +=
      "id: " + std::to_string(block.first + static_cast<int64_t>(block.starts.size()) - 1);
  block.text += "\ndata: ";
  block.text += j.dump();
  block.text += "\n\n";
}

}  // namespace

LiveFeed::LiveFeed(std::string url, size_t kept)
    : url_(std::move(url)), kept_(kept), thread_([this] { Watch(); }) {}

LiveFeed::~LiveFeed() { Stop(); }

void LiveFeed::Stop() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  arrived_.notify_all();
  if (thread_.joinable()) thread_.join();
}

bool LiveFeed::stopping() {
  std::lock_guard<std::mutex> lock(mutex_);
  return stop_;
}

int64_t LiveFeed::Latest() {
  std::lock_guard<std::mutex> lock(mutex_);
  return next_ - 1;
}

std::string LiveFeed::Pending::Text() const {
  std::string text;
  for (size_t i = 0; i < blocks.size(); ++i) {
    text.append(blocks[i]->text, i == 0 ? skip : 0, std::string::npos);
  }
  return text;
}

LiveFeed::Pending LiveFeed::After(int64_t after, int wait_ms) {
  std::unique_lock<std::mutex> lock(mutex_);
  arrived_.wait_for(lock, std::chrono::milliseconds(wait_ms),
                    [&] { return stop_ || next_ - 1 != after; });
  Pending p;
  p.last = after;
  if (stop_) return p;
  if (after > next_ - 1) {  // a number from before this server started
    p.lost = true;
    p.last = next_ - 1;
    return p;
  }
  p.lost = !blocks_.empty() && blocks_.front()->first > after + 1;
  for (const std::shared_ptr<const Block>& b : blocks_) {
    if (b->last() <= after) continue;
    if (p.blocks.empty() && b->first <= after) {
      p.skip = b->starts[static_cast<size_t>(after + 1 - b->first)];
    }
    p.blocks.push_back(b);
    p.last = b->last();
  }
  return p;
}

bool LiveFeed::Add(std::shared_ptr<Block> block) {
  if (block->starts.empty()) return false;
  std::lock_guard<std::mutex> lock(mutex_);
  next_ = block->last() + 1;
  events_ += block->starts.size();
  blocks_.push_back(std::move(block));
  while (events_ - blocks_.front()->starts.size() >= kept_) {
    events_ -= blocks_.front()->starts.size();
    blocks_.pop_front();
  }
  arrived_.notify_all();
  return true;
}

// The store is opened here, in the watching thread, and opened again after
// a failure (a PostgreSQL server restarting): the page keeps its feed.
void LiveFeed::Watch() {
  std::unique_ptr<velqua_store::Store> store;
  std::optional<velqua_store::ArrivalMark> mark;  // none until the first look
  while (!stopping()) {
    try {
      if (!store) store = velqua_store::OpenStore(url_, false);
      if (!mark) mark = velqua_store::LatestArrival(*store);
      velqua_store::Arrivals a = velqua_store::ArrivedAfter(*store, *mark, kBatch);
      mark = a.mark;
      auto block = std::make_shared<Block>();
      block->first = Latest() + 1;  // only this thread numbers events
      for (const auto& c : a.calls) Frame(*block, CallJson(c), "call");
      for (const auto& u : a.unrecognised) {
        Frame(*block, UnrecognisedJson(u.record), "unrecognised");
      }
      const bool full = a.calls.size() == static_cast<size_t>(kBatch) ||
                        a.unrecognised.size() == static_cast<size_t>(kBatch);
      if (Add(std::move(block)) && full) continue;
    } catch (const std::exception& e) {
      std::fprintf(stderr, "velqua serve: live feed: %s\n", e.what());
      store.reset();
    }
    std::unique_lock<std::mutex> lock(mutex_);
    arrived_.wait_for(lock, kLook, [&] { return stop_; });
  }
}

int64_t LastEventId(const std::string& text, int64_t fallback) {
  if (text.empty() || text.size() > 18 ||
      text.find_first_not_of("0123456789") != std::string::npos) {
    return fallback;
  }
  return std::stoll(text);
}

}  // namespace velqua_web
