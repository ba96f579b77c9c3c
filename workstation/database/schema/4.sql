-- A report of a labelling that is damaged behind its header is an object with a reason, no unreadable file.

-- Which of them are, only the files tell: they count as changed, and stay listed until they are read once more.
UPDATE file SET mtime_ns = 0 WHERE kind = 4;
