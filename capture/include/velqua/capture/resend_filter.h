// The re-send rule. Many switches send their buffer again after a
// reconnection; those records are already stored and must not be stored
// twice, while two genuine identical calls must stay two calls.
//
// The rule: a connection's re-sent part is the run of records at its start
// each byte-identical to a record stored from the same source before the
// connection, within the horizon (the source's last N records, received no
// longer than a given age before the connection). Each such record is dropped,
// a stored record matching at most one of them (so a record stored twice
// drops at most two). The first record that matches nothing left ends the
// re-sent part, and every record after it is kept, identical or not.
//
// Ending the re-sent part at its first new record is what lets the service
// replay the spool deterministically: while a connection is in its re-sent
// part nothing of it has been stored, so the decision can always be made
// again from the connection's start and the records stored before it.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace velqua_capture {

class ResendFilter {
 public:
  struct Stored {
    std::string raw;      // the record's text as stored
    int64_t received_us;  // when it was received, microseconds since 1970 UTC
  };

  // Begins a connection made at `connected_us` with the source's most recent
  // stored records (any order). Only the newest `max_records` of them no
  // older than `max_age_us` before the connection count.
  void Connect(std::vector<Stored> recent, int64_t connected_us, int64_t max_records,
               int64_t max_age_us);

  // Whether the connection's next record, `raw`, is a re-send to drop.
  bool Drop(const std::string& raw);

  // Whether the connection is still in its re-sent part.
  bool active() const { return active_; }

  // The connection ended.
  void End() {
    active_ = false;
    left_.clear();
  }

 private:
  std::unordered_map<std::string, int64_t> left_;  // stored records not yet matched
  bool active_ = false;
};

}  // namespace velqua_capture
