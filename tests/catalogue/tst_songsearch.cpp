#include "catalogue/songsearch.h"
#include "testrunner.h"

#include <QTest>

class TestSongSearch : public QObject {
    Q_OBJECT

private slots:
    void filterList_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("includeSongPath");
        QTest::addColumn<QString>("condition");
        // The pattern of one word on the file name.
        const auto on = [](const char* word) {
            return QStringLiteral("(((filename) Like '%%1%'))").arg(word);
        };
        const auto row = [](const char* name, const QString& text, bool path, const QString& words) {
            QTest::newRow(name) << text << path << words + QStringLiteral(" AND ((Error)=0)");
        };
        const QString abbaDance = on("abba") + " AND " + on("dance");
        row("one word", "abba", false, on("abba"));
        row("two words", "abba dance", false, abbaDance);
        row("two blanks are one", "abba  dance", false, abbaDance);
        row("three blanks make an empty word", "abba   dance", false,
            on("abba") + " AND " + on("") + " AND " + on("dance"));
        row("IncludeSongPath", "abba dance", true,
            "(((TrackPath) Like '%abba%')) AND (((TrackPath) Like '%dance%'))");
        row("apostrophe doubled", "don't", false, on("don''t"));
        row("pattern characters pass", "50%_x", false, on("50%_x"));
    }
    void filterList() {
        QFETCH(QString, text);
        QFETCH(bool, includeSongPath);
        QTEST(SongSearch::filterList(text, includeSongPath), "condition");
        // Mode 0 is the file-name search.
        QTEST(SongSearch::condition(SongSearch::ByFileName, text, includeSongPath), "condition");
    }

    void discMode() {
        QCOMPARE(SongSearch::condition(SongSearch::ByDiscName, QStringLiteral("  it's two "), false),
                 QStringLiteral("(DiscName like '%it''s two%') "));
    }

    void refusedCharacters_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("cut");
        QTest::newRow("star at the end") << "ab*" << true << "ab";
        QTest::newRow("bracket") << "[abc" << true << "[ab";
        QTest::newRow("bar") << "a|b" << true << "a|";
        QTest::newRow("slash") << "ac/dc" << true << "ac/d";
        QTest::newRow("backslash is taken") << "ac\\dc" << false << "ac\\d";
        QTest::newRow("percent is taken") << "a%" << false << "a";
        QTest::newRow("surrogate pair kept whole") << QString::fromUtf8("a*\xF0\x9F\x8E\xA4") << true << "a*";
    }
    void refusedCharacters() {
        QFETCH(QString, text);
        QTEST(SongSearch::hasRefusedCharacter(text), "refused");
        QTEST(SongSearch::cutLastCharacter(text), "cut");
    }
};

KV_TEST_CLASS(TestSongSearch)
#include "tst_songsearch.moc"
