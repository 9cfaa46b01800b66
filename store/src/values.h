// The stored form of a record: its row's call data as the columns of
// `calls` (texts in UTF-8, absent values as NULL, the start as ISO 8601
// local time and, with the switch's time zone, UTC), or its reason in
// `unrecognised`.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "velqua/records/call_row.h"

namespace date {
class time_zone;
}

namespace velqua_store {

struct Record;

// A time zone of the IANA database (the system's zoneinfo).
class Zone {
 public:
  // "" = none: no UTC times. Throws StoreError naming an unknown zone.
  explicit Zone(const std::string& name);

  // The UTC form of a local start ("2026-03-29T02:30:00" or without seconds),
  // "YYYY-MM-DDTHH:MM[:SS]Z" with the same precision; "" without a zone or
  // for an impossible date. A local time that happens twice (clocks set
  // back) is taken at its first occurrence; one that never happens (clocks
  // set forward) at the moment the change took place.
  std::string ToUtc(const velqua_records::Row& row) const;
  // Gives a row of a switch that prints no date the date it was received
  // on (`received_utc` "YYYY-MM-DDTHH:MM:SSZ", in this zone, or the
  // machine's without one): the call ended then or before, so a printed
  // time later in the day than that is of the day before. False (row left
  // alone) for a row that has its date, has no time, or an unreadable time.
  bool DateFromReceived(const std::string& received_utc, velqua_records::Row* row) const;
  // The same for the call's end ("" when the row has no end or no end date).
  std::string EndToUtc(const velqua_records::Row& row) const;

 private:
  std::string Utc(int32_t year, int32_t month, int32_t day, int32_t time, bool seconds) const;

  const date::time_zone* zone_ = nullptr;
};

// The columns of one stored record. Texts that are "" and numbers below 0
// are written as NULL.
struct CallValues {
  // The order of the text columns, as in `calls`.
  static constexpr const char* kTextColumns[] = {
      "dialled", "extension", "trunk", "receiving_extension", "receiving_trunk", "account_code"};

  int64_t switch_id = 0, source_id = 0, position = 0;
  std::string received_utc, raw;
  int32_t type = 0, attribute = 0;
  std::string start, start_utc;
  std::string ended, ended_utc;  // the call's end, in the start's precision
  int64_t duration = -1, ring = -1;
  std::array<std::string, 6> texts;
  bool extension_random = false;
  // The date of a switch that prints none, taken from when it was received.
  bool date_received = false;
  // The configuration's extra fields: the switch's charge ("charge"), and
  // all of them as a JSON object ({"charge":"0.12"}); "" when none.
  std::string switch_charge, extras;
  std::string reason;  // unrecognised records: why

  // Fills every column from a record; keeps the strings' storage, so a
  // vector of CallValues reused batch after batch allocates nothing.
  void Fill(int64_t switch_id_, int64_t source_id_, const Record& record, const Zone& zone);
};

// "2026-01-15T09:05:00", "2026-01-15T09:05" without printed seconds,
// "2026-01-15" without a printed time, "" without a printed date.
void AppendStart(std::string& out, const velqua_records::Row& row);

// The call's end in the same form as its start; "" when it has no end or the
// switch printed no date.
void AppendEnd(std::string& out, const velqua_records::Row& row);

// The 64-bit FNV-1a hash of `bytes` as 16 hexadecimal digits: the content
// hash of configurations, the fingerprint of imported files and the
// cdr-csv unique id. It tells contents apart; it is no protection against
// someone who wants two to collide.
std::string Fnv1aHex(std::string_view bytes);

// Why a record without call data is kept in `unrecognised`.
std::string Reason(const velqua_records::Row& row);

}  // namespace velqua_store
