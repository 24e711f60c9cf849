#include "core/cinifile.h"
#include "core/kverror.h"
#include "testrunner.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

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

    void readsCaseBlindAndKeepsDefaults_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << QByteArray("[Settings]\nFont=LCD\n") << "Settings" << "Font" << "LCD";
        QTest::newRow("case-blind") << QByteArray("[SETTINGS]\nfont=LCD\n") << "settings" << "FONT" << "LCD";
        QTest::newRow("spaces") << QByteArray("[ Settings ]\n  Font =  LCD  \n") << "Settings" << "Font" << "LCD";
        QTest::newRow("crlf") << QByteArray("[Settings]\r\nFont=LCD\r\n") << "Settings" << "Font" << "LCD";
        QTest::newRow("quoted") << QByteArray("[Settings]\nFont=\"Big LCD\"\n") << "Settings" << "Font" << "Big LCD";
        QTest::newRow("absent key") << QByteArray("[Settings]\nA=1\n") << "Settings" << "Font" << "dflt";
        QTest::newRow("absent section") << QByteArray("[Other]\nFont=X\n") << "Settings" << "Font" << "dflt";
        QTest::newRow("empty value") << QByteArray("[Settings]\nFont=\n") << "Settings" << "Font" << "dflt";
        QTest::newRow("no sections") << QByteArray("Font=X\n") << "Settings" << "Font" << "dflt";
        QTest::newRow("line without =") << QByteArray("[Settings]\nFont\nFont=Y\n") << "Settings" << "Font" << "Y";
        QTest::newRow("duplicate key: first") << QByteArray("[Settings]\nFont=A\nFont=B\n") << "Settings" << "Font" << "A";
        QTest::newRow("duplicate section: first")
            << QByteArray("[Settings]\nA=1\n[Settings]\nFont=B\n") << "Settings" << "Font" << "dflt";
        QTest::newRow("comment") << QByteArray("[Settings]\n;Font=A\nFont=B\n") << "Settings" << "Font" << "B";
        QTest::newRow("other section's key") << QByteArray("[A]\nFont=1\n[Settings]\n") << "Settings" << "Font" << "dflt";
        QTest::newRow("utf8") << QByteArray("[Settings]\nDefaultName=Zo\xc3\xab\n") << "Settings" << "DefaultName"
                              << QString::fromUtf8("Zo\xc3\xab");
        QTest::newRow("value cut at 254") << "[Settings]\nFont=" + QByteArray(300, 'x') + "\n" << "Settings" << "Font"
                                          << QString(254, QLatin1Char('x'));
    }
    void readsCaseBlindAndKeepsDefaults() {
        QFETCH(QByteArray, file);
        QFETCH(QString, section);
        QFETCH(QString, key);
        writeAll(m_path, file);
        QTEST(m_ini.GetStringValue(section, key, QStringLiteral("dflt")), "expected");
        QCOMPARE(readAll(m_path), file); // a read changes nothing
    }

    void numbers_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("expected");
        QTest::newRow("plain") << QByteArray("42") << 42;
        QTest::newRow("negative") << QByteArray("-1") << -1;
        QTest::newRow("leading digits") << QByteArray("12abc") << 12;
        QTest::newRow("not a number") << QByteArray("abc") << 0;
        QTest::newRow("empty is default") << QByteArray("") << 77;
        QTest::newRow("32-bit wrap") << QByteArray("4294967295") << -1;
    }
    void numbers() {
        QFETCH(QByteArray, value);
        writeAll(m_path, "[Settings]\nN=" + value + "\n");
        QTEST(m_ini.GetNumericValue(QStringLiteral("Settings"), QStringLiteral("N"), 77), "expected");
    }

    void failures_data() {
        QTest::addColumn<int>("op");
        QTest::addColumn<bool>("fileExists");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<qint32>("expected");
        // op: 0 read text, 1 read number, 2 save text, 3 save number, 4 delete key,
        //     5 delete section, 6 keys, 7 sections, 8 set the key as the file name
        const QString s = QStringLiteral("Settings"), k = QStringLiteral("K");
        QTest::newRow("read missing file") << 0 << false << s << k << CIniFile::kFileNotFound;
        QTest::newRow("number missing file") << 1 << false << s << k << CIniFile::kFileNotFound;
        QTest::newRow("read empty section ok") << 0 << true << QString() << k << qint32(0);
        QTest::newRow("write creates file") << 2 << false << s << k << qint32(0);
        QTest::newRow("write empty section") << 2 << true << QString() << k << CIniFile::kInvalidSection;
        QTest::newRow("write empty key") << 2 << true << s << QString() << CIniFile::kInvalidKey;
        QTest::newRow("number empty key") << 3 << true << s << QString() << CIniFile::kInvalidKey;
        QTest::newRow("delete key missing file") << 4 << false << s << k << CIniFile::kFileNotFound;
        QTest::newRow("delete key empty key") << 4 << true << s << QString() << CIniFile::kInvalidKey;
        QTest::newRow("delete section empty") << 5 << true << QString() << k << CIniFile::kInvalidSection;
        QTest::newRow("keys empty section") << 6 << true << QString() << k << CIniFile::kInvalidSection;
        QTest::newRow("keys missing file before section") << 6 << false << QString() << k << CIniFile::kFileNotFound;
        QTest::newRow("sections missing file") << 7 << false << s << k << CIniFile::kFileNotFound;
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
        QStringList list;
        const qint32 got = raised([&] {
            switch (op) {
            case 0: m_ini.GetStringValue(section, key, {}); break;
            case 1: m_ini.GetNumericValue(section, key, 0); break;
            case 2: m_ini.SaveStringValue(section, key, QStringLiteral("v")); break;
            case 3: m_ini.SaveNumericValue(section, key, 1); break;
            case 4: m_ini.DeleteKey(section, key); break;
            case 5: m_ini.DeleteSection(section); break;
            case 6: m_ini.EnumerateAllKeys(section, list); break;
            case 7: m_ini.EnumerateAllSections(list); break;
            case 8: m_ini.setFileName(key); break;
            }
        });
        QCOMPARE(got, expected);
        if (expected != 0)
            QCOMPARE(CIniFile::describe(expected).isEmpty(), false);
    }

    void writesKeepOtherLinesInOrder_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("replace keeps spelling")
            << QByteArray("; top\n[Settings]\nFONT=A\n; note\nB=2\n") << "settings" << "Font" << "X"
            << QByteArray("; top\n[Settings]\nFONT=X\n; note\nB=2\n");
        QTest::newRow("append to section before blank")
            << QByteArray("[Settings]\nA=1\n\n[Jingles]\nJ=2\n") << "Settings" << "New" << "v"
            << QByteArray("[Settings]\nA=1\nNew=v\n\n[Jingles]\nJ=2\n");
        QTest::newRow("new section at end") << QByteArray("[Settings]\nA=1\n") << "Jingles" << "1" << "x"
                                            << QByteArray("[Settings]\nA=1\n[Jingles]\n1=x\n");
        QTest::newRow("empty value") << QByteArray("[Settings]\nA=1\n") << "Settings" << "A" << ""
                                     << QByteArray("[Settings]\nA=\n");
        QTest::newRow("odd lines kept")
            << QByteArray("garbage line\n[Settings]\nno equals here\n\xff\xfe=bytes\nA=1\n") << "Settings" << "A" << "2"
            << QByteArray("garbage line\n[Settings]\nno equals here\n\xff\xfe=bytes\nA=2\n");
        QTest::newRow("line break folded") << QByteArray("[S]\n") << "S" << "K" << "a\nb"
                                           << QByteArray("[S]\nK=a b\n");
        QTest::newRow("crlf kept") << QByteArray("[S]\r\nA=1\r\n") << "S" << "A" << "2"
                                   << QByteArray("[S]\r\nA=2\r\n");
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

    void numericSaveIsSixteenBit() {
        m_ini.SaveNumericValue(QStringLiteral("Settings"), QStringLiteral("N"), qint16(-5));
        QCOMPARE(m_ini.GetNumericValue(QStringLiteral("Settings"), QStringLiteral("N"), 0), -5);
        const int big = 40000;
        m_ini.SaveNumericValue(QStringLiteral("Settings"), QStringLiteral("N"), qint16(big));
        QCOMPARE(m_ini.GetNumericValue(QStringLiteral("Settings"), QStringLiteral("N"), 0), 40000 - 65536);
    }

    void deleteAndEnumerate() {
        writeAll(m_path, "[Settings]\nA=1\nb=2\n;c=3\nnoequals\n[Jingles]\nJ=x\n[Other]\n");
        QStringList keys;
        QCOMPARE(m_ini.EnumerateAllKeys(QStringLiteral("SETTINGS"), keys), 2);
        QCOMPARE(keys, QStringList({"A", "b"}));
        QStringList sections;
        QCOMPARE(m_ini.EnumerateAllSections(sections), 3);
        QCOMPARE(sections, QStringList({"Settings", "Jingles", "Other"}));
        m_ini.DeleteKey(QStringLiteral("settings"), QStringLiteral("a"));
        m_ini.DeleteSection(QStringLiteral("jingles"));
        QCOMPARE(readAll(m_path), QByteArray("[Settings]\nb=2\n;c=3\nnoequals\n[Other]\n"));
        keys << "stale";
        QCOMPARE(m_ini.EnumerateAllKeys(QStringLiteral("Missing"), keys), 0);
        QVERIFY(keys.isEmpty());
    }

    void sectionListCutAt8192() {
        QByteArray file;
        for (int i = 0; i < 1000; ++i)
            file += "[Section" + QByteArray::number(100000 + i) + "]\n"; // 13 characters + NUL each
        writeAll(m_path, file);
        QStringList sections;
        const int n = m_ini.EnumerateAllSections(sections);
        QVERIFY(n < 1000);
        int chars = 0;
        for (const auto& s : sections)
            chars += s.size() + 1;
        QVERIFY(chars <= 8192);
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
        // The write lands through a temporary file and a rename: the file's
        // identity changes and no temporary is left beside it.
        writeAll(m_path, "[Settings]\nA=1\n");
        m_ini.SaveStringValue(QStringLiteral("Settings"), QStringLiteral("A"), "2");
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files), QStringList{"settings.ini"});
        QCOMPARE(readAll(m_path), QByteArray("[Settings]\nA=2\n"));
    }
};

KV_TEST_CLASS(TestCIniFile)
#include "tst_cinifile.moc"
