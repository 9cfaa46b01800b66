// Sources: where a switch's bytes come from. Each runs on the service's
// Asio io_context (one thread), hands every byte it receives to its events
// as soon as it has it, and never gives up: a lost connection or a device
// that disappears is retried with growing waits until it comes back.
#pragma once

#include <asio/io_context.hpp>
#include <memory>
#include <string>
#include <string_view>

#include "velqua/capture/settings.h"

namespace velqua_capture {

// What sources report, on the io_context's thread. A stream is one source's
// connection: the source's name, or "name/address" for each peer of a
// listening source.
class SourceEvents {
 public:
  virtual ~SourceEvents() = default;
  virtual void Connected(const std::string& stream, const std::string& peer) = 0;
  virtual void Received(const std::string& stream, std::string_view bytes) = 0;
  virtual void Disconnected(const std::string& stream, const std::string& reason) = 0;
  // True while the spool cannot take more: sources stop reading (their
  // switches' bytes wait in the operating system's buffers and the switch).
  virtual bool Held() const = 0;
  // One line for the service's log.
  virtual void Log(const std::string& line) = 0;
  // The source knows it missed bytes it can never read (a followed file
  // rotated away or truncated while the service was stopped): logged, and
  // recorded in the store as a gap.
  virtual void Gap(const std::string& stream, const std::string& what) = 0;
  // The switch refused the source's login (or never completed it): the
  // stream's state is "login failed" until it connects.
  virtual void LoginFailed(const std::string& stream, const std::string& why) = 0;
};

class Source {
 public:
  virtual ~Source() = default;
  // Starts connecting, listening, opening or following.
  virtual void Start() = 0;
  // Ends every connection (each reported as disconnected with `reason`) and
  // stops retrying. The source must stay alive until the io_context has run
  // the handlers this cancels.
  virtual void Stop(const std::string& reason) = 0;
};

// The source `settings` describe. A file-follow source keeps where it is in
// the followed file in `state_dir`, and hands over only whole records
// (`framing`) unless the file stays quiet for `idle_flush`.
std::shared_ptr<Source> MakeSource(asio::io_context& io, const SourceSettings& settings,
                                   const SwitchSettings& sw, const std::string& state_dir,
                                   SourceEvents& events);

}  // namespace velqua_capture
