#include "core/cinifile.h"
#include "core/kverror.h"
#include "filerights.h"
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

    void failures() {
        const QString k = QStringLiteral("K"), v = QStringLiteral("v");
        QCOMPARE(raised([&] { m_ini.GetStringValue(QStringLiteral("Settings"), k, {}); }),
                 CIniFile::kFileNotFound);
        writeAll(m_path, "[Settings]\nK=1\n");
        QCOMPARE(raised([&] { m_ini.SaveStringValue({}, k, v); }), CIniFile::kInvalidSection);
        QCOMPARE(raised([&] { m_ini.SaveStringValue(QStringLiteral("Settings"), {}, v); }),
                 CIniFile::kInvalidKey);
        QCOMPARE(raised([&] { m_ini.setFileName({}); }), CIniFile::kInvalidFileName);
        QCOMPARE(readAll(m_path), QByteArray("[Settings]\nK=1\n"));
    }

    void writesKeepOtherLinesInOrder_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");
        const auto row = [](const char* tag, const QByteArray& before, const char* section, const char* key,
                            const char* value, const QByteArray& after) {
            QTest::newRow(tag) << before << QString(section) << QString(key) << QString(value) << after;
        };
        row("replace keeps spelling", "; top\n[Settings]\nFONT=A\n; note\nB=2\n", "settings", "Font", "X",
            "; top\n[Settings]\nFONT=X\n; note\nB=2\n");
        row("append to section before blank", "[Settings]\nA=1\n\n[Jingles]\nJ=2\n", "Settings", "New", "v",
            "[Settings]\nA=1\nNew=v\n\n[Jingles]\nJ=2\n");
        row("odd lines kept", "garbage line\n[Settings]\nno equals here\n\xff\xfe=bytes\nA=1\n", "Settings",
            "A", "2", "garbage line\n[Settings]\nno equals here\n\xff\xfe=bytes\nA=2\n");
        row("line break folded", "[S]\n", "S", "K", "a\nb", "[S]\nK=a b\n");
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

    // The file is read once and kept: a file that can no longer be read
    // still answers from memory, while a file changed on disk is read again.
    void readsComeFromMemoryUntilTheFileChanges() {
        writeAll(m_path, "[Settings]\nA=1\n");
        QCOMPARE(m_ini.GetNumericValue(QStringLiteral("Settings"), QStringLiteral("A"), 0), 1);
        QVERIFY(QFile::setPermissions(m_path, QFileDevice::Permissions()));
        {
            WithoutFileRights rights;
            QCOMPARE(m_ini.GetNumericValue(QStringLiteral("Settings"), QStringLiteral("A"), 0), 1);
            QCOMPARE(m_ini.GetStringValue(QStringLiteral("Settings"), QStringLiteral("A"), {}), "1");
        }
        QVERIFY(QFile::setPermissions(m_path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        CIniFile other;
        other.setFileName(m_path);
        other.SaveStringValue(QStringLiteral("Settings"), QStringLiteral("A"), QStringLiteral("22"));
        QCOMPARE(m_ini.GetNumericValue(QStringLiteral("Settings"), QStringLiteral("A"), 0), 22);
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
