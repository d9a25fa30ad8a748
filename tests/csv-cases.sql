-- How names and values of parameters stand in CSV (docs/velora-ts.md). velora-ts and the page are held against the view
-- csv_lines: for each event of this run, and before them for the head, the cells of its parameters.
CREATE TABLE csv_names(name TEXT, cell TEXT);
INSERT INTO csv_names VALUES ('=N', '''=N'), ('=N', '''=N (2)'), ('=N (2)', '''=N (2) (2)'), ('a,b', '"a,b"'),
  ('', '""');

CREATE TABLE csv_values(kind TEXT, value_text TEXT, value_number REAL, cell TEXT);
INSERT INTO csv_values VALUES
  (NULL, NULL, NULL, ''), -- no such parameter
  ('text', '', NULL, '""'),
  ('text', 'plain words', NULL, 'plain words'),
  ('text', 'with a , within', NULL, '"with a , within"'),
  ('text', 'with a ; within', NULL, '"with a ; within"'),
  ('text', 'a "q"', NULL, '"a ""q"""'),
  ('text', 'two' || char(10) || 'lines', NULL, '"two' || char(10) || 'lines"'),
  ('text', ' before', NULL, '" before"'),
  ('text', 'behind ', NULL, '"behind "'),
  ('text', '=1', NULL, '''=1'),
  ('text', '@a', NULL, '''@a'),
  ('text', '+', NULL, '''+'),
  ('text', '-1+1', NULL, '''-1+1'),
  ('text', '-a, b', NULL, '"''-a, b"'),
  ('text', '''a', NULL, '''''a'),
  ('text', char(9) || 'a', NULL, '"''' || char(9) || 'a"'),
  ('text', char(13), NULL, '"''' || char(13) || '"'),
  ('text', '-3.10', NULL, '-3.10'),
  ('text', '+.5E+3', NULL, '+.5E+3'),
  ('text', '-5.', NULL, '-5.'),
  ('text', '+-5', NULL, '''+-5'),
  ('text', '-inf', NULL, '''-inf'),
  ('text', '-1e999', NULL, '''-1e999'),
  ('text', 'true', NULL, 'true'),
  ('text', 'NaN', NULL, 'NaN'),
  ('text', '\x61ff00', NULL, 'a' || char(65533, 65533)),
  ('text', '\x5c783631', NULL, '\x61'),
  ('bool', NULL, 1, 'true'),
  ('bool', NULL, 0, 'false'),
  ('int', NULL, -5, '-5'),
  ('int', NULL, 9007199254740991, '9007199254740991'),
  ('int', '9223372036854775807', NULL, '9223372036854775807'),
  ('double', NULL, 0.5, '0.5'),
  ('double', NULL, 0.1, '0.1'),
  ('double', NULL, -2.50, '-2.5'),
  ('double', NULL, 100000, '100000'),
  ('double', NULL, 0.001, '0.001'),
  ('double', NULL, 0.0001, '1e-04'),
  ('double', NULL, 0.00012, '0.00012'),
  ('double', NULL, 1.25e-7, '1.25e-07'),
  ('double', NULL, 1e16, '1e+16'),
  ('double', NULL, 12345678901234567890, '12345678901234567168'),
  ('double', NULL, 1.5e300, '1.5e+300'),
  ('double', NULL, 5e-324, '5e-324'),
  ('double', '-0.0', NULL, '-0.0'),
  ('double', 'NaN:7ff8000000000000', NULL, 'NaN'),
  ('double', NULL, 9e999, 'inf'),
  ('double', NULL, -9e999, '-inf');

INSERT INTO executions VALUES (70000, 'dddddddd-0000-4000-8000-000000000000', NULL, 70000, 1, NULL, 'cases', '', 5,
  '2026-11-26T10:00:00.000000Z');
INSERT INTO statuses VALUES (70000, 70000, 1, 14, '2026-11-26T10:00:01.000000Z');
INSERT INTO events SELECT 70000 + n, 1, 70000, NULL, 'case', '2026-11-26T10:00:00.000000Z'
  FROM (SELECT 0 AS n UNION ALL SELECT rowid FROM csv_values);
INSERT INTO parameters SELECT 70000, rowid, name, 'int', NULL, 1 FROM csv_names;
INSERT INTO parameters SELECT 70000 + rowid, 1, 'V', kind, value_text, value_number FROM csv_values
  WHERE kind IS NOT NULL;

CREATE VIEW csv_lines AS
  SELECT NULL AS event, (SELECT group_concat(cell) FROM csv_names) || ',V' AS cells
  UNION ALL SELECT 70000, (SELECT group_concat(1) FROM csv_names) || ','
  UNION ALL SELECT 70000 + rowid, (SELECT group_concat('') FROM csv_names) || ',' || cell FROM csv_values;
