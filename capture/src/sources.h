// The constructors of each kind of source (source.h's MakeSource chooses).
#pragma once

#include <memory>
#include <string>

#include "velqua/capture/source.h"

namespace velqua_capture {

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
