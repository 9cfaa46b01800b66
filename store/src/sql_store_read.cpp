// Reading calls back, counting, and rewriting records with a corrected
// configuration's translations.
#include <date/date.h>

#include <cstdio>
#include <string>

#include "day_summaries.h"
#include "sql_store.h"

namespace velqua_store {
namespace {

constexpr const char* kCallColumns =
    "type, attribute, start, start_utc, duration, ring, dialled, extension, trunk, "
    "receiving_extension, receiving_trunk, account_code, extension_random, ended, ended_utc, "
    "date_received, switch_charge, extras";
constexpr int kCallColumnCount = 18;

// A call's stored translation as one string, read from the kCallColumns
// that start at column `first`.
std::string StoredSignature(const ResultRow& row, int first) {
  std::string s;
  for (int i = first; i < first + kCallColumnCount; ++i) {
    if (!row.IsNull(i)) s += row.Text(i);
    s += '\x1f';
  }
  return s;
}

// The start in a stored signature (its third column).
std::string_view StoredStart(std::string_view signature) {
  size_t at = 0;
  for (int column = 0; column < 2 && at != std::string_view::npos; ++column) {
    at = signature.find('\x1f', at);
    if (at != std::string_view::npos) ++at;
  }
  if (at == std::string_view::npos) return {};
  return signature.substr(at, signature.find('\x1f', at) - at);
}

// The same string from a translation about to be stored.
std::string Signature(const CallValues& v) {
  std::string s;
  const auto add = [&s](const std::string& text) {
    s += text;
    s += '\x1f';
  };
  add(std::to_string(v.type));
  add(std::to_string(v.attribute));
  add(v.start);
  add(v.start_utc);
  add(v.duration < 0 ? "" : std::to_string(v.duration));
  add(v.ring < 0 ? "" : std::to_string(v.ring));
  for (const std::string& text : v.texts) add(text);
  add(v.extension_random ? "1" : "0");
  add(v.ended);
  add(v.ended_utc);
  add(v.date_received ? "1" : "0");
  add(v.switch_charge);
  add(v.extras);
  return s;
}

// The first text after every text that starts with `prefix`, in byte
// order; "" when there is none (a prefix of 0xFF bytes).
std::string PrefixEnd(std::string prefix) {
  while (!prefix.empty() && static_cast<unsigned char>(prefix.back()) == 0xFF) prefix.pop_back();
  if (!prefix.empty()) prefix.back() = static_cast<char>(prefix.back() + 1);
  return prefix;
}

// A day "YYYY-MM-DD" that exists; throws Failure naming the option.
date::year_month_day ParseDay(const std::string& text, const char* option) {
  bool digits = text.size() == 10 && text[4] == '-' && text[7] == '-';
  for (size_t i = 0; digits && i < text.size(); ++i) {
    digits = i == 4 || i == 7 || (text[i] >= '0' && text[i] <= '9');
  }
  if (digits) {
    const date::year_month_day day{date::year{std::stoi(text.substr(0, 4))},
                                   date::month{static_cast<unsigned>(std::stoi(text.substr(5, 2)))},
                                   date::day{static_cast<unsigned>(std::stoi(text.substr(8, 2)))}};
    if (day.ok()) return day;
  }
  throw velqua_records::Failure(std::string(option) + ": expected a date YYYY-MM-DD, got '" + text +
                                "'");
}

std::string DayText(const date::year_month_day& day) {
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text;
}

// The directory's `column` for the call's `key` (an extension or account
// code) as in force on the call's start date: the row of the latest date
// not after it, a row without a date (always) otherwise.
std::string DirectoryColumn(const char* kind, const char* key, const char* column) {
  return std::string("(SELECT d.") + column + " FROM directory d WHERE d.kind = '" + kind +
         "' AND d.entry_key = " + key +
         " AND (d.from_day = '' OR d.from_day <= substr(c.start, 1, 10)) "
         "ORDER BY d.from_day DESC LIMIT 1)";
}

// A price's cost (exact decimal text, up to 6 decimals) as an integer of
// millionths, in either engine's SQL: the digits without the point, scaled
// by the decimals after it.
std::string CostMillionths() {
  const std::string decimals =
      "(CASE WHEN k.cost LIKE '%.%' THEN length(k.cost) - length(rtrim(k.cost, '0123456789')) "
      "ELSE 0 END)";
  return "(CAST(replace(k.cost, '.', '') AS BIGINT) * CASE " + decimals +
         " WHEN 0 THEN 1000000 WHEN 1 THEN 100000 WHEN 2 THEN 10000 WHEN 3 THEN 1000 "
         "WHEN 4 THEN 100 WHEN 5 THEN 10 WHEN 6 THEN 1 END)";
}

std::string Lowercase(std::string text) {
  for (char& ch : text) {
    if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
  }
  return text;
}

// A text matched literally by LIKE ... ESCAPE '!'.
std::string LikeEscaped(const std::string& text) {
  std::string out;
  for (char ch : text) {
    if (ch == '%' || ch == '_' || ch == '!') out += '!';
    out += ch;
  }
  return out;
}

}  // namespace

std::string PeriodWhere(const CallFilter& f, const std::string& column,
                        std::vector<Value>* params) {
  std::string sql;
  if (!f.from.empty()) {
    params->push_back(DayText(ParseDay(f.from, "--from")));
    sql += " AND " + column + " >= $" + std::to_string(params->size());
  }
  if (!f.to.empty()) {
    const date::sys_days next = date::sys_days{ParseDay(f.to, "--to")} + date::days{1};
    params->push_back(DayText(date::year_month_day{next}));
    sql += " AND " + column + " < $" + std::to_string(params->size());
  }
  return sql;
}

namespace {

// The WHERE clause of a filter and its parameters.
std::string Where(const CallFilter& f, std::vector<Value>* params) {
  std::string sql = " WHERE 1 = 1" + PeriodWhere(f, "c.start", params);
  const auto add = [&](const char* condition, Value value) {
    params->push_back(std::move(value));
    sql += std::string(" AND ") + condition + " $" + std::to_string(params->size());
  };
  if (!f.switch_name.empty()) {
    add("c.switch_id = (SELECT id FROM switches WHERE name =", f.switch_name);
    sql += ")";
  }
  if (!f.extension.empty()) add("c.extension =", f.extension);
  if (!f.trunk.empty()) add("c.trunk =", f.trunk);
  if (f.type) add("c.type =", *f.type);
  if (f.attribute) add("c.attribute =", *f.attribute);
  if (f.min_duration) add("c.duration >=", *f.min_duration);
  if (!f.number_prefix.empty()) {
    add("c.dialled >=", f.number_prefix);
    const std::string end = PrefixEnd(f.number_prefix);
    if (!end.empty()) add("c.dialled <", end);
  }
  if (!f.account_code.empty()) add("c.account_code =", f.account_code);
  // The extensions the directory ever gave such a person or department
  // first (through the index on the extension), then the entry in force on
  // each of their calls' day.
  if (!f.person.empty()) {
    const std::string pattern = "%" + LikeEscaped(Lowercase(f.person)) + "%";
    add("c.extension IN (SELECT d.entry_key FROM directory d WHERE d.kind = 'extension' AND "
        "lower(d.person) LIKE",
        pattern);
    sql += " ESCAPE '!')";
    add(("lower(" + DirectoryColumn("extension", "c.extension", "person") + ") LIKE").c_str(),
        pattern);
    sql += " ESCAPE '!'";
  }
  if (!f.department.empty()) {
    add("c.extension IN (SELECT d.entry_key FROM directory d WHERE d.kind = 'extension' AND "
        "d.department =",
        f.department);
    sql += ")";
    add((DirectoryColumn("extension", "c.extension", "department") + " =").c_str(), f.department);
  }
  if (f.min_cost) add((CostMillionths() + " >=").c_str(), *f.min_cost);
  if (f.max_cost) add((CostMillionths() + " <=").c_str(), *f.max_cost);
  return sql;
}

std::optional<std::string> OptionalText(const ResultRow& r, int column) {
  if (r.IsNull(column)) return std::nullopt;
  return r.Text(column);
}

std::optional<int64_t> OptionalInt(const ResultRow& r, int column) {
  if (r.IsNull(column)) return std::nullopt;
  return r.Int(column);
}

constexpr const char* kUnrecognisedColumns =
    "SELECT w.name, s.name, u.position, u.received_utc, u.reason, u.raw, u.line "
    "FROM unrecognised u "
    "JOIN switches w ON w.id = u.switch_id JOIN sources s ON s.id = u.source_id";

StoredUnrecognised ReadUnrecognised(const ResultRow& r) {
  return StoredUnrecognised{
      r.Text(0), r.Text(1), r.Int(2), r.Text(3), r.Text(4), r.Text(5), r.IsNull(6) ? 0 : r.Int(6)};
}

}  // namespace

StoredCall ReadCall(const ResultRow& r) {
  StoredCall c;
  c.switch_name = r.Text(0);
  c.source_name = r.Text(1);
  c.position = r.Int(2);
  c.type = static_cast<int32_t>(r.Int(3));
  c.attribute = static_cast<int32_t>(r.Int(4));
  c.start = OptionalText(r, 5);
  c.start_utc = OptionalText(r, 6);
  c.duration = OptionalInt(r, 7);
  c.ring = OptionalInt(r, 8);
  std::optional<std::string>* texts[] = {&c.dialled,         &c.extension,
                                         &c.trunk,           &c.receiving_extension,
                                         &c.receiving_trunk, &c.account_code};
  for (int i = 0; i < 6; ++i) *texts[i] = OptionalText(r, 9 + i);
  c.extension_random = r.Int(15) != 0;
  c.raw = r.Text(16);
  c.received_utc = r.Text(17);
  std::optional<std::string>* price[] = {&c.cost, &c.currency, &c.destination, &c.destination_class,
                                         &c.cost_reason};
  for (int i = 0; i < 5; ++i) *price[i] = OptionalText(r, 18 + i);
  std::optional<std::string>* names[] = {&c.person, &c.department, &c.cost_centre, &c.client,
                                         &c.project};
  for (int i = 0; i < 5; ++i) *names[i] = OptionalText(r, 23 + i);
  c.ended = OptionalText(r, 28);
  c.ended_utc = OptionalText(r, 29);
  c.date_received = r.Int(30) != 0;
  c.switch_charge = OptionalText(r, 31);
  c.extras = OptionalText(r, 32);
  c.id = r.Int(33);
  return c;
}

std::string CallSelectFrom() {
  return "SELECT w.name, s.name, c.position, c.type, c.attribute, c.start, c.start_utc, "
         "c.duration, c.ring, c.dialled, c.extension, c.trunk, c.receiving_extension, "
         "c.receiving_trunk, c.account_code, c.extension_random, c.raw, c.received_utc, k.cost, "
         "NULLIF(l.currency, ''), NULLIF(l.destination, ''), NULLIF(l.destination_class, ''), "
         "k.reason, " +
         DirectoryColumn("extension", "c.extension", "person") + ", " +
         DirectoryColumn("extension", "c.extension", "department") + ", " +
         DirectoryColumn("extension", "c.extension", "cost_centre") + ", " +
         DirectoryColumn("account", "c.account_code", "client") + ", " +
         DirectoryColumn("account", "c.account_code", "project") +
         ", c.ended, c.ended_utc, c.date_received, c.switch_charge, c.extras, c.id FROM calls c "
         "JOIN switches w ON w.id = c.switch_id JOIN sources s ON s.id = c.source_id "
         "LEFT JOIN call_costs k ON k.call_id = c.id LEFT JOIN cost_labels l ON l.id = k.label";
}

void SqlStore::ListCalls(const CallFilter& filter,
                         const std::function<void(const StoredCall&)>& each) {
  std::vector<Value> params;
  std::string sql = CallSelectFrom() + Where(filter, &params) +
                    (filter.unpriced ? " AND k.reason IS NOT NULL AND k.cost IS NULL" : "") +
                    " ORDER BY c.start NULLS FIRST, w.name, s.name, c.position";
  if (filter.limit > 0) {
    params.emplace_back(filter.limit);
    sql += " LIMIT $" + std::to_string(params.size());
  }
  // Handed over as read (a listing may be every call of the store).
  db_->Stream(sql, params, [&](const ResultRow& r) { each(ReadCall(r)); });
}

void SqlStore::ListUnrecognised(const std::string& switch_name, int64_t limit,
                                const std::function<void(const StoredUnrecognised&)>& each) {
  std::vector<Value> params;
  std::string sql = kUnrecognisedColumns;
  if (!switch_name.empty()) {
    params.emplace_back(SwitchId(switch_name));
    sql += " WHERE u.switch_id = $1";
  }
  sql += " ORDER BY w.name, s.name, u.position";
  if (limit > 0) {
    params.emplace_back(limit);
    sql += " LIMIT $" + std::to_string(params.size());
  }
  db_->Run(sql, params, [&](const ResultRow& r) { each(ReadUnrecognised(r)); });
}

void SqlStore::ListNewestUnrecognised(const std::string& switch_name, int64_t limit,
                                      const std::function<void(const StoredUnrecognised&)>& each) {
  std::vector<Value> params;
  std::string sql = kUnrecognisedColumns;
  if (!switch_name.empty()) {
    params.emplace_back(SwitchId(switch_name));
    sql += " WHERE u.switch_id = $1";
  }
  params.emplace_back(limit);
  sql += " ORDER BY u.id DESC LIMIT $" + std::to_string(params.size());
  std::vector<StoredUnrecognised> newest;
  db_->Run(sql, params, [&](const ResultRow& r) { newest.push_back(ReadUnrecognised(r)); });
  for (auto it = newest.rbegin(); it != newest.rend(); ++it) each(*it);
}

int64_t SqlStore::Count(const char* table, const std::string& switch_name) {
  int64_t n = 0;
  const RowFn read = [&](const ResultRow& r) { n = r.Int(0); };
  if (switch_name.empty()) {
    db_->Run(std::string("SELECT count(*) FROM ") + table, {}, read);
  } else {
    db_->Run(std::string("SELECT count(*) FROM ") + table + " WHERE switch_id = $1",
             {SwitchId(switch_name)}, read);
  }
  return n;
}

int64_t SqlStore::CountCalls(const std::string& switch_name) { return Count("calls", switch_name); }

int64_t SqlStore::CountUnrecognised(const std::string& switch_name) {
  return Count("unrecognised", switch_name);
}

std::vector<StoredRecord> SqlStore::ReadStored(const std::string& switch_name, bool calls,
                                               int64_t after_id, int64_t limit) {
  const std::string columns = calls ? kCallColumns : "reason";
  std::vector<StoredRecord> records;
  db_->Run("SELECT id, source_id, position, raw, received_utc, line, " + columns + " FROM " +
               (calls ? "calls" : "unrecognised") +
               " WHERE switch_id = $1 AND id > $2 ORDER BY id LIMIT $3",
           {SwitchId(switch_name), after_id, limit}, [&](const ResultRow& r) {
             records.push_back(StoredRecord{r.Int(0), calls, r.Int(1), r.Int(2), r.Text(3),
                                            r.Text(4), calls ? StoredSignature(r, 6) : r.Text(6),
                                            r.IsNull(5) ? 0 : r.Int(5)});
           });
  return records;
}

int64_t SqlStore::LastStoredId(const std::string& switch_name, bool calls) {
  int64_t last = 0;
  db_->Run(std::string("SELECT max(id) FROM ") + (calls ? "calls" : "unrecognised") +
               " WHERE switch_id = $1",
           {SwitchId(switch_name)}, [&](const ResultRow& r) {
             if (!r.IsNull(0)) last = r.Int(0);
           });
  return last;
}

void SqlStore::AddMonths(int64_t switch_id, const std::vector<Retranslated>& records) {
  if (!months_.by_month()) return;
  const Zone& zone = ZoneOf(switch_id);
  size_t n = 0;
  for (const Retranslated& r : records) {
    if (!r.row.has_fields) continue;
    const StoredRecord& old = r.record;
    Slot(updated_, n++)
        .Fill(switch_id, old.source_id,
              Record{old.position, old.raw, old.received_utc, r.row, old.line}, zone);
  }
  months_.Add(months_.Missing(updated_.data(), n));
}

RewriteResult SqlStore::Rewrite(const std::string& switch_name,
                                const std::vector<Retranslated>& records, bool dry_run) {
  const int64_t switch_id = SwitchId(switch_name);
  if (!dry_run) {
    AddMonths(switch_id, records);
    RewriteResult result =
        Transaction([&] { return RewriteOnce(switch_id, switch_name, records); });
    RefreshDaySummaries(*db_);
    return result;
  }
  // The same work, rolled back: what would change is counted exactly as a
  // real run counts it, moves between the tables included.
  struct RolledBack {
    RewriteResult result;
  };
  try {
    Transaction([&] { throw RolledBack{RewriteOnce(switch_id, switch_name, records)}; });
  } catch (const RolledBack& done) {
    return done.result;
  }
  return {};
}

namespace {

// Counts, column by column, where two call signatures differ.
void CountChanged(const std::string& before, const std::string& after,
                  std::map<std::string, int64_t>* changed) {
  static const char* const kNames[] = {"type",
                                       "attribute",
                                       "start",
                                       "start_utc",
                                       "duration",
                                       "ring",
                                       "dialled",
                                       "extension",
                                       "trunk",
                                       "receiving_extension",
                                       "receiving_trunk",
                                       "account_code",
                                       "extension_random",
                                       "ended",
                                       "ended_utc",
                                       "date_received",
                                       "switch_charge",
                                       "extras"};
  static_assert(sizeof kNames / sizeof kNames[0] == kCallColumnCount);
  size_t a = 0, b = 0;
  for (const char* name : kNames) {
    const size_t a_end = before.find('\x1f', a), b_end = after.find('\x1f', b);
    if (a_end == std::string::npos || b_end == std::string::npos) return;
    if (before.compare(a, a_end - a, after, b, b_end - b) != 0) ++(*changed)[name];
    a = a_end + 1;
    b = b_end + 1;
  }
}

}  // namespace

RewriteResult SqlStore::RewriteOnce(int64_t switch_id, const std::string& switch_name,
                                    const std::vector<Retranslated>& records) {
  const Zone& zone = ZoneOf(switch_id);
  RewriteResult result;
  // Calls updated in place go to updated_, to be priced again with the new
  // records (a corrected start can move a call to another band, a corrected
  // number to another destination).
  size_t n_calls = 0, n_unrecognised = 0, n_updated = 0;
  WriteNotingDays(*db_, records.size(), [&](DayMarks& marks) {
    for (const Retranslated& r : records) {
      const StoredRecord& old = r.record;
      CallValues& v = Slot(updated_, n_updated);
      v.Fill(switch_id, old.source_id,
             Record{old.position, old.raw, old.received_utc, r.row, old.line}, zone);
      const bool call = r.row.has_fields;
      if (call == old.is_call && old.stored == (call ? Signature(v) : v.reason)) {
        ++result.unchanged;
        continue;
      }
      // A call changed, moved or gone: its day before and after.
      if (old.is_call) marks.Add(switch_id, StoredStart(old.stored));
      if (call) marks.Add(switch_id, v.start);
      if (call && old.is_call) {
        std::vector<Value> params{old.id, v.type, v.attribute, Value::TextOrNull(v.start),
                                  Value::TextOrNull(v.start_utc)};
        for (int64_t n : {v.duration, v.ring}) params.push_back(n < 0 ? Value() : Value(n));
        for (const std::string& text : v.texts) params.push_back(Value::TextOrNull(text));
        params.emplace_back(int64_t{v.extension_random});
        params.push_back(Value::TextOrNull(v.ended));
        params.push_back(Value::TextOrNull(v.ended_utc));
        params.emplace_back(int64_t{v.date_received});
        params.push_back(Value::TextOrNull(v.switch_charge));
        params.push_back(Value::TextOrNull(v.extras));
        CountChanged(old.stored, Signature(v), &result.changed);
        if (updated_ids_.size() <= n_updated) updated_ids_.resize(n_updated + 1);
        updated_ids_[n_updated] = old.id;
        db_->Run(
            "UPDATE calls SET type = $2, attribute = $3, start = $4, start_utc = $5, "
            "duration = $6, ring = $7, dialled = $8, extension = $9, trunk = $10, "
            "receiving_extension = $11, receiving_trunk = $12, account_code = $13, "
            "extension_random = $14, ended = $15, ended_utc = $16, date_received = $17, "
            "switch_charge = $18, extras = $19 WHERE id = $1",
            params);
        ++n_updated;
        ++result.updated;
      } else if (!call && !old.is_call) {
        db_->Run("UPDATE unrecognised SET reason = $2 WHERE id = $1", {old.id, v.reason});
        ++result.updated;
      } else {
        // The record changes table: it leaves the old one here and joins the
        // new one below, in the same transaction.
        db_->Run(old.is_call ? "DELETE FROM calls WHERE id = $1"
                             : "DELETE FROM unrecognised WHERE id = $1",
                 {old.id});
        if (old.is_call) {  // no longer a call: no longer priced
          db_->Run("DELETE FROM call_costs WHERE call_id = $1", {old.id});
        }
        Slot(call ? calls_ : unrecognised_, call ? n_calls++ : n_unrecognised++) = v;
        ++(call ? result.recognised : result.unrecognised);
      }
    }
    db_->InsertCalls(calls_.data(), n_calls, PriceCalls(switch_name, calls_.data(), n_calls));
    db_->InsertUnrecognised(unrecognised_.data(), n_unrecognised);
    if (CostRow* costs = PriceCalls(switch_name, updated_.data(), n_updated)) {
      for (size_t i = 0; i < n_updated; ++i) costs[i].call_id = updated_ids_[i];
      db_->UpsertCosts(costs, n_updated);
    }
  });
  return result;
}

std::string CallWhere(const CallFilter& filter, std::vector<Value>* params) {
  return Where(filter, params);
}

std::string DirectoryEntryMatch(const CallFilter& filter, std::vector<Value>* params) {
  std::string sql = "1 = 1";
  if (!filter.person.empty()) {
    params->push_back("%" + LikeEscaped(Lowercase(filter.person)) + "%");
    sql += " AND lower(d.person) LIKE $" + std::to_string(params->size()) + " ESCAPE '!'";
  }
  if (!filter.department.empty()) {
    params->push_back(filter.department);
    sql += " AND d.department = $" + std::to_string(params->size());
  }
  return sql;
}

}  // namespace velqua_store
