#pragma once

// Fakes of the player and of the main window's parts that playback talks to.
// All of them write into one journal, so that a test can read the order of
// everything a procedure did.

#include "playback/modpacemaker.h"
#include "playback/playbackseams.h"
#include "playback/playerlink.h"
#include "playback/songstarter.h"

#include <QList>
#include <QMap>
#include <QStringList>

namespace fakeplayback {

class FakePlayer : public PlayerLink {
public:
    explicit FakePlayer(QStringList& journal) : m_journal(journal) {}

    bool connected = true;
    int raw = RawStopped;
    int position = -1;
    int length = -1;
    int playlistLength = 0;
    QMap<QString, QString> filters;

    bool isConnected() const override { return connected; }
    bool FindPlayer() override { return connected; }
    bool StartPlayer() override { return connected; }
    void ClearPlaylist() override {
        log("ClearPlaylist");
        playlistLength = 0;
    }
    QString GetStatus() override { return statusText(raw); }
    int rawStatus() override { return raw; }
    int GetPositionSeconds() override { return position; }
    int GetLengthSeconds() override { return length; }
    void SetPanning(int value) override {
        if (value >= -127 && value <= 127)
            log(QStringLiteral("SetPanning:%1").arg(value));
    }
    int GetPlaylistLength() override { return playlistLength; }
    void DisableRepeat() override { log("DisableRepeat"); }
    void DisableShuffle() override { log("DisableShuffle"); }
    void SendCommand(int id) override {
        log(QStringLiteral("SendCommand:%1").arg(id));
        if (id == CmdPlay && playlistLength > 0)
            raw = RawPlaying;
        else if (id == CmdPause && raw != RawStopped)
            raw = raw == RawPaused ? RawPlaying : RawPaused;
        else if (id == CmdStop)
            raw = RawStopped;
        // CmdFadeStop: the fade runs until the test says it has ended.
    }
    bool PlayFile(const QString& path) override {
        log("PlayFile:" + path);
        ++playlistLength;
        return true;
    }
    bool hasAudioFilter(const QString&) override { return connected; }
    bool setAudioFilter(const QString& label, const QString& filter) override {
        log("setAudioFilter:" + label + ":" + filter);
        filters[label] = filter;
        return true;
    }
    void removeAudioFilter(const QString& label) override {
        log("removeAudioFilter:" + label);
        filters.remove(label);
    }

private:
    void log(const QString& s) { m_journal.append(s); }
    QStringList& m_journal;
};

class FakeQueue : public QueueAccess {
public:
    explicit FakeQueue(QStringList& journal) : m_journal(journal) {}
    QList<SelectedSong> rows;
    int selected = -1;
    int saves = 0;

    int rowCount() const override { return int(rows.size()); }
    SelectedSong detailsFromRow(int row) const override {
        m_journal.append(QStringLiteral("GetDetailsFromRow:%1").arg(row));
        return rows.value(row);
    }
    int selectedRow() const override { return selected; }
    void removeRow(int row) override {
        m_journal.append(QStringLiteral("removeRow:%1").arg(row));
        rows.removeAt(row);
    }
    void saveQueue() override {
        m_journal.append(QStringLiteral("saveQueue"));
        ++saves;
    }

private:
    QStringList& m_journal;
};

class FakeView : public NowPlayingView {
public:
    explicit FakeView(QStringList& journal) : m_journal(journal) {}
    QString performer, artist, title, total = "00:00", remaining = "00:00", key = "0";

    void showCurrentSong(const QString& p, const QString& a, const QString& t) override {
        performer = p;
        artist = a;
        title = t;
        m_journal.append("showCurrentSong:" + p + "|" + a + "|" + t);
    }
    void showClock(const QString& t, const QString& r) override {
        total = t;
        remaining = r;
    }
    QString keyCaption() const override { return key; }
    void setKeyCaption(const QString& c) override {
        key = c;
        m_journal.append("setKeyCaption:" + c);
    }

private:
    QStringList& m_journal;
};

class FakeAnnouncer : public AnnouncementSink {
public:
    explicit FakeAnnouncer(QStringList& journal) : m_journal(journal) {}
    void UpdateNextPerformer() override { m_journal.append("UpdateNextPerformer"); }
    void ClearNextPerformer() override { m_journal.append("ClearNextPerformer"); }

private:
    QStringList& m_journal;
};

class FakeJingles : public JingleAccess {
public:
    explicit FakeJingles(QStringList& journal) : m_journal(journal) {}
    int state = 0;
    int playerState() override { return state; }
    void stop() override {
        m_journal.append("jingleStop");
        state = 3;
    }

private:
    QStringList& m_journal;
};

inline SelectedSong song(const QString& performer, const QString& path, int key = 0,
                         const QString& artist = QStringLiteral("Artist"),
                         const QString& title = QStringLiteral("Title")) {
    SelectedSong s;
    s.PerformerName = performer;
    s.TrackPath = path;
    s.ArtistName = artist;
    s.TrackName = title;
    s.Key = key;
    return s;
}

// The song start wired to the fakes, with the key changer found: what the
// tests of PlayKaraoke and of the transport stand on.
struct PlaybackRig {
    QStringList journal;
    FakePlayer player{journal};
    FakeQueue queue{journal};
    FakeView view{journal};
    FakeAnnouncer announcer{journal};
    FakeJingles jingles{journal};
    modPacemaker pacemaker{player};
    SongStarter starter{player, pacemaker, queue, view};
    PlaybackRig() { pacemaker.FindPaceMaker(); }
};

} // namespace fakeplayback
