// A capture service's status as one JSON document: what `velqua capture
// status` prints, for a program that shows it elsewhere (the web page's
// Capture view). Read from the service's configuration and the status file
// in its spool folder, as the command reads them.
#pragma once

#include <cstdint>
#include <string>

namespace velqua_capture {

// The status of the service that `config_path` configures, at `now_us`
// (microseconds since 1970 UTC), as JSON text:
//   {"config", "health" ("OK", "WARNING", "CRITICAL", "UNKNOWN"), "summary",
//    "problems": [text], "running", "pid", "started_utc", "written_utc",
//    "switches": [{"name", "sources": [{"name", "kind", "silence_s",
//      "problem" ("" when up), "silent" (quiet longer than silence_s),
//      "streams": [{"stream", "state" ("connected", "disconnected",
//        "login failed", "never"), "since_utc", "bytes", "records",
//        "unrecognised", "headings", "resent_dropped", "reconnections",
//        "last_record_utc", "last_data_utc", "last_event"}]}]}]}
// Times are ISO 8601 UTC ("" when never). A configuration that does not
// load gives health "UNKNOWN" with the reason as "summary" and no switches.
std::string CaptureStatusJson(const std::string& config_path, int64_t now_us);

}  // namespace velqua_capture
