#include "live_feed.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>

#include "call_json.h"
#include "velqua/store/browse.h"

namespace velqua_web {
namespace {

constexpr size_t kKept = 2000;   // events a slow page may fall behind
constexpr int64_t kBatch = 500;  // records read a look
constexpr auto kLook = std::chrono::milliseconds(250);

}  // namespace

LiveFeed::LiveFeed(std::string url) : url_(std::move(url)), thread_([this] { Watch(); }) {}

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

std::vector<LiveFeed::Event> LiveFeed::After(int64_t after, int wait_ms, bool* lost) {
  std::unique_lock<std::mutex> lock(mutex_);
  arrived_.wait_for(lock, std::chrono::milliseconds(wait_ms),
                    [&] { return stop_ || next_ - 1 > after; });
  std::vector<Event> out;
  *lost = !events_.empty() && events_.front().number > after + 1;
  if (stop_) return out;
  for (const Event& e : events_) {
    if (e.number > after) out.push_back(e);
  }
  return out;
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
      std::vector<std::string> texts;
      for (const auto& c : a.calls) {
        nlohmann::json j = CallJson(c);
        j["kind"] = "call";
        texts.push_back(j.dump());
      }
      for (const auto& u : a.unrecognised) {
        nlohmann::json j = UnrecognisedJson(u.record);
        j["kind"] = "unrecognised";
        texts.push_back(j.dump());
      }
      if (!texts.empty()) {
        std::lock_guard<std::mutex> lock(mutex_);
        for (std::string& t : texts) events_.push_back({next_++, std::move(t)});
        while (events_.size() > kKept) events_.pop_front();
        arrived_.notify_all();
        if (a.calls.size() == kBatch || a.unrecognised.size() == kBatch) continue;
      }
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
