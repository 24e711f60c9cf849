#include "catalogue/songsearch.h"
#include "testrunner.h"

#include <QTest>

using IntList = QList<int>;

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
        row("outer blanks trimmed", "  abba  ", false, on("abba"));
        row("two blanks are one", "abba  dance", false, abbaDance);
        row("three blanks make an empty word", "abba   dance", false,
            on("abba") + " AND " + on("") + " AND " + on("dance"));
        row("four blanks are two, another empty word", "a    b", false,
            on("a") + " AND " + on("") + " AND " + on("b"));
        row("IncludeSongPath", "abba dance", true,
            "(((TrackPath) Like '%abba%')) AND (((TrackPath) Like '%dance%'))");
        row("apostrophe doubled", "don't", false, on("don''t"));
        row("two apostrophes", "'n' rock", false, on("''n''") + " AND " + on("rock"));
        row("pattern characters pass", "50%_x", false, on("50%_x"));
        row("tabs are not blanks", "\ta\tb\t", false, on("\ta\tb\t"));
    }
    void filterList() {
        QFETCH(QString, text);
        QFETCH(bool, includeSongPath);
        QTEST(SongSearch::filterList(text, includeSongPath), "condition");
        // Mode 0 is the file-name search.
        QTEST(SongSearch::condition(SongSearch::ByFileName, text, includeSongPath), "condition");
    }

    void otherModes_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("condition");
        QTest::newRow("disc") << int(SongSearch::ByDiscName) << "(DiscName like '%it''s two%') ";
        QTest::newRow("artist") << int(SongSearch::ByArtistName) << "(Artistname like '%it''s two%') ";
        QTest::newRow("track") << int(SongSearch::ByTrackName) << "(TrackName like '%it''s two%') ";
    }
    void otherModes() {
        QFETCH(int, mode);
        QTEST(SongSearch::condition(mode, QStringLiteral("  it's two "), false), "condition");
    }

    void refusedCharacters_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("cut");
        QTest::newRow("star at the end") << "ab*" << true << "ab";
        QTest::newRow("star inside: the last goes") << "a*bc" << true << "a*b";
        QTest::newRow("bracket") << "[abc" << true << "[ab";
        QTest::newRow("bar") << "a|b" << true << "a|";
        QTest::newRow("slash") << "ac/dc" << true << "ac/d";
        QTest::newRow("backslash is taken") << "ac\\dc" << false << "ac\\d";
        QTest::newRow("closing bracket is taken") << "a]" << false << "a";
        QTest::newRow("percent is taken") << "a%" << false << "a";
        QTest::newRow("empty") << "" << false << "";
        QTest::newRow("surrogate pair kept whole") << QString::fromUtf8("a*\xF0\x9F\x8E\xA4") << true << "a*";
    }
    void refusedCharacters() {
        QFETCH(QString, text);
        QTEST(SongSearch::hasRefusedCharacter(text), "refused");
        QTEST(SongSearch::cutLastCharacter(text), "cut");
    }

    void leadingWidths_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<IntList>("widths");
        QTest::newRow("read default: the empty fifth stops") << "198;196;84;48;" << IntList{198, 196, 84, 48};
        QTest::newRow("saved fallback") << "0;200;200;100;100" << IntList{0, 200, 200, 100, 100};
        QTest::newRow("a word stops") << "0;abc;10;10" << IntList{0};
        QTest::newRow("negative stops") << "5;-3;10" << IntList{5};
        QTest::newRow("blanks around") << " 12 ; 7" << IntList{12, 7};
        QTest::newRow("empty") << "" << IntList{};
        QTest::newRow("more than five") << "1;2;3;4;5;6" << IntList{1, 2, 3, 4, 5, 6};
    }
    void leadingWidths() {
        QFETCH(QString, text);
        QTEST(SongSearch::leadingWidths(text), "widths");
    }

    void joinWidths_data() {
        QTest::addColumn<IntList>("widths");
        QTest::addColumn<QString>("text");
        QTest::newRow("five: no ; at the end") << IntList{0, 210, 190, 90, 44} << "0;210;190;90;44";
        QTest::newRow("a sixth follows without one") << IntList{1, 2, 3, 4, 5, 6} << "1;2;3;4;56";
        QTest::newRow("none") << IntList{} << "";
    }
    void joinWidths() {
        QFETCH(IntList, widths);
        QTEST(SongSearch::joinWidths(widths), "text");
    }
};

KV_TEST_CLASS(TestSongSearch)
#include "tst_songsearch.moc"
