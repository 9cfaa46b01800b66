-- What a store of SQLite lacked before the day summaries (and the sort and
-- price keys that came after them).
DROP TRIGGER calls_keys_update;
DROP TRIGGER calls_keys_delete;
DROP TRIGGER call_costs_keys_delete;
DROP TABLE call_keys;
DROP INDEX calls_duration;
DROP INDEX calls_extension;
DROP INDEX calls_trunk;
DROP TABLE call_days;
DROP TABLE call_days_stale;
DROP TRIGGER calls_mark_update_old;
DROP TRIGGER calls_mark_insert;
DROP TRIGGER calls_mark_update;
DROP TRIGGER calls_mark_delete;
DROP TRIGGER call_costs_mark_insert;
DROP TRIGGER call_costs_mark_update;
DROP TRIGGER call_costs_mark_delete;
