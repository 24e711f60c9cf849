#pragma once

#include "core/csvreader.h"

#include <QList>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

// Readers of the files the program exports, for the tests that check them.
namespace exportedfiles {

// The rows of a CSV file; one row saying why when it cannot be read.
inline QList<QStringList> readCsv(const QString& path) {
    QList<QStringList> rows;
    const auto r = CsvReader::readFile(path, [&](const QStringList& row) {
        rows << row;
        return true;
    });
    return r.ok ? rows : QList<QStringList>{{QStringLiteral("<unreadable>"), r.error}};
}

// The first column of `sql` run on the SQLite file `path` (a songbook).
inline QStringList sqliteColumn(const QString& path, const QString& sql) {
    const QString name = QStringLiteral("exportedFile");
    QStringList out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (db.open()) {
            QSqlQuery q(db);
            q.exec(sql);
            while (q.next())
                out << q.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}

} // namespace exportedfiles
