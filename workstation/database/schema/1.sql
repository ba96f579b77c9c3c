-- What lies in the folder, file by file. Everything here can be read from the files again.

CREATE TABLE file (
  id       INTEGER PRIMARY KEY,
  folder   TEXT NOT NULL,     -- relative to the indexed folder, "" for itself
  name     TEXT NOT NULL,
  size     INTEGER NOT NULL,  -- bytes
  mtime_ns INTEGER NOT NULL,  -- since 1970; with the size it tells whether the file is the one that was read
  kind     INTEGER NOT NULL,  -- FileKind in FileContents.h
  reason   TEXT,              -- of an unreadable or damaged file: why
  UNIQUE (folder, name)
);

-- What the images of a series have in common. Images of one series that contradict each other have a row each.
CREATE TABLE series (
  id                INTEGER PRIMARY KEY,
  study_uid         TEXT NOT NULL,
  study_description TEXT,     -- NULL: the attribute is absent
  study_date        TEXT NOT NULL,
  patient_name      TEXT NOT NULL,
  patient_id        TEXT NOT NULL,
  series_uid        TEXT NOT NULL,
  series_number     INTEGER,  -- NULL: absent
  description       TEXT NOT NULL,
  modality          TEXT NOT NULL,
  body_part         TEXT      -- NULL: absent
);
CREATE INDEX series_of_study ON series (study_uid);

-- A row a slice: a single-frame file has one, a multi-frame file one for each frame.
CREATE TABLE image (
  file_id            INTEGER NOT NULL REFERENCES file (id) ON DELETE CASCADE,
  frame              INTEGER NOT NULL,  -- from 1
  series_id          INTEGER NOT NULL REFERENCES series (id),
  sop_class          TEXT NOT NULL,
  sop_uid            TEXT NOT NULL,
  instance_number    INTEGER,           -- NULL: absent
  image_type         TEXT,              -- values separated by backslashes; NULL: none
  frame_of_reference TEXT NOT NULL,
  geometry           BLOB,              -- eleven doubles: position, row, column, spacing x and y; NULL: unusable
  geometry_problem   TEXT NOT NULL,
  row_count          INTEGER NOT NULL,
  column_count       INTEGER NOT NULL,
  colour             INTEGER NOT NULL,
  PRIMARY KEY (file_id, frame)
) WITHOUT ROWID;
CREATE INDEX image_of_series ON image (series_id, sop_uid);
