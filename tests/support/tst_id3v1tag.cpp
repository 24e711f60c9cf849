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
        QTest::addColumn<float>("version");  // 0: no tag
        QTest::addColumn<QString>("fields"); // title|artist|comment|track|genre
        const QByteArray audio(4000, '\x55');
        QByteArray v11comment = QByteArray("Nice").leftJustified(28, '\0');
        v11comment += '\0';
        v11comment += char(7);
        const QByteArray full30 = "abcdefghijklmnopqrstuvwxyz0123";
        // No tag: the fields are emptied and the genre reads "none".
        const QString none = QStringLiteral("|||0|255");
        QTest::newRow("1.1 with track")
            << audio + tagBlock("Title", "Artist", v11comment, 17) << 1.1f << "Title|Artist|Nice|7|17";
        QTest::newRow("1.0 with 30-byte comment") << audio + tagBlock("Title", "Artist", full30, 0) << 1.0f
                                                  << QString::fromLatin1("Title|Artist|" + full30 + "|0|0");
        QTest::newRow("latin-1 and invalid utf-8 bytes")
            << audio + tagBlock("Caf\xe9 \xff\xfe", "Bj\xf6rk", "", 13) << 1.1f
            << QString::fromUtf8("Café ÿþ|Björk||0|13");
        QTest::newRow("tag only, no audio") << tagBlock("T", "A", "", 1) << 1.1f << "T|A||0|1";
        QTest::newRow("no tag") << audio << 0.0f << none;
        QTest::newRow("empty file") << QByteArray() << 0.0f << none;
        QTest::newRow("TAG not at the tag's place")
            << tagBlock("T", "A", "", 1) + QByteArray(10, 'x') << 0.0f << none;
    }
    void readsTags() {
        QFETCH(QByteArray, file);
        QFETCH(float, version);
        clsID3v1Tag tag;
        // Fields of an earlier read must not survive a failed one.
        tag.Title = QStringLiteral("stale");
        tag.Genre = 3;
        tag.FileName = makeFile(file);
        float v = 0.0f;
        QCOMPARE(tag.ReadTag(&v), version > 0);
        QCOMPARE(tag.LastError().number(), version > 0 ? clsID3v1Tag::kSuccess : clsID3v1Tag::kNoTag);
        QCOMPARE(v, version);
        QTEST(QStringList({tag.Title, tag.Artist, tag.Comment, QString::number(tag.Track),
                           QString::number(tag.Genre)})
                  .join('|'),
              "fields");
    }

    // Write, read back, remove: the audio before the tag is never touched.
    void writeReadRemove() {
        const QByteArray audio(1000, 'a');
        const QString path = makeFile(audio);
        clsID3v1Tag w;
        w.FileName = path;
        w.Title = QString::fromUtf8("Déjà Vu");
        w.Artist = QStringLiteral("An artist whose name is far longer than thirty");
        w.Comment = QStringLiteral("Short");
        w.Track = 12;
        w.setGenreString(QStringLiteral("Rock"));
        QVERIFY(w.WriteTag());
        QVERIFY(w.WriteTag()); // a second write replaces the tag rather than appending another
        QCOMPARE(QFileInfo(path).size(), 1128);
        clsID3v1Tag r;
        r.FileName = path;
        QVERIFY(r.ReadTag());
        QCOMPARE(QStringList({r.Title, r.Artist, r.Comment, QString::number(r.Track), r.GenreString()}),
                 (QStringList{QString::fromUtf8("Déjà Vu"), "An artist whose name is far lo", "Short", "12",
                              "Rock"}));
        QVERIFY(r.RemoveTag());
        QVERIFY(!r.RemoveTag()); // the second finds no tag and cuts nothing
        QCOMPARE(r.LastError().number(), clsID3v1Tag::kNoTag);
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), audio);
    }
};

KV_TEST_CLASS(TestId3v1Tag)
#include "tst_id3v1tag.moc"
