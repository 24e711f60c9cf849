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

struct Journaled {
    QStringList& journal;
    void log(const QString& s) const { journal.append(s); }
};

class FakePlayer : public PlayerLink, Journaled {
public:
    explicit FakePlayer(QStringList& j) : Journaled{j} {}

    bool connected = true;
    int raw = RawStopped;
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
    int GetPositionSeconds() override { return -1; }
    int GetLengthSeconds() override { return -1; }
    void SetPanning(int) override {}
    int GetPlaylistLength() override { return playlistLength; }
    void DisableRepeat() override {}
    void DisableShuffle() override {}
    void SendCommand(int id) override {
        log(QStringLiteral("SendCommand:%1").arg(id));
        if (id == CmdPlay && playlistLength > 0)
            raw = RawPlaying;
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
};

class FakeQueue : public QueueAccess, Journaled {
public:
    explicit FakeQueue(QStringList& j) : Journaled{j} {}
    QList<SelectedSong> rows;
    int selected = -1;
    int saves = 0;

    int rowCount() const override { return int(rows.size()); }
    SelectedSong detailsFromRow(int row) const override {
        log(QStringLiteral("GetDetailsFromRow:%1").arg(row));
        return rows.value(row);
    }
    int selectedRow() const override { return selected; }
    void removeRow(int row) override {
        log(QStringLiteral("removeRow:%1").arg(row));
        rows.removeAt(row);
    }
    void saveQueue() override {
        log("saveQueue");
        ++saves;
    }
};

class FakeView : public NowPlayingView, Journaled {
public:
    explicit FakeView(QStringList& j) : Journaled{j} {}
    QString performer, key = "0";
    QStringList clock; // "total|position", one per showing

    void showCurrentSong(const QString& p, const QString& a, const QString& t) override {
        performer = p;
        log("showCurrentSong:" + p + "|" + a + "|" + t);
    }
    void showClock(const QString& total, const QString& position) override {
        clock.append(total + "|" + position);
    }
    QString keyCaption() const override { return key; }
    void setKeyCaption(const QString& c) override {
        key = c;
        log("setKeyCaption:" + c);
    }
};

struct FakeAnnouncer : AnnouncementSink, Journaled {
    explicit FakeAnnouncer(QStringList& j) : Journaled{j} {}
    void UpdateNextPerformer(int) override { log("UpdateNextPerformer"); }
    void ClearNextPerformer() override { log("ClearNextPerformer"); }
};

struct FakeJingles : JingleAccess, Journaled {
    explicit FakeJingles(QStringList& j) : Journaled{j} {}
    int state = 0;
    int playerState() override { return state; }
    void stop() override {
        log("jingleStop");
        state = 3;
    }
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
