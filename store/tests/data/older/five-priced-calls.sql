-- Five calls: two of equal price, one priced "10" (a number above "9.5" that
-- sorts below it as text), one whose price could not be found, one never
-- priced; and the days summed but one, marked stale.
INSERT INTO switches (name, updated_utc) VALUES ('hq', '2026-03-10T00:00:00Z');
INSERT INTO sources (switch_id, name, kind) SELECT id, 'calls.txt', 'file' FROM switches;
INSERT INTO calls (switch_id, source_id, position, received_utc, raw, type, attribute,
  start, duration, extension) VALUES
  (1, 1, 1, 'r', 'raw 1', 2, 0, '2026-01-15T09:05:00', 60, '21'),
  (1, 1, 2, 'r', 'raw 2', 2, 0, '2026-01-15T10:00:00', 61, '22'),
  (1, 1, 3, 'r', 'raw 3', 2, 0, '2026-02-01T08:00:00', 62, '21'),
  (1, 1, 4, 'r', 'raw 4', 2, 0, NULL, 63, '23'),
  (1, 1, 5, 'r', 'raw 5', 2, 0, '2026-02-02T08:00:00', 64, '24');
INSERT INTO call_costs (call_id, cost, reason) SELECT id, CASE position WHEN 1 THEN '9.5'
  WHEN 2 THEN '10' WHEN 3 THEN '9.50' END, CASE position WHEN 4 THEN 'no tariff' ELSE ''
  END FROM calls WHERE position <> 5;
DELETE FROM call_days_stale;
INSERT INTO call_days_stale (switch_id, day) VALUES (1, '2025-12-31');
