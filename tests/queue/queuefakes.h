#pragma once

#include "catalogue/database.h"
#include "queue/keyboardhookcontrol.h"
#include "queue/performerprompt.h"
#include "queue/queuemodel.h"

#include <QQueue>
#include <QSqlQuery>
#include <QStringList>

// A keyboard filter that records what was done to it.
class FakeHook : public KeyboardHookControl {
public:
    QStringList calls;
    void releaseKeyboardHook() override { calls << QStringLiteral("release"); }
    void createKeyboardHook() override { calls << QStringLiteral("create"); }
};

// Singer dialogs answered from a script; a dry script cancels. Records each
// dialog with what it was preset with.
class FakePerformerPrompt : public PerformerPrompt {
public:
    QQueue<PerformerAnswer> performerAnswers;
    QQueue<FileSongAnswer> fileAnswers;
    QStringList shown; // "choose", "change:<name>:<key>", "file:<path>"

    PerformerAnswer choosePerformer(const QString& clientName, qint32 songKey) override {
        shown << QStringLiteral("choose");
        return next(clientName, songKey);
    }
    PerformerAnswer changePerformer(const QString& clientName, qint32 songKey) override {
        shown << QStringLiteral("change:%1:%2").arg(clientName).arg(songKey);
        return next(clientName, songKey);
    }
    FileSongAnswer addFromFileSystem(const QString& fileName) override {
        shown << QStringLiteral("file:") + fileName;
        return fileAnswers.isEmpty() ? FileSongAnswer{} : fileAnswers.dequeue();
    }
    void ok(const QString& name, qint32 key) { performerAnswers.enqueue({name, key, false}); }
    void cancel() { performerAnswers.enqueue({QString(), 0, true}); }

private:
    PerformerAnswer next(const QString& clientName, qint32 songKey) {
        if (performerAnswers.isEmpty() || performerAnswers.head().CancelledForm) {
            if (!performerAnswers.isEmpty())
                performerAnswers.dequeue();
            // A cancelled dialog hands back what it was given.
            return {clientName, songKey, true};
        }
        return performerAnswers.dequeue();
    }
};

namespace queuetest {

// tblQueue as texts "pos|performer|artist|track|key|path", in QueuePos order.
inline QStringList savedRows() {
    QStringList rows;
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT QueuePos, PerformerName, ArtistName, TrackName, SongKey, "
                                            "TrackPath FROM tblQueue ORDER BY QueuePos"));
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < 6; ++i)
            cells << (q.isNull(i) ? QStringLiteral("NULL") : q.value(i).toString());
        rows << cells.join(QLatin1Char('|'));
    }
    return rows;
}

// The model as tblQueue would hold it after a save.
inline QStringList modelRows(const QueueModel& m) {
    QStringList rows;
    for (int i = 0; i < m.rowCount(); ++i) {
        rows << QStringLiteral("%1|%2|%3|%4|%5|%6")
                    .arg(i)
                    .arg(m.cellText(i, QueueModel::ColPerformer), m.cellText(i, QueueModel::ColArtist),
                         m.cellText(i, QueueModel::ColTrack))
                    .arg(QueueModel::keyFromText(m.cellText(i, QueueModel::ColKey)))
                    .arg(m.itemTag(i));
    }
    return rows;
}

// The performers of the model, in order.
inline QStringList performers(const QueueModel& m) {
    QStringList p;
    for (int i = 0; i < m.rowCount(); ++i)
        p << m.cellText(i, QueueModel::ColPerformer);
    return p;
}

inline void addRows(QueueModel& m, const QStringList& names) {
    for (const QString& n : names)
        m.addItem(
            {QString(), n, n + QStringLiteral(" Artist"), n + QStringLiteral(" Song"), QStringLiteral("0")},
            QStringLiteral("/songs/") + n + QStringLiteral(".zip"));
}

} // namespace queuetest
