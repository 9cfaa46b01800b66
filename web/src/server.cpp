#include "velqua/web/server.h"

#include <httplib.h>

#include "api.h"
#include "assets.h"
#include "routes.h"
#include "server_state.h"
#include "velqua/store/users.h"

namespace velqua_web {
namespace {

// The page may load only its own files and talk only to its own server;
// no frame may hold it; nothing it sends names where the user came from.
httplib::Headers SecurityHeaders() {
  return {{"Content-Security-Policy",
           "default-src 'self'; img-src 'self' data:; frame-ancestors 'none'; base-uri 'none'; "
           "form-action 'self'"},
          {"X-Content-Type-Options", "nosniff"},
          {"X-Frame-Options", "DENY"},
          {"Referrer-Policy", "no-referrer"}};
}

void ServeAssets(httplib::Server& http) {
  for (size_t i = 0; i < kPageAssetCount; ++i) {
    const Asset& asset = kPageAssets[i];
    const auto handler = [&asset](const httplib::Request&, httplib::Response& response) {
      response.set_content(reinterpret_cast<const char*>(asset.data), asset.size, asset.type);
    };
    http.Get(asset.path, handler);
    if (std::string(asset.path) == "/index.html") http.Get("/", handler);
  }
}

const char* StatusText(int status) {
  switch (status) {
    case 400:
      return "malformed request";
    case 404:
      return "not found";
    case 405:
      return "method not allowed";
    case 413:
      return "request body too large";
    case 414:
      return "request address too long";
    case 431:
      return "request headers too large";
    default:
      return "request failed";
  }
}

// Statuses the server gives without a handler (404 of an unknown path, 413
// of a body over the limit, 400 of a malformed request) get a JSON body
// under /api/ and a line of text elsewhere.
void ExplainErrors(httplib::Server& http) {
  http.set_error_handler([](const httplib::Request& request, httplib::Response& response) {
    if (!response.body.empty()) return;
    const std::string text = StatusText(response.status);
    if (request.path.rfind("/api/", 0) == 0) {
      ReplyError(response, response.status, text);
    } else {
      response.set_content(text + "\n", "text/plain");
    }
  });
}

std::unique_ptr<httplib::Server> MakeHttp(const ServeOptions& o) {
  if (o.tls_cert.empty() != o.tls_key.empty()) {
    throw ServeError("give both tls_cert and tls_key, or neither");
  }
  if (o.tls_cert.empty()) return std::make_unique<httplib::Server>();
  auto tls = std::make_unique<httplib::SSLServer>(o.tls_cert.c_str(), o.tls_key.c_str());
  if (!tls->is_valid()) {
    throw ServeError("TLS certificate '" + o.tls_cert + "' or key '" + o.tls_key +
                     "' does not load");
  }
  return tls;
}

}  // namespace

struct Server::Impl {
  explicit Impl(const ServeOptions& o) : state(o), http(MakeHttp(o)) {}
  ServerState state;
  std::unique_ptr<httplib::Server> http;
  std::string host;
  int port = 0;
};

Server::Server(const ServeOptions& options) : impl_(std::make_unique<Impl>(options)) {
  SplitListen(options.listen, &impl_->host, &impl_->port);
  ServerState& state = impl_->state;
  state.loopback = IsLoopback(impl_->host);
  state.tls = !options.tls_cert.empty();
  {
    StorePool::Lease store = state.pool.Borrow();
    if (!state.loopback && velqua_store::CountUsers(*store) == 0) {
      throw ServeError("refusing to listen on " + impl_->host +
                       ": the store has no users, so the page would be open to anyone who "
                       "reaches it; add one with 'velqua user add NAME --role admin', or listen "
                       "on 127.0.0.1");
    }
  }
  httplib::Server& http = *impl_->http;
  const auto threads = static_cast<size_t>(options.threads);
  http.new_task_queue = [threads] { return new httplib::ThreadPool(threads); };
  http.set_payload_max_length(static_cast<size_t>(options.body_limit));
  http.set_default_headers(SecurityHeaders());
  ExplainErrors(http);
  ServeAssets(http);
  state.live = std::make_unique<LiveFeed>(options.db);
  Api api(http, state);
  RegisterRoutes(api);
  const bool bound = impl_->port == 0 ? (impl_->port = http.bind_to_any_port(impl_->host)) > 0
                                      : http.bind_to_port(impl_->host, impl_->port);
  if (!bound) throw ServeError("cannot listen on " + options.listen);
}

Server::~Server() = default;

int Server::port() const { return impl_->port; }

std::string Server::url() const {
  const bool v6 = impl_->host.find(':') != std::string::npos;
  return std::string(impl_->state.tls ? "https" : "http") + "://" + (v6 ? "[" : "") + impl_->host +
         (v6 ? "]" : "") + ":" + std::to_string(impl_->port) + "/";
}

void Server::Run() { impl_->http->listen_after_bind(); }

// The live pages end first: each holds a request open until its feed stops.
void Server::Stop() {
  impl_->state.live->Stop();
  impl_->http->stop();
}

}  // namespace velqua_web
