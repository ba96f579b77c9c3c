-- Objects that are no images, structured reports with what they say, and where imported files came from.

CREATE TABLE object (
  file_id           INTEGER PRIMARY KEY REFERENCES file (id) ON DELETE CASCADE,
  study_uid         TEXT NOT NULL,
  study_description TEXT,              -- NULL: the attribute is absent
  study_date        TEXT NOT NULL,
  patient_name      TEXT NOT NULL,
  patient_id        TEXT NOT NULL,
  series_uid        TEXT NOT NULL,
  series_number     INTEGER,           -- NULL: absent
  description       TEXT NOT NULL,     -- of the series
  modality          TEXT NOT NULL,
  sop_class         TEXT NOT NULL,
  sop_uid           TEXT NOT NULL,
  instance_number   INTEGER,           -- NULL: absent
  content_date      TEXT NOT NULL,
  content_time      TEXT NOT NULL,
  is_report         INTEGER NOT NULL   -- a structured report
);
CREATE INDEX object_of_study ON object (study_uid);

-- The decoded state of a report in the series of labellings.
CREATE TABLE labelling (
  file_id           INTEGER PRIMARY KEY REFERENCES object (file_id) ON DELETE CASCADE,
  problem           TEXT,              -- why it cannot be read; NULL: it can
  from_content      INTEGER NOT NULL,  -- read from the standard content, without an archive
  region            INTEGER,           -- NULL in the columns of the state: the entry is missing
  extra_vertebra    INTEGER,
  level_count       INTEGER
);
CREATE TABLE level (
  file_id  INTEGER NOT NULL REFERENCES labelling (file_id) ON DELETE CASCADE,
  position INTEGER NOT NULL,  -- head to foot, from 0
  name     TEXT NOT NULL,
  plane    BLOB NOT NULL,     -- six doubles: point and vector
  PRIMARY KEY (file_id, position)
) WITHOUT ROWID;

CREATE TABLE imported (
  source   TEXT PRIMARY KEY,  -- absolute path
  size     INTEGER NOT NULL,
  mtime_ns INTEGER NOT NULL,
  file_id  INTEGER NOT NULL REFERENCES file (id) ON DELETE CASCADE
) WITHOUT ROWID;
CREATE INDEX imported_file ON imported (file_id);

-- Objects that are no images were only counted so far: they are read once more.
DELETE FROM file WHERE kind = 1;
