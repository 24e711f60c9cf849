#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <functional>

// Prepares a CD+G graphics file for the player. The player's CD+G reader takes
// the first graphics command as time zero, and the audio that plays beside it
// starts there too: a disc whose graphics begin late would lose the start of
// its song. The copy made here has those leading empty packets, and every 30th
// empty packet after the first 2 KB, replaced by a graphics command that does
// nothing, so that the clock starts at the first packet and never runs dry.
//
// The work is done as a stream, a chunk at a time, so that memory stays the
// same whatever the file's size; and a file far larger than any song is
// refused before anything of it is read.
class CdgNormaliser {
public:
    static constexpr int kPacketSize = 24;
    static constexpr int kHeaderBytes = 2048;
    static constexpr int kEmptyStride = 30;
    // 300 packets a second: a 20-minute song is under 10 MB.
    static constexpr qint64 kMaxBytes = qint64(64) * 1024 * 1024;

    // Feeds the next chunk of the stream; returns the whole packets now
    // ready, normalised. A packet cut by the chunk's end waits for the next.
    QByteArray feed(QByteArrayView chunk);
    // The rest of the stream (a broken last packet, kept as it is); starts over.
    QByteArray finish();

    // True when the packet carries a graphics command (the others are ignored by readers).
    static bool isCommand(const char* packet);
    static QByteArray normalise(const QByteArray& cdg);

    // The graphics file of the same stem beside `audioPath` (".cdg" in either
    // case), or an empty text when there is none.
    static QString companionOf(const QString& audioPath);
    // Where the normalised copy of `cdgPath` goes in `folder`.
    static QString copyPathFor(const QString& cdgPath, const QString& folder);
    // True when `copyPath` holds a finished copy of `cdgPath` made after it.
    static bool isCopyOf(const QString& copyPath, const QString& cdgPath);

    struct Copy {
        enum Outcome { Written, TooLarge, Failed } outcome = Failed;
        QString path;    // the copy, when written
        qint64 size = 0; // the source's size
        QString error;   // why it failed, in plain words
    };
    // Writes the normalised copy of `cdgPath` into `folder`, reading it in
    // chunks. A file over kMaxBytes is refused unread; one that the disk has
    // no room for (by `freeSpace`, when given) is refused before writing.
    static Copy writeNormalisedCopy(const QString& cdgPath, const QString& folder,
                                    const std::function<qint64(const QString&)>& freeSpace = {});

private:
    void normalisePacket(char* packet);

    qint64 m_packet = 0; // index of the next whole packet in the stream
    bool m_leading = true;
    int m_emptySeen = 0;
    QByteArray m_partial;
};
