// Live: calls and unrecognised records as they are stored, as server-sent
// events. Each event's id is the feed's number, so a browser that
// reconnects (EventSource sends Last-Event-ID) gets what it missed. A page
// wakes once a look of the feed finds something and sends all it has not
// sent in one write, from the text the feed framed once for every page.
// The stream is a body that ends when the connection does, not a chunked
// one: the HTTP library copies each chunk twice before writing it, and at
// 50 pages those copies were a fifth of the server's work.
#include "api.h"
#include "routes.h"
#include "server_state.h"

namespace velqua_web {
namespace {

constexpr int kWaitMs = 10000;  // then a comment line keeps the connection (and any proxy) awake

bool Send(httplib::DataSink& sink, const char* data, size_t size) {
  return sink.write(data, size) && sink.is_writable();
}

bool SendPending(httplib::DataSink& sink, const LiveFeed::Pending& p) {
  static const std::string kLost = "event: lost\ndata: {}\n\n";
  static const std::string kWaiting = ": waiting\n\n";
  if (p.lost && !Send(sink, kLost.data(), kLost.size())) return false;
  if (p.blocks.size() == 1) {  // the usual case: the block itself, not a copy
    const std::string& text = p.blocks.front()->text;
    return Send(sink, text.data() + p.skip, text.size() - p.skip);
  }
  if (!p.blocks.empty()) {
    const std::string text = p.Text();
    return Send(sink, text.data(), text.size());
  }
  return p.lost || Send(sink, kWaiting.data(), kWaiting.size());
}

}  // namespace

void RegisterLiveRoutes(Api& api) {
  ServerState& state = api.state();
  api.Get("/api/live", Access::kViewer, [&state](ApiRequest& r) {
    LiveFeed& feed = *state.live;
    int64_t last = LastEventId(r.http.get_header_value("Last-Event-ID"), feed.Latest());
    r.response.set_header("X-Accel-Buffering", "no");  // a proxy passes each event at once
    r.response.set_header("Connection", "close");      // the stream ends when the connection does
    r.response.set_content_provider("text/event-stream",
                                    [&feed, last](size_t, httplib::DataSink& sink) mutable {
                                      const LiveFeed::Pending p = feed.After(last, kWaitMs);
                                      if (feed.stopping()) {
                                        sink.done();
                                        return false;
                                      }
                                      last = p.last;
                                      return SendPending(sink, p);
                                    });
  });
}

}  // namespace velqua_web
