// Schema steps: the keys the search sorts a page of calls by, each in an
// index whose order is the page's (the key, then the call's id), so that a
// page is read as the first entries of its index that pass the filters
// rather than by sorting every call the filters let through.
//
// A call's price lives in call_costs, and a call without a row there sorts
// with the unpriced ones: no index over call_costs can list those. The
// price's sort key is therefore kept in call_keys, a narrow row for every
// call: the price as a number (CAST(cost AS NUMERIC), the value the search
// always sorted by), NULL when the call has no price. Pricing a call then
// rewrites that row of a few bytes, not the call's own row with its record.
// On SQLite the program writes a call's keys with the call and the price's
// key where it writes a price (a statement beside the other: a trigger run
// per row is a cost every call of an import or a pricing would pay), and
// triggers follow a call's start, its removal and a price's removal; on
// PostgreSQL triggers run once per statement keep them, whichever way a
// call or a price is written.
#include <cstring>
#include <string>

#include "schema.h"
#include "sql.h"

namespace velqua_store {
namespace {

bool IsPostgres(const Connection& db) { return std::strcmp(db.engine(), "postgresql") == 0; }

// Version 10 on PostgreSQL: the calls' trigger writes a key row only when
// the call's switch or start changed.
constexpr const char* kPostgresCallKeys = R"(
CREATE OR REPLACE FUNCTION calls_keep_keys() RETURNS trigger LANGUAGE plpgsql AS $body$
BEGIN
  IF TG_OP = 'INSERT' THEN
    INSERT INTO call_keys (source_id, position, call_id, switch_id, start)
      SELECT source_id, position, id, switch_id, start FROM new_rows;
  ELSIF TG_OP = 'DELETE' THEN
    DELETE FROM call_keys k USING old_rows o WHERE k.call_id = o.id;
  ELSE
    IF EXISTS (SELECT 1 FROM new_rows n WHERE NOT EXISTS (SELECT 1 FROM call_keys k
        WHERE k.call_id = n.id AND k.source_id = n.source_id AND k.position = n.position)) THEN
      RAISE EXCEPTION 'a stored call keeps its id, source and position'
        USING ERRCODE = 'integrity_constraint_violation';
    END IF;
    UPDATE call_keys k SET switch_id = n.switch_id, start = n.start FROM new_rows n
      WHERE k.call_id = n.id AND (k.switch_id <> n.switch_id OR k.start IS DISTINCT FROM n.start);
  END IF;
  RETURN NULL;
END
$body$;
)";

// Version 11. SQLite: the keys of a call, written with the call (by the
// program, as it writes the call), moved with it and removed with it or
// with its price by the triggers.
constexpr const char* kSqliteKeys = R"(
CREATE TABLE IF NOT EXISTS call_keys (call_id INTEGER PRIMARY KEY, start TEXT, cost NUMERIC);
INSERT INTO call_keys (call_id, start, cost)
  SELECT c.id, c.start, CAST(k.cost AS NUMERIC) FROM calls c
  LEFT JOIN call_costs k ON k.call_id = c.id
  WHERE NOT EXISTS (SELECT 1 FROM call_keys s WHERE s.call_id = c.id);
CREATE TRIGGER IF NOT EXISTS calls_keys_update AFTER UPDATE OF id, start ON calls BEGIN
  UPDATE call_keys SET call_id = NEW.id, start = NEW.start WHERE call_id = OLD.id;
END;
CREATE TRIGGER IF NOT EXISTS calls_keys_delete AFTER DELETE ON calls BEGIN
  DELETE FROM call_keys WHERE call_id = OLD.id;
END;
CREATE TRIGGER IF NOT EXISTS call_costs_keys_delete AFTER DELETE ON call_costs BEGIN
  UPDATE call_keys SET cost = NULL WHERE call_id = OLD.call_id;
END
)";

// PostgreSQL: call_keys holds a row for every call already (its source,
// position, switch and start); the price's key joins them. The triggers run
// once per statement, from the rows it changed (a COPY of prices included).
constexpr const char* kPostgresPriceKeys = R"(
ALTER TABLE call_keys ADD COLUMN IF NOT EXISTS cost NUMERIC;
UPDATE call_keys ck SET cost = CAST(k.cost AS NUMERIC) FROM call_costs k
  WHERE k.call_id = ck.call_id AND ck.cost IS DISTINCT FROM CAST(k.cost AS NUMERIC);
CREATE OR REPLACE FUNCTION call_costs_keep_keys() RETURNS trigger LANGUAGE plpgsql AS $body$
BEGIN
  IF TG_OP <> 'INSERT' THEN
    UPDATE call_keys ck SET cost = NULL FROM old_rows o
      WHERE ck.call_id = o.call_id AND ck.cost IS NOT NULL
        AND NOT EXISTS (SELECT 1 FROM call_costs k WHERE k.call_id = o.call_id);
  END IF;
  IF TG_OP <> 'DELETE' THEN
    UPDATE call_keys ck SET cost = CAST(n.cost AS NUMERIC) FROM new_rows n
      WHERE ck.call_id = n.call_id AND ck.cost IS DISTINCT FROM CAST(n.cost AS NUMERIC);
  END IF;
  RETURN NULL;
END
$body$;
DROP TRIGGER IF EXISTS call_costs_keys_insert ON call_costs;
DROP TRIGGER IF EXISTS call_costs_keys_update ON call_costs;
DROP TRIGGER IF EXISTS call_costs_keys_delete ON call_costs;
CREATE TRIGGER call_costs_keys_insert AFTER INSERT ON call_costs
  REFERENCING NEW TABLE AS new_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_keep_keys();
CREATE TRIGGER call_costs_keys_update AFTER UPDATE ON call_costs
  REFERENCING OLD TABLE AS old_rows NEW TABLE AS new_rows
  FOR EACH STATEMENT EXECUTE FUNCTION call_costs_keep_keys();
CREATE TRIGGER call_costs_keys_delete AFTER DELETE ON call_costs
  REFERENCING OLD TABLE AS old_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_keep_keys()
)";

bool Exists(Connection& db, const std::string& sql) {
  bool found = false;
  db.Run(sql, {}, [&](const ResultRow& r) { found = r.Int(0) > 0; });
  return found;
}

// A store that version 10 left keeps the price's key beside each call
// (calls.cost_order, its index and the triggers on call_costs that kept
// it): all of it goes, the key now being in call_keys.
void DropKeyBesideCall(Connection& db, bool pg) {
  const bool there = Exists(
      db, pg ? "SELECT count(*) FROM information_schema.columns WHERE table_name = 'calls' AND "
               "column_name = 'cost_order' AND table_schema = current_schema()"
             : "SELECT count(*) FROM pragma_table_info('calls') WHERE name = 'cost_order'");
  if (!there) return;
  db.Script(pg ? "DROP FUNCTION IF EXISTS call_costs_keep_order() CASCADE;"
                 "DROP INDEX IF EXISTS calls_cost"
               : "DROP TRIGGER IF EXISTS call_costs_order_insert;"
                 "DROP TRIGGER IF EXISTS call_costs_order_update;"
                 "DROP TRIGGER IF EXISTS call_costs_order_delete;"
                 "DROP INDEX IF EXISTS calls_cost");
  db.Script("ALTER TABLE calls DROP COLUMN cost_order");
}

}  // namespace

void AddSortKeys(Connection& db) {
  const bool pg = IsPostgres(db);
  if (pg) db.Script(kPostgresCallKeys);
  db.Script(SortIndexes(pg));
}

// Either step can be taken again (a store whose version was set back): what
// it finds made is left, and made again when missing.
void AddPriceKeys(Connection& db) {
  const bool pg = IsPostgres(db);
  DropKeyBesideCall(db, pg);
  db.Script(pg ? kPostgresPriceKeys : kSqliteKeys);
  db.Script(KeyIndexes(pg));
}

}  // namespace velqua_store
