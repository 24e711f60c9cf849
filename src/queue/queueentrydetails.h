#pragma once

#include <QString>

// One queue row as it is handed between the queue and playback.
struct QueueEntryDetails {
    QString PerformerName;
    QString TrackPath;
    QString ArtistName;
    QString TrackName;
    qint32 Key = 0;
};
