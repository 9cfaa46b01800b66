// The store's schema and its versions. Both engines hold the same tables;
// the DDL differs only in the identity column and, in PostgreSQL, the "C"
// collation of texts (so both engines sort and compare texts by their bytes).
#pragma once

#include <string>

namespace velqua_store {

class Connection;

// The schema version this program writes and reads.
constexpr int kSchemaVersion = 11;

// Brings the schema of an open database up to kSchemaVersion (or to
// `version`, below it: a store as an older program left it) in one
// transaction (SQLite: PRAGMA user_version; PostgreSQL:
// the schema_migrations table, under a lock so that two sites opening the
// same database at once migrate it once). Throws StoreError when the
// database's schema is newer than this program's.
void Migrate(Connection& db, const std::string& name, int version = kSchemaVersion);

// The step to version 7: prices keyed by their call's id, the texts they
// share kept once in cost_labels, the prices stored before carried over
// (costs_by_call.cpp).
void KeyPricesByCall(Connection& db);

// The indexes for the queries, as "CREATE INDEX IF NOT EXISTS" statements
// (SQLite's bulk load drops them and builds them again at its end; a
// schema step that adds one builds those missing), and their names (ending
// with nullptr).
std::string QueryIndexes(bool postgres = false);
const char* const* QueryIndexNames();

// The indexes as steps before version 10 made them, those version 10 adds
// for the search's orders, and the one version 11 adds over the calls' keys
// for the price's order.
std::string BaseQueryIndexes(bool postgres);
std::string SortIndexes(bool postgres);
std::string KeyIndexes(bool postgres);

// The step to version 10: the indexes of the search's orders (sort_keys.cpp).
void AddSortKeys(Connection& db);

// The step to version 11: the price's sort key in call_keys, a narrow row
// a call, kept apart from the call so that pricing a call rewrites that
// small row alone (sort_keys.cpp).
void AddPriceKeys(Connection& db);

}  // namespace velqua_store
