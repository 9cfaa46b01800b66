// Schema step: the keys the search sorts a page of calls by, each in an
// index whose order is the page's (the key, then the call's id), so that a
// page is read as the first entries of its index that pass the filters
// rather than by sorting every call the filters let through.
//
// A call's price lives in call_costs, and a call without a row there sorts
// with the unpriced ones: no index over call_costs can list those. The
// price's sort key is therefore kept beside the call, in calls.cost_order:
// the price as a number (CAST(cost AS NUMERIC), the value the search always
// sorted by), NULL when the call has no price. Triggers on call_costs keep
// it, whichever way a price is written, changed or removed; a call stored
// with its price is inserted with the key already set, and the triggers then
// find nothing to change.
#include <cstring>
#include <string>

#include "schema.h"
#include "sql.h"

namespace velqua_store {
namespace {

bool IsPostgres(const Connection& db) { return std::strcmp(db.engine(), "postgresql") == 0; }

// SQLite: a row at a time. The condition skips the update when the key is
// already right (a call inserted with its price, a price written again).
constexpr const char* kSqliteTriggers = R"(
CREATE TRIGGER IF NOT EXISTS call_costs_order_insert AFTER INSERT ON call_costs BEGIN
  UPDATE calls SET cost_order = CAST(NEW.cost AS NUMERIC)
  WHERE id = NEW.call_id AND cost_order IS NOT CAST(NEW.cost AS NUMERIC);
END;
CREATE TRIGGER IF NOT EXISTS call_costs_order_update AFTER UPDATE ON call_costs BEGIN
  UPDATE calls SET cost_order = NULL WHERE id = OLD.call_id AND OLD.call_id <> NEW.call_id;
  UPDATE calls SET cost_order = CAST(NEW.cost AS NUMERIC)
  WHERE id = NEW.call_id AND cost_order IS NOT CAST(NEW.cost AS NUMERIC);
END;
CREATE TRIGGER IF NOT EXISTS call_costs_order_delete AFTER DELETE ON call_costs BEGIN
  UPDATE calls SET cost_order = NULL WHERE id = OLD.call_id AND cost_order IS NOT NULL;
END
)";

// PostgreSQL: once per statement, from the rows it changed (a COPY of
// prices included). A call is found in its month's table alone, through
// its start kept in call_keys (by the id alone, every month's index would
// be searched). The keys' own trigger then writes a key row only when the
// call's switch or start changed: setting a call's price key changes
// neither.
constexpr const char* kPostgresTriggers = R"(
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
CREATE OR REPLACE FUNCTION call_costs_keep_order() RETURNS trigger LANGUAGE plpgsql AS $body$
BEGIN
  IF TG_OP <> 'INSERT' THEN
    UPDATE calls c SET cost_order = NULL FROM old_rows o JOIN call_keys ck ON ck.call_id = o.call_id
      WHERE c.id = o.call_id AND (c.start = ck.start OR (c.start IS NULL AND ck.start IS NULL))
        AND c.cost_order IS NOT NULL
        AND NOT EXISTS (SELECT 1 FROM call_costs k WHERE k.call_id = o.call_id);
  END IF;
  IF TG_OP <> 'DELETE' THEN
    UPDATE calls c SET cost_order = CAST(n.cost AS NUMERIC) FROM new_rows n
      JOIN call_keys ck ON ck.call_id = n.call_id
      WHERE c.id = n.call_id AND c.start = ck.start
        AND c.cost_order IS DISTINCT FROM CAST(n.cost AS NUMERIC);
    UPDATE calls c SET cost_order = CAST(n.cost AS NUMERIC) FROM new_rows n
      JOIN call_keys ck ON ck.call_id = n.call_id
      WHERE c.id = n.call_id AND c.start IS NULL AND ck.start IS NULL
        AND c.cost_order IS DISTINCT FROM CAST(n.cost AS NUMERIC);
  END IF;
  RETURN NULL;
END
$body$;
DROP TRIGGER IF EXISTS call_costs_order_insert ON call_costs;
DROP TRIGGER IF EXISTS call_costs_order_update ON call_costs;
DROP TRIGGER IF EXISTS call_costs_order_delete ON call_costs;
CREATE TRIGGER call_costs_order_insert AFTER INSERT ON call_costs
  REFERENCING NEW TABLE AS new_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_keep_order();
CREATE TRIGGER call_costs_order_update AFTER UPDATE ON call_costs
  REFERENCING OLD TABLE AS old_rows NEW TABLE AS new_rows
  FOR EACH STATEMENT EXECUTE FUNCTION call_costs_keep_order();
CREATE TRIGGER call_costs_order_delete AFTER DELETE ON call_costs
  REFERENCING OLD TABLE AS old_rows FOR EACH STATEMENT EXECUTE FUNCTION call_costs_keep_order()
)";

bool Exists(Connection& db, const std::string& sql) {
  bool found = false;
  db.Run(sql, {}, [&](const ResultRow& r) { found = r.Int(0) > 0; });
  return found;
}

// The calls' keys from the prices stored before the step. Setting them
// changes no day's sums, so the days' marks are left as they were (the
// calls' update triggers would otherwise mark every day stale).
void FillCostOrder(Connection& db, bool pg) {
  const bool marks =
      Exists(db, pg ? "SELECT count(*) FROM pg_tables WHERE tablename = 'call_days_stale' AND "
                      "schemaname = current_schema()"
                    : "SELECT count(*) FROM sqlite_master WHERE name = 'call_days_stale'");
  if (marks) {
    db.Script("CREATE TEMPORARY TABLE call_days_stale_kept AS SELECT * FROM call_days_stale");
  }
  db.Script(pg ? "UPDATE calls c SET cost_order = CAST(k.cost AS NUMERIC) FROM call_costs k "
                 "WHERE k.call_id = c.id AND k.cost IS NOT NULL"
               : "UPDATE calls SET cost_order = (SELECT CAST(k.cost AS NUMERIC) FROM "
                 "call_costs k WHERE k.call_id = calls.id) WHERE id IN (SELECT call_id "
                 "FROM call_costs WHERE cost IS NOT NULL)");
  if (marks) {
    db.Script(
        "DELETE FROM call_days_stale;"
        "INSERT INTO call_days_stale SELECT * FROM call_days_stale_kept;"
        "DROP TABLE call_days_stale_kept");
  }
}

}  // namespace

// The step can be taken again (a store whose version was set back): what
// it finds made is left, and made again when missing.
void AddSortKeys(Connection& db) {
  const bool pg = IsPostgres(db);
  const bool made = Exists(
      db, pg ? "SELECT count(*) FROM information_schema.columns WHERE table_name = 'calls' AND "
               "column_name = 'cost_order' AND table_schema = current_schema()"
             : "SELECT count(*) FROM pragma_table_info('calls') WHERE name = 'cost_order'");
  if (!made) {
    db.Script("ALTER TABLE calls ADD COLUMN cost_order NUMERIC");
    FillCostOrder(db, pg);
  }
  db.Script(pg ? kPostgresTriggers : kSqliteTriggers);
  db.Script(SortIndexes(pg));
}

}  // namespace velqua_store
