#pragma once

#include <QList>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

// One performance as tblKaraokeTrackHistory keeps it.
struct HistoryRow {
    QString SingerName;
    QString Artist;
    QString Title;
    qint32 Key = 0;
    QString TrackPath;
};

// What the history list shows: one singer or every singer ("(All)"), with or
// without the rows that repeat on all five columns; or, right after a clear,
// every singer's rows in singer order.
struct HistoryFilter {
    QString singer; // the combo's text; "(All)" for every singer
    bool noDups = true;
    bool afterClear = false;

    bool isAll() const;
    bool operator==(const HistoryFilter&) const = default;
};

// Every statement on tblKaraokeTrackHistory: the row a song start writes, the
// singer lists, the lists of the history screen, its deletions, the rows it
// puts back in the queue and those an import adds. The texts are the ones the
// screens have always used; values are joined in through MakeSafeSql where
// they always were, and raw where they never were.
//
// Every function runs on the shared connection and throws a KvError with the
// driver's text when its statement fails.
class HistoryStore {
public:
    // The entry of the singer combo that stands for every singer.
    static inline const QString kAll = QStringLiteral("(All)");

    // The row a song start writes for its singer.
    static QString playedInsertSql(const HistoryRow& row);
    static void addPlayed(const HistoryRow& row);
    // The row an import writes.
    static QString importInsertSql(const HistoryRow& row);
    static void addImported(const HistoryRow& row);

    // The distinct singer names, in the order the statement gives them.
    static QStringList singerNames();
    // The singer combo at load: with "(All)" at the head (when the history is
    // not empty) or without it.
    static QStringList singersForCombo(bool withAll);
    // The singer combo after a clear: always with "(All)" while rows remain.
    static QStringList singersAfterClear();

    // The statement of the list for `filter`.
    static QString listSql(const HistoryFilter& filter);
    // The list's statement, open and before its first row, read forward only.
    // Columns: TrackPath, SingerName, Artist, Title, Key.
    static QSqlQuery openList(const HistoryFilter& filter);

    // The distinct songs of one singer, for "Queue All". The name goes in raw,
    // as it always has: a name with an apostrophe makes the statement fail.
    static QList<HistoryRow> songsOfSinger(const QString& name);

    // Every performance of `path` by `singer`, in all keys.
    static void removeSong(const QString& singer, const QString& path);
    // Every row of the singer, or of every singer for "(All)".
    static void clear(const QString& comboText);

    static qint64 rowCount();
};
