-- The empty song catalogue that the build places in the install folder and the
-- program copies into the working folder on a first start.
--
-- Text compares ignore case (as the program's queries expect), except file
-- paths, which name files on a case-sensitive file system.
-- Kamikaze and Error are yes/no columns: any non-zero value an INSERT or an
-- UPDATE writes is stored as -1 (a song is marked with "Error = 1" and found
-- with "Error = -1"). The import writes -1 or 0 itself, so the insert trigger
-- never changes its rows, though SQLite still weighs its condition per row.
-- A catalogue made from an older template gets any trigger of this file that
-- it lacks when the program opens it.

-- The page size is kCataloguePageSize of the program's catalogue code: an
-- import writes fewer, larger pages.
PRAGMA page_size = 16384;

-- A song's key is its row id: a new song gets one above the highest in use.
-- A separate high-water mark, so that the id of a deleted last song is never
-- given out again, would cost an extra write per inserted row, and nothing
-- keeps song ids beyond the list on the screen.
CREATE TABLE tblKaraokeTracks (
    KaraokeTrackID INTEGER PRIMARY KEY,
    ArtistName     TEXT(255) COLLATE NOCASE,
    TrackName      TEXT(255) COLLATE NOCASE,
    DiscName       TEXT(255) COLLATE NOCASE,
    TrackNo        TEXT(100) COLLATE NOCASE,
    FileName       TEXT COLLATE NOCASE,
    TrackPath      TEXT COLLATE BINARY,
    DiscId         INTEGER,
    Kamikaze       INTEGER NOT NULL DEFAULT 0,
    Error          INTEGER NOT NULL DEFAULT 0,
    Notes          TEXT COLLATE NOCASE
);

-- A file is catalogued once.
CREATE UNIQUE INDEX idxTrackPath ON tblKaraokeTracks (TrackPath);

CREATE TRIGGER trgTracksYesNoInsert AFTER INSERT ON tblKaraokeTracks
WHEN (NEW.Kamikaze <> 0 AND NEW.Kamikaze <> -1) OR (NEW.Error <> 0 AND NEW.Error <> -1)
BEGIN
    UPDATE tblKaraokeTracks
       SET Kamikaze = CASE WHEN Kamikaze <> 0 THEN -1 ELSE 0 END,
           Error = CASE WHEN Error <> 0 THEN -1 ELSE 0 END
     WHERE KaraokeTrackID = NEW.KaraokeTrackID;
END;

CREATE TRIGGER trgTracksYesNoUpdate AFTER UPDATE OF Kamikaze, Error ON tblKaraokeTracks
WHEN (NEW.Kamikaze <> 0 AND NEW.Kamikaze <> -1) OR (NEW.Error <> 0 AND NEW.Error <> -1)
BEGIN
    UPDATE tblKaraokeTracks
       SET Kamikaze = CASE WHEN Kamikaze <> 0 THEN -1 ELSE 0 END,
           Error = CASE WHEN Error <> 0 THEN -1 ELSE 0 END
     WHERE KaraokeTrackID = NEW.KaraokeTrackID;
END;

CREATE TABLE tblQueue (
    QueuePos      INTEGER,
    PerformerName TEXT(255) COLLATE NOCASE,
    ArtistName    TEXT(255) COLLATE NOCASE,
    TrackName     TEXT(255) COLLATE NOCASE,
    SongKey       INTEGER,
    TrackPath     TEXT COLLATE BINARY
);

CREATE TABLE tblKaraokeTrackHistory (
    SingerName TEXT(255) COLLATE NOCASE,
    Artist     TEXT(255) COLLATE NOCASE,
    Title      TEXT(255) COLLATE NOCASE,
    [Key]      INTEGER,
    TrackPath  TEXT COLLATE BINARY
);

-- The history screen lists by singer and artist: with this index its first
-- rows come at once, without sorting the whole history first.
CREATE INDEX idxHistorySinger ON tblKaraokeTrackHistory (SingerName, Artist);
