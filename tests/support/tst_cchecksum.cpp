#include "core/kverror.h"
#include "support/cchecksum.h"
#include "testrunner.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestCChecksum : public QObject {
    Q_OBJECT

private slots:
    void stringChecksum_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<float>("sum");
        QTest::newRow("empty") << "" << 0.0f;
        QTest::newRow("ascii") << "AB" << 131.0f;
        QTest::newRow("Latin-1 letter") << "é" << 233.0f;
        QTest::newRow("euro sign in the code page") << "€" << 128.0f;
        QTest::newRow("outside the code page counts as ?") << "♪" << 63.0f;
    }
    void stringChecksum() {
        QFETCH(QString, text);
        QFETCH(float, sum);
        QCOMPARE(CChecksum::GetStringChecksum(text), sum);
    }

    // Single precision: past 2^24 a one is lost in the sum.
    void largeSumsLoseSmallAdditions() {
        // 131072 euro signs (code 128) reach 2^24 exactly; each one after it is lost.
        const QString text = QString(131072, QChar(0x20AC)) + QString(200, QChar(1));
        QCOMPARE(CChecksum::GetStringChecksum(text), 16777216.0f);
    }

    void fileChecksum_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<float>("sum");
        QTest::addColumn<QList<int>>("percents");
        QTest::newRow("empty file") << QByteArray() << 0.0f << QList<int>{};
        QTest::newRow("short file: zeros behind it") << QByteArray("\x01\x02", 2) << 3.0f << QList<int>{100};
        QTest::newRow("two whole blocks") << QByteArray(512, '\x01') << 512.0f << QList<int>{50, 100};
        // 300 bytes: the second read fills 44 bytes and leaves 212 ones of
        // the first block behind them.
        QTest::newRow("last block keeps the block before") << QByteArray(256, '\x01') + QByteArray(44, '\x02')
                                                           << 256.0f + 88.0f + 212.0f << QList<int>{85, 100};
    }
    void fileChecksum() {
        QFETCH(QByteArray, bytes);
        QFETCH(float, sum);
        QFETCH(QList<int>, percents);
        QTemporaryDir dir;
        QFile f(dir.filePath("song.bin"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        f.close();
        CChecksum c;
        QSignalSpy spy(&c, &CChecksum::progress);
        QCOMPARE(c.GetFileChecksum(f.fileName()), sum);
        QList<int> seen;
        for (const auto& args : spy)
            seen << args.at(0).toInt();
        QCOMPARE(seen, percents);
    }

    void missingFileRaises() {
        CChecksum c;
        try {
            c.GetFileChecksum("/nonexistent/file");
            QFAIL("no error raised");
        } catch (const KvError& e) {
            QCOMPARE(e.number(), CChecksum::kErrFileNotFound);
            QCOMPARE(e.description(), QString("File not found"));
            QCOMPARE(e.source(), QString("KvApp.CAppSetting"));
        }
    }
};

KV_TEST_CLASS(TestCChecksum)
#include "tst_cchecksum.moc"
