#pragma once

#include <QByteArray>
#include <QString>

// Prepares a CD+G graphics file for the player. The player's CD+G reader takes
// the first graphics command as time zero, and the audio that plays beside it
// starts there too: a disc whose graphics begin late would lose the start of
// its song. The copy made here has those leading empty packets, and every 30th
// empty packet after the first 2 KB, replaced by a graphics command that does
// nothing, so that the clock starts at the first packet and never runs dry.
class CdgNormaliser {
public:
    static constexpr int kPacketSize = 24;
    static constexpr int kHeaderBytes = 2048;
    static constexpr int kEmptyStride = 30;

    // True when the packet carries a graphics command (the others are ignored by readers).
    static bool isCommand(const char* packet);
    static QByteArray normalise(const QByteArray& cdg);

    // The graphics file of the same stem beside `audioPath` (".cdg" in either
    // case), or an empty text when there is none.
    static QString companionOf(const QString& audioPath);
    // Writes the normalised copy of `cdgPath` into `folder`; returns its path, or
    // an empty text when it cannot be read or written.
    static QString writeNormalisedCopy(const QString& cdgPath, const QString& folder);
};
