-- What version 1 lacked: the rating tables, call ends, users and extra fields.
DROP TABLE call_costs;
DROP TABLE cost_labels;
DROP TABLE rating_files;
DROP TABLE rating_progress;
DROP TABLE directory;
DROP TABLE users;
DROP VIEW calls_named;
ALTER TABLE calls DROP COLUMN ended;
ALTER TABLE calls DROP COLUMN ended_utc;
ALTER TABLE calls DROP COLUMN date_received;
ALTER TABLE calls DROP COLUMN switch_charge;
ALTER TABLE calls DROP COLUMN extras;
ALTER TABLE calls DROP COLUMN line;
ALTER TABLE unrecognised DROP COLUMN line;
ALTER TABLE switches DROP COLUMN extension_list;
