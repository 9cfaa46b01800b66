#include "values.h"

#include <date/tz.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <exception>

#include "velqua/records/clock.h"
#include "velqua/records/common.h"
#include "velqua/store/store.h"

namespace velqua_store {
namespace {

// Appends `value` in decimal, zero-padded to `width` digits.
void AppendPadded(std::string& out, int64_t value, int width) {
  char digits[24];
  const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  for (auto n = static_cast<int>(end - digits); n < width; ++n) out += '0';
  out.append(digits, static_cast<size_t>(end - digits));
}

// Appends `text` (UTF-8) as a JSON string.
void AppendJsonString(std::string& out, const std::string& text) {
  out += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
      out += escaped;
    } else {
      out += c;
    }
  }
  out += '"';
}

// PostgreSQL cannot hold a NUL character in a text; both engines store it
// as U+2400 SYMBOL FOR NULL, so that they hold the same texts.
void ReplaceNul(std::string& text) {
  for (size_t at = text.find('\0'); at != std::string::npos; at = text.find('\0', at + 3)) {
    text.replace(at, 1, "\xE2\x90\x80");
  }
}

}  // namespace

Zone::Zone(const std::string& name) {
  if (name.empty()) return;
  try {
    zone_ = date::locate_zone(name);
  } catch (const std::exception&) {
    throw StoreError("unknown time zone '" + name +
                     "': expected an IANA name such as Europe/Madrid (see /usr/share/zoneinfo)");
  }
}

std::string Zone::ToUtc(const velqua_records::Row& row) const {
  if (zone_ == nullptr || !row.has_fields || !row.HasDate() || !row.HasTime()) return "";
  return Utc(row.year, row.month, row.day, row.time, row.HasSeconds());
}

std::string Zone::EndToUtc(const velqua_records::Row& row) const {
  if (zone_ == nullptr || !row.has_fields || !row.HasEndDate() || !row.HasTime()) return "";
  return Utc(row.end_year, row.end_month, row.end_day, row.end_time, row.HasSeconds());
}

bool Zone::DateFromReceived(const std::string& received_utc, velqua_records::Row* row) const {
  if (!row->has_fields || row->HasDate() || !row->HasTime()) return false;
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  if (std::sscanf(received_utc.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &y, &mo, &d, &h, &mi, &s) != 6) {
    return false;
  }
  const date::year_month_day utc_day{date::year{y}, date::month{static_cast<unsigned>(mo)},
                                     date::day{static_cast<unsigned>(d)}};
  if (!utc_day.ok()) return false;
  const date::sys_seconds utc =
      date::sys_days{utc_day} + std::chrono::seconds{h * 3600 + mi * 60 + s};
  date::local_seconds local;
  if (zone_ != nullptr) {
    local = zone_->to_local(utc);
  } else {
    const std::time_t t = std::chrono::system_clock::to_time_t(utc);
    std::tm tm{};
    localtime_r(&t, &tm);
    local = date::local_seconds{utc.time_since_epoch() + std::chrono::seconds{tm.tm_gmtoff}};
  }
  date::local_days day = date::floor<date::days>(local);
  const int64_t received_time = (local - day).count();
  // The end (or, without one, the start) happened by the time received.
  const int32_t last = row->HasEnd() ? row->end_time : row->time;
  if (last > received_time) day -= date::days{1};
  const auto set = [](date::local_days on, int32_t* yy, int32_t* mm, int32_t* dd) {
    const date::year_month_day ymd{on};
    *yy = static_cast<int32_t>(static_cast<int>(ymd.year()));
    *mm = static_cast<int32_t>(static_cast<unsigned>(ymd.month()));
    *dd = static_cast<int32_t>(static_cast<unsigned>(ymd.day()));
  };
  if (row->HasEnd()) {
    set(day, &row->end_year, &row->end_month, &row->end_day);
    if (row->time > row->end_time) day -= date::days{1};  // it began the day before
  }
  set(day, &row->year, &row->month, &row->day);
  row->printed = static_cast<uint8_t>(row->printed | velqua_records::kPrintedDay |
                                      velqua_records::kPrintedMonth | velqua_records::kPrintedYear);
  return true;
}

std::string Zone::Utc(int32_t year, int32_t month, int32_t day_of_month, int32_t time,
                      bool with_seconds) const {
  const date::year_month_day day{date::year{year}, date::month{static_cast<unsigned>(month)},
                                 date::day{static_cast<unsigned>(day_of_month)}};
  if (month < 1 || day_of_month < 1 || !day.ok()) return "";
  const date::local_seconds local = date::local_days{day} + std::chrono::seconds{time};
  const date::sys_seconds utc = zone_->to_sys(local, date::choose::earliest);
  const date::sys_days utc_day = date::floor<date::days>(utc);
  const date::year_month_day ymd{utc_day};
  const int64_t seconds = (utc - utc_day).count();
  std::string out;
  AppendPadded(out, static_cast<int>(ymd.year()), 4);
  out += '-';
  AppendPadded(out, static_cast<unsigned>(ymd.month()), 2);
  out += '-';
  AppendPadded(out, static_cast<unsigned>(ymd.day()), 2);
  out += 'T';
  AppendPadded(out, seconds / 3600, 2);
  out += ':';
  AppendPadded(out, seconds / 60 % 60, 2);
  if (with_seconds) {
    out += ':';
    AppendPadded(out, seconds % 60, 2);
  }
  out += 'Z';
  return out;
}

void AppendStart(std::string& out, const velqua_records::Row& row) {
  if (!row.has_fields || !row.HasDate()) return;
  AppendPadded(out, row.year, 4);
  out += '-';
  AppendPadded(out, row.month, 2);
  out += '-';
  AppendPadded(out, row.day, 2);
  if (!row.HasTime()) return;
  out += 'T';
  AppendPadded(out, row.time / 3600, 2);
  out += ':';
  AppendPadded(out, row.time / 60 % 60, 2);
  if (!row.HasSeconds()) return;
  out += ':';
  AppendPadded(out, row.time % 60, 2);
}

void AppendEnd(std::string& out, const velqua_records::Row& row) {
  if (!row.has_fields || !row.HasEndDate() || !row.HasTime()) return;
  AppendPadded(out, row.end_year, 4);
  out += '-';
  AppendPadded(out, row.end_month, 2);
  out += '-';
  AppendPadded(out, row.end_day, 2);
  out += 'T';
  AppendPadded(out, row.end_time / 3600, 2);
  out += ':';
  AppendPadded(out, row.end_time / 60 % 60, 2);
  if (!row.HasSeconds()) return;
  out += ':';
  AppendPadded(out, row.end_time % 60, 2);
}

std::string Fnv1aHex(std::string_view bytes) {
  uint64_t hash = 14695981039346656037ull;
  for (const char c : bytes) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 1099511628211ull;
  }
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

std::string Reason(const velqua_records::Row& row) {
  return row.error.empty() ? "not recognised by the switch's configuration" : row.error;
}

void CallValues::Fill(int64_t switch_id_, int64_t source_id_, const Record& record,
                      const Zone& zone) {
  // A switch that prints no date: its calls take the date received.
  velqua_records::Row dated;
  date_received = false;
  if (record.row.has_fields && !record.row.HasDate() && record.row.HasTime()) {
    dated = record.row;
    date_received = zone.DateFromReceived(record.received_utc, &dated);
  }
  const velqua_records::Row& row = date_received ? dated : record.row;
  switch_id = switch_id_;
  source_id = source_id_;
  position = record.position;
  received_utc = record.received_utc;
  raw = record.raw;
  ReplaceNul(raw);
  type = row.type;
  attribute = row.attribute;
  start.clear();
  AppendStart(start, row);
  start_utc = zone.ToUtc(row);
  ended.clear();
  AppendEnd(ended, row);
  ended_utc = zone.EndToUtc(row);
  duration = row.has_fields ? row.duration : -1;
  ring = row.has_fields ? row.ring : -1;
  const std::u16string* fields[] = {&row.dialled,         &row.extension,
                                    &row.trunk,           &row.receiving_extension,
                                    &row.receiving_trunk, &row.account_code};
  for (size_t i = 0; i < texts.size(); ++i) {
    texts[i].clear();
    if (row.has_fields) velqua_records::AppendUtf8(texts[i], *fields[i]);
    ReplaceNul(texts[i]);
  }
  extension_random = row.random_extension;
  switch_charge.clear();
  extras.clear();
  for (const auto& [name, text] : row.extras) {
    std::string value;
    velqua_records::AppendUtf8(value, text);
    ReplaceNul(value);
    if (value.empty()) continue;  // blank in this record
    if (name == "charge") switch_charge = value;
    extras += extras.empty() ? "{" : ",";
    AppendJsonString(extras, name);
    extras += ':';
    AppendJsonString(extras, value);
  }
  if (!extras.empty()) extras += '}';
  reason.clear();
  if (!row.has_fields) reason = Reason(row);
  ReplaceNul(reason);
}

}  // namespace velqua_store
