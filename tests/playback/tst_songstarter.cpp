#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "fakeplayback.h"
#include "playback/cencryptex.h"
#include "playback/modpacemaker.h"
#include "playback/songstarter.h"
#include "playback/songunpacker.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace fakeplayback;
using namespace playbackmedia;

namespace {

int historyRows() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT COUNT(*) FROM tblKaraokeTrackHistory"));
    return q.next() ? q.value(0).toInt() : -1;
}

QStringList tempFiles() {
    return QDir(SongStarter::unpackFolder())
        .entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

// A zip whose central directory declares `declared` bytes for its first entry.
QByteArray withDeclaredSize(QByteArray zip, quint32 declared) {
    const QByteArray central("PK\x01\x02", 4);
    const qsizetype at = zip.indexOf(central);
    if (at >= 0)
        for (int i = 0; i < 4; ++i)
            zip[at + 24 + i] = char((declared >> (8 * i)) & 0xFF);
    return zip;
}

} // namespace

// PlayKaraoke and UnpackSong against a fake player, a fake queue and fake labels.
class TestSongStarter : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<PlaybackRig> m_rig;
    std::unique_ptr<QTemporaryDir> m_songs;
    QByteArray m_cdg;
    QByteArray m_mp3;

    QString songPath(const QString& name) const { return m_songs->filePath(name); }

private slots:
    void initTestCase() {
        m_cdg = cdgStream(0.5);
        m_mp3 = QByteArray("ID3\x03\x00", 5) + QByteArray(4000, 'a');
    }

    void init() {
        m_ws = std::make_unique<TestWorkspace>(true);
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_rig = std::make_unique<PlaybackRig>();
        QVERIFY(m_rig->pacemaker.FindPaceMaker());
        m_rig->starter.setAnnouncements(&m_rig->announcer);
        m_rig->starter.setJingles(&m_rig->jingles);
        m_rig->journal.clear();
        m_songs = std::make_unique<QTemporaryDir>();
        Cfg = AppSettings();
        ArchivePassword.clear();
    }

    void cleanup() {
        m_rig.reset();
        m_prompts.reset();
        m_ws.reset();
    }

    void playKaraokeRunsItsStepsInOrder() {
        const QString path = songPath("Singer's Song.mp3");
        QVERIFY(writeFile(path, m_mp3));
        m_rig->queue.rows = {song("Ann", path, -3, "O'Brien", "Tea, Two"), song("Bob", path)};
        m_rig->jingles.state = 1;
        QVERIFY(m_rig->starter.PlayKaraoke(0));
        const QStringList expected = {
            "GetDetailsFromRow:0", "SendCommand:40047",
            "showCurrentSong:||",  "removeAudioFilter:kvpitch",
            "setKeyCaption:0",     "setAudioFilter:kvpitch:rubberband=pitch-scale=0.840896",
            "setKeyCaption:-3",    "ClearPlaylist",
            "PlayFile:" + path,    "showCurrentSong:Ann|O'Brien|Tea, Two",
            "removeRow:0",         "saveQueue",
            "UpdateNextPerformer", "jingleStop",
            "SendCommand:40045",
        };
        QCOMPARE(m_rig->journal, expected);
        QVERIFY(m_prompts->calls.isEmpty());
        QSqlQuery q =
            ExecuteSql("SELECT SingerName, Artist, Title, [Key], TrackPath FROM tblKaraokeTrackHistory");
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("Ann"));
        QCOMPARE(q.value(1).toString(), QStringLiteral("O'Brien"));
        QCOMPARE(q.value(2).toString(), QStringLiteral("Tea, Two"));
        QCOMPARE(q.value(3).toInt(), -3);
        QCOMPARE(q.value(4).toString(), path);
        QCOMPARE(m_rig->view.key, QStringLiteral("-3"));
    }

    void settingsShapeTheStart_data() {
        QTest::addColumn<bool>("autoRemove");
        QTest::addColumn<bool>("showNext");
        QTest::addColumn<bool>("saveHistory");
        QTest::addColumn<QString>("performer");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("jingleState");
        QTest::addColumn<int>("expectHistory");
        QTest::addColumn<int>("expectRowsLeft");
        QTest::addColumn<QString>("expectAnnouncement");
        QTest::addColumn<bool>("expectJingleStop");
        const auto row = [](const char* name, bool autoRemove, bool showNext, bool saveHistory,
                            const char* performer, int rows, int jingleState, int history, int rowsLeft,
                            const char* announcement, bool jingleStop) {
            QTest::newRow(name) << autoRemove << showNext << saveHistory << QString(performer) << rows
                                << jingleState << history << rowsLeft << QString(announcement) << jingleStop;
        };
        const char* update = "UpdateNextPerformer";
        row("defaults", true, true, true, "Ann", 2, 0, 1, 1, update, false);
        row("last row clears the call", true, true, true, "Ann", 1, 0, 1, 0, "ClearNextPerformer", false);
        row("row stays without auto-removal", false, true, true, "Ann", 1, 0, 1, 1, update, false);
        row("no announcement", true, false, true, "Ann", 2, 0, 1, 1, "", false);
        row("empty performer writes no history", true, true, true, "", 2, 0, 0, 1, update, false);
        row("history off", true, true, false, "Ann", 2, 0, 0, 1, update, false);
        row("jingle playing is stopped", true, true, true, "Ann", 2, 1, 1, 1, update, true);
        row("jingle ended is left", true, true, true, "Ann", 2, 3, 1, 1, update, false);
    }
    void settingsShapeTheStart() {
        QFETCH(bool, autoRemove);
        QFETCH(bool, showNext);
        QFETCH(bool, saveHistory);
        QFETCH(QString, performer);
        QFETCH(int, rows);
        QFETCH(int, jingleState);
        Cfg.AutoRemoveFromQueue = autoRemove;
        Cfg.ShowNextPerfomer = showNext;
        Cfg.SaveHistory = saveHistory;
        const QString path = songPath("song.mp3");
        QVERIFY(writeFile(path, m_mp3));
        for (int i = 0; i < rows; ++i)
            m_rig->queue.rows.append(song(performer, path));
        m_rig->jingles.state = jingleState;
        QVERIFY(m_rig->starter.PlayKaraoke(0));
        QTEST(historyRows(), "expectHistory");
        QTEST(m_rig->queue.rowCount(), "expectRowsLeft");
        QFETCH(QString, expectAnnouncement);
        QCOMPARE(m_rig->journal.contains("UpdateNextPerformer"), expectAnnouncement == "UpdateNextPerformer");
        QCOMPARE(m_rig->journal.contains("ClearNextPerformer"), expectAnnouncement == "ClearNextPerformer");
        QTEST(m_rig->journal.contains("jingleStop"), "expectJingleStop");
        QCOMPARE(m_rig->queue.saves, 1);
        QCOMPARE(m_rig->journal.last(), QStringLiteral("SendCommand:40045"));
    }

    void missingSongIsReportedAfterTheStopAndChangesNothing() {
        const QString path = songPath("gone, really: \"gone\".zip");
        m_rig->queue.rows = {song("Ann", path)};
        QVERIFY(writeFile(SongStarter::unpackFolder() + "leftover.mp3", "x"));
        QVERIFY(!m_rig->starter.PlayKaraoke(0));
        QCOMPARE(m_prompts->boxTitles(), QStringList{"Song Not Found"});
        QCOMPARE(m_prompts->calls[0].style, 48);
        QCOMPARE(
            m_prompts->calls[0].text,
            "The file " + path +
                " could not be found\nPlease make sure that if you have renamed any files or moved them that "
                "you have reimported");
        QCOMPARE(m_rig->journal.mid(0, 2), (QStringList{"GetDetailsFromRow:0", "SendCommand:40047"}));
        QVERIFY(!m_rig->journal.join('\n').contains("PlayFile"));
        QVERIFY(!m_rig->journal.contains("saveQueue"));
        QCOMPARE(m_rig->queue.rowCount(), 1);
        QCOMPARE(historyRows(), 0);
        QVERIFY(tempFiles().isEmpty()); // emptied before the file was looked for
    }

    void emptyQueueOrBadRowDoesNothing() {
        QVERIFY(!m_rig->starter.PlayKaraoke(0));
        m_rig->queue.rows = {song("Ann", songPath("x.mp3"))};
        QVERIFY(!m_rig->starter.PlayKaraoke(-1));
        QVERIFY(!m_rig->starter.PlayKaraoke(1));
        QVERIFY(m_rig->journal.isEmpty());
        QVERIFY(m_prompts->calls.isEmpty());
    }

    void archives_data() {
        QTest::addColumn<QString>("archiveName");
        QTest::addColumn<QList<ZipEntry>>("entries");
        QTest::addColumn<QString>("password"); // the setting's plain password
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("playedExt"); // empty: nothing played
        const QByteArray cdg = cdgStream(0.5);
        const QByteArray mp3 = QByteArray("ID3\x03\x00", 5) + QByteArray(4000, 'a');
        QTest::newRow("pair under other names")
            << "Artist - Title.zip" << QList<ZipEntry>{{"x1.cdg", cdg}, {"other.mp3", mp3}} << ""
            << QStringList{} << ".mp3";
        QTest::newRow("upper case, sub-folders, extra files")
            << "Sub Folder Song.zip"
            << QList<ZipEntry>{{"deep/dir/A.CDG", cdg}, {"deep/A.MP3", mp3}, {"readme.txt", "hello"}} << ""
            << QStringList{} << ".mp3";
        QTest::newRow(".kma archive with ogg")
            << "Song.kma" << QList<ZipEntry>{{"s.cdg", cdg}, {"s.ogg", mp3}} << "" << QStringList{} << ".ogg";
        QTest::newRow("two audio entries, the last wins")
            << "Two.zip" << QList<ZipEntry>{{"s.cdg", cdg}, {"s.mp3", mp3}, {"s.wma", mp3}} << ""
            << QStringList{} << ".wma";
        QTest::newRow("awkward name")
            << "Björk, The: \"Jóga\" it's.zip" << QList<ZipEntry>{{"a.cdg", cdg}, {"a.mp3", mp3}} << ""
            << QStringList{} << ".mp3";
        QTest::newRow("cdg only") << "CdgOnly.zip" << QList<ZipEntry>{{"a.cdg", cdg}} << ""
                                  << QStringList{"Missing Audio File"} << "";
        QTest::newRow("audio only") << "AudioOnly.zip" << QList<ZipEntry>{{"a.mp3", mp3}} << ""
                                    << QStringList{"Missing CDG File"} << "";
        QTest::newRow("neither") << "Neither.zip" << QList<ZipEntry>{{"notes.txt", "x"}} << ""
                                 << QStringList{"Missing CDG File", "Missing Audio File"} << "";
        QTest::newRow("empty audio entry") << "Empty.zip" << QList<ZipEntry>{{"a.cdg", cdg}, {"a.mp3", ""}}
                                           << "" << QStringList{"Missing Audio File"} << "";
        QTest::newRow("password right")
            << "Locked.zip" << QList<ZipEntry>{{"a.cdg", cdg, true}, {"a.mp3", mp3, true}} << "s3cret, ü"
            << QStringList{} << ".mp3";
        QTest::newRow("password wrong")
            << "Locked.zip" << QList<ZipEntry>{{"a.cdg", cdg, true}, {"a.mp3", mp3, true}} << "not it"
            << QStringList{""} << "";
        QTest::newRow("password missing")
            << "Locked.zip" << QList<ZipEntry>{{"a.cdg", cdg}, {"a.mp3", mp3, true}} << "" << QStringList{""}
            << "";
    }
    void archives() {
        QFETCH(QString, archiveName);
        QFETCH(QList<ZipEntry>, entries);
        QFETCH(QString, password);
        QFETCH(QStringList, boxes);
        QFETCH(QString, playedExt);
        const QString path = songPath(archiveName);
        QVERIFY(makeZip(path, entries, QStringLiteral("s3cret, ü")));
        oSettings->SaveStringValue("Settings", "mus", CEncryptEx::encipher(password));
        BuildArchivePassword();
        QCOMPARE(ArchivePassword, password);
        m_rig->queue.rows = {song("Ann", path)};
        const bool started = m_rig->starter.PlayKaraoke(0);
        QCOMPARE(m_prompts->boxTitles(), boxes);
        QCOMPARE(started, !playedExt.isEmpty());
        const QString stem = QFileInfo(path).completeBaseName();
        if (started) {
            const QString played = QDir(SongStarter::unpackFolder()).canonicalPath() + "/" + stem + playedExt;
            QVERIFY(m_rig->journal.contains("PlayFile:" + played));
            QVERIFY(tempFiles().contains(stem + ".cdg"));
            QVERIFY(tempFiles().contains(stem + playedExt));
            QCOMPARE(m_rig->queue.rowCount(), 0);
        } else {
            QVERIFY(tempFiles().isEmpty());
            QCOMPARE(m_rig->queue.rowCount(), 1);
            QCOMPARE(historyRows(), 0);
            QVERIFY(!m_rig->journal.join('\n').contains("PlayFile"));
        }
        if (boxes == QStringList{""}) {
            // The unzip error: no title, plain style, the path and the number.
            QCOMPARE(m_prompts->calls[0].style, 0);
            QVERIFY(m_prompts->calls[0].text.startsWith("There was an Error unzipping the file " + path +
                                                        "\nPlease Check This File For Errors: \n"));
        } else {
            for (const auto& c : m_prompts->calls)
                QVERIFY(c.text.endsWith("inside the Zip File: " + path) && c.style == 48);
        }
        // Nothing was written beside the archive.
        QCOMPARE(QDir(m_songs->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{archiveName});
    }

    void badArchivesAreRefusedAndLeaveNothing_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("code");
        QList<ZipEntry> pair{{"a.cdg", cdgStream(0.5)}, {"a.mp3", QByteArray(5000, 'm')}};
        QTemporaryDir tmp;
        makeZip(tmp.filePath("z.zip"), pair);
        const QByteArray good = readFile(tmp.filePath("z.zip"));
        QTest::newRow("not a zip at all") << QByteArray(3000, 'q') << 1000 + ZIP_ER_NOZIP;
        QTest::newRow("cut short") << good.left(good.size() / 2) << 1000 + ZIP_ER_NOZIP;
        QTest::newRow("absurd declared size")
            << withDeclaredSize(good, 0xFFFFFFF0u) << int(SongUnpacker::TooLarge);
        QByteArray damaged = good;
        damaged[200] = char(damaged[200] ^ 0x55); // inside the first entry's data
        QTest::newRow("damaged data") << damaged << 1000 + ZIP_ER_CRC;
    }
    void badArchivesAreRefusedAndLeaveNothing() {
        QFETCH(QByteArray, bytes);
        QFETCH(int, code);
        const QString path = songPath("Bad Song.zip");
        QVERIFY(writeFile(path, bytes));
        m_rig->queue.rows = {song("Ann", path)};
        QVERIFY(!m_rig->starter.PlayKaraoke(0));
        QCOMPARE(m_prompts->boxTitles(), QStringList{""});
        QVERIFY2(m_prompts->calls[0].text.endsWith("\n" + QString::number(code)),
                 qPrintable(m_prompts->calls[0].text));
        QVERIFY(tempFiles().isEmpty());
        QCOMPARE(m_rig->queue.rowCount(), 1);
    }

    void unpackerStopsWhenAnEntryGivesMoreThanItDeclared() {
        // A declared size smaller than the data: the writer must stop at it.
        QTemporaryDir tmp;
        QVERIFY(
            makeZip(tmp.filePath("z.zip"), {{"a.mp3", QByteArray(100000, 'm')}, {"a.cdg", cdgStream(0.2)}}));
        const QString path = songPath("Small Lie.zip");
        QVERIFY(writeFile(path, withDeclaredSize(readFile(tmp.filePath("z.zip")), 1000)));
        SongUnpacker unpacker(SongStarter::unpackFolder(), QString());
        const int result = unpacker.unpack(path);
        QVERIFY2(result == SongUnpacker::Overrun || result >= SongUnpacker::ZipErrorBase,
                 qPrintable(QString::number(result)));
        QVERIFY(result != SongUnpacker::Ok && result != SongUnpacker::SomeSkipped);
        QVERIFY(tempFiles().isEmpty());
    }

    void isArchive_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("archive");
        QTest::newRow("zip") << "/s/a.zip" << true;
        QTest::newRow("KMA upper") << "/s/A.KMA" << true;
        QTest::newRow("folder named .zip") << "/s/old.zip files/a.mp3" << true;
        QTest::newRow("mp3") << "/s/a.mp3" << false;
        QTest::newRow("zi p") << "/s/a.zi.p" << false;
    }
    void isArchive() {
        QFETCH(QString, path);
        QTEST(SongUnpacker::IsArchive(path), "archive");
    }

    void passwordCipherRoundTrips_data() {
        QTest::addColumn<QString>("plain");
        QTest::newRow("empty") << "";
        QTest::newRow("plain") << "karaoke";
        QTest::newRow("long, non-ASCII") << "pässwörd with spaces, commas: and more than the key's length";
    }
    void passwordCipherRoundTrips() {
        QFETCH(QString, plain);
        const QString stored = CEncryptEx::encipher(plain);
        QVERIFY(plain.isEmpty() || !stored.contains(plain));
        QCOMPARE(CEncryptEx::decipher(stored), plain);
        QCOMPARE(CEncryptEx::decipher("not hex!"), QString());
    }
};

KV_TEST_CLASS(TestSongStarter)
#include "tst_songstarter.moc"
