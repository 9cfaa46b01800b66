// When a call started and when it ended. Switches print one time per call:
// most the time it started, some (Panasonic KX-TDA and KX-NS, DEFINITY,
// Hicom, HiPath, Strata CTX) the time it ended. A row always gives the true
// start, so that a report by hour, a count of busy channels or a tariff band
// chosen by the start is not off by the call's length, and the end beside it.
#pragma once

#include "velqua/records/call_row.h"

namespace velqua_records {

// Which time a switch's records print: its configuration says so ("time" in
// the record form); unstated is taken as the start.
enum class PrintedTime { kUnstated, kStart, kEnd };

// Gives `row` its true start and its end from the time it printed and its
// duration: a printed end less the duration is the start (back across
// midnight, month and year ends when the date was printed; modulo one day
// when it was not), a printed start plus the duration the end. Without a
// duration a printed end is also taken as the start (the call's length being
// unknown) and a printed start gives no end. Seconds the switch did not print
// count as :00. A row without a printed time, or unrecognised, is left as it
// is.
void PlaceInTime(PrintedTime printed, Row* row);

}  // namespace velqua_records
