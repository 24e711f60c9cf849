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

        const auto row = [](const char* tag, const QByteArray& bytes, const Rows& rows, bool utf8 = true) {
            QTest::newRow(tag) << bytes << rows << utf8;
        };
        row("our export", "\"Column1\",\"Singer\"\r\n\"/s/a.zip\",\"Ann\"\r\n",
            {{"Column1", "Singer"}, {"/s/a.zip", "Ann"}});
        row("LF ends, last line without its end", "a,b\n1,2\n3,4", {{"a", "b"}, {"1", "2"}, {"3", "4"}});
        row("byte-order mark skipped", "\xEF\xBB\xBF\"Sänger\",5\r\n", {{"Sänger", "5"}});
        row("comma, doubled quote and line break inside quotes",
            "\"Smith, John\",\"say \"\"hi\"\"\",\"two\r\nlines\"\r\n",
            {{"Smith, John", "say \"hi\"", "two\r\nlines"}});
        row("older Windows file in its code page", "\"Caf\xE9\",\"\x93Quoted\x94\",\"\x80\"\r\n",
            {{"Café", "\u201CQuoted\u201D", "\u20AC"}}, false);
        row("one stray byte makes the whole file Windows-1252", "\"\xC3\xA9\"\r\n\"\xE9\"\r\n",
            {{"Ã©"}, {"é"}}, false);
        row("more than five columns kept", "p,s,a,t,k,x,y\r\n", {{"p", "s", "a", "t", "k", "x", "y"}});
        row("empty fields are empty texts", ",\"\",x\r\n", {{"", "", "x"}});
        row("empty file", QByteArray(), {});
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
