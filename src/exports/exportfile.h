#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>
#include <memory>

// Where an export goes and how it gets there. Every export file is written
// beside its target under a temporary name and renamed over it at the end, so
// that a crash or a full disk leaves the old file or none, never half a file.

// The file name `name` in `folder`, or an empty text with `error` set when the
// folder does not exist or is no folder, or when the name could reach outside
// it (a "/" in it, a NUL, or nothing but dots).
QString exportPathIn(const QString& folder, const QString& name, QString* error);
// The folder the song lists go to: the user's desktop.
QString desktopFolder();
// A text made fit for a file name: "/" and NUL become "-", so that a singer
// called "AC/DC" gets a file of their own in the same folder.
QString fileNameFromText(const QString& text);

// While one lives, the catalogue's connection keeps up to 64 MB (or the
// megabytes given) of the file in memory (2 MB otherwise): an export that
// reads the whole catalogue and writes a table of the same size then works in
// memory instead of on disk.
class LargeCatalogueCache {
public:
    explicit LargeCatalogueCache(int megabytes = 64);
    ~LargeCatalogueCache();
    LargeCatalogueCache(const LargeCatalogueCache&) = delete;
    LargeCatalogueCache& operator=(const LargeCatalogueCache&) = delete;

private:
    QString m_previous;
};

// One export file being written. Writes are buffered; commit() flushes the
// data to disk and renames the file into place. A writer dropped without
// commit() leaves the target as it was.
class ExportWriter {
public:
    explicit ExportWriter(const QString& path);
    ~ExportWriter();
    bool open();
    void write(QByteArrayView bytes);
    bool commit();
    // What went wrong, for the host's message; empty while all is well.
    QString error() const;

private:
    std::unique_ptr<QSaveFile> m_file;
    QByteArray m_buffer;
    bool m_failed = false;
    bool flush();
};
