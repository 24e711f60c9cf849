#pragma once

#include "catalogue/database.h"
#include "core/csvreader.h"
#include "exportedfiles.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

namespace exportstest {

using Rows = QList<QStringList>;

// A catalogue row: artist, title, disc, track number, path, error mark.
struct Song {
    QString artist, title, disc, trackNo = QStringLiteral("01"), path;
    bool error = false;
};

inline void addSongs(const QList<Song>& songs) {
    for (const Song& s : songs) {
        QSqlQuery q(dbConnection());
        q.prepare("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, TrackPath, Error) "
                  "VALUES (?, ?, ?, ?, ?, ?)");
        for (const QVariant& v : {QVariant(s.artist), QVariant(s.title), QVariant(s.disc),
                                  QVariant(s.trackNo), QVariant(s.path), QVariant(s.error ? -1 : 0)})
            q.addBindValue(v);
        QVERIFY2(q.exec(), "insert");
    }
}

inline QByteArray fileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

inline bool writeBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

using exportedfiles::readCsv;
// The first column of `sql` run on the SQLite file `path` (a songbook).
using exportedfiles::sqliteColumn;

// The first column of `sql` run on the catalogue.
inline QStringList column(const QString& sql) {
    QStringList out;
    QSqlQuery q = ExecuteSql(sql);
    while (q.next())
        out << q.value(0).toString();
    return out;
}

} // namespace exportstest
