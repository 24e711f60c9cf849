#include "songsearch.h"

#include "catalogue/database.h"

#include <QStringList>

const QString SongSearch::kResultsFormat = QStringLiteral(
    "TrackId;0;0;0;;-1|Artist Name;100;0;0;;-1|Track Name;100;0;0;;-1|Disc Name;100;0;0;;-1|No;100;0;0;;-1");
const QString SongSearch::kColumnsSaveFallback = QStringLiteral("0;200;200;100;100");

QList<SongSearch::Column> SongSearch::resultColumns() {
    QList<Column> columns;
    for (const QString& entry : kResultsFormat.split(QLatin1Char('|'))) {
        const QStringList fields = entry.split(QLatin1Char(';'));
        columns.append({fields.value(0), fields.value(1).toInt()});
    }
    return columns;
}

QList<int> SongSearch::leadingWidths(const QString& text) {
    QList<int> widths;
    for (const QString& element : text.split(QLatin1Char(';'))) {
        bool ok = false;
        const double value = element.trimmed().toDouble(&ok);
        if (!ok || value < 0 || value > 1e6)
            break;
        widths.append(qRound(value));
    }
    return widths;
}

QString SongSearch::joinWidths(const QList<int>& widths) {
    QString text;
    for (int i = 0; i < widths.size(); ++i) {
        text += QString::number(widths[i]);
        if (i < 4)
            text += QLatin1Char(';');
    }
    return text;
}

bool SongSearch::hasRefusedCharacter(const QString& text) {
    for (const QChar c : text)
        if (c == u'[' || c == u'|' || c == u'*' || c == u'/')
            return true;
    return false;
}

QString SongSearch::cutLastCharacter(const QString& text) {
    QString shorter = text;
    shorter.chop(1);
    // Never leave half of a surrogate pair behind.
    if (!shorter.isEmpty() && shorter.back().isHighSurrogate())
        shorter.chop(1);
    return shorter;
}

QString SongSearch::leftTrimBlanks(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && text[start] == u' ')
        ++start;
    return text.mid(start);
}

QString SongSearch::trimBlanks(const QString& text) {
    QString t = leftTrimBlanks(text);
    qsizetype end = t.size();
    while (end > 0 && t[end - 1] == u' ')
        --end;
    t.truncate(end);
    return t;
}

QStringList SongSearch::searchWords(const QString& text) {
    // One pass over double blanks: a run of three leaves two, and so an empty
    // word, whose pattern "%%" every row passes.
    QString words = trimBlanks(text);
    words.replace(QStringLiteral("  "), QStringLiteral(" "));
    return words.split(QLatin1Char(' '));
}

QString SongSearch::filterList(const QString& text, bool includeSongPath) {
    const QStringList parts = searchWords(text);
    const QString column = includeSongPath ? QStringLiteral("TrackPath") : QStringLiteral("filename");

    QString condition;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        condition +=
            QStringLiteral("(((") + column + QStringLiteral(") Like '%") + trimBlanks(MakeSafeSql(parts[i]));
        condition +=
            i + 1 < parts.size() ? QStringLiteral("%')) AND ") : QStringLiteral("%')) AND ((Error)=0)");
    }
    return condition;
}

QString SongSearch::condition(int mode, const QString& text, bool includeSongPath) {
    const auto onColumn = [&](const char* column) {
        return QStringLiteral("(") + QLatin1String(column) + QStringLiteral(" like '%") +
               trimBlanks(MakeSafeSql(text)) + QStringLiteral("%') ");
    };
    switch (mode) {
    case ByDiscName:
        return onColumn("DiscName");
    case ByArtistName:
        return onColumn("Artistname");
    case ByTrackName:
        return onColumn("TrackName");
    default:
        return filterList(text, includeSongPath);
    }
}

QString SongSearch::filterSql(const QString& condition) {
    return QStringLiteral("Select KaraokeTrackID, ArtistName, TrackName, DiscName, TrackNo, Error  From "
                          "tblKaraokeTracks Where ") +
           condition + QStringLiteral(" Order By ArtistName;");
}

QString SongSearch::loadAllSql() {
    return QStringLiteral("Select KaraokeTrackID, ArtistName, TrackName, DiscName, TrackNo  From "
                          "tblKaraokeTracks Order By ArtistName;");
}
