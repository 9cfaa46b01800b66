-- What a store on PostgreSQL lacked before the day summaries (and the sort
-- and price keys that came after them).
DROP FUNCTION call_costs_keep_keys() CASCADE;
DROP INDEX call_keys_cost;
ALTER TABLE call_keys DROP COLUMN cost;
DROP INDEX calls_duration, calls_extension, calls_trunk, calls_dialled_id;
DROP TABLE call_days;
DROP TABLE call_days_stale;
DROP FUNCTION calls_mark_days() CASCADE;
DROP FUNCTION call_costs_mark_days() CASCADE;
