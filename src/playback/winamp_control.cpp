#include "winamp_control.h"

#include "core/capplicationpaths.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "core/prompts.h"
#include "playback/cdgnormaliser.h"
#include "playback/playersocket.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDesktopServices>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QUrl>

#include <cmath>
#include <unistd.h>
#include <utility>

namespace {

void pumpingWait(int ms) {
    QDeadlineTimer deadline(ms);
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, int(deadline.remainingTime()));
        ::usleep(std::min<qint64>(deadline.remainingTime(), 20) * 1000);
    }
}

// A value in mpv's option syntax that may hold commas, colons and the like: %bytes%text.
QString quotedOptionValue(const QString& value) {
    return QStringLiteral("%%1%").arg(value.toUtf8().size()) + value;
}

const QString kInputConf =
    QStringLiteral("# Keys of the player's window. Playback is driven from the host's console,\n"
                   "# so the window offers no way to quit or close the player.\n"
                   "q ignore\nQ ignore\nESC ignore\nCLOSE_WIN ignore\nctrl+c ignore\n");
const QString kMpvConf =
    QStringLiteral("# Options of the karaoke player, read at each start of the program.\n"
                   "# See the mpv manual for what may go here (audio device, screen, full screen...).\n");

} // namespace

WinAMP_Control::WinAMP_Control(QObject* parent)
    : QObject(parent), m_startWatch(m_conn, [this] { finishStart(); }), m_wait(pumpingWait) {
    m_fadeTimer.setInterval(kFadeMs / kFadeSteps);
    connect(&m_fadeTimer, &QTimer::timeout, this, [this] { fadeStep(); });
    m_conn.setStallHandler([this](const QString& reason) { logStall(reason); });
}

void WinAMP_Control::logStall(const QString& reason) {
    // A player being looked for is not yet ours to complain about.
    if (!m_connected)
        return;
    try {
        LogErrorQuietly(QStringLiteral("The player gave no answer (%1). Its last state holds until it "
                                       "answers again; a song is not taken for ended meanwhile.")
                            .arg(reason),
                        QStringLiteral("KvApp.WinAMP_Control"), 0);
    } catch (...) {
        // A log that cannot be written must not stop the show.
    }
}

WinAMP_Control::~WinAMP_Control() {
    m_conn.kill();
}

QString WinAMP_Control::playerSocketPath() {
    return PlayerSocket::path();
}

QString WinAMP_Control::playerConfigFolder() {
    QString base = WorkingFolder;
    if (base.isEmpty() && oApplicationPaths)
        base = AddBackslash(oApplicationPaths->ApplicationDataPath());
    return base + QStringLiteral("Player/");
}

void WinAMP_Control::prepareConfigFolder() const {
    const QString folder = playerConfigFolder();
    QDir().mkpath(folder);
    const std::pair<QString, QString> files[] = {{QStringLiteral("input.conf"), kInputConf},
                                                 {QStringLiteral("mpv.conf"), kMpvConf}};
    for (const auto& [name, text] : files) {
        QFile f(folder + name);
        if (!f.exists() && f.open(QIODevice::WriteOnly))
            f.write(text.toUtf8());
    }
}

QStringList WinAMP_Control::playerArguments() const {
    QStringList args = {QStringLiteral("--idle=yes"), QStringLiteral("--force-window=yes"),
                        QStringLiteral("--keep-open=no"), QStringLiteral("--no-terminal"),
                        QStringLiteral("--config-dir=") + playerConfigFolder(),
                        QStringLiteral("--x11-name=") + kPlayerClass, QStringLiteral("--title=Korvane"),
                        // The room sees this window: no on-screen controller, which
                        // also draws the logo and "drop files here" between songs.
                        QStringLiteral("--osc=no")};
    return args;
}

bool WinAMP_Control::FindPlayer() {
    finishStart();
    return findPlayer();
}

bool WinAMP_Control::findPlayer() {
    m_conn.setTimeout(kRequestTimeoutMs);
    bool found = m_conn.isOpen() && m_conn.property(QStringLiteral("mpv-version")).has_value();
    if (!found) {
        // Not our own instance (or it has gone): look for one by its socket.
        const QString socket = playerSocketPath();
        found = !socket.isEmpty() && m_conn.connectToPath(socket, kRequestTimeoutMs) &&
                m_conn.property(QStringLiteral("mpv-version")).has_value();
        if (found)
            m_conn.command({QStringLiteral("disable_event"), QStringLiteral("all")});
        else
            m_conn.close();
    }
    m_connected = found;
    return found;
}

bool WinAMP_Control::StartPlayer() {
    m_startPending = false;
    m_startWatch.stop();
    if (!launchPlayer())
        return false;
    m_wait(1000);
    return awaitPlayer(kStartAttempts);
}

bool WinAMP_Control::launchPlayer() {
    if (!FileExists(m_winampPath)) {
        prompts().msgBox(
            QStringLiteral("Sorry but Winamp 2.7x and above (Not 3.x) does not appear to be installed\n"
                           "Please install winamp to its default location or configure the application to "
                           "use a\ndifferent path from tools options!"),
            Prompts::Exclamation, QStringLiteral("Application Installation Error"));
        return false;
    }
    prepareConfigFolder();
    // Without a private place for it the player has no socket; the program
    // itself talks to it over the socket pair all the same.
    m_conn.setSocketPath(playerSocketPath());
    return m_conn.start(m_winampPath, playerArguments());
}

bool WinAMP_Control::awaitPlayer(int attempts) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0)
            m_wait(1000);
        // A short probe: something that is not a player must not hold start-up much longer
        // than the waits themselves. Events are of no use to a link that polls, and would
        // only sit in the way of replies.
        m_conn.setTimeout(kStartProbeTimeoutMs);
        const bool answered =
            m_conn.isOpen() && m_conn.command({QStringLiteral("disable_event"), QStringLiteral("all")}).ok;
        if (answered && findPlayer())
            return true;
        // Nobody holds the other end any more: nothing is going to answer.
        if (!m_conn.isOpen())
            break;
    }
    // Whatever was started is not a player this program can drive: it must not linger.
    m_conn.kill();
    m_connected = false;
    return false;
}

bool WinAMP_Control::StartPlayerInBackground(std::function<void()> whenReady) {
    m_startPending = false;
    m_startWatch.stop();
    if (!launchPlayer())
        return false;
    m_whenStarted.clear();
    if (whenReady)
        m_whenStarted.push_back(std::move(whenReady));
    m_startPending = true;
    m_startWatch.begin({QStringLiteral("disable_event"), QStringLiteral("all")}, kBackgroundStartMs);
    return true;
}

bool WinAMP_Control::finishStart() {
    if (!m_startPending)
        return m_connected;
    m_startPending = false;
    m_startWatch.stop();
    // The probes go on until the start's deadline, as a start in the
    // foreground would have.
    const int attempts = std::max<int>(1, int(m_startWatch.deadline().remainingTime() / 1000) + 1);
    m_finishing = true;
    const bool answered = awaitPlayer(attempts);
    m_finishing = false;
    if (!answered) {
        LogErrorExQuietly(QStringLiteral("WinAMP_Control.StartPlayer"), 0,
                          QStringLiteral("The player did not answer: ") + m_winampPath, 0);
        return false;
    }
    for (const std::function<void()>& work : std::exchange(m_whenStarted, {}))
        work();
    return true;
}

void WinAMP_Control::whenReady(std::function<void()> work) {
    if (m_startPending)
        m_whenStarted.push_back(std::move(work));
    else
        work();
}

bool WinAMP_Control::ready() {
    finishStart();
    return m_connected;
}

bool WinAMP_Control::requirePlayer() {
    if (ready())
        return true;
    // Asked from within the wait for a player still coming up (the wait
    // keeps the screen turning): nothing to drive yet, and nothing to tell.
    if (m_finishing)
        return false;
    prompts().msgBox(QStringLiteral("This application has not been configured properly or the winamp window "
                                    "has been closed!"),
                     Prompts::Critical, QStringLiteral("WinAMP Not Found"));
    return false;
}

void WinAMP_Control::ClearPlaylist() {
    if (!requirePlayer())
        return;
    cancelFade();
    // playlist-clear spares the entry that is playing (or still stopping); a cleared
    // list must hold nothing at all, so whatever is left goes one by one.
    m_conn.command({QStringLiteral("playlist-clear")});
    for (int left = 0; left < 16; ++left) {
        const auto count = m_conn.property(QStringLiteral("playlist-count"));
        if (!count || count->toInt() < 1)
            break;
        m_conn.command({QStringLiteral("playlist-remove"), 0});
    }
}

int WinAMP_Control::rawStatus() {
    if (!ready())
        return RawStopped;
    // A question the player leaves unanswered is no answer, never a stop.
    const auto idle = m_conn.property(QStringLiteral("idle-active"));
    if (!idle)
        return m_conn.isStalled() ? RawNoAnswer : RawStopped;
    if (idle->toBool(true))
        return RawStopped;
    const auto paused = m_conn.property(QStringLiteral("pause"));
    if (!paused && m_conn.isStalled())
        return RawNoAnswer;
    if (paused && paused->toBool())
        return RawPaused;
    return RawPlaying;
}

QString WinAMP_Control::GetStatus() {
    if (!requirePlayer())
        return {};
    return statusText(rawStatus());
}

int WinAMP_Control::secondsOf(const QString& property) {
    const auto v = m_conn.property(property);
    if (!v || !v->isDouble())
        return -1;
    return int(std::trunc(v->toDouble()));
}

int WinAMP_Control::GetPositionSeconds() {
    if (!requirePlayer())
        return 0;
    return secondsOf(QStringLiteral("time-pos"));
}

int WinAMP_Control::GetLengthSeconds() {
    if (!requirePlayer())
        return 0;
    return secondsOf(QStringLiteral("duration"));
}

void WinAMP_Control::SetPanning(int value) {
    if (value < -127 || value > 127)
        return;
    if (!requirePlayer())
        return;
    const QString label = QStringLiteral("kvbalance");
    if (value == 0) {
        removeAudioFilter(label);
        return;
    }
    // The side away from the value is turned down; -127 and 127 silence it.
    const double left = value > 0 ? (127.0 - value) / 127.0 : 1.0;
    const double right = value < 0 ? (127.0 + value) / 127.0 : 1.0;
    setAudioFilter(label,
                   QStringLiteral("lavfi=[aformat=channel_layouts=stereo,pan=stereo|c0=%1*c0|c1=%2*c1]")
                       .arg(left, 0, 'f', 4)
                       .arg(right, 0, 'f', 4));
}

int WinAMP_Control::GetPlaylistLength() {
    if (!requirePlayer())
        return 0;
    const auto v = m_conn.property(QStringLiteral("playlist-count"));
    return v ? v->toInt() : 0;
}

void WinAMP_Control::toggleRepeat() {
    const auto v = m_conn.property(QStringLiteral("loop-playlist"));
    const bool on = v && (v->isString() ? v->toString() != QLatin1String("no") : v->toBool());
    m_conn.setProperty(QStringLiteral("loop-playlist"), on ? QStringLiteral("no") : QStringLiteral("inf"));
}

void WinAMP_Control::toggleShuffle() {
    const auto v = m_conn.property(QStringLiteral("shuffle"));
    m_conn.setProperty(QStringLiteral("shuffle"), !(v && v->toBool()));
}

void WinAMP_Control::DisableRepeat() {
    finishStart();
    const auto v = m_conn.property(QStringLiteral("loop-playlist"));
    if (v && (v->isString() ? v->toString() != QLatin1String("no") : v->toBool()))
        toggleRepeat();
}

void WinAMP_Control::DisableShuffle() {
    finishStart();
    const auto v = m_conn.property(QStringLiteral("shuffle"));
    if (v && v->toBool())
        toggleShuffle();
}

void WinAMP_Control::play() {
    const auto idle = m_conn.property(QStringLiteral("idle-active"));
    if (!idle)
        return;
    if (!idle->toBool()) {
        // A paused song goes on from where it stopped; play while playing starts
        // the song again, as a player's play button does. The pause is read before
        // anything changes it.
        const auto paused = m_conn.property(QStringLiteral("pause"));
        if (!paused)
            return;
        if (paused->toBool())
            m_conn.setProperty(QStringLiteral("pause"), false);
        else
            m_conn.command({QStringLiteral("seek"), 0, QStringLiteral("absolute")});
        return;
    }
    // Stopped: whatever was paused before the stop must not start paused.
    m_conn.setProperty(QStringLiteral("pause"), false);
    const auto count = m_conn.property(QStringLiteral("playlist-count"));
    if (!count || count->toInt() < 1)
        return;
    const auto pos = m_conn.property(QStringLiteral("playlist-pos"));
    const int index = pos && pos->toInt() >= 0 ? pos->toInt() : 0;
    m_conn.command({QStringLiteral("playlist-play-index"), index});
}

void WinAMP_Control::SendCommand(int commandId) {
    if (!requirePlayer())
        return;
    switch (commandId) {
    case CmdClose:
        cancelFade();
        // The player leaves at our word: its answer is not waited for, and from
        // here on it is not ours to ask, so that one slow to go is no stall.
        m_conn.post(QJsonArray{QStringLiteral("quit")});
        m_connected = false;
        break;
    case CmdPreferences:
        prepareConfigFolder();
        QDesktopServices::openUrl(QUrl::fromLocalFile(playerConfigFolder() + QStringLiteral("mpv.conf")));
        break;
    case CmdToggleRepeat:
        toggleRepeat();
        break;
    case CmdToggleShuffle:
        toggleShuffle();
        break;
    case CmdPlay:
        cancelFade();
        play();
        break;
    case CmdPause:
        m_conn.command({QStringLiteral("cycle"), QStringLiteral("pause")});
        break;
    case CmdStop: {
        // A stop during a fade stops first and only then puts the volume back,
        // so that the song does not come back loud for a moment.
        const bool fading = m_fadeTimer.isActive();
        m_fadeTimer.stop();
        stop();
        if (fading)
            m_conn.setProperty(QStringLiteral("volume"), m_fadeVolume);
        break;
    }
    case CmdFadeStop:
        startFade();
        break;
    default:
        break;
    }
}

void WinAMP_Control::stop() {
    if (!m_conn.command({QStringLiteral("stop"), QStringLiteral("keep-playlist")}).ok)
        return;
    // The player stops on its own time; the status read next must already say so.
    QDeadlineTimer deadline(kStopSettleMs);
    while (!deadline.hasExpired()) {
        const auto idle = m_conn.property(QStringLiteral("idle-active"));
        if (!idle || idle->toBool())
            return;
        ::usleep(1000);
    }
}

void WinAMP_Control::startFade() {
    if (m_fadeTimer.isActive())
        return;
    const auto idle = m_conn.property(QStringLiteral("idle-active"));
    const auto volume = m_conn.property(QStringLiteral("volume"));
    if (!idle || idle->toBool() || !volume) {
        stop();
        return;
    }
    m_fadeVolume = volume->toDouble();
    m_fadeStep = 0;
    m_fadeTimer.start();
}

void WinAMP_Control::fadeStep() {
    ++m_fadeStep;
    if (m_fadeStep < kFadeSteps) {
        m_conn.setProperty(QStringLiteral("volume"), m_fadeVolume * (kFadeSteps - m_fadeStep) / kFadeSteps);
        return;
    }
    m_fadeTimer.stop();
    stop();
    m_conn.setProperty(QStringLiteral("volume"), m_fadeVolume);
}

void WinAMP_Control::cancelFade() {
    if (!m_fadeTimer.isActive())
        return;
    m_fadeTimer.stop();
    m_conn.setProperty(QStringLiteral("volume"), m_fadeVolume);
}

bool WinAMP_Control::PlayFile(const QString& path) {
    if (!ready())
        return false;
    QJsonObject cmd{{QStringLiteral("name"), QStringLiteral("loadfile")},
                    {QStringLiteral("flags"), QStringLiteral("append")}};
    const QString cdg = CdgNormaliser::companionOf(path);
    if (!cdg.isEmpty() && QFileInfo(path).suffix().compare(QLatin1String("cdg"), Qt::CaseInsensitive) != 0) {
        // A CD+G pair: the graphics are the file, the audio plays beside them.
        // The song's preparation leaves a normalised copy of the graphics in
        // Temp; without one the file itself is played as it stands.
        const QString temp = oApplicationPaths ? oApplicationPaths->ApplicationSongTempPath() : QString();
        const QString copy = temp.isEmpty() ? QString() : CdgNormaliser::copyPathFor(cdg, temp);
        cmd.insert(QStringLiteral("url"), CdgNormaliser::isCopyOf(copy, cdg) ? copy : cdg);
        cmd.insert(QStringLiteral("options"),
                   QStringLiteral("audio-files-append=") + quotedOptionValue(path));
    } else {
        cmd.insert(QStringLiteral("url"), path);
    }
    const MpvInstance::Reply r = m_conn.request(cmd);
    m_lastPlayResult = r.ok ? 1 : 0;
    return m_lastPlayResult != 0;
}

bool WinAMP_Control::hasAudioFilter(const QString& filterName) {
    if (!ready())
        return false;
    // Adding an unknown filter fails at once; a known one is taken out again.
    const QString probe = QStringLiteral("kvprobe");
    const bool ok = m_conn
                        .command({QStringLiteral("af"), QStringLiteral("add"),
                                  QStringLiteral("@%1:%2").arg(probe, filterName)})
                        .ok;
    if (ok)
        removeAudioFilter(probe);
    return ok;
}

bool WinAMP_Control::setAudioFilter(const QString& label, const QString& filter) {
    finishStart();
    // A labelled filter that exists is replaced in place.
    return m_conn
        .command({QStringLiteral("af"), QStringLiteral("add"), QStringLiteral("@%1:%2").arg(label, filter)})
        .ok;
}

void WinAMP_Control::removeAudioFilter(const QString& label) {
    finishStart();
    const auto af = m_conn.property(QStringLiteral("af"));
    if (!af)
        return;
    for (const QJsonValue& f : af->toArray()) {
        if (f.toObject().value(QStringLiteral("label")).toString() == label) {
            m_conn.command({QStringLiteral("af"), QStringLiteral("remove"), QStringLiteral("@") + label});
            return;
        }
    }
}

bool WinAMP_Control::setVideoFullScreen(bool on, const QString& screenName) {
    if (!ready())
        return false;
    if (on && !screenName.isEmpty()) {
        m_conn.setProperty(QStringLiteral("fs-screen-name"), screenName);
        m_conn.setProperty(QStringLiteral("screen-name"), screenName);
    }
    return m_conn.setProperty(QStringLiteral("fullscreen"), on);
}
