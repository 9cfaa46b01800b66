// Schema step: `calls` partitioned by the month of the call's start on
// PostgreSQL (the reasons and the guarantees: call_months.h). The old
// table's rows are copied into the new one with their ids; the sequence of
// ids goes on from the old one's; prices, keyed by the call's id, stay as
// they are. The views and triggers on `calls` are made again on the new
// table, read from the catalog, so that the step keeps whatever earlier
// steps put there.
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "call_months.h"
#include "schema.h"

namespace velqua_store {
namespace {

// The keys, and the calls' trigger that keeps them: one statement a
// statement of calls, from its transition tables. A call's id, source and
// position never change once it is stored (retranslation rewrites what was
// read from the record, not where it was read); an update that tried would
// be refused. `start` and `switch_id` follow the call.
constexpr const char* kKeys = R"(
CREATE TABLE call_keys (
  source_id BIGINT NOT NULL,
  position BIGINT NOT NULL,
  call_id BIGINT NOT NULL UNIQUE,
  switch_id BIGINT NOT NULL,
  start TEXT COLLATE "C",
  PRIMARY KEY (source_id, position)
);
CREATE FUNCTION calls_keep_keys() RETURNS trigger LANGUAGE plpgsql AS $body$
DECLARE
  kept BIGINT;
BEGIN
  IF TG_OP = 'INSERT' THEN
    INSERT INTO call_keys (source_id, position, call_id, switch_id, start)
      SELECT source_id, position, id, switch_id, start FROM new_rows;
  ELSIF TG_OP = 'DELETE' THEN
    DELETE FROM call_keys k USING old_rows o WHERE k.call_id = o.id;
  ELSE
    UPDATE call_keys k SET switch_id = n.switch_id, start = n.start FROM new_rows n
      WHERE k.call_id = n.id AND k.source_id = n.source_id AND k.position = n.position;
    GET DIAGNOSTICS kept = ROW_COUNT;
    IF kept <> (SELECT count(*) FROM new_rows) THEN
      RAISE EXCEPTION 'a stored call keeps its id, source and position'
        USING ERRCODE = 'integrity_constraint_violation';
    END IF;
  END IF;
  RETURN NULL;
END
$body$;
CREATE TRIGGER calls_keys_insert AFTER INSERT ON calls REFERENCING NEW TABLE AS new_rows
  FOR EACH STATEMENT EXECUTE FUNCTION calls_keep_keys();
CREATE TRIGGER calls_keys_update AFTER UPDATE ON calls
  REFERENCING OLD TABLE AS old_rows NEW TABLE AS new_rows
  FOR EACH STATEMENT EXECUTE FUNCTION calls_keep_keys();
CREATE TRIGGER calls_keys_delete AFTER DELETE ON calls REFERENCING OLD TABLE AS old_rows
  FOR EACH STATEMENT EXECUTE FUNCTION calls_keep_keys()
)";

// A month's table: made beside `calls`, given the month's calls that wait
// in calls_other, then attached. Attaching locks `calls` less than making
// the table as a partition would (writers and readers go on); the lock it
// needs on calls_other is waited for no longer than the caller's
// lock_timeout, and then the month is left for later (false).
constexpr const char* kAddMonth = R"(
CREATE FUNCTION calls_add_month(month TEXT) RETURNS BOOLEAN LANGUAGE plpgsql AS $body$
DECLARE
  part TEXT := 'calls_' || replace(month, '-', '_');
  low TEXT := month || '-01';
  high TEXT;
BEGIN
  IF month !~ '^[1-9][0-9]{3}-(0[1-9]|1[0-2])$' THEN
    RAISE EXCEPTION 'no month: %', month;
  END IF;
  high := to_char(to_date(low, 'YYYY-MM-DD') + interval '1 month', 'YYYY-MM-DD');
  PERFORM pg_advisory_xact_lock(7263523);
  IF to_regclass(part) IS NOT NULL THEN
    RETURN true;
  END IF;
  EXECUTE format('CREATE TABLE %I (LIKE calls INCLUDING DEFAULTS)', part);
  EXECUTE format('WITH moved AS (DELETE FROM calls_other WHERE start >= %L AND start < %L '
                 'RETURNING *) INSERT INTO %I SELECT * FROM moved', low, high, part);
  EXECUTE format('ALTER TABLE calls ATTACH PARTITION %I FOR VALUES FROM (%L) TO (%L)',
                 part, low, high);
  RETURN true;
EXCEPTION WHEN lock_not_available THEN
  RETURN false;
END
$body$
)";

// The prices' trigger finds a price's call (its switch and day) through
// the keys: one index, not one a month.
constexpr const char* kCostsMarkDays = R"(
CREATE OR REPLACE FUNCTION call_costs_mark_days() RETURNS trigger LANGUAGE plpgsql AS $body$
BEGIN
  IF TG_OP <> 'DELETE' THEN
    INSERT INTO call_days_stale (switch_id, day)
      SELECT DISTINCT c.switch_id, substr(c.start, 1, 10) FROM new_rows k
      JOIN call_keys c ON c.call_id = k.call_id
      WHERE c.start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s
        WHERE s.switch_id = c.switch_id AND s.day = substr(c.start, 1, 10));
  ELSE
    INSERT INTO call_days_stale (switch_id, day)
      SELECT DISTINCT c.switch_id, substr(c.start, 1, 10) FROM old_rows k
      JOIN call_keys c ON c.call_id = k.call_id
      WHERE c.start IS NOT NULL AND NOT EXISTS (SELECT 1 FROM call_days_stale s
        WHERE s.switch_id = c.switch_id AND s.day = substr(c.start, 1, 10));
  END IF;
  RETURN NULL;
END
$body$
)";

std::vector<std::string> Texts(Connection& db, const std::string& sql) {
  std::vector<std::string> texts;
  db.Run(sql, {}, [&](const ResultRow& r) { texts.push_back(r.Text(0)); });
  return texts;
}

// The last id the old table's sequence gave, or its largest id stored if
// larger: an id once taken (even by a transaction rolled back) is not
// given again.
int64_t LastId(Connection& db) {
  const std::string sequence =
      Texts(db, "SELECT pg_get_serial_sequence('calls_unpartitioned', 'id')")[0];
  int64_t last = 0;
  db.Run(
      "SELECT greatest(coalesce((SELECT max(id) FROM calls_unpartitioned), 0), "
      "(SELECT CASE WHEN is_called THEN last_value ELSE 0 END FROM " +
          sequence + "))",
      {}, [&](const ResultRow& r) { last = r.Int(0); });
  return last;
}

}  // namespace

void PartitionCallsByMonth(Connection& db) {
  if (std::strcmp(db.engine(), "postgresql") != 0) return;
  db.Script(kCostsMarkDays);
  if (Texts(db, "SELECT relkind::text FROM pg_class WHERE oid = 'calls'::regclass")[0] == "p") {
    return;
  }
  // What depends on the old table, kept as text before it is renamed.
  std::vector<std::pair<std::string, std::string>> views;
  db.Run(
      "SELECT DISTINCT v.relname, pg_get_viewdef(v.oid) FROM pg_depend d "
      "JOIN pg_rewrite w ON w.oid = d.objid JOIN pg_class v ON v.oid = w.ev_class "
      "WHERE d.refobjid = 'calls'::regclass AND v.relkind = 'v'",
      {}, [&](const ResultRow& r) { views.emplace_back(r.Text(0), r.Text(1)); });
  for (const auto& view : views) db.Script("DROP VIEW \"" + view.first + "\"");
  const std::vector<std::string> triggers =
      Texts(db,
            "SELECT pg_get_triggerdef(oid) FROM pg_trigger WHERE tgrelid = 'calls'::regclass "
            "AND NOT tgisinternal");
  for (const char* const* index = QueryIndexNames(); *index != nullptr; ++index) {
    db.Script(std::string("DROP INDEX IF EXISTS ") + *index);
  }
  db.Script(
      "ALTER TABLE calls RENAME TO calls_unpartitioned;"
      "CREATE TABLE calls (LIKE calls_unpartitioned INCLUDING DEFAULTS INCLUDING IDENTITY) "
      "PARTITION BY RANGE (start);"
      "ALTER TABLE calls ADD FOREIGN KEY (switch_id) REFERENCES switches (id), "
      "ADD FOREIGN KEY (source_id) REFERENCES sources (id);"
      "CREATE TABLE calls_other PARTITION OF calls DEFAULT;");
  db.Script(kKeys);
  db.Script(kAddMonth);
  for (const std::string& month :
       Texts(db,
             "SELECT DISTINCT substr(start, 1, 7) FROM calls_unpartitioned "
             "WHERE start ~ '^[1-9][0-9]{3}-(0[1-9]|1[0-2])' ORDER BY 1")) {
    db.Run("SELECT calls_add_month($1)", {month});
  }
  // The keys are written as the rows are copied; the other triggers (the
  // days' marks) are made after the copy: the sums do not change.
  db.Script("INSERT INTO calls SELECT * FROM calls_unpartitioned ORDER BY id");
  const int64_t last = LastId(db);
  if (last > 0) db.Run("SELECT setval(pg_get_serial_sequence('calls', 'id'), $1)", {last});
  db.Script("DROP TABLE calls_unpartitioned");
  for (const std::string& trigger : triggers) db.Script(trigger);
  for (const auto& [name, query] : views) {
    db.Script("CREATE VIEW \"" + name + "\" AS " + query);
  }
  db.Script("CREATE INDEX calls_id ON calls (id);" + BaseQueryIndexes(true));
}

}  // namespace velqua_store
