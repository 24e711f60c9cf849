#include "childprocess.h"
#include "filerights.h"
#include "history/historycsv.h"
#include "historyfixture.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace historytest;

namespace {

bool writeBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

QByteArray readBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

const QByteArray kHeader = "\"Column1\",\"Singer\",\"Artist Name\",\"Track Name\",\"Key\"\r\n";

} // namespace

class TestHistoryCsv : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<QTemporaryDir> m_dir;

    QString file(const QString& name) const { return m_dir->filePath(name); }
    static HistoryFilter everyRow() { return {HistoryStore::kAll, false, false}; }

private slots:
    void init() {
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
        m_dir = std::make_unique<QTemporaryDir>();
    }
    void cleanup() {
        m_dir.reset();
        m_ws.reset();
        m_prompts.reset();
    }

    // What a file brings into the history: the rows before the first bad one,
    // and whether an error ended the reading.
    void read_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("error"); // a piece of the error; empty when none

        QTest::newRow("our own export") << kHeader + "\"/s/a.zip\",\"Ann\",\"Abba\",\"SOS\",2\r\n"
                                        << QStringList{"Ann|Abba|SOS|2|/s/a.zip"} << "";
        QTest::newRow("Windows-1252, unquoted key")
            << QByteArray("Column1,Singer,Artist Name,Track Name,Key\r\n"
                          "\"C:\\Songs\\b.zip\",\"Ren\xe9\"\x92s\",\"Beyonc\xe9\",\"\x93Halo\x94\",-3\r\n")
            << QStringList{QString::fromUtf8("René\"’s|Beyoncé|“Halo”|-3|C:\\Songs\\b.zip")} << "";
        QTest::newRow("quotes and commas")
            << kHeader + "\"/s/x.zip\",\"O'Neil, \"\"Big\"\" Jim\",\"AC/DC\",\"T.N.T.\",0\r\n"
            << QStringList{"O'Neil, \"Big\" Jim|AC/DC|T.N.T.|0|/s/x.zip"} << "";
        QTest::newRow("line breaks in fields")
            << kHeader + "\"/s/x.zip\",\"Ann\",\"Two\r\nLines\",\"And\nOne\",1\r\n"
            << QStringList{"Ann|Two\r\nLines|And\nOne|1|/s/x.zip"} << "";
        QTest::newRow("last line without its end")
            << kHeader + "\"/a\",\"Ann\",\"A\",\"T\",1\r\n\"/b\",\"Bob\",\"B\",\"U\",2"
            << QStringList{"Ann|A|T|1|/a", "Bob|B|U|2|/b"} << "";
        QTest::newRow("LF line ends") << QByteArray("h\n/a,Ann,A,T,1\n/b,Bob,B,U,2\n")
                                      << QStringList{"Ann|A|T|1|/a", "Bob|B|U|2|/b"} << "";
        QTest::newRow("more than five columns")
            << QByteArray("a,b,c,d,e,f,g\r\n/a,Ann,A,T,4,extra,\"more, still\"\r\n")
            << QStringList{"Ann|A|T|4|/a"} << "";
        QTest::newRow("empty artist and path") << kHeader + ",\"Ann\",,\"T\",0\r\n"
                                               << QStringList{"Ann||T|0|"} << "";
        QTest::newRow("UTF-8 with byte-order mark")
            << QByteArray("\xEF\xBB\xBF") + kHeader + "\"/a\",\"Zo\xC3\xAB\",\"A\",\"T\",0\r\n"
            << QStringList{QString::fromUtf8("Zoë|A|T|0|/a")} << "";
        QTest::newRow("header only") << kHeader << QStringList{} << "";
        QTest::newRow("empty key ends the import")
            << kHeader + "/a,Ann,A,T,1\r\n/b,Bob,B,U,\r\n/c,Cy,C,V,3\r\n"
            << QStringList{"Ann|A|T|1|/a"} << "Key is empty";
        QTest::newRow("key not a number") << kHeader + "/a,Ann,A,T,1\r\n/b,Bob,B,U,two\r\n"
                                          << QStringList{"Ann|A|T|1|/a"} << "not a whole number";
        QTest::newRow("key out of range") << kHeader + "/b,Bob,B,U,99999999999\r\n"
                                          << QStringList{} << "not a whole number";
        QTest::newRow("too few columns") << kHeader + "/a,Ann,A\r\n" << QStringList{} << "Key is missing";
        QTest::newRow("JPEG renamed .csv") << QByteArray("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00\x01\x01\x00\x00"
                                                         "\x48\x00\x48\x00\x00\n\xFF\xDB,\x07\x1c\xFF\xD9",
                                                         28)
                                           << QStringList{} << "not imported";
        QTest::newRow("empty file") << QByteArray() << QStringList{} << "is empty";
    }
    void read() {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, rows);
        QFETCH(QString, error);
        QVERIFY(writeBytes(file("in.csv"), bytes));
        const HistoryCsv::ImportOutcome out = HistoryCsv::read(file("in.csv"));
        QCOMPARE(allRows(), rows);
        QCOMPARE(out.rows, rows.size());
        QCOMPARE(out.ok, error.isEmpty());
        if (!error.isEmpty())
            QVERIFY2(out.error.contains(error), qPrintable(out.error));
    }

    // A line of 50 MB is no history: the reading ends with an error, the rows
    // before it kept, without holding the line in memory.
    void fiftyMegabyteLine() {
        QFile f(file("big.csv"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(kHeader + "/a,Ann,A,T,1\r\n\"");
        const QByteArray chunk(1 << 20, 'x');
        for (int i = 0; i < 50; ++i)
            f.write(chunk);
        f.write("\",Bob,B,U,2\r\n");
        f.close();
        const HistoryCsv::ImportOutcome out = HistoryCsv::read(file("big.csv"));
        QVERIFY(!out.ok);
        QVERIFY2(out.error.contains("1 MB"), qPrintable(out.error));
        QCOMPARE(allRows(), QStringList{"Ann|A|T|1|/a"});
    }

    // Whatever a name holds, the file brings it back as it was; a second
    // import doubles the rows.
    void roundTrip() {
        const QStringList singers{"O'Neil", "Smith, Jr.",   "The \"Boss\"",          "AC/DC",
                                  "..",     "Two\r\nLines", QString::fromUtf8("Zoë")};
        for (int i = 0; i < singers.size(); ++i)
            add(singers.at(i), i == 0 ? QString() : "Art,ist", "Ti\"tle", i - 3, "/s/it's.zip");
        add("Ann", "A", "T", 1, "/a");
        add("Ann", "A", "T", 1, "/a");
        const QStringList before = allRows();
        const HistoryCsv::ExportOutcome ex = HistoryCsv::write(everyRow(), file("h.csv"));
        QVERIFY2(ex.written, qPrintable(ex.error));
        QCOMPARE(ex.rows, before.size());
        HistoryStore::clear(HistoryStore::kAll);
        QVERIFY(HistoryCsv::read(file("h.csv")).ok);
        QCOMPARE(allRows(), before);
        QVERIFY(HistoryCsv::read(file("h.csv")).ok);
        QCOMPARE(allRows().size(), 2 * before.size());
    }

    // The file's form: UTF-8 without a byte-order mark, CRLF, the header, text
    // quoted, the key bare; "No Dups" writes a repeated row once.
    void exportForm() {
        add(QString::fromUtf8("Zoë"), "A", "T", -2, "/a");
        add(QString::fromUtf8("Zoë"), "A", "T", -2, "/a");
        const HistoryCsv::ExportOutcome ex =
            HistoryCsv::write({HistoryStore::kAll, true, false}, file("h.csv"));
        QVERIFY(ex.written);
        QCOMPARE(readBytes(file("h.csv")), kHeader + "\"/a\",\"Zo\xC3\xAB\",\"A\",\"T\",-2\r\n");
    }

    // The export's file name stays in the desktop folder whatever the singer is called.
    void exportName_data() {
        QTest::addColumn<QString>("singer");
        QTest::addColumn<QString>("fileName");
        QTest::newRow("all") << "(All)" << QString("(All) History.csv");
        QTest::newRow("plain") << "Ann" << QString("Ann History.csv");
        QTest::newRow("slash") << "AC/DC" << QString("AC-DC History.csv");
        QTest::newRow("dots") << ".." << QString(".. History.csv");
        QTest::newRow("climbing") << "../../etc/x" << QString("..-..-etc-x History.csv");
    }
    void exportName() {
        QFETCH(QString, singer);
        QFETCH(QString, fileName);
        add(singer, "A", "T", 0, "/a");
        const QString desk = m_dir->filePath("Desk/Top");
        QVERIFY(QDir().mkpath(desk));
        const HistoryCsv::ExportOutcome ex = HistoryCsv::exportToFolder({singer, true, false}, singer, desk);
        QVERIFY2(ex.written, qPrintable(ex.error));
        QCOMPARE(QDir(desk).entryList(QDir::Files | QDir::Hidden), QStringList{fileName});
        QCOMPARE(ex.rows, 1);
        // Nothing anywhere else below the temporary folder.
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"Desk"});
        QCOMPARE(QDir(m_dir->filePath("Desk")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{"Top"});
    }

    void exportToMissingOrLockedFolder() {
        add("Ann", "A", "T", 0, "/a");
        HistoryCsv::ExportOutcome ex =
            HistoryCsv::exportToFolder(everyRow(), "Ann", m_dir->filePath("NoDesktop"));
        QVERIFY(!ex.written);
        QVERIFY2(ex.error.contains("does not exist"), qPrintable(ex.error));
        QVERIFY(!QFileInfo::exists(m_dir->filePath("NoDesktop")));

        const QString locked = m_dir->filePath("Locked");
        QVERIFY(QDir().mkpath(locked));
        QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
        {
            WithoutFileRights noRights;
            ex = HistoryCsv::exportToFolder(everyRow(), "Ann", locked);
        }
        QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(!ex.written);
        QVERIFY2(ex.error.contains("could not be written"), qPrintable(ex.error));
        QVERIFY(QDir(locked).isEmpty());
    }

    // A second export replaces the first; one that fails on the way leaves
    // the earlier file whole and no stray file beside it.
    void exportReplacesOrLeavesTheOldFile() {
        add("Ann", "A", "T", 0, "/a");
        QVERIFY(HistoryCsv::write(everyRow(), file("h.csv")).written);
        add("Bob", "B", "U", 0, "/b");
        QVERIFY(HistoryCsv::write(everyRow(), file("h.csv")).written);
        const QByteArray second = readBytes(file("h.csv"));
        QCOMPARE(second.count("\r\n"), 3);
        ExecuteSql("DROP TABLE tblKaraokeTrackHistory");
        const HistoryCsv::ExportOutcome ex = HistoryCsv::write(everyRow(), file("h.csv"));
        QVERIFY(!ex.written);
        QVERIFY(!ex.error.isEmpty());
        QCOMPARE(readBytes(file("h.csv")), second);
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"h.csv"});
    }

    // The command-line tool: the same file, the same rules.
    void toolExportAndImport() {
        add("Ann", "A", "T", 2, "/a");
        add("Ann", "A", "T", 2, "/a");
        add("Bob", "B", "U", 0, "/b");
        CloseDatabase();
        kvtest::ChildResult r = kvtest::runTool({"history", "export", file("ann.csv"), "--singer", "Ann"});
        QVERIFY2(r.exitCode == 0, r.err.constData());
        QCOMPARE(readBytes(file("ann.csv")).count("\r\n"), 3);
        r = kvtest::runTool({"history", "export", file("all.csv"), "--no-dups"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(readBytes(file("all.csv")).count("\r\n"), 3);

        r = kvtest::runTool({"history", "import", file("ann.csv")});
        QVERIFY2(r.exitCode == 0, r.err.constData());
        QVERIFY(r.out.contains("2 history rows imported"));

        QVERIFY(writeBytes(file("bad.csv"), kHeader + "/c,Cy,C,V,5\r\n/d,Di,D,W,\r\n"));
        const int logged = TestWorkspace::errorLogRecords();
        r = kvtest::runTool({"history", "import", file("bad.csv")});
        QCOMPARE(r.exitCode, 1);
        QVERIFY(r.err.contains("Key is empty"));
        QCOMPARE(TestWorkspace::errorLogRecords(), logged + 1);
        QVERIFY(TestWorkspace::errorLog().contains(HistoryCsv::kImportSource));

        r = kvtest::runTool({"history", "import"});
        QCOMPARE(r.exitCode, 2);
        QVERIFY(OpenDatabase());
        QCOMPARE(allRows(), (QStringList{"Ann|A|T|2|/a", "Ann|A|T|2|/a", "Ann|A|T|2|/a", "Ann|A|T|2|/a",
                                         "Bob|B|U|0|/b", "Cy|C|V|5|/c"}));
    }
};

KV_TEST_CLASS(TestHistoryCsv)
#include "tst_historycsv.moc"
