#include "core/csvreader.h"
#include "core/csvwriter.h"
#include "testrunner.h"

#include <QBuffer>
#include <QTest>

using Rows = QList<QStringList>;
Q_DECLARE_METATYPE(Rows)

namespace {

struct ReadAll {
    Rows rows;
    CsvReader::Result result;
};

ReadAll readBytes(const QByteArray& bytes, int stopAfter = -1) {
    ReadAll out;
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    out.result = CsvReader::readDevice(buffer, [&](const QStringList& row) {
        out.rows.append(row);
        return stopAfter < 0 || out.rows.size() < stopAfter;
    });
    return out;
}

} // namespace

class TestCsv : public QObject {
    Q_OBJECT

private slots:
    void readsFileForms_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<Rows>("expected");
        QTest::addColumn<bool>("utf8");

        QTest::newRow("our export") << QByteArray("\"Column1\",\"Singer\"\r\n\"/s/a.zip\",\"Ann\"\r\n")
                                    << Rows{{"Column1", "Singer"}, {"/s/a.zip", "Ann"}} << true;
        QTest::newRow("LF ends, last line without its end")
            << QByteArray("a,b\n1,2\n3,4") << Rows{{"a", "b"}, {"1", "2"}, {"3", "4"}} << true;
        QTest::newRow("byte-order mark skipped")
            << QByteArray("\xEF\xBB\xBF\"Sänger\",5\r\n") << Rows{{"Sänger", "5"}} << true;
        QTest::newRow("comma, doubled quote and line break inside quotes")
            << QByteArray("\"Smith, John\",\"say \"\"hi\"\"\",\"two\r\nlines\"\r\n")
            << Rows{{"Smith, John", "say \"hi\"", "two\r\nlines"}} << true;
        QTest::newRow("older Windows file in its code page")
            << QByteArray("\"Caf\xE9\",\"\x93Quoted\x94\",\"\x80\"\r\n")
            << Rows{{"Café", "\u201CQuoted\u201D", "\u20AC"}} << false;
        QTest::newRow("one stray byte makes the whole file Windows-1252")
            << QByteArray("\"\xC3\xA9\"\r\n\"\xE9\"\r\n") << Rows{{"Ã©"}, {"é"}} << false;
        QTest::newRow("more than five columns kept")
            << QByteArray("p,s,a,t,k,x,y\r\n") << Rows{{"p", "s", "a", "t", "k", "x", "y"}} << true;
        QTest::newRow("empty fields are empty texts")
            << QByteArray(",\"\",x\r\n") << Rows{{"", "", "x"}} << true;
        QTest::newRow("empty file") << QByteArray() << Rows{} << true;
    }
    void readsFileForms() {
        QFETCH(QByteArray, bytes);
        QFETCH(Rows, expected);
        QFETCH(bool, utf8);
        const ReadAll got = readBytes(bytes);
        QVERIFY2(got.result.ok, qPrintable(got.result.error));
        QCOMPARE(got.rows, expected);
        QCOMPARE(got.result.encoding == CsvReader::Encoding::Utf8, utf8);
    }

    // Whatever the writer writes, the reader gives back field for field.
    void writerRoundTrip_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("apostrophe") << "O'Brien";
        QTest::newRow("comma and quote") << "Smith, \"Jr\"";
        QTest::newRow("slash and dots") << "../AC/DC";
        QTest::newRow("line break") << "one\ntwo";
        QTest::newRow("blanks at the ends") << "  padded  ";
        QTest::newRow("beyond Latin-1") << "Ärzte – песня ♪";
        QTest::newRow("empty") << "";
    }
    void writerRoundTrip() {
        QFETCH(QString, text);
        const QByteArray bytes = CsvWriter::header({"Singer", "Key"}) + CsvWriter::line({text, qint64(-3)});
        QVERIFY(bytes.endsWith("\r\n"));
        QVERIFY(!bytes.startsWith("\xEF"));
        const ReadAll got = readBytes(bytes);
        QVERIFY2(got.result.ok, qPrintable(got.result.error));
        QCOMPARE(got.rows, (Rows{{"Singer", "Key"}, {text, "-3"}}));
    }

    void numbersAreBareTextIsQuoted() {
        QCOMPARE(CsvWriter::line({QString("a\"b"), qint64(12)}), QByteArray("\"a\"\"b\",12\r\n"));
    }

    // A file that is no song list ends the reading with a message; the rows
    // before the fault have been handed over.
    void refusesWhatIsNoSongList_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("rowsBefore");
        QTest::newRow("a field over 1 MB")
            << QByteArray("a,b\r\n") + QByteArray(CsvReader::kMaxFieldBytes + 10, 'x') + "\r\n"
            << 1;
        QTest::newRow("a line of thousands of fields")
            << QByteArray("a\r\n") + QByteArray(CsvReader::kMaxFields * 2, ',') + "\r\n"
            << 1;
    }
    void refusesWhatIsNoSongList() {
        QFETCH(QByteArray, bytes);
        QFETCH(int, rowsBefore);
        const ReadAll got = readBytes(bytes);
        QVERIFY(!got.result.ok);
        QVERIFY(!got.result.error.isEmpty());
        QCOMPARE(got.rows.size(), rowsBefore);
    }

    void binaryGarbageIsReadWithoutHarm() {
        QByteArray jpeg("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00\x01\x01\x00\x00\x01", 18);
        for (int i = 0; i < 5000; ++i)
            jpeg += char((i * 37) & 0xFF);
        const ReadAll got = readBytes(jpeg);
        QVERIFY(got.result.ok);
        QCOMPARE(got.result.encoding, CsvReader::Encoding::Windows1252);
    }

    void handlerStopsTheReading() {
        const ReadAll got = readBytes("1\r\n2\r\n3\r\n4\r\n", 2);
        QVERIFY(got.result.ok);
        QCOMPARE(got.rows, (Rows{{"1"}, {"2"}}));
    }

    void missingFileIsAMessage() {
        const CsvReader::Result r =
            CsvReader::readFile("/nonexistent/x.csv", [](const QStringList&) { return true; });
        QVERIFY(!r.ok);
        QVERIFY(r.error.contains("/nonexistent/x.csv"));
    }
};

KV_TEST_CLASS(TestCsv)
#include "tst_csv.moc"
