// tcp-connect and tcp-listen sources.
#include <asio/connect.hpp>
#include <asio/ip/network_v4.hpp>
#include <asio/ip/network_v6.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <asio/write.hpp>
#include <chrono>
#include <deque>
#include <map>

#include "allow_list.h"
#include "backoff.h"
#include "sources.h"
#include "velqua/capture/login_script.h"

namespace velqua_capture {
namespace {

using asio::ip::tcp;

constexpr size_t kReadSize = 1 << 16;
constexpr Millis kTakeOver{5000};
// How long the switch's answer to the login's last step is waited for
// before its silence counts as a welcome.
constexpr Millis kSettle{2000};
constexpr const char* kReplaced = "replaced by a new connection from the same address";

std::string Reason(const asio::error_code& ec) {
  return ec == asio::error::eof ? "closed by the switch" : ec.message();
}

std::string PeerName(const tcp::socket& socket) {
  asio::error_code ec;
  const tcp::endpoint end = socket.remote_endpoint(ec);
  return ec ? "?" : end.address().to_string() + ":" + std::to_string(end.port());
}

// The service connects to the switch, logs in, and reads.
class TcpConnectSource : public Source, public std::enable_shared_from_this<TcpConnectSource> {
 public:
  TcpConnectSource(asio::io_context& io, const SourceSettings& s, SourceEvents& events)
      : s_(s),
        events_(events),
        resolver_(io),
        socket_(io),
        timer_(io),
        login_timer_(io),
        backoff_(s.retry_min, s.retry_max),
        buffer_(kReadSize, '\0') {}

  void Start() override { Connect(); }

  void Stop(const std::string& reason) override {
    stopped_ = true;
    resolver_.cancel();
    timer_.cancel();
    login_timer_.cancel();
    if (online_) {
      DrainHeld(socket_.native_handle(), buffer_,
                [this](std::string_view bytes) { events_.Received(s_.name, bytes); });
    }
    Close(reason);
  }

 private:
  void Connect() {
    if (stopped_) return;
    auto self = shared_from_this();
    resolver_.async_resolve(
        s_.host, std::to_string(s_.port),
        [this, self](const asio::error_code& ec, const tcp::resolver::results_type& results) {
          if (stopped_) return;
          if (ec) return Retry("cannot resolve " + s_.host + ": " + ec.message());
          asio::async_connect(socket_, results,
                              [this, self](const asio::error_code& e, const tcp::endpoint&) {
                                if (stopped_) return;
                                if (e) {
                                  return Retry("cannot connect to " + s_.host + ":" +
                                               std::to_string(s_.port) + ": " + e.message());
                                }
                                LogIn();
                              });
        });
  }

  void LogIn() {
    socket_.set_option(asio::socket_base::keep_alive(true));
    // The stream counts as connected once the login is done (the spooler says so then);
    // until then only the socket is open.
    if (!s_.login.empty()) {
      events_.Log("source " + s_.name + ": reached " + PeerName(socket_) + ", logging in");
    }
    login_ = std::make_unique<LoginScript>(s_.login, s_.login_failure);
    settle_ = false;
    Answer(login_->Start());
  }

  // Sends what the login script answers; online once it is done.
  void Answer(const LoginScript::Progress& p) {
    asio::error_code ec;
    if (!p.send.empty()) asio::write(socket_, asio::buffer(p.send), ec);
    if (ec) return LoginFailed(ec.message());
    if (!p.failed.empty()) return LoginFailed("the switch answered \"" + p.failed + "\"");
    if (p.done) return Online(p.rest);
    auto self = shared_from_this();
    login_timer_.expires_after(login_->confirming() ? kSettle : login_->current().timeout);
    login_timer_.async_wait([this, self](const asio::error_code& e) {
      if (e || stopped_ || login_ == nullptr || login_->done()) return;
      if (login_->confirming()) {
        settle_ = true;  // the read below ends, and the login with it
        asio::error_code ignored;
        socket_.cancel(ignored);
        return;
      }
      LoginFailed("\"" + login_->current().expect + "\" not received within " +
                  std::to_string(login_->current().timeout.count()) + " ms");
    });
    socket_.async_read_some(asio::buffer(buffer_),
                            [this, self](const asio::error_code& e, size_t n) {
                              if (stopped_ || login_ == nullptr) return;
                              if (e && settle_) {
                                settle_ = false;
                                return Answer(login_->Settle());
                              }
                              if (e) return LoginFailed(Reason(e));
                              settle_ = false;  // bytes came before the wait ended the read
                              login_timer_.cancel();
                              Answer(login_->Feed(std::string_view(buffer_.data(), n)));
                            });
  }

  void LoginFailed(const std::string& why) {
    events_.LoginFailed(s_.name, why);
    Lost("login failed: " + why);
  }

  void Online(const std::string& first) {
    login_timer_.cancel();
    if (!s_.login.empty()) events_.Log("source " + s_.name + ": logged in");
    login_.reset();
    online_ = true;
    backoff_.Reset();
    events_.Connected(s_.name, PeerName(socket_));
    if (!first.empty()) events_.Received(s_.name, first);
    Read();
  }

  void Read() {
    ReadUnlessHeld(
        shared_from_this(), events_, timer_, socket_, buffer_, [this] { return stopped_; },
        [this](const asio::error_code& ec, size_t n) {
          if (ec) return Lost(Reason(ec));
          events_.Received(s_.name, std::string_view(buffer_.data(), n));
          Read();
        });
  }

  void Close(const std::string& reason) {
    asio::error_code ignored;
    socket_.close(ignored);
    login_.reset();
    if (online_) events_.Disconnected(s_.name, reason);
    online_ = false;
  }

  void Lost(const std::string& reason) {
    Close(reason);
    Retry(reason);
  }

  void Retry(const std::string& reason) {
    asio::error_code ignored;
    socket_.close(ignored);
    const Millis wait = backoff_.Next();
    events_.Log("source " + s_.name + ": " + reason + "; reconnecting in " +
                std::to_string(wait.count()) + " ms");
    auto self = shared_from_this();
    timer_.expires_after(wait);
    timer_.async_wait([this, self](const asio::error_code& ec) {
      if (!ec && !stopped_) Connect();
    });
  }

  SourceSettings s_;
  SourceEvents& events_;
  tcp::resolver resolver_;
  tcp::socket socket_;
  asio::steady_timer timer_;
  asio::steady_timer login_timer_;
  Backoff backoff_;
  std::unique_ptr<LoginScript> login_;
  std::string buffer_;
  bool online_ = false;
  bool stopped_ = false;
  bool settle_ = false;
};

// One peer of a listening source.
class PeerConnection : public std::enable_shared_from_this<PeerConnection> {
 public:
  PeerConnection(tcp::socket socket, std::string stream, SourceEvents& events)
      : socket_(std::move(socket)),
        timer_(socket_.get_executor()),
        takeover_(socket_.get_executor()),
        stream_(std::move(stream)),
        events_(events),
        buffer_(kReadSize, '\0') {}

  void Start(std::function<void()> on_end) {
    on_end_ = std::move(on_end);
    asio::error_code ignored;
    socket_.set_option(asio::socket_base::keep_alive(true), ignored);
    events_.Connected(stream_, PeerName(socket_));
    Read();
  }

  // Ends the connection after `wait` unless it ends by itself first.
  void EndWithin(Millis wait, const std::string& reason) {
    auto self = shared_from_this();
    takeover_.expires_after(wait);
    takeover_.async_wait([this, self, reason](const asio::error_code& ec) {
      if (!ec) End(reason);
    });
  }

  // Spools what the operating system holds for the connection already.
  void Drain() {
    if (ended_) return;
    DrainHeld(socket_.native_handle(), buffer_,
              [this](std::string_view bytes) { events_.Received(stream_, bytes); });
  }

  void End(const std::string& reason) {
    if (ended_) return;
    ended_ = true;
    asio::error_code ignored;
    socket_.close(ignored);
    timer_.cancel();
    takeover_.cancel();
    events_.Disconnected(stream_, reason);
    if (on_end_) on_end_();
  }

 private:
  void Read() {
    ReadUnlessHeld(
        shared_from_this(), events_, timer_, socket_, buffer_, [this] { return ended_; },
        [this](const asio::error_code& ec, size_t n) {
          if (ec) return End(Reason(ec));
          events_.Received(stream_, std::string_view(buffer_.data(), n));
          Read();
        });
  }

  tcp::socket socket_;
  asio::steady_timer timer_;
  asio::steady_timer takeover_;
  std::string stream_;
  SourceEvents& events_;
  std::string buffer_;
  std::function<void()> on_end_;
  bool ended_ = false;
};

// The switches connect to the service; each allowed peer address is a stream.
class TcpListenSource : public Source, public std::enable_shared_from_this<TcpListenSource> {
 public:
  TcpListenSource(asio::io_context& io, const SourceSettings& s, SourceEvents& events)
      : s_(s),
        allow_(s.allow),
        events_(events),
        acceptor_(io),
        timer_(io),
        backoff_(s.retry_min, s.retry_max) {}

  void Start() override { Listen(); }

  void Stop(const std::string& reason) override {
    stopped_ = true;
    asio::error_code ignored;
    acceptor_.close(ignored);
    timer_.cancel();
    waiting_.clear();
    auto peers = std::move(peers_);
    for (auto& [stream, peer] : peers) {
      peer->Drain();
      peer->End(reason);
    }
  }

 private:
  void Listen() {
    if (stopped_) return;
    asio::error_code ec;
    const tcp::endpoint end(asio::ip::make_address(s_.bind), static_cast<uint16_t>(s_.port));
    acceptor_.open(end.protocol(), ec);
    if (!ec) acceptor_.set_option(tcp::acceptor::reuse_address(true), ec);
    if (!ec) acceptor_.bind(end, ec);
    if (!ec) acceptor_.listen(asio::socket_base::max_listen_connections, ec);
    if (ec) {
      asio::error_code ignored;
      acceptor_.close(ignored);
      const Millis wait = backoff_.Next();
      events_.Log("source " + s_.name + ": cannot listen on " + s_.bind + ":" +
                  std::to_string(s_.port) + ": " + ec.message() + "; trying again in " +
                  std::to_string(wait.count()) + " ms");
      auto self = shared_from_this();
      timer_.expires_after(wait);
      timer_.async_wait([this, self](const asio::error_code& e) {
        if (!e) Listen();
      });
      return;
    }
    events_.Log("source " + s_.name + ": listening on " + s_.bind + ":" + std::to_string(s_.port));
    Accept();
  }

  void Accept() {
    auto self = shared_from_this();
    acceptor_.async_accept([this, self](const asio::error_code& ec, tcp::socket socket) {
      if (stopped_) return;
      if (!ec) Admit(std::move(socket));
      Accept();
    });
  }

  void Admit(tcp::socket socket) {
    asio::error_code ec;
    const asio::ip::address address = socket.remote_endpoint(ec).address();
    if (ec) return;
    if (!allow_.Admits(address)) {
      // Once a minute per address: a refused switch keeps trying.
      const auto now = std::chrono::steady_clock::now();
      auto& last = refused_[address.to_string()];
      if (last.time_since_epoch().count() == 0 || now - last >= std::chrono::minutes(1)) {
        last = now;
        events_.Log("source " + s_.name + ": refused " + address.to_string() +
                    " (not in the allow list)");
      }
      socket.close(ec);
      return;
    }
    const std::string stream = s_.name + "/" + address.to_string();
    const auto old = peers_.find(stream);
    if (old == peers_.end()) return Serve(stream, std::move(socket));
    // The same switch again while its last connection is open. That one is
    // read to its end first: a switch that reconnects has usually closed it,
    // and what it sent before closing is still to be read. One that does
    // not end (it died silently) is closed after kTakeOver. Meanwhile the
    // new connection's bytes wait in the operating system.
    waiting_[stream].push_back(std::move(socket));
    old->second->EndWithin(kTakeOver, kReplaced);
  }

  void Serve(const std::string& stream, tcp::socket socket) {
    auto peer = std::make_shared<PeerConnection>(std::move(socket), stream, events_);
    peers_[stream] = peer;
    std::weak_ptr<PeerConnection> weak = peer;
    auto self = shared_from_this();
    peer->Start([this, self, stream, weak] {
      const auto it = peers_.find(stream);
      if (it == peers_.end() || it->second != weak.lock()) return;
      peers_.erase(it);
      const auto next = waiting_.find(stream);
      if (next == waiting_.end() || stopped_) return;
      tcp::socket queued = std::move(next->second.front());
      next->second.pop_front();
      const bool more = !next->second.empty();
      if (!more) waiting_.erase(next);
      Serve(stream, std::move(queued));
      if (more) peers_[stream]->EndWithin(kTakeOver, kReplaced);
    });
  }

  SourceSettings s_;
  AllowList allow_;
  SourceEvents& events_;
  tcp::acceptor acceptor_;
  asio::steady_timer timer_;
  Backoff backoff_;
  std::map<std::string, std::shared_ptr<PeerConnection>> peers_;
  std::map<std::string, std::deque<tcp::socket>> waiting_;  // a peer's next connections
  std::map<std::string, std::chrono::steady_clock::time_point> refused_;  // last logged
  bool stopped_ = false;
};

}  // namespace

std::shared_ptr<Source> MakeTcpConnectSource(asio::io_context& io, const SourceSettings& s,
                                             SourceEvents& events) {
  return std::make_shared<TcpConnectSource>(io, s, events);
}

std::shared_ptr<Source> MakeTcpListenSource(asio::io_context& io, const SourceSettings& s,
                                            SourceEvents& events) {
  return std::make_shared<TcpListenSource>(io, s, events);
}

}  // namespace velqua_capture
