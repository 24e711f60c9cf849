#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "fakeplayback.h"
#include "playback/cdgnormaliser.h"
#include "playback/cencryptex.h"
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

const QByteArray kMp3 = QByteArray("ID3\x03\x00", 5) + QByteArray(4000, 'a');

int historyRows() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT COUNT(*) FROM tblKaraokeTrackHistory"));
    return q.next() ? q.value(0).toInt() : -1;
}

QStringList tempFiles() {
    return QDir(SongStarter::unpackFolder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}

// A zip whose central directory declares `declared` bytes for its first entry.
QByteArray withDeclaredSize(QByteArray zip, quint32 declared) {
    const qsizetype at = zip.indexOf(QByteArray("PK\x01\x02", 4));
    for (int i = 0; at >= 0 && i < 4; ++i)
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

    QString songPath(const QString& name) const { return m_songs->filePath(name); }

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>(true);
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_rig = std::make_unique<PlaybackRig>();
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
        QVERIFY(writeFile(path, kMp3));
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
            ExecuteSql("SELECT SingerName || '|' || Artist || '|' || Title || '|' || [Key] || '|' || "
                       "TrackPath FROM tblKaraokeTrackHistory");
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), "Ann|O'Brien|Tea, Two|-3|" + path);
    }

    // Whatever the settings, the queue is saved once and the song plays.
    void settingsShapeTheStart_data() {
        QTest::addColumn<bool>("autoRemove");
        QTest::addColumn<bool>("saveHistory");
        QTest::addColumn<QString>("performer");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("expectHistory");
        QTest::addColumn<int>("expectRowsLeft");
        QTest::newRow("last row") << true << true << "Ann" << 1 << 1 << 0;
        QTest::newRow("row stays without auto-removal") << false << true << "Ann" << 1 << 1 << 1;
        QTest::newRow("empty performer writes no history") << true << true << "" << 2 << 0 << 1;
        QTest::newRow("history off") << true << false << "Ann" << 2 << 0 << 1;
    }
    void settingsShapeTheStart() {
        QFETCH(bool, autoRemove);
        QFETCH(bool, saveHistory);
        QFETCH(QString, performer);
        QFETCH(int, rows);
        Cfg.AutoRemoveFromQueue = autoRemove;
        Cfg.SaveHistory = saveHistory;
        const QString path = songPath("song.mp3");
        QVERIFY(writeFile(path, kMp3));
        for (int i = 0; i < rows; ++i)
            m_rig->queue.rows.append(song(performer, path));
        QVERIFY(m_rig->starter.PlayKaraoke(0));
        QTEST(historyRows(), "expectHistory");
        QTEST(m_rig->queue.rowCount(), "expectRowsLeft");
        QCOMPARE(m_rig->queue.saves, 1);
        QCOMPARE(m_rig->journal.last(), QStringLiteral("SendCommand:40045"));
    }

    // Of an archive with more than one song in it, only the song's own entries
    // are unpacked: the last audio entry and the graphics named like it.
    void onlyTheSongsOwnEntriesAreUnpacked() {
        const QByteArray own = cdgStream(0.5), other = cdgStream(0.7);
        const QByteArray oggBytes = "OggS" + QByteArray(3000, 'o');
        const QString path = songPath("Two Songs.zip");
        QVERIFY(makeZip(path, {{"b.cdg", own}, {"a.ogg", oggBytes}, {"b.mp3", kMp3}, {"other.cdg", other}}));
        m_rig->queue.rows = {song("Ann", path)};
        QVERIFY(m_rig->starter.PlayKaraoke(0));
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(tempFiles(), (QStringList{"Two Songs.cdg", "Two Songs.mp3", "Two Songs.play.cdg"}));
        const QString temp = SongStarter::unpackFolder();
        QCOMPARE(readFile(temp + "Two Songs.cdg"), own);
        QCOMPARE(readFile(temp + "Two Songs.mp3"), kMp3);
        QCOMPARE(readFile(temp + "Two Songs.play.cdg"), CdgNormaliser::normalise(own));
    }

    // Only the file's own name makes an archive: a song in a folder named like
    // one plays as the plain file it is.
    void archiveByItsOwnName_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("archive");
        QTest::newRow("mp3 in a .zip-named folder") << "Best.Zip Hits/Song.mp3" << false;
        QTest::newRow("zip in a .zip-named folder") << "Best.Zip Hits/Song.ZIP" << true;
        QTest::newRow("ogg in a .kma-named folder") << "Old.kma/Song.ogg" << false;
        QTest::newRow(".kma in any case") << "Song.Kma" << true;
        QTest::newRow(".zip inside the name") << "Song.zip.mp3" << false;
    }
    void archiveByItsOwnName() {
        QFETCH(QString, name);
        QFETCH(bool, archive);
        const QString path = songPath(name);
        QCOMPARE(SongUnpacker::IsArchive(path), archive);
        if (archive)
            return;
        QVERIFY(writeFile(path, kMp3));
        m_rig->queue.rows = {song("Ann", path)};
        QVERIFY(m_rig->starter.PlayKaraoke(0));
        QVERIFY(m_rig->journal.contains("PlayFile:" + path));
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // Songs good and bad: a bad one (gone, or an archive that cannot give
    // its song) is told by name, number and plain words after the stop, plays
    // nothing, keeps the row, writes no history and leaves nothing unpacked.
    void archives_data() {
        QTest::addColumn<QString>("archiveName");
        QTest::addColumn<QByteArray>("bytes");  // empty: no such file
        QTest::addColumn<QString>("password");  // the setting's plain password
        QTest::addColumn<qint64>("freeSpace");  // the disk's free bytes; -1: the disk's own figure
        QTest::addColumn<QStringList>("boxes"); // empty: the song plays
        QTest::addColumn<QString>("playedExt");
        QTest::addColumn<QString>("told"); // how the unzip error box ends: number, then words
        QTemporaryDir tmp;
        const auto zip = [&tmp](const QList<ZipEntry>& entries) {
            makeZip(tmp.filePath("z.zip"), entries, QStringLiteral("s3cret, ü"));
            return readFile(tmp.filePath("z.zip"));
        };
        const auto plays = [](const char* tag, const char* name, const QByteArray& bytes, const char* ext,
                              const char* password = "") {
            QTest::newRow(tag) << QString(name) << bytes << QString::fromUtf8(password) << -1LL
                               << QStringList{} << QString(ext) << QString();
        };
        // Refused with the unzip error box unless other boxes are named.
        const auto refused = [](const char* tag, const char* name, const QByteArray& bytes,
                                const QString& told, const char* password = "", qint64 freeSpace = -1,
                                const QStringList& boxes = {""}) {
            QTest::newRow(tag) << QString::fromUtf8(name) << bytes << QString(password) << freeSpace << boxes
                               << QString() << told;
        };
        const QByteArray cdg = cdgStream(0.5);
        const QByteArray good = zip({{"a.cdg", cdg}, {"a.mp3", kMp3}});
        const QByteArray locked = zip({{"a.cdg", cdg, true}, {"a.mp3", kMp3, true}});
        QByteArray damaged = good;
        damaged[200] = char(damaged[200] ^ 0x55); // inside the first entry's data
        const QString damagedWords = "The archive is damaged or is not a zip file.";
        const QString tooLarge = "2004\nA song file in it is far larger than any song needs.";
        plays("upper case, sub-folders, extra files", "Sub Folder Song.zip",
              zip({{"deep/dir/A.CDG", cdg}, {"deep/A.MP3", kMp3}, {"readme.txt", "hello"}}), ".mp3");
        plays(".kma archive with ogg", "Song.kma", zip({{"s.cdg", cdg}, {"s.ogg", kMp3}}), ".ogg");
        plays("password right", "Locked.zip", locked, ".mp3", "s3cret, ü");
        refused("song gone", "gone, really: \"gone\".zip", {}, {}, "", -1, {"Song Not Found"});
        refused("neither", "Neither.zip", zip({{"notes.txt", "x"}}), {}, "", -1,
                {"Missing CDG File", "Missing Audio File"});
        refused("password wrong", "Locked.zip", locked,
                "1027\nThe archive needs a different password from the one that is set.", "not it");
        refused("password missing", "Locked.zip", locked,
                "1026\nThe archive needs a password, and none is set.");
        refused("not a zip at all", "Bad.zip", QByteArray(3000, 'q'), "1019\n" + damagedWords);
        refused("damaged data", "Bad.zip", damaged, "1007\n" + damagedWords);
        // Sizes are judged before anything is written.
        refused("absurd declared size", "Bad.zip", withDeclaredSize(good, 0xFFFFFFF0u), tooLarge);
        refused("graphics far too large", "Bad.zip", withDeclaredSize(good, 100 * 1024 * 1024), tooLarge);
        refused("no room on the disk", "Full.zip", good,
                "2001\nA song file in it is too large for the free space on the disk.", "", 1000);
    }
    void archives() {
        QFETCH(QString, archiveName);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, password);
        QFETCH(qint64, freeSpace);
        QFETCH(QStringList, boxes);
        QFETCH(QString, playedExt);
        QFETCH(QString, told);
        const QString path = songPath(archiveName);
        if (!bytes.isEmpty())
            QVERIFY(writeFile(path, bytes));
        oSettings->SaveStringValue("Settings", "mus", CEncryptEx::encipher(password));
        BuildArchivePassword();
        if (freeSpace >= 0)
            m_rig->starter.setFreeSpaceProbe([freeSpace](const QString&) { return freeSpace; });
        m_rig->queue.rows = {song("Ann", path)};
        const bool started = m_rig->starter.PlayKaraoke(0);
        QCOMPARE(m_prompts->boxTitles(), boxes);
        QCOMPARE(started, !playedExt.isEmpty());
        QCOMPARE((QList<int>{m_rig->queue.rowCount(), historyRows()}), (QList<int>{!started, started}));
        // The song playing before is stopped first, whatever follows.
        QCOMPARE(m_rig->journal.mid(0, 2), (QStringList{"GetDetailsFromRow:0", "SendCommand:40047"}));
        if (started) {
            const QString played = QDir(SongStarter::unpackFolder()).canonicalPath() + "/" +
                                   QFileInfo(path).completeBaseName() + playedExt;
            QVERIFY(m_rig->journal.contains("PlayFile:" + played));
        } else {
            QVERIFY(m_rig->journal.filter("PlayFile").isEmpty());
            QVERIFY(tempFiles().isEmpty());
        }
        for (const auto& c : m_prompts->calls)
            QVERIFY2(c.text.contains(path), qPrintable(c.text));
        if (!told.isEmpty())
            QCOMPARE(m_prompts->calls.value(0).text, "There was an Error unzipping the file " + path +
                                                         "\nPlease Check This File For Errors: \n" + told);
        // Nothing was written beside the archive.
        QCOMPARE(QDir(m_songs->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 bytes.isEmpty() ? QStringList{} : QStringList{archiveName});
    }
};

KV_TEST_CLASS(TestSongStarter)
#include "tst_songstarter.moc"
