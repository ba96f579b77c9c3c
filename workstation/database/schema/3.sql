-- The shape of pixels without geometry: height by width, no millimetres.

ALTER TABLE image ADD COLUMN pixel_aspect REAL NOT NULL DEFAULT 1;

-- It was not read so far: such files count as changed, and stay listed until they are read once more.
UPDATE file SET mtime_ns = 0 WHERE id IN (SELECT file_id FROM image WHERE geometry IS NULL);
