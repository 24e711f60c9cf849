#include "support/clsid3v1tag.h"
#include "testrunner.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

// A tag block laid out by hand, independent of the class's writer.
QByteArray tagBlock(const QByteArray& title, const QByteArray& artist, const QByteArray& comment30,
                    quint8 genre) {
    auto pad = [](QByteArray b, int n) {
        b = b.left(n);
        b.append(QByteArray(n - b.size(), '\0'));
        return b;
    };
    QByteArray t =
        "TAG" + pad(title, 30) + pad(artist, 30) + pad("Album", 30) + pad("1999", 4) + pad(comment30, 30);
    t += char(genre);
    Q_ASSERT(t.size() == 128);
    return t;
}

} // namespace

class TestId3v1Tag : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    QString makeFile(const QByteArray& contents) {
        static int n = 0;
        const QString path = m_dir.filePath(QStringLiteral("song%1.mp3").arg(++n));
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly))
            qFatal("cannot write %s", qPrintable(path));
        f.write(contents);
        return path;
    }

private slots:
    void readsTags_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<qint32>("number");
        QTest::addColumn<float>("version");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("comment");
        QTest::addColumn<int>("track");
        QTest::addColumn<int>("genre");

        const QByteArray audio(4000, '\x55');
        const auto tagged = [](const char* name, const QByteArray& file, float version, const QString& title,
                               const QString& artist, const QString& comment, int track, int genre) {
            QTest::newRow(name) << file << true << clsID3v1Tag::kSuccess << version << title << artist
                                << comment << track << genre;
        };
        // No tag: the fields are emptied and the genre reads "none".
        const auto untagged = [](const char* name, const QByteArray& file) {
            QTest::newRow(name) << file << false << clsID3v1Tag::kNoTag << 0.0f << QString() << QString()
                                << QString() << 0 << 255;
        };
        QByteArray v11comment = QByteArray("Nice").leftJustified(28, '\0');
        v11comment += '\0';
        v11comment += char(7);
        tagged("1.1 with track", audio + tagBlock("Title", "Artist", v11comment, 17), 1.1f, "Title", "Artist",
               "Nice", 7, 17);
        const QByteArray full30 = "abcdefghijklmnopqrstuvwxyz0123";
        tagged("1.0 with 30-byte comment", audio + tagBlock("Title", "Artist", full30, 0), 1.0f, "Title",
               "Artist", QString::fromLatin1(full30), 0, 0);
        tagged("30-char title kept whole, blanks kept",
               audio + tagBlock("Thirty characters of title  ok", "  Spaced  ", "c", 255), 1.1f,
               "Thirty characters of title  ok", "  Spaced  ", "c", 0, 255);
        tagged("latin-1 and invalid utf-8 bytes", audio + tagBlock("Caf\xe9 \xff\xfe", "Bj\xf6rk", "", 13),
               1.1f, QString::fromUtf8("Café ÿþ"), QString::fromUtf8("Björk"), "", 0, 13);
        tagged("tag only, no audio", tagBlock("T", "A", "", 1), 1.1f, "T", "A", "", 0, 1);
        untagged("no tag", audio);
        untagged("shorter than 128 bytes", QByteArray("TAG short file"));
        untagged("empty file", QByteArray());
        untagged("TAG not at the tag's place", tagBlock("T", "A", "", 1) + QByteArray(10, 'x'));
    }
    void readsTags() {
        QFETCH(QByteArray, file);
        QFETCH(bool, ok);
        QFETCH(qint32, number);
        QFETCH(float, version);
        QFETCH(QString, title);
        QFETCH(QString, artist);
        QFETCH(QString, comment);
        QFETCH(int, track);
        QFETCH(int, genre);

        clsID3v1Tag tag;
        // Fields of an earlier read must not survive a failed one.
        tag.Title = QStringLiteral("stale");
        tag.Genre = 3;
        tag.FileName = makeFile(file);
        float v = 0.0f;
        QCOMPARE(tag.ReadTag(&v), ok);
        QCOMPARE(tag.LastError().number(), number);
        QCOMPARE(tag.Title, title);
        QCOMPARE(tag.Artist, artist);
        QCOMPARE(tag.Comment, comment);
        QCOMPARE(int(tag.Track), track);
        QCOMPARE(int(tag.Genre), genre);
        if (ok) {
            QCOMPARE(v, version);
            QCOMPARE(tag.ID, QStringLiteral("TAG"));
            QCOMPARE(tag.Year, QStringLiteral("1999"));
            QCOMPARE(tag.LastError().description(), QStringLiteral("ReadError: Success"));
        }
    }

    void missingFileIsInvalid_data() {
        QTest::addColumn<int>("operation");
        QTest::addColumn<QString>("description");
        QTest::newRow("read") << 0 << "ReadError: Invalid File";
        QTest::newRow("write") << 1 << "WriteError: Invalid File";
        QTest::newRow("remove") << 2 << "RemoveError: Invalid File";
    }
    void missingFileIsInvalid() {
        QFETCH(int, operation);
        QFETCH(QString, description);
        for (const QString& name :
             {m_dir.filePath(QStringLiteral("vanished.mp3")), m_dir.path(), QString()}) {
            clsID3v1Tag tag;
            tag.FileName = name;
            const bool ok = operation == 0   ? tag.ReadTag()
                            : operation == 1 ? tag.WriteTag()
                                             : tag.RemoveTag();
            QVERIFY(!ok);
            QCOMPARE(tag.LastError().number(), clsID3v1Tag::kInvalidFile);
            QCOMPARE(tag.LastError().description(), description);
            QVERIFY(!QFileInfo(m_dir.filePath(QStringLiteral("vanished.mp3"))).exists());
        }
    }

    void writeThenReadRoundTrips_data() {
        QTest::addColumn<int>("track");
        QTest::addColumn<float>("version");
        QTest::addColumn<QString>("comment");
        QTest::newRow("1.0") << 0 << 1.0f << "A comment of exactly thirty.."; // 29, padded by a zero
        QTest::newRow("1.1") << 12 << 1.1f << "Short";
    }
    void writeThenReadRoundTrips() {
        QFETCH(int, track);
        QFETCH(float, version);
        QFETCH(QString, comment);
        const QString path = makeFile(QByteArray(1000, 'a'));
        clsID3v1Tag w;
        w.FileName = path;
        w.Title = QString::fromUtf8("Déjà Vu");
        w.Artist = QStringLiteral("An artist whose name is far longer than thirty");
        w.Album = QStringLiteral("Album");
        w.Year = QStringLiteral("2001");
        w.Comment = comment;
        w.Track = quint8(track);
        w.setGenreString(QStringLiteral("Rock"));
        QVERIFY(w.WriteTag());
        QCOMPARE(w.LastError().description(), QStringLiteral("WriteError: Success"));
        QCOMPARE(QFileInfo(path).size(), 1128);
        // A second write replaces the tag rather than appending another.
        QVERIFY(w.WriteTag());
        QCOMPARE(QFileInfo(path).size(), 1128);

        clsID3v1Tag r;
        r.FileName = path;
        float v = 0;
        QVERIFY(r.ReadTag(&v));
        QCOMPARE(v, version);
        QCOMPARE(r.Title, QString::fromUtf8("Déjà Vu"));
        QCOMPARE(r.Artist, QStringLiteral("An artist whose name is far lo"));
        QCOMPARE(r.Comment, comment);
        QCOMPARE(int(r.Track), track);
        QCOMPARE(r.GenreString(), QStringLiteral("Rock"));
    }

    void removeTag() {
        const QByteArray audio(500, 'z');
        const QString path = makeFile(audio + tagBlock("T", "A", "", 2));
        clsID3v1Tag tag;
        tag.FileName = path;
        QVERIFY(tag.RemoveTag());
        QCOMPARE(tag.LastError().description(), QStringLiteral("RemoveError: Success"));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), audio);
        f.close();
        QVERIFY(!tag.RemoveTag());
        QCOMPARE(tag.LastError().number(), clsID3v1Tag::kNoTag);
        QCOMPARE(tag.LastError().description(), QStringLiteral("RemoveError: File has no Tag"));
        QCOMPARE(QFileInfo(path).size(), audio.size());
    }

    void genreNames_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("name");
        QTest::newRow("first") << 0 << "Blues";
        QTest::newRow("30") << 30 << "Fusion";
        QTest::newRow("67") << 67 << "Psychadelic";
        QTest::newRow("84") << 84 << "Fusion";
        QTest::newRow("85") << 85 << "Bebob";
        QTest::newRow("93") << 93 << "Psychadelic Rock";
        QTest::newRow("last") << 147 << "Synthpop";
        QTest::newRow("past the list") << 148 << "Unknown";
        QTest::newRow("none") << 255 << "";
    }
    void genreNames() {
        QFETCH(int, number);
        QFETCH(QString, name);
        clsID3v1Tag tag;
        tag.Genre = quint8(number);
        QCOMPARE(tag.GenreString(), name);
    }

    void genreByName_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("number");
        QTest::newRow("first match wins") << "Fusion" << 30;
        QTest::newRow("rock") << "Rock" << 17;
        QTest::newRow("spelling kept") << "Psychadelic Rock" << 93;
        QTest::newRow("published spelling is unknown") << "Psychedelic Rock" << 255;
        QTest::newRow("case matters") << "rock" << 255;
        QTest::newRow("empty") << "" << 255;
    }
    void genreByName() {
        QFETCH(QString, name);
        QFETCH(int, number);
        clsID3v1Tag tag;
        tag.Genre = 5;
        tag.setGenreString(name);
        QCOMPARE(int(tag.Genre), number);
    }
};

KV_TEST_CLASS(TestId3v1Tag)
#include "tst_id3v1tag.moc"
