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
        const QString end = QStringLiteral(" AND ((Error)=0)");
        QTest::newRow("one word") << "abba" << false << "(((filename) Like '%abba%'))" + end;
        QTest::newRow("two words") << "abba dance" << false
                                   << "(((filename) Like '%abba%')) AND (((filename) Like '%dance%'))" + end;
        QTest::newRow("outer blanks trimmed") << "  abba  " << false << "(((filename) Like '%abba%'))" + end;
        QTest::newRow("two blanks are one")
            << "abba  dance" << false
            << "(((filename) Like '%abba%')) AND (((filename) Like '%dance%'))" + end;
        QTest::newRow("three blanks make an empty word")
            << "abba   dance" << false
            << "(((filename) Like '%abba%')) AND (((filename) Like '%%')) AND (((filename) Like '%dance%'))" +
                   end;
        QTest::newRow("four blanks are two, another empty word")
            << "a    b" << false
            << "(((filename) Like '%a%')) AND (((filename) Like '%%')) AND (((filename) Like '%b%'))" + end;
        QTest::newRow("IncludeSongPath")
            << "abba dance" << true
            << "(((TrackPath) Like '%abba%')) AND (((TrackPath) Like '%dance%'))" + end;
        QTest::newRow("apostrophe doubled") << "don't" << false << "(((filename) Like '%don''t%'))" + end;
        QTest::newRow("two apostrophes")
            << "'n' rock" << false << "(((filename) Like '%''n''%')) AND (((filename) Like '%rock%'))" + end;
        QTest::newRow("pattern characters pass") << "50%_x" << false << "(((filename) Like '%50%_x%'))" + end;
        QTest::newRow("a tab is not a blank") << "a\tb" << false << "(((filename) Like '%a\tb%'))" + end;
    }
    void filterList() {
        QFETCH(QString, text);
        QFETCH(bool, includeSongPath);
        QFETCH(QString, condition);
        QCOMPARE(SongSearch::filterList(text, includeSongPath), condition);
        // Mode 0 is the file-name search.
        QCOMPARE(SongSearch::condition(SongSearch::ByFileName, text, includeSongPath), condition);
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
        QFETCH(QString, condition);
        QCOMPARE(SongSearch::condition(mode, QStringLiteral("  it's two "), false), condition);
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
        QTest::newRow("plain") << "abba" << false << "abb";
        QTest::newRow("empty") << "" << false << "";
        QTest::newRow("surrogate pair kept whole") << QString::fromUtf8("a*\xF0\x9F\x8E\xA4") << true << "a*";
    }
    void refusedCharacters() {
        QFETCH(QString, text);
        QFETCH(bool, refused);
        QFETCH(QString, cut);
        QCOMPARE(SongSearch::hasRefusedCharacter(text), refused);
        QCOMPARE(SongSearch::cutLastCharacter(text), cut);
    }

    void trimming_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("both");
        QTest::newRow("blanks") << "  ab c  "
                                << "ab c  "
                                << "ab c";
        QTest::newRow("only blanks") << "    "
                                     << ""
                                     << "";
        QTest::newRow("tabs stay") << "\tab\t"
                                   << "\tab\t"
                                   << "\tab\t";
    }
    void trimming() {
        QFETCH(QString, text);
        QFETCH(QString, left);
        QFETCH(QString, both);
        QCOMPARE(SongSearch::leftTrimBlanks(text), left);
        QCOMPARE(SongSearch::trimBlanks(text), both);
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
        QFETCH(IntList, widths);
        QCOMPARE(SongSearch::leadingWidths(text), widths);
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
        QFETCH(QString, text);
        QCOMPARE(SongSearch::joinWidths(widths), text);
    }
};

KV_TEST_CLASS(TestSongSearch)
#include "tst_songsearch.moc"
