#include "schema.h"

#include <cstring>
#include <string_view>

#include "call_months.h"
#include "day_summaries.h"
#include "sql.h"
#include "velqua/records/names.h"

namespace velqua_store {
namespace {

// Version 1. {pk} and {text} are the engine's identity key and text type.
constexpr const char* kVersion1 = R"(
CREATE TABLE switches (
  id {pk},
  name {text} NOT NULL UNIQUE,
  config_path {text} NOT NULL DEFAULT '',
  config_hash {text} NOT NULL DEFAULT '',
  time_zone {text} NOT NULL DEFAULT '',
  updated_utc {text} NOT NULL
);
CREATE TABLE sources (
  id {pk},
  switch_id BIGINT NOT NULL REFERENCES switches (id),
  name {text} NOT NULL,
  kind {text} NOT NULL,
  checkpoint BIGINT,
  fingerprint {text} NOT NULL DEFAULT '',
  UNIQUE (switch_id, name)
);
CREATE TABLE calls (
  id {pk},
  switch_id BIGINT NOT NULL REFERENCES switches (id),
  source_id BIGINT NOT NULL REFERENCES sources (id),
  position BIGINT NOT NULL,
  received_utc {text} NOT NULL,
  raw {text} NOT NULL,
  type INTEGER NOT NULL,
  attribute INTEGER NOT NULL,
  start {text},
  start_utc {text},
  duration BIGINT,
  ring BIGINT,
  dialled {text},
  extension {text},
  trunk {text},
  receiving_extension {text},
  receiving_trunk {text},
  account_code {text},
  extension_random INTEGER NOT NULL DEFAULT 0,
  UNIQUE (source_id, position)
);
CREATE TABLE unrecognised (
  id {pk},
  switch_id BIGINT NOT NULL REFERENCES switches (id),
  source_id BIGINT NOT NULL REFERENCES sources (id),
  position BIGINT NOT NULL,
  received_utc {text} NOT NULL,
  raw {text} NOT NULL,
  reason {text} NOT NULL,
  UNIQUE (source_id, position)
);
CREATE TABLE events (
  id {pk},
  switch_id BIGINT NOT NULL REFERENCES switches (id),
  source_id BIGINT REFERENCES sources (id),
  at_utc {text} NOT NULL,
  kind {text} NOT NULL,
  count BIGINT NOT NULL DEFAULT 0,
  detail {text} NOT NULL DEFAULT ''
);
CREATE INDEX events_source_at ON events (source_id, at_utc);
CREATE TABLE call_types (value INTEGER PRIMARY KEY, name {text} NOT NULL);
CREATE TABLE call_attributes (value INTEGER PRIMARY KEY, name {text} NOT NULL);
CREATE VIEW calls_named AS
SELECT c.id, s.name AS switch_name, src.name AS source_name, c.position, c.received_utc,
       c.type, t.name AS type_name, c.attribute, a.name AS attribute_name, c.start, c.start_utc,
       c.duration, c.ring, c.dialled, c.extension, c.trunk, c.receiving_extension,
       c.receiving_trunk, c.account_code, c.extension_random, c.raw
FROM calls c
JOIN switches s ON s.id = c.switch_id
JOIN sources src ON src.id = c.source_id
LEFT JOIN call_types t ON t.value = c.type
LEFT JOIN call_attributes a ON a.value = c.attribute
)";

// Version 2: rating. A call's price sits beside it, keyed as the call is
// (source and position), so that writing calls stays as it was and pricing
// again is an upsert; the rating plan and its tariffs are kept as their
// texts (every writer prices with the same ones); a run of velqua rate
// notes how far it came; the directory names extensions and account codes
// (from_day '' = always). Version 7 keys the prices by their call's id.
constexpr const char* kVersion2 = R"(
CREATE TABLE call_costs (
  source_id BIGINT NOT NULL REFERENCES sources (id),
  position BIGINT NOT NULL,
  cost {text},
  currency {text},
  destination {text},
  destination_class {text},
  band {text},
  tariff {text},
  tariff_version {text},
  reason {text},
  PRIMARY KEY (source_id, position)
){without_rowid};
CREATE TABLE rating_files (
  name {text} PRIMARY KEY,
  kind {text} NOT NULL,
  content {text} NOT NULL,
  stamp {text} NOT NULL,
  loaded_utc {text} NOT NULL
);
CREATE TABLE rating_progress (
  run {text} PRIMARY KEY,
  last_id BIGINT NOT NULL
);
CREATE TABLE directory (
  kind {text} NOT NULL,
  entry_key {text} NOT NULL,
  from_day {text} NOT NULL,
  person {text},
  department {text},
  cost_centre {text},
  client {text},
  project {text},
  PRIMARY KEY (kind, entry_key, from_day)
)
)";

// Version 3: a call's end beside its start. Switches that print the time a
// call ended had it stored as the start; the start is now always the call's
// true start (`retranslate` corrects calls stored before), and the end is
// kept beside it.
constexpr const char* kVersion3 = R"(
ALTER TABLE calls ADD COLUMN ended {text};
ALTER TABLE calls ADD COLUMN ended_utc {text};
DROP VIEW IF EXISTS calls_named;
CREATE VIEW calls_named AS
SELECT c.id, s.name AS switch_name, src.name AS source_name, c.position, c.received_utc,
       c.type, t.name AS type_name, c.attribute, a.name AS attribute_name, c.start, c.start_utc,
       c.ended, c.ended_utc, c.duration, c.ring, c.dialled, c.extension, c.trunk,
       c.receiving_extension, c.receiving_trunk, c.account_code, c.extension_random, c.raw
FROM calls c
JOIN switches s ON s.id = c.switch_id
JOIN sources src ON src.id = c.source_id
LEFT JOIN call_types t ON t.value = c.type
LEFT JOIN call_attributes a ON a.value = c.attribute
)";

// Version 4: the people who may open the web page, with their role
// ("admin" or "viewer") and their password's Argon2id hash (never the
// password itself).
constexpr const char* kVersion4 = R"(
CREATE TABLE users (
  name {text} PRIMARY KEY,
  role {text} NOT NULL,
  password_hash {text} NOT NULL,
  created_utc {text} NOT NULL
)
)";

// Version 5: what a call's record holds beyond the call data. The
// configuration's extra fields (the switch's own charge, pulses, caller
// name, call ID) as a JSON object, the charge also in a column of its own
// to set beside the price; and whether the call's date is the date it was
// received (a switch that prints none). The calls' view gains them with
// version 6.
constexpr const char* kVersion5 = R"(
ALTER TABLE calls ADD COLUMN date_received INTEGER NOT NULL DEFAULT 0;
ALTER TABLE calls ADD COLUMN switch_charge {text};
ALTER TABLE calls ADD COLUMN extras {text};
)";

// Version 6: a switch's extension list is kept with it (its text: the
// file it came from may be gone by the next retranslation), and a record
// read from a file keeps the number of the line it starts on.
constexpr const char* kVersion6 = R"(
ALTER TABLE switches ADD COLUMN extension_list {text} NOT NULL DEFAULT '';
ALTER TABLE calls ADD COLUMN line BIGINT;
ALTER TABLE unrecognised ADD COLUMN line BIGINT;
DROP VIEW IF EXISTS calls_named;
CREATE VIEW calls_named AS
SELECT c.id, s.name AS switch_name, src.name AS source_name, c.position, c.received_utc,
       c.type, t.name AS type_name, c.attribute, a.name AS attribute_name, c.start, c.start_utc,
       c.ended, c.ended_utc, c.duration, c.ring, c.dialled, c.extension, c.trunk,
       c.receiving_extension, c.receiving_trunk, c.account_code, c.extension_random,
       c.date_received, c.switch_charge, c.extras, c.raw, c.line
FROM calls c
JOIN switches s ON s.id = c.switch_id
JOIN sources src ON src.id = c.source_id
LEFT JOIN call_types t ON t.value = c.type
LEFT JOIN call_attributes a ON a.value = c.attribute
)";

// The indexes of the queries people run: by time, by extension or trunk
// over time, by number dialled, by account code (most calls have none); and
// those of the reports that read calls one by one, each holding every
// column its report reads so that a month is read from the index alone:
// the missed calls (a few in a hundred), the outgoing calls by number (a
// missed call's call back), and the time each call holds a trunk line.
constexpr const char* kQueryIndexNames[] = {"calls_start",        "calls_extension_start",
                                            "calls_trunk_start",  "calls_dialled",
                                            "calls_account_code", "calls_missed_start",
                                            "calls_trunk_held",   "calls_callback",
                                            "calls_duration",     "calls_extension",
                                            "calls_trunk",        "calls_dialled_id",
                                            "call_keys_cost",     nullptr};
constexpr const char* kQueryIndexes = R"(
CREATE INDEX IF NOT EXISTS calls_start ON calls (start{first});
CREATE INDEX IF NOT EXISTS calls_extension_start ON calls (extension, start{first});
CREATE INDEX IF NOT EXISTS calls_trunk_start ON calls (trunk, start{first});
CREATE INDEX IF NOT EXISTS calls_dialled ON calls (dialled);
CREATE INDEX IF NOT EXISTS calls_account_code ON calls (account_code)
  WHERE account_code IS NOT NULL;
CREATE INDEX IF NOT EXISTS calls_missed_start ON calls (start{first}, extension, ring, dialled,
  switch_id, type, attribute) WHERE type = 1 AND attribute = 4;
CREATE INDEX IF NOT EXISTS calls_trunk_held ON calls (start{first}, ring, duration, switch_id, trunk)
  WHERE trunk IS NOT NULL;
CREATE INDEX IF NOT EXISTS calls_callback ON calls (dialled, start{first}, switch_id, type)
  WHERE type IN (2, 5)
)";

// The indexes of the search's orders (version 10): each lists the calls in
// a page's order, the key and then the call's id, those without the key
// first, so that a page in either direction is the index read forwards or
// backwards. SQLite keeps the row id in every index entry: the key alone
// gives that order, and the start beside it lets a period's filter be
// checked in the index. PostgreSQL is given the id, and a period is one
// month's table or a few.
constexpr const char* kSortIndexes = R"(
CREATE INDEX IF NOT EXISTS calls_duration ON calls (duration{first}{id}{start});
CREATE INDEX IF NOT EXISTS calls_extension ON calls (extension{first}{id});
CREATE INDEX IF NOT EXISTS calls_trunk ON calls (trunk{first}{id}){dialled}
)";

// The index of the price's order (version 11), over each call's keys: the
// price as a number, those without one first, then the call's id (the
// order's tie-break; on SQLite the row id that ends every entry). A period
// is checked on the keys' own narrow row, not the call's.
constexpr const char* kKeyIndexes = R"(
CREATE INDEX IF NOT EXISTS call_keys_cost ON call_keys (cost{first}{rest})
)";

std::string Replace(std::string sql, std::string_view key, std::string_view value) {
  for (size_t at = sql.find(key); at != std::string::npos; at = sql.find(key, at + value.size())) {
    sql.replace(at, key.size(), value);
  }
  return sql;
}

// Calls are listed by start with those without one first, the order in which
// SQLite keeps NULL in an index; a PostgreSQL index is told so ({first}).
std::string ForEngine(bool pg, const char* sql) {
  std::string out =
      Replace(sql, "{pk}",
              pg ? "BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY" : "INTEGER PRIMARY KEY");
  out = Replace(out, "{text}", pg ? "TEXT COLLATE \"C\"" : "TEXT");
  return Replace(out, "{first}", pg ? " NULLS FIRST" : "");
}

bool IsPostgres(const Connection& db) { return std::strcmp(db.engine(), "postgresql") == 0; }

// The names of the call types and attributes, from the records road's words.
void FillLookups(Connection& db) {
  for (int32_t v = 0; *velqua_records::CallTypeWord(v) != '\0'; ++v) {
    db.Run("INSERT INTO call_types (value, name) VALUES ($1, $2)",
           {v, velqua_records::CallTypeWord(v)});
  }
  for (int32_t v = 0; *velqua_records::AttributeWord(v) != '\0'; ++v) {
    db.Run("INSERT INTO call_attributes (value, name) VALUES ($1, $2)",
           {v, velqua_records::AttributeWord(v)});
  }
}

void Apply(Connection& db, int version) {
  if (version == 1) {
    db.Script(ForEngine(IsPostgres(db), kVersion1));
    db.Script(BaseQueryIndexes(IsPostgres(db)));
    FillLookups(db);
  } else if (version == 2) {
    // In SQLite the costs are their key's B-tree alone, not a table and an
    // index: writing a price is then one insertion, not two.
    db.Script(Replace(ForEngine(IsPostgres(db), kVersion2), "{without_rowid}",
                      IsPostgres(db) ? "" : " WITHOUT ROWID"));
  } else if (version == 3) {
    db.Script(ForEngine(IsPostgres(db), kVersion3));
  } else if (version == 4) {
    db.Script(ForEngine(IsPostgres(db), kVersion4));
  } else if (version == 5) {
    db.Script(ForEngine(IsPostgres(db), kVersion5));
  } else if (version == 6) {
    db.Script(ForEngine(IsPostgres(db), kVersion6));
  } else if (version == 7) {
    KeyPricesByCall(db);
  } else if (version == 8) {
    // Version 8: the calls summed per switch and day, for reports.
    AddDaySummaries(db);
  } else if (version == 9) {
    // Version 9: on PostgreSQL, calls kept in a table a month.
    PartitionCallsByMonth(db);
  } else if (version == 10) {
    // Version 10: the indexes of the search's orders.
    AddSortKeys(db);
  } else if (version == 11) {
    // Version 11: the price's sort key in each call's keys.
    AddPriceKeys(db);
  }
}

int StoredVersion(Connection& db, bool pg) {
  int64_t version = 0;
  const RowFn read = [&](const ResultRow& r) { version = r.IsNull(0) ? 0 : r.Int(0); };
  if (pg) {
    db.Run("SELECT max(version) FROM schema_migrations", {}, read);
  } else {
    db.Run("PRAGMA user_version", {}, read);
  }
  return static_cast<int>(version);
}

}  // namespace

std::string BaseQueryIndexes(bool postgres) { return ForEngine(postgres, kQueryIndexes); }

std::string KeyIndexes(bool postgres) {
  return Replace(ForEngine(postgres, kKeyIndexes), "{rest}", postgres ? ", call_id" : "");
}

std::string SortIndexes(bool postgres) {
  std::string sql = Replace(ForEngine(postgres, kSortIndexes), "{id}", postgres ? ", id" : "");
  sql = Replace(sql, "{start}", postgres ? "" : ", id, start");
  // SQLite's index on the number is in its order already.
  return Replace(sql, "{dialled}",
                 postgres ? ";\nCREATE INDEX IF NOT EXISTS calls_dialled_id ON calls (dialled "
                            "NULLS FIRST, id)"
                          : "");
}

std::string QueryIndexes(bool postgres) {
  return BaseQueryIndexes(postgres) + ";\n" + SortIndexes(postgres) + ";\n" + KeyIndexes(postgres);
}

const char* const* QueryIndexNames() { return kQueryIndexNames; }

namespace {

void RefuseNewer(int stored, const std::string& name) {
  if (stored > kSchemaVersion) {
    throw StoreError("database '" + name + "' has schema version " + std::to_string(stored) +
                     ", newer than this program's (" + std::to_string(kSchemaVersion) +
                     "): use a newer velqua");
  }
}

// The version stored, read without a lock or a write; -1 when the store
// has no schema yet.
int VersionSeen(Connection& db, bool pg) {
  if (pg) {
    bool versioned = false;
    db.Run(
        "SELECT 1 FROM pg_tables WHERE tablename = 'schema_migrations' AND schemaname = "
        "current_schema()",
        {}, [&](const ResultRow&) { versioned = true; });
    if (!versioned) return -1;
  }
  return StoredVersion(db, pg);
}

}  // namespace

void Migrate(Connection& db, const std::string& name, int version) {
  const bool pg = IsPostgres(db);
  // A store at this version (the usual case) is opened without a write, so
  // that a user who may only read it opens it too.
  const int seen = VersionSeen(db, pg);
  RefuseNewer(seen, name);
  if (seen == version) return;
  InTransaction(db, [&] {
    if (pg) {
      // One site migrates; the others wait here and then find it done.
      db.Run("SELECT pg_advisory_xact_lock(7263521)");
      db.Run(
          "CREATE TABLE IF NOT EXISTS schema_migrations (version INTEGER PRIMARY KEY, "
          "applied_utc TEXT NOT NULL)");
    }
    const int stored = StoredVersion(db, pg);
    RefuseNewer(stored, name);
    for (int v = stored + 1; v <= version; ++v) {
      Apply(db, v);
      if (pg) {
        db.Run("INSERT INTO schema_migrations (version, applied_utc) VALUES ($1, $2)",
               {v, UtcNow()});
      } else {
        db.Run("PRAGMA user_version = " + std::to_string(v));
      }
    }
  });
}

}  // namespace velqua_store
