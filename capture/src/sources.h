// The constructors of each kind of source (source.h's MakeSource chooses).
#pragma once

#include <asio/buffer.hpp>
#include <asio/error_code.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>

#include "velqua/capture/source.h"

namespace velqua_capture {

// How often a source asks again whether the spool still holds.
constexpr Millis kHeldPoll{50};

// Reads the next chunk from `stream` into `buffer` and hands the outcome to
// `got(error, size)`, unless the spool holds (a full disk): then it asks
// again every kHeldPoll, so that the bytes wait in the switch's buffer and
// the operating system's rather than in memory. Nothing is called once
// `ended()` is true; `self` keeps the source alive while it waits.
template <typename Stream, typename Ended, typename Got>
void ReadUnlessHeld(std::shared_ptr<void> self, SourceEvents& events, asio::steady_timer& timer,
                    Stream& stream, std::string& buffer, Ended ended, Got got) {
  if (events.Held()) {
    timer.expires_after(kHeldPoll);
    timer.async_wait(
        [self, &events, &timer, &stream, &buffer, ended, got](const asio::error_code& ec) {
          if (!ec && !ended()) ReadUnlessHeld(self, events, timer, stream, buffer, ended, got);
        });
    return;
  }
  stream.async_read_some(asio::buffer(buffer),
                         [self, ended, got](const asio::error_code& ec, size_t n) {
                           if (!ended()) got(ec, n);
                         });
}

// Hands over, chunk by chunk, what the operating system already holds for
// `fd` (without waiting for more): a stopping source spools it before it
// closes, so that a stop loses nothing the switch has sent.
void DrainHeld(int fd, std::string& buffer, const std::function<void(std::string_view)>& got);

std::shared_ptr<Source> MakeTcpConnectSource(asio::io_context& io, const SourceSettings& s,
                                             SourceEvents& events);
std::shared_ptr<Source> MakeTcpListenSource(asio::io_context& io, const SourceSettings& s,
                                            SourceEvents& events);
std::shared_ptr<Source> MakeSerialSource(asio::io_context& io, const SourceSettings& s,
                                         SourceEvents& events);
std::shared_ptr<Source> MakeFileSource(asio::io_context& io, const SourceSettings& s,
                                       const SwitchSettings& sw, const std::string& state_dir,
                                       SourceEvents& events);

}  // namespace velqua_capture
