#include "queuestore.h"

#include "catalogue/database.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "queuemodel.h"

#include "catalogue/sqlerror.h"

#include <QSqlError>
#include <QSqlQuery>

namespace {

const QString kRestoreSource = QStringLiteral("KvApp.frmMain.RestoreQueue");
const QString kSaveSource = QStringLiteral("KvApp.frmMain.SaveQueue");

// A savepoint rather than BEGIN, so that a save works inside a transaction
// another job of the program holds open, as well as alone.
const QString kSavepoint = QStringLiteral("kvSaveQueue");

// An empty cell is stored as an empty text, not as NULL.
QString notNull(const QString& s) {
    return s.isNull() ? QStringLiteral("") : s;
}

void run(QSqlQuery& q) {
    if (!q.exec())
        RaiseSqlError(q.lastError());
}

} // namespace

void RestoreQueue(QueueModel& model) {
    Guarded(kRestoreSource, 1, [&] {
        QSqlQuery q =
            ExecuteSql(QStringLiteral("SELECT QueuePos, PerformerName, ArtistName, TrackName, SongKey, "
                                      "TrackPath FROM tblQueue ORDER BY QueuePos;"));
        QList<QueueModel::Row> rows;
        while (q.next()) {
            // A NULL cell reads as an empty text.
            rows.append({{q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                          q.value(3).toString(), q.value(4).toString()},
                         q.value(5).toString()});
        }
        model.appendItems(rows);
    });
}

bool SaveQueue(const QueueModel& model) {
    bool inside = false;
    const bool saved = Guarded(kSaveSource, 1, [&] {
        ExecuteSql(QStringLiteral("SAVEPOINT ") + kSavepoint);
        inside = true;
        ExecuteSql(QStringLiteral("DELETE FROM tblQueue"));
        QSqlQuery insert(dbConnection());
        if (!insert.prepare(
                QStringLiteral("INSERT INTO tblQueue (QueuePos, PerformerName, ArtistName, TrackName, "
                               "SongKey, TrackPath) VALUES (?, ?, ?, ?, ?, ?)")))
            RaiseSqlError(insert.lastError());
        const auto& rows = model.items();
        for (int i = 0; i < rows.size(); ++i) {
            const QueueModel::Row& r = rows.at(i);
            insert.bindValue(0, i);
            insert.bindValue(1, notNull(r.cells.at(QueueModel::ColPerformer)));
            insert.bindValue(2, notNull(r.cells.at(QueueModel::ColArtist)));
            insert.bindValue(3, notNull(r.cells.at(QueueModel::ColTrack)));
            insert.bindValue(4, QueueModel::keyFromText(r.cells.at(QueueModel::ColKey)));
            insert.bindValue(5, notNull(r.tag));
            run(insert);
        }
        insert.finish();
        ExecuteSql(QStringLiteral("RELEASE ") + kSavepoint);
        inside = false;
    });
    if (!saved && inside) {
        // Put the old snapshot back; a failure here is logged like the save's own.
        Guarded(kSaveSource, 2, [] {
            ExecuteSql(QStringLiteral("ROLLBACK TO ") + kSavepoint);
            ExecuteSql(QStringLiteral("RELEASE ") + kSavepoint);
        });
    }
    return saved;
}

void ClearSavedQueue() {
    ExecuteSql(QStringLiteral("DELETE FROM tblQueue"));
}
