// The trunk lines in use over time, counted by one sweep over the calls in
// order of their start: a heap holds the ends of the calls in progress, so
// that memory follows the calls at once, not the calls of the period.
#pragma once

#include <cstdint>
#include <functional>
#include <queue>
#include <string>
#include <vector>

#include "velqua/store/aggregates.h"

namespace velqua_store {

class LineSweep {
 public:
  // A call holding a line from `second` (seconds since 1970 of its local
  // start, as if UTC) for `length` seconds (> 0). Calls come in order of
  // their start.
  void Add(int64_t second, int64_t length);
  // The half hours in which a call starts or ends, as ChannelsInUse gives
  // them; the sweep is spent.
  std::vector<ChannelSlot> Finish();

 private:
  // Changes at one second are summed before the level is taken: a line
  // freed and taken again at once is one line in use.
  void Change(int64_t second, int64_t by);
  void Settle();

  std::priority_queue<int64_t, std::vector<int64_t>, std::greater<>> ends_;
  bool open_ = false;  // changes of second_ not settled yet
  int64_t second_ = 0, change_ = 0, level_ = 0;
  struct Slot {
    int64_t slot, peak, change, first;
  };
  std::vector<Slot> slots_;
};

// Seconds since 1970 of a stored local time "YYYY-MM-DDTHH:MM[:SS]", as if
// it were UTC; -1 for a text of another shape.
int64_t SecondsOf(const std::string& local);

}  // namespace velqua_store
