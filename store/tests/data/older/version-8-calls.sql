-- A version 8 store's calls: a month before the new year, two of January,
-- one without a start and one whose start is no date; three ids rolled back
-- after them; two priced.
INSERT INTO switches (name, updated_utc) VALUES ('hq', '2026-03-10T00:00:00Z');
INSERT INTO sources (switch_id, name, kind) SELECT id, 'calls.txt', 'file' FROM switches;
INSERT INTO calls (switch_id, source_id, position, received_utc, raw, type, attribute,
  start, duration, extension) SELECT 1, 1, p, '2026-03-10T00:00:00Z', 'raw ' || p, 2, 0,
  s, 60 + p, '2' || p FROM (VALUES (10, '2025-12-31T23:59:00'), (20, '2026-01-15T09:05:00'),
  (30, '2026-01-31T10:00'), (40, NULL), (50, 'no date')) AS v (p, s);
SELECT nextval(pg_get_serial_sequence('calls', 'id')) FROM generate_series(1, 3);
INSERT INTO cost_labels (tariff, tariff_version, currency, destination,
  destination_class, band) VALUES ('t', '1', 'EUR', 'Madrid', 'national', 'day');
INSERT INTO call_costs (call_id, cost, label) SELECT id, '0.' || position, 1
  FROM calls WHERE position IN (10, 30);
