#include "core/cinifile.h"
#include "core/kverror.h"
#include "testrunner.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

void writeAll(const QString& path, const QByteArray& data) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(data);
}

// Runs `op` and returns the number it raised, or 0 when it raised nothing.
template <class F> qint32 raised(F&& op) {
    try {
        op();
    } catch (const KvError& e) {
        return e.number();
    }
    return 0;
}

} // namespace

class TestCIniFile : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_path;
    CIniFile m_ini;

private slots:
    void init() {
        m_path = m_dir.filePath(QStringLiteral("settings.ini"));
        QFile::remove(m_path);
        m_ini.setFileName(m_path);
    }

    // Every read is of [Settings] Font with the default "dflt".
    void readsCaseBlindAndKeepsDefaults_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << QByteArray("[Settings]\nFont=LCD\n") << "LCD";
        QTest::newRow("case-blind") << QByteArray("[SETTINGS]\nfont=LCD\n") << "LCD";
        QTest::newRow("spaces") << QByteArray("[ Settings ]\n  Font =  LCD  \n") << "LCD";
        QTest::newRow("absent key") << QByteArray("[Settings]\nA=1\n") << "dflt";
        QTest::newRow("comment") << QByteArray("[Settings]\n;Font=A\nFont=B\n") << "B";
    }
    void readsCaseBlindAndKeepsDefaults() {
        QFETCH(QByteArray, file);
        writeAll(m_path, file);
        QTEST(
            m_ini.GetStringValue(QStringLiteral("Settings"), QStringLiteral("Font"), QStringLiteral("dflt")),
            "expected");
        QCOMPARE(readAll(m_path), file); // a read changes nothing
    }

    void failures_data() {
        QTest::addColumn<int>("op");
        QTest::addColumn<bool>("fileExists");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<qint32>("expected");
        // op: 0 read text, 2 save text, 4 delete key, 8 set the key as the file name
        const QString s = QStringLiteral("Settings"), k = QStringLiteral("K");
        QTest::newRow("read missing file") << 0 << false << s << k << CIniFile::kFileNotFound;
        QTest::newRow("write empty section") << 2 << true << QString() << k << CIniFile::kInvalidSection;
        QTest::newRow("write empty key") << 2 << true << s << QString() << CIniFile::kInvalidKey;
        QTest::newRow("empty file name") << 8 << true << s << QString() << CIniFile::kInvalidFileName;
    }
    void failures() {
        QFETCH(int, op);
        QFETCH(bool, fileExists);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(qint32, expected);
        if (fileExists)
            writeAll(m_path, "[Settings]\nK=1\n");
        const qint32 got = raised([&] {
            switch (op) {
            case 0:
                m_ini.GetStringValue(section, key, {});
                break;
            case 2:
                m_ini.SaveStringValue(section, key, QStringLiteral("v"));
                break;
            case 4:
                m_ini.DeleteKey(section, key);
                break;
            case 8:
                m_ini.setFileName(key);
                break;
            }
        });
        QCOMPARE(got, expected);
    }

    void writesKeepOtherLinesInOrder_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("replace keeps spelling")
            << QByteArray("; top\n[Settings]\nFONT=A\n; note\nB=2\n") << "settings"
            << "Font"
            << "X" << QByteArray("; top\n[Settings]\nFONT=X\n; note\nB=2\n");
        QTest::newRow("append to section before blank")
            << QByteArray("[Settings]\nA=1\n\n[Jingles]\nJ=2\n") << "Settings"
            << "New"
            << "v" << QByteArray("[Settings]\nA=1\nNew=v\n\n[Jingles]\nJ=2\n");
        QTest::newRow("odd lines kept")
            << QByteArray("garbage line\n[Settings]\nno equals here\n\xff\xfe=bytes\nA=1\n") << "Settings"
            << "A"
            << "2" << QByteArray("garbage line\n[Settings]\nno equals here\n\xff\xfe=bytes\nA=2\n");
        QTest::newRow("line break folded") << QByteArray("[S]\n") << "S"
                                           << "K"
                                           << "a\nb" << QByteArray("[S]\nK=a b\n");
    }
    void writesKeepOtherLinesInOrder() {
        QFETCH(QByteArray, before);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        writeAll(m_path, before);
        m_ini.SaveStringValue(section, key, value);
        QTEST(readAll(m_path), "after");
    }

    void readOnlyFileIsNotTouched() {
        writeAll(m_path, "[Settings]\nA=1\n");
        QFile::setPermissions(m_path, QFile::ReadOwner);
        if (QFile(m_path).open(QIODevice::WriteOnly))
            QSKIP("running with rights that ignore file permissions");
        QCOMPARE(raised([&] { m_ini.SaveStringValue(QStringLiteral("Settings"), QStringLiteral("A"), "2"); }),
                 CIniFile::kComponentFailure);
        QCOMPARE(readAll(m_path), QByteArray("[Settings]\nA=1\n"));
    }

    void writeIsAtomic() {
        // The write lands through a temporary file and a rename: a hard link to
        // the old file keeps the old text, and no temporary is left beside it.
        writeAll(m_path, "[Settings]\nA=1\n");
        const QString old = m_dir.filePath(QStringLiteral("old.ini"));
        QFile::remove(old);
        QCOMPARE(::link(QFile::encodeName(m_path).constData(), QFile::encodeName(old).constData()), 0);
        m_ini.SaveStringValue(QStringLiteral("Settings"), QStringLiteral("A"), "2");
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files), QStringList({"old.ini", "settings.ini"}));
        QCOMPARE(readAll(old), QByteArray("[Settings]\nA=1\n"));
        QCOMPARE(readAll(m_path), QByteArray("[Settings]\nA=2\n"));
    }
};

KV_TEST_CLASS(TestCIniFile)
#include "tst_cinifile.moc"
