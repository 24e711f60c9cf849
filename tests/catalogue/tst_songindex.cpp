#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songindex.h"
#include "catalogue/songindexkeeper.h"
#include "catalogue/songrowsource.h"
#include "catalogue/songsearch.h"
#include "catalogue/unicodelike.h"
#include "core/settings.h"
#include "testrunner.h"
#include "workspace.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <memory>

namespace {

// Artist and file name of each song; a file name of "<null>" is stored as
// NULL, and "!" at the front marks the song as an error. Artists repeat in
// other cases, so the order among equal artists is tested too.
const QList<std::pair<const char*, const char*>> kSongs = {
    {"abba", "SF001-01 - ABBA - Waterloo.zip"},
    {"Beyoncé", "SC100-02 - Beyoncé - Halo.zip"},
    {"ABBA", "SF001-02 - ABBA - Dancing Queen.zip"},
    {"Sigur Rós", "ZM12-03 - Sigur Rós - Hoppípolla.zip"},
    {"Die Ärzte", "DK77-01 - Die ÄRZTE - Männer sind Schweine.zip"},
    {"Guns N' Roses", "SC200-05 - Guns N' Roses - Don't Cry.zip"},
    {nullptr, "CB5-01 - 100% Pure Love.zip"},
    {"Кино", "PHM1-01 - КИНО - Группа крови.zip"},
    {"Abba", "!SF001-03 - ABBA - Broken.zip"},
    {"Zed", "<null>"},
    {"Zed", ""},
    {"Kelvin", "K1-01 - \u212Aelvin - Cold_Song.zip"},
    {"Strauss", "SGB9-09 - Johann Strauß - Walzer.zip"},
    {"Beyonce", "SC101-01 - Beyonce\u0301 - Single Ladies.zip"},
    {"abba", "SF001-04 - Abba - SOS.zip"},
};

QList<qint64> statementIds(const QString& text) {
    StatementRowSource statement(dbConnection(), SongSearch::filterSql(SongSearch::filterList(text, false)));
    return remainingIds(statement);
}

} // namespace

class TestSongIndex : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;

    void addSongs() {
        QSqlQuery q(dbConnection());
        q.prepare(QStringLiteral("Insert Into tblKaraokeTracks (ArtistName, FileName, TrackPath, Error) "
                                 "Values (?, ?, ?, ?)"));
        int n = 0;
        for (const auto& [artist, file] : kSongs) {
            QString name = QString::fromUtf8(file);
            const bool error = name.startsWith(u'!');
            if (error)
                name.remove(0, 1);
            q.bindValue(0, artist ? QVariant(QString::fromUtf8(artist)) : QVariant());
            q.bindValue(1, name == QLatin1String("<null>") ? QVariant() : QVariant(name));
            q.bindValue(2, QStringLiteral("/songs/%1").arg(++n));
            q.bindValue(3, error ? 1 : 0);
            QVERIFY2(q.exec(), qPrintable(q.lastError().text()));
        }
    }

    // The index read in two halves is the one read at once, and holds `songs` rows.
    void compareReadInTwo(qsizetype songs) {
        sqlite3* db = NativeHandle(dbConnection());
        const auto once = SongIndex::build(db, false);
        const auto inTwo = SongIndex::build(db, false, nullptr, nullptr, true);
        QVERIFY(once && inTwo);
        QCOMPARE(inTwo->size(), songs);
        QCOMPARE(inTwo->size(), once->size());
        for (qsizetype row = 0; row < once->size(); ++row) {
            QCOMPARE(inTwo->id(row), once->id(row));
            QCOMPARE(inTwo->text(row), once->text(row));
            QCOMPARE(inTwo->searchable(row), once->searchable(row));
        }
    }

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>();
        addSongs();
    }
    void cleanup() {
        SetAccentBlindLike(false);
        m_ws.reset();
    }

    // Every search gives exactly the statement's rows in the statement's
    // order, with accents counted and ignored; `expected` is the number of
    // rows, so that both answering alike but wrongly is caught too.
    void sameAnswersAsTheStatement_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accentBlind");
        QTest::addColumn<int>("expected");
        QTest::newRow("word in three cases, ties in order") << "abba" << false << 3;
        QTest::newRow("two words") << "abba queen" << false << 1;
        QTest::newRow("letters beyond ASCII fold") << "ärzte" << false << 1;
        QTest::newRow("Cyrillic capitals") << "кино" << false << 1;
        QTest::newRow("the Kelvin sign folds to k") << "kelvin" << false << 1;
        QTest::newRow("sharp s is not ss") << "strauss" << false << 0;
        QTest::newRow("accents count") << "beyonce" << false << 1;
        QTest::newRow("accents ignored") << "beyonce" << true << 2;
        QTest::newRow("accents ignored in the query too") << "BEYONCÉ" << true << 2;
        QTest::newRow("ros finds Rós") << "ros" << true << 2;
        QTest::newRow("one-character wildcard") << "h_lo" << false << 1;
        QTest::newRow("underscore matches one character, not one byte") << "r_s" << false << 3;
        QTest::newRow("percent inside a word") << "wat%loo" << false << 1;
        QTest::newRow("percent alone finds every named song, the empty name too") << "%" << false << 13;
        QTest::newRow("apostrophe") << "don't" << false << 1;
        QTest::newRow("a lone apostrophe") << "'" << false << 1;
        QTest::newRow("percent sign in a name is a wildcard") << "100%" << false << 2;
        QTest::newRow("three blanks make an empty word") << "love   pure" << false << 1;
        QTest::newRow("nothing matches") << "zzzq" << false << 0;
        QTest::newRow("longer than any name") << QString(300, u'a') << false << 0;
        QTest::newRow("only wildcards, longer than any name") << QString(300, u'_') << false << 0;
    }
    void sameAnswersAsTheStatement() {
        QFETCH(QString, text);
        QFETCH(bool, accentBlind);
        QFETCH(int, expected);
        SetAccentBlindLike(accentBlind);
        QVERIFY(SongIndexKeeper::instance().buildNow(accentBlind));
        std::unique_ptr<SongRowSource> indexed = IndexedSearch(dbConnection(), SongSearch::searchWords(text));
        QVERIFY(indexed);
        const QList<qint64> fromIndex = remainingIds(*indexed);
        QCOMPARE(fromIndex, statementIds(text));
        QCOMPARE(fromIndex.size(), expected);
    }

    // The listing of the whole catalogue is the statement's, errors and
    // songs without a file name included.
    void listingIsTheStatements_data() {
        QTest::addColumn<bool>("blobArtist");
        QTest::newRow("text artists") << false;
        QTest::newRow("an artist stored as bytes") << true;
    }
    void listingIsTheStatements() {
        QFETCH(bool, blobArtist);
        if (blobArtist)
            QVERIFY(QSqlQuery(dbConnection())
                        .exec(QStringLiteral("Insert Into tblKaraokeTracks (ArtistName, FileName, TrackPath) "
                                             "Values (X'4142', 'blob.zip', '/blob')")));
        QVERIFY(SongIndexKeeper::instance().buildNow(false));
        std::unique_ptr<ListingWindow> listing = IndexedListing(dbConnection());
        QVERIFY(listing);
        StatementRowSource statement(dbConnection(), SongSearch::loadAllSql());
        qint64 id = 0;
        CompactRowStore::Texts texts;
        int row = 0;
        while (statement.next(id, texts)) {
            QVERIFY(row < listing->size());
            QCOMPARE(listing->id(row), id);
            QCOMPARE(listing->texts(row), texts);
            ++row;
        }
        QCOMPARE(listing->size(), row);
        QCOMPARE(row, kSongs.size() + (blobArtist ? 1 : 0));
    }

    // A catalogue read in two halves at once gives the index of one read:
    // the same rows, texts and order, ties across the halves included, and
    // an artist stored as bytes in either half still leaves the order to the
    // statement.
    void readInTwoIsOneRead_data() {
        QTest::addColumn<qint64>("idStep");
        QTest::addColumn<int>("blobAt");
        QTest::newRow("too few ids to split") << qint64(1) << -1;
        QTest::newRow("ids far apart") << qint64(9000) << -1;
        QTest::newRow("bytes in the upper half") << qint64(9000) << 12;
        QTest::newRow("bytes in the lower half") << qint64(9000) << 1;
    }
    void readInTwoIsOneRead() {
        QFETCH(qint64, idStep);
        QFETCH(int, blobAt);
        // The songs again under ids spread over the span, in reverse, so
        // that the halves each hold some of every artist.
        QVERIFY(QSqlQuery(dbConnection())
                    .exec(QStringLiteral("Update tblKaraokeTracks Set KaraokeTrackID = 1000000 - "
                                         "KaraokeTrackID * %1")
                              .arg(idStep)));
        if (blobAt >= 0)
            QVERIFY(QSqlQuery(dbConnection())
                        .exec(QStringLiteral("Update tblKaraokeTracks Set ArtistName = X'4142' "
                                             "Where KaraokeTrackID = 1000000 - %1 * %2")
                                  .arg(blobAt)
                                  .arg(idStep)));
        compareReadInTwo(kSongs.size());
    }

    // A read makes room for the rows its ids promise: ids close together and
    // then one far off promise far too many, and the read is whole all the same.
    void manyRowsThenOneFarId() {
        QSqlQuery q(dbConnection());
        q.prepare(QStringLiteral(
            "Insert Into tblKaraokeTracks (ArtistName, FileName, TrackPath) Values (?, ?, ?)"));
        constexpr int kMore = 3000;
        for (int i = 0; i < kMore; ++i) {
            q.bindValue(0, QStringLiteral("Artist %1").arg(i % 97));
            q.bindValue(1, QStringLiteral("Song %1.zip").arg(i));
            q.bindValue(2, QStringLiteral("/more/%1").arg(i));
            QVERIFY2(q.exec(), qPrintable(q.lastError().text()));
        }
        QVERIFY(QSqlQuery(dbConnection())
                    .exec(QStringLiteral("Update tblKaraokeTracks Set KaraokeTrackID = 1000000000000000 "
                                         "Where KaraokeTrackID = (Select max(KaraokeTrackID) From "
                                         "tblKaraokeTracks)")));
        compareReadInTwo(kSongs.size() + kMore);
    }

    // The list's own edits and removals on the whole-catalogue list, down to
    // an empty list.
    void listingTakesEditsAndRemovals() {
        QVERIFY(SongIndexKeeper::instance().buildNow(false));
        SearchResultsModel model;
        model.load(IndexedListing(dbConnection()));
        const int rows = model.rowCount();
        QCOMPARE(rows, kSongs.size());
        const qint64 third = model.trackId(2);
        model.setCellText(0, 1, QStringLiteral("Edited"));
        model.removeTrackRow(1);
        QCOMPARE(model.rowCount(), rows - 1);
        QCOMPARE(model.trackId(1), third);
        QCOMPARE(model.data(model.index(0, 1)).toString(), QStringLiteral("Edited"));
        while (model.rowCount() > 0)
            model.removeTrackRow(0);
        QCOMPARE(model.rowCount(), 0);
    }

    // After any change to the songs, by this connection or another, the old
    // index is never used; a change elsewhere leaves it in place.
    void changesMakeTheIndexStale_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<bool>("otherConnection");
        QTest::addColumn<bool>("stale");
        QTest::newRow("swap of artist")
            << "Update tblKaraokeTracks Set ArtistName = 'Zzz' Where ArtistName = 'ABBA'" << false << true;
        QTest::newRow("marked as error")
            << "Update tblKaraokeTracks Set Error = 1 Where ArtistName = 'Кино'" << false << true;
        QTest::newRow("one song removed")
            << "Delete From tblKaraokeTracks Where ArtistName = 'Zed'" << false << true;
        QTest::newRow("the whole table emptied") << "Delete From tblKaraokeTracks" << false << true;
        QTest::newRow("a song added by another program")
            << "Insert Into tblKaraokeTracks (ArtistName, FileName, TrackPath) Values ('X', 'x.zip', '/x')"
            << true << true;
        QTest::newRow("the queue written")
            << "Insert Into tblQueue (PerformerName) Values ('Anna')" << false << false;
    }
    void changesMakeTheIndexStale() {
        QFETCH(QString, sql);
        QFETCH(bool, otherConnection);
        QFETCH(bool, stale);
        SongIndexKeeper& keeper = SongIndexKeeper::instance();
        QVERIFY(keeper.buildNow(false));
        QVERIFY(keeper.current(false));
        if (otherConnection) {
            sqlite3* other = nullptr;
            QCOMPARE(sqlite3_open(m_ws->catalogueFile().toUtf8().constData(), &other), SQLITE_OK);
            QCOMPARE(sqlite3_exec(other, sql.toUtf8().constData(), nullptr, nullptr, nullptr), SQLITE_OK);
            sqlite3_close(other);
        } else {
            QVERIFY(QSqlQuery(dbConnection()).exec(sql));
        }
        QCOMPARE(keeper.current(false) == nullptr, stale);
        // A fresh index comes by itself and answers as the statement does.
        QVERIFY(keeper.waitUntilCurrent(false, 10000));
        std::unique_ptr<SongRowSource> indexed = IndexedSearch(dbConnection(), {QStringLiteral("zip")});
        QVERIFY(indexed);
        QCOMPARE(remainingIds(*indexed), statementIds(QStringLiteral("zip")));
    }

    // The host's setting switches the folding of the search at once.
    void accentBlindSettingIsFollowed() {
        QVERIFY(!AccentBlindLike());
        settings::writeBool(keys::AccentBlindSearch, true);
        QVERIFY(AccentBlindLike());
        QVERIFY(SongIndexKeeper::instance().waitUntilCurrent(true, 10000));
        std::unique_ptr<SongRowSource> indexed = IndexedSearch(dbConnection(), {QStringLiteral("beyonce")});
        QVERIFY(indexed);
        QCOMPARE(remainingIds(*indexed).size(), 2);
        settings::writeBool(keys::AccentBlindSearch, false);
        QVERIFY(!AccentBlindLike());
    }

    // The index read in the background is saved beside the catalogue and
    // taken back only as made: same folding, same count of songs, same
    // highest id, and whole. The first change to the songs removes it.
    void savedIndexIsTakenOnlyAsMade_data() {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<bool>("taken");
        QTest::newRow("as saved") << "" << true;
        QTest::newRow("other folding") << "blind" << false;
        QTest::newRow("another highest id") << "max" << false;
        QTest::newRow("cut short") << "cut" << false;
        QTest::newRow("a name's start out of order") << "start" << false;
    }
    void savedIndexIsTakenOnlyAsMade() {
        QFETCH(QString, damage);
        QFETCH(bool, taken);
        SongIndexKeeper& keeper = SongIndexKeeper::instance();
        keeper.refresh();
        QVERIFY(keeper.waitUntilCurrent(false, 10000));
        const QString saved = keeper.savedPath();
        // The copy on disk follows the index into use.
        QTRY_VERIFY(QFile::exists(saved));
        QSqlQuery q(dbConnection());
        QVERIFY(q.exec(QStringLiteral("Select count(*), max(KaraokeTrackID) From tblKaraokeTracks")) &&
                q.next());
        const qint64 songs = q.value(0).toLongLong();
        qint64 maxId = q.value(1).toLongLong();
        bool blind = false;
        if (damage == QLatin1String("blind"))
            blind = true;
        else if (damage == QLatin1String("max"))
            ++maxId;
        QFile f(saved);
        QVERIFY(f.open(QIODevice::ReadWrite));
        if (damage == QLatin1String("cut"))
            QVERIFY(f.resize(f.size() - 1));
        if (damage == QLatin1String("start")) {
            // The second row's start, after the header and the ids.
            QVERIFY(f.seek(48 + songs * 8 + 4));
            const quint32 far = 0x7FFFFFFF;
            f.write(reinterpret_cast<const char*>(&far), sizeof far);
        }
        f.close();
        const auto loaded = SongIndex::load(saved, blind, maxId);
        QCOMPARE(bool(loaded), taken);
        if (loaded) {
            const auto current = keeper.current(false);
            QCOMPARE(loaded->size(), current->size());
            QCOMPARE(loaded->block(), current->block());
            QCOMPARE(loaded->id(3), current->id(3));
            QVERIFY(keeper.loadSaved(false));
            QVERIFY(IndexedSearch(dbConnection(), {QStringLiteral("abba")}));
        }
        QVERIFY(q.exec(QStringLiteral("Update tblKaraokeTracks Set Notes = 'x' Where ArtistName = 'Zed'")));
        QVERIFY(!QFile::exists(saved));
    }

    // A copy stopped before its end leaves no file; one let run is read back.
    void stoppedCopyLeavesNoFile() {
        QVERIFY(SongIndexKeeper::instance().buildNow(false));
        const auto index = SongIndexKeeper::instance().current(false);
        QVERIFY(index);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("copy"));
        std::atomic<bool> stop{true};
        QVERIFY(!index->save(path, 7, &stop));
        QVERIFY(!QFile::exists(path));
        stop = false;
        QVERIFY(index->save(path, 7, &stop));
        const auto loaded = SongIndex::load(path, false, 7);
        QVERIFY(loaded);
        QCOMPARE(loaded->block(), index->block());
    }

    // A word longer than SQLite takes as a pattern is left to the statement,
    // which refuses it as before.
    void overlongPatternIsTheStatements() {
        QVERIFY(SongIndexKeeper::instance().buildNow(false));
        QVERIFY(!IndexedSearch(dbConnection(), {QString(60000, u'x')}));
        QVERIFY(IndexedSearch(dbConnection(), {QString(10000, u'x')}));
    }

    void findBytes_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("needle");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("expected");
        const QString long40 = QStringLiteral("0123456789abcdefghijklmnopqrstuvwxyzABCD");
        QTest::newRow("at the start") << long40 << "012" << 0 << 0;
        QTest::newRow("at the very end") << long40 << "BCD" << 0 << 37;
        QTest::newRow("across the 16-byte step") << long40 << "efghij" << 0 << 14;
        QTest::newRow("one byte") << long40 << "z" << 0 << 35;
        QTest::newRow("two bytes") << long40 << "yz" << 0 << 34;
        QTest::newRow("first and last agree, middle does not") << "axxb ayyb azzb"
                                                               << "azzb" << 0 << 10;
        QTest::newRow("not there") << long40 << "zz" << 0 << -1;
        QTest::newRow("from past a match") << "abab"
                                           << "ab" << 1 << 2;
        QTest::newRow("longer than the text") << "abc"
                                              << "abcd" << 0 << -1;
    }
    void findBytes() {
        QFETCH(QString, text);
        QFETCH(QString, needle);
        QFETCH(int, from);
        QFETCH(int, expected);
        const std::string t = text.toStdString();
        const size_t at = FindBytes(t, needle.toStdString(), size_t(from));
        QCOMPARE(at == std::string_view::npos ? -1 : int(at), expected);
    }
};

KV_TEST_CLASS(TestSongIndex)
#include "tst_songindex.moc"
