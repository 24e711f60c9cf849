#pragma once

#include <QString>

// The answers of the singer dialogs. A cancelled dialog leaves the values the
// caller preset (ClientName, SongKey) or, for a file, empty texts and key 0.
struct PerformerAnswer {
    QString ClientName;
    qint32 SongKey = 0;
    bool CancelledForm = true;
};

struct FileSongAnswer {
    QString ArtistName;
    QString TrackName;
    QString PerformerName;
    qint16 SongKey = 0;
    bool Cancelled = true;
};

// The three dialogs that ask for a singer and a key, behind one interface so
// that the queue's logic runs without a screen. DialogPerformerPrompt shows the
// real ones.
class PerformerPrompt {
public:
    virtual ~PerformerPrompt() = default;
    // "Choose Singer" with a list of known names (frmPerformerChoose).
    virtual PerformerAnswer choosePerformer(const QString& clientName, qint32 songKey) = 0;
    // "Choose Singer" with a plain name box (frmPerformerChange).
    virtual PerformerAnswer changePerformer(const QString& clientName, qint32 songKey) = 0;
    // "Add song From File System" for the file at `fileName` (frmAddFromFileSystem).
    virtual FileSongAnswer addFromFileSystem(const QString& fileName) = 0;
};
