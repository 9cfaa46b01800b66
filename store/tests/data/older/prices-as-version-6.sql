-- The prices as version 6 kept them: keyed by their call's source and
-- position, each with its texts.
CREATE TABLE call_costs_6 (source_id BIGINT NOT NULL, position BIGINT NOT NULL,
  cost TEXT, currency TEXT, destination TEXT, destination_class TEXT, band TEXT,
  tariff TEXT, tariff_version TEXT, reason TEXT, PRIMARY KEY (source_id, position));
INSERT INTO call_costs_6 SELECT c.source_id, c.position, k.cost, NULLIF(l.currency, ''),
  NULLIF(l.destination, ''), NULLIF(l.destination_class, ''), NULLIF(l.band, ''),
  NULLIF(l.tariff, ''), NULLIF(l.tariff_version, ''), k.reason FROM call_costs k
  JOIN calls c ON c.id = k.call_id LEFT JOIN cost_labels l ON l.id = k.label;
DROP TABLE call_costs;
DROP TABLE cost_labels;
ALTER TABLE call_costs_6 RENAME TO call_costs;
