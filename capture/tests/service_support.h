// What the capture service's tests share: a configuration written for a test,
// the service run as a process, and what the store holds afterwards.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "capture_test.h"

namespace velqua_capture_test {

const std::string kExamples = std::string(VELQUA_SOURCE_DIR) + "/examples";

// Writes `dir`/capture.toml: the store at `store`, the spool in `dir`/spool,
// one switch "pbx" (`switch_toml` adds to or replaces its keys; the kx-tda
// configuration by default) with the sources of `sources_toml`.
std::string WriteConfig(const std::string& dir, const std::string& store,
                        const std::string& switch_toml, const std::string& sources_toml);

// A tcp-listen source "ipo" on `port`, and a file-follow source "log" on
// `path`, as WriteConfig's `sources_toml` takes them.
std::string ListenSource(int port);
std::string FollowSource(const std::string& path);

// The emulator pushing `records` to `port` as an IP Office does, `rate`
// records a second ("0": at once), connecting again 50 ms after a cut;
// `more` adds to its options.
std::unique_ptr<Child> Pusher(int port, const std::string& records, const std::string& rate,
                              const std::vector<std::string>& more = {});

// The service running on `config`, its log in `dir`/service.log.
std::unique_ptr<Child> StartService(const std::string& config, const std::string& dir);

// The records a records file holds: its pieces between line ends (and NULs,
// with `nul`), empty ones left out, those starting with one of `skip` too;
// in UTF-8 (read as Windows-1252), sorted.
std::vector<std::string> RecordsOf(const std::string& file,
                                   const std::vector<std::string>& skip = {}, bool nul = false);

// Writes `count` distinct Panasonic records (the emulator's `generate`) to
// `path` and returns them, sorted.
std::vector<std::string> GenerateRecords(const std::string& path, int64_t count);

// The raw texts of the calls, and of the unrecognised records, in the store, sorted.
std::vector<std::string> StoredCalls(const std::string& store);
std::vector<std::string> StoredUnrecognised(const std::string& store);

// Waits until the store holds `count` records (calls and unrecognised);
// false if they do not come.
bool WaitForRecords(const std::string& store, size_t count);

// The re-sent records a service log says it dropped, over all its lines:
// the service logs its drops as they come, in one line or in several.
int64_t SumOfDropped(const std::string& log);

}  // namespace velqua_capture_test
