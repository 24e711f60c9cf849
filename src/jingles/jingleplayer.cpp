#include "jingleplayer.h"

#include "core/errorlog.h"
#include "playback/playersocket.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <unistd.h>

namespace {

const QString kSource = QStringLiteral("KvApp.JinglePlayer");

} // namespace

JinglePlayer::JinglePlayer(QObject* parent) : QObject(parent), m_initWatch(m_mpv, [this] { finishInit(); }) {
    m_mpv.setTimeout(kRequestTimeoutMs);
    m_mpv.setEventHandler([this](const QJsonObject& event) { onEvent(event); });
    m_fadeTimer.setInterval(kFadeTickMs);
    connect(&m_fadeTimer, &QTimer::timeout, this, [this] { fadeTick(); });
    m_eventTimer.setInterval(kEventPollMs);
    connect(&m_eventTimer, &QTimer::timeout, this, [this] { m_mpv.pollEvents(); });
}

JinglePlayer::~JinglePlayer() {
    close();
}

void JinglePlayer::close() {
    m_fadeTimer.stop();
    m_eventTimer.stop();
    m_initWatch.stop();
    m_mpv.kill();
    m_initPending = false;
}

bool JinglePlayer::PlayerInit(const QString& program, int device) {
    return PlayerInitStart(program, device) && finishInit();
}

bool JinglePlayer::PlayerInitStart(const QString& program, int device) {
    close();
    m_mpv.setSocketPath(PlayerSocket::pathFor(kSocketName));
    const QStringList args = {QStringLiteral("--no-video"), QStringLiteral("--idle=yes"),
                              QStringLiteral("--no-config"), QStringLiteral("--no-terminal"),
                              QStringLiteral("--keep-open=no")};
    if (program.isEmpty() || !m_mpv.start(program, args))
        return false;
    m_initDevice = device;
    m_initPending = true;
    m_initWatch.begin({QStringLiteral("get_property"), QStringLiteral("mpv-version")}, kInitTimeoutMs);
    return true;
}

bool JinglePlayer::finishInit() {
    if (!m_initPending)
        return m_mpv.isOpen();
    m_initPending = false;
    m_initWatch.stop();
    // The engine answers once it has set up its IPC; something that never
    // answers as mpv does is not kept.
    while (!m_mpv.property(QStringLiteral("mpv-version")).has_value()) {
        if (m_initWatch.deadline().hasExpired() || !m_mpv.isOpen()) {
            m_mpv.kill();
            return false;
        }
        ::usleep(20000);
    }
    m_mpv.command({QStringLiteral("disable_event"), QStringLiteral("all")});
    m_mpv.command({QStringLiteral("enable_event"), QStringLiteral("end-file")});
    m_loaded = false;
    m_devices.clear();
    refreshDevices();
    PlayerSetDevice(m_initDevice);
    m_eventTimer.start();
    return true;
}

void JinglePlayer::PlayerFade(int mode, int ms, int /*shape*/, int /*reserved*/) {
    if (mode == 1)
        m_fadeInMs = std::max(0, ms);
    else if (mode == 0)
        m_fadeOutMs = std::max(0, ms);
}

int JinglePlayer::PlayerState() {
    finishInit();
    if (!m_mpv.isOpen() || !m_loaded)
        return 0;
    m_mpv.pollEvents();
    const auto idle = m_mpv.property(QStringLiteral("idle-active"));
    if (!idle || idle->toBool(true))
        return 3;
    const auto paused = m_mpv.property(QStringLiteral("pause"));
    return paused && paused->toBool() ? 2 : 1;
}

void JinglePlayer::PlayerLoad(const QString& path) {
    finishInit();
    m_path = path;
    m_loaded = true;
}

void JinglePlayer::PlayerPlay() {
    finishInit();
    if (!m_mpv.isOpen())
        return;
    m_fadeTimer.stop();
    m_mpv.setProperty(QStringLiteral("volume"), 100);
    QJsonObject cmd{{QStringLiteral("name"), QStringLiteral("loadfile")},
                    {QStringLiteral("url"), m_path},
                    {QStringLiteral("flags"), QStringLiteral("replace")}};
    if (m_fadeInMs > 0)
        cmd.insert(QStringLiteral("options"),
                   QStringLiteral("af=lavfi=[afade=t=in:d=%1]").arg(m_fadeInMs / 1000.0, 0, 'f', 3));
    // What mpv answers is of no interest: a file it cannot play ends by itself.
    m_mpv.request(cmd);
    if (m_fadeOutMs > 0)
        m_fadeTimer.start();
}

void JinglePlayer::PlayerStop() {
    finishInit();
    m_fadeTimer.stop();
    if (!m_mpv.isOpen())
        return;
    if (!m_mpv.command({QStringLiteral("stop")}).ok)
        return;
    // mpv stops on its own time; the state read next must already say so.
    QDeadlineTimer deadline(kStopSettleMs);
    while (!deadline.hasExpired()) {
        const auto idle = m_mpv.property(QStringLiteral("idle-active"));
        if (!idle || idle->toBool())
            break;
        ::usleep(1000);
    }
    m_mpv.setProperty(QStringLiteral("volume"), 100);
}

void JinglePlayer::fadeTick() {
    const auto remaining = m_mpv.property(QStringLiteral("time-remaining"));
    if (!remaining || !remaining->isDouble()) {
        // Still loading, or over: an idle player needs no fade any more.
        const auto idle = m_mpv.property(QStringLiteral("idle-active"));
        if (!idle || idle->toBool())
            m_fadeTimer.stop();
        return;
    }
    const double left = remaining->toDouble() * 1000.0;
    const double volume = left >= m_fadeOutMs ? 100.0 : std::max(0.0, 100.0 * left / m_fadeOutMs);
    m_mpv.setProperty(QStringLiteral("volume"), volume);
}

void JinglePlayer::refreshDevices() {
    const auto list = m_mpv.property(QStringLiteral("audio-device-list"));
    if (!list)
        return;
    // Outputs seen before keep their place; new ones come at the end.
    for (const QJsonValue& v : list->toArray()) {
        const QJsonObject o = v.toObject();
        const QString name = o.value(QStringLiteral("name")).toString();
        const bool known = std::any_of(m_devices.cbegin(), m_devices.cend(),
                                       [&](const Device& d) { return d.name == name; });
        if (!name.isEmpty() && !known)
            m_devices.append({name, o.value(QStringLiteral("description")).toString(name)});
    }
}

int JinglePlayer::DeviceCount() {
    finishInit();
    refreshDevices();
    return int(m_devices.size());
}

QString JinglePlayer::DeviceName(int index) {
    finishInit();
    if (index < 0 || index >= m_devices.size())
        return {};
    return m_devices[index].description;
}

void JinglePlayer::PlayerSetDevice(int index) {
    finishInit();
    if (index < 0 || index >= m_devices.size() || !m_mpv.isOpen())
        return;
    if (m_mpv.setProperty(QStringLiteral("audio-device"), m_devices[index].name)) {
        m_device = m_devices[index].name;
        m_deviceLossLogged = false;
    }
}

void JinglePlayer::onEvent(const QJsonObject& event) {
    if (event.value(QStringLiteral("event")).toString() != QLatin1String("end-file"))
        return;
    // Only a lost output is worth a record: a jingle that is missing or
    // cannot be decoded fails quietly, as the bank expects.
    const QString error = event.value(QStringLiteral("file_error")).toString();
    if (!error.contains(QLatin1String("audio output")) || m_deviceLossLogged)
        return;
    m_deviceLossLogged = true;
    m_fadeTimer.stop();
    try {
        LogErrorQuietly(QStringLiteral("The jingle output \"%1\" could not be opened (%2); the jingles are "
                                       "silent until it is back or another output is chosen.")
                            .arg(m_device.isEmpty() ? QStringLiteral("auto") : m_device, error),
                        kSource, 0);
    } catch (...) {
        // A log that cannot be written must not stop the show.
    }
}
