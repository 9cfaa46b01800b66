// What the routes share for the server's life.
#pragma once

#include <memory>

#include "live_feed.h"
#include "sessions.h"
#include "store_pool.h"
#include "velqua/web/server.h"

namespace velqua_web {

struct ServerState {
  explicit ServerState(const ServeOptions& o)
      : options(o),
        sessions(std::chrono::minutes(o.session_minutes)),
        throttle(5, std::chrono::seconds(60)),
        pool(o.db, static_cast<size_t>(o.connections)) {}

  ServeOptions options;
  SessionTable sessions;
  LoginThrottle throttle;
  StorePool pool;
  bool loopback = true;            // listening on loopback: a store without users is open
  bool tls = false;                // cookies are Secure
  std::unique_ptr<LiveFeed> live;  // started with the server
};

}  // namespace velqua_web
