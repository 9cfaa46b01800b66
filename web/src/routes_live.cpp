// Live: calls and unrecognised records as they are stored, as server-sent
// events. Each event's id is the feed's number, so a browser that
// reconnects (EventSource sends Last-Event-ID) gets what it missed.
#include "api.h"
#include "routes.h"
#include "server_state.h"

namespace velqua_web {
namespace {

bool Send(httplib::DataSink& sink, const std::string& text) {
  return sink.write(text.data(), text.size());
}

}  // namespace

void RegisterLiveRoutes(Api& api) {
  ServerState& state = api.state();
  api.Get("/api/live", Access::kViewer, [&state](ApiRequest& r) {
    LiveFeed& feed = *state.live;
    int64_t last = LastEventId(r.http.get_header_value("Last-Event-ID"), feed.Latest());
    r.response.set_header("X-Accel-Buffering", "no");  // a proxy passes each event at once
    r.response.set_chunked_content_provider(
        "text/event-stream", [&feed, last](size_t, httplib::DataSink& sink) mutable {
          bool lost = false;
          const std::vector<LiveFeed::Event> events = feed.After(last, 10000, &lost);
          if (feed.stopping()) {
            sink.done();
            return false;
          }
          std::string text = lost ? "event: lost\ndata: {}\n\n" : "";
          for (const LiveFeed::Event& e : events) {
            text += "id: " + std::to_string(e.number) + "\ndata: " + e.json + "\n\n";
            last = e.number;
          }
          // A comment line keeps the connection (and any proxy) awake.
          if (text.empty()) text = ": waiting\n\n";
          return Send(sink, text) && sink.is_writable();
        });
  });
}

}  // namespace velqua_web
