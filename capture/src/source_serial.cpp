// The serial source: a switch's SMDR port wired to a serial device (often a
// USB adapter that can be unplugged).
#include <sys/ioctl.h>
#include <termios.h>

#include <asio/serial_port.hpp>
#include <asio/steady_timer.hpp>
#include <cerrno>
#include <cstring>

#include "backoff.h"
#include "sources.h"

namespace velqua_capture {
namespace {

constexpr size_t kReadSize = 1 << 12;

class SerialSource : public Source, public std::enable_shared_from_this<SerialSource> {
 public:
  SerialSource(asio::io_context& io, const SourceSettings& s, SourceEvents& events)
      : s_(s),
        events_(events),
        port_(io),
        timer_(io),
        backoff_(s.retry_min, s.retry_max),
        buffer_(kReadSize, '\0') {}

  void Start() override { Open(); }

  void Stop(const std::string& reason) override {
    stopped_ = true;
    timer_.cancel();
    if (open_) {
      DrainHeld(port_.native_handle(), buffer_,
                [this](std::string_view bytes) { events_.Received(s_.name, bytes); });
    }
    Close(reason);
  }

 private:
  void Open() {
    if (stopped_) return;
    asio::error_code ec;
    port_.open(s_.device, ec);
    if (!ec) ec = Configure();
    if (ec) {
      asio::error_code ignored;
      port_.close(ignored);
      return Retry("cannot open " + s_.device + ": " + ec.message());
    }
    open_ = true;
    last_reason_.clear();
    backoff_.Reset();
    events_.Connected(s_.name, s_.device);
    Read();
  }

  // The line settings; DTR held on (some switches send nothing without it).
  asio::error_code Configure() {
    using asio::serial_port_base;
    asio::error_code ec;
    port_.set_option(serial_port_base::baud_rate(static_cast<unsigned>(s_.baud)), ec);
    if (!ec) {
      port_.set_option(serial_port_base::character_size(static_cast<unsigned>(s_.data_bits)), ec);
    }
    const bool odd = s_.parity == Parity::kOdd || s_.parity == Parity::kMark;
    const auto parity = s_.parity == Parity::kNone ? serial_port_base::parity::none
                        : odd                      ? serial_port_base::parity::odd
                                                   : serial_port_base::parity::even;
    if (!ec) port_.set_option(serial_port_base::parity(parity), ec);
    if (!ec) {
      port_.set_option(
          serial_port_base::stop_bits(s_.stop_bits == 2 ? serial_port_base::stop_bits::two
                                                        : serial_port_base::stop_bits::one),
          ec);
    }
    const auto flow = s_.flow == FlowControl::kRtsCts    ? serial_port_base::flow_control::hardware
                      : s_.flow == FlowControl::kXonXoff ? serial_port_base::flow_control::software
                                                         : serial_port_base::flow_control::none;
    if (!ec) port_.set_option(serial_port_base::flow_control(flow), ec);
    if (ec) return ec;
    const int fd = port_.native_handle();
    if (s_.parity == Parity::kMark || s_.parity == Parity::kSpace) {
      // Mark and space parity: the parity bit stuck at 1 or 0 (CMSPAR).
      termios t{};
      if (::tcgetattr(fd, &t) != 0) return asio::error_code(errno, asio::system_category());
      t.c_cflag |= CMSPAR;
      if (::tcsetattr(fd, TCSANOW, &t) != 0)
        return asio::error_code(errno, asio::system_category());
    }
    int dtr = TIOCM_DTR;
    if (::ioctl(fd, TIOCMBIS, &dtr) != 0 && !dtr_warned_) {
      dtr_warned_ = true;  // a pseudo-terminal has no DTR line
      events_.Log("source " + s_.name + ": DTR not raised on " + s_.device + ": " +
                  std::strerror(errno));
    }
    return ec;
  }

  void Read() {
    ReadUnlessHeld(
        shared_from_this(), events_, timer_, port_, buffer_, [this] { return stopped_; },
        [this](const asio::error_code& ec, size_t n) {
          if (ec) {
            // EIO: the device went away (an adapter unplugged, the other end of
            // a pseudo-terminal closed).
            Close("device lost: " + ec.message());
            return Retry("device lost: " + ec.message());
          }
          events_.Received(s_.name, std::string_view(buffer_.data(), n));
          Read();
        });
  }

  void Close(const std::string& reason) {
    asio::error_code ignored;
    port_.close(ignored);
    if (open_) events_.Disconnected(s_.name, reason);
    open_ = false;
  }

  void Retry(const std::string& reason) {
    const Millis wait = backoff_.Next();
    if (reason != last_reason_) {
      events_.Log("source " + s_.name + ": " + reason + "; retrying every " +
                  std::to_string(s_.retry_min.count()) + " ms or more");
      last_reason_ = reason;
    }
    auto self = shared_from_this();
    timer_.expires_after(wait);
    timer_.async_wait([this, self](const asio::error_code& ec) {
      if (!ec && !stopped_) Open();
    });
  }

  SourceSettings s_;
  SourceEvents& events_;
  asio::serial_port port_;
  asio::steady_timer timer_;
  Backoff backoff_;
  std::string buffer_;
  std::string last_reason_;
  bool open_ = false;
  bool stopped_ = false;
  bool dtr_warned_ = false;
};

}  // namespace

std::shared_ptr<Source> MakeSerialSource(asio::io_context& io, const SourceSettings& s,
                                         SourceEvents& events) {
  return std::make_shared<SerialSource>(io, s, events);
}

}  // namespace velqua_capture
