#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <memory>
#include <unistd.h>

using namespace playbackmedia;

namespace {

// When this executable is started with KV_GRAB_WINDOW set (an X window id), it
// is not a test run: it grabs that window on $DISPLAY and prints how many of
// its pixels are not black, and how many it has in all. It runs before main()
// and touches none of the program's globals.
struct GrabWindowMode {
    GrabWindowMode() {
        const QByteArray id = qgetenv("KV_GRAB_WINDOW");
        if (id.isEmpty())
            return;
        qputenv("QT_QPA_PLATFORM", "xcb");
        int argc = 1;
        char name[] = "grab-window";
        char* argv[] = {name, nullptr};
        QGuiApplication app(argc, argv);
        const QImage image = app.primaryScreen()
                                 ->grabWindow(WId(id.toULongLong(nullptr, 0)))
                                 .toImage()
                                 .convertToFormat(QImage::Format_RGB32);
        qint64 lit = 0;
        for (int y = 0; y < image.height(); ++y) {
            const QRgb* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x)
                lit += std::max({qRed(line[x]), qGreen(line[x]), qBlue(line[x])}) > 24;
        }
        std::printf("%lld %lld\n", static_cast<long long>(lit),
                    static_cast<long long>(image.width()) * image.height());
        std::fflush(stdout);
        ::_exit(image.isNull() ? 2 : 0);
    }
} grabWindowMode;

QString run(const QString& program, const QStringList& args, const QString& display) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", display);
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(10000))
        p.kill();
    return QString::fromLocal8Bit(p.readAllStandardOutput());
}

} // namespace

// The player's own window on a real (virtual) X display: what the room sees
// between songs, and the class a window-manager rule places it by.
class TestPlayerWindow : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    QTemporaryDir m_dir;
    QProcess m_xserver;
    QString m_display;
    QString m_xprop, m_xwininfo;

    // The id of the top-level window whose WM_CLASS instance is KVPLAY, or 0.
    qulonglong playerWindow() {
        static const QRegularExpression line(
            QStringLiteral("^\\s*(0x[0-9a-f]+) .*\\(\"KVPLAY\" \"[^\"]*\"\\)"),
            QRegularExpression::MultilineOption);
        const auto m = line.match(run(m_xwininfo, {"-root", "-tree"}, m_display));
        return m.hasMatch() ? m.captured(1).toULongLong(nullptr, 16) : 0;
    }
    // Pixels of the window that are not black, and all its pixels.
    QPair<qint64, qint64> grab(qulonglong window) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("DISPLAY", m_display);
        env.insert("KV_GRAB_WINDOW", QString::number(window));
        p.setProcessEnvironment(env);
        p.start(QCoreApplication::applicationFilePath(), {});
        if (!p.waitForFinished(20000) || p.exitCode() != 0)
            return {-1, -1};
        const QList<QByteArray> parts = p.readAllStandardOutput().trimmed().split(' ');
        return parts.size() == 2 ? qMakePair(parts[0].toLongLong(), parts[1].toLongLong())
                                 : qMakePair(-1LL, -1LL);
    }

private slots:
    void initTestCase() {
        const QString xvfb = QStandardPaths::findExecutable("Xvfb");
        m_xprop = QStandardPaths::findExecutable("xprop");
        m_xwininfo = QStandardPaths::findExecutable("xwininfo");
        if (xvfb.isEmpty() || m_xprop.isEmpty() || m_xwininfo.isEmpty())
            QSKIP("needs Xvfb, xprop and xwininfo");
        // The server picks a free display and writes its number to our pipe.
        m_xserver.start(xvfb, {"-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp"});
        QVERIFY(m_xserver.waitForReadyRead(20000));
        m_display = ":" + QString::fromLatin1(m_xserver.readLine().trimmed());
        QVERIFY(m_display.size() > 1);
    }
    void cleanupTestCase() {
        m_xserver.terminate();
        if (!m_xserver.waitForFinished(5000))
            m_xserver.kill();
    }
    void init() {
        m_ws = std::make_unique<TestWorkspace>(false);
        m_prompts = std::make_unique<ScriptedPrompts>();
    }
    void cleanup() {
        m_prompts.reset();
        m_ws.reset();
    }

    // Between songs the window is plain black (no logo, no invitation to drop
    // files), and its class is KVPLAY. A coloured picture shows that the grab
    // does see what the player draws.
    void idleWindowIsPlainBlack() {
        const QString wrapper =
            writeScript(m_dir.filePath("xplayer.sh"), "exec /usr/bin/mpv --ao=null --vo=x11 \"$@\"");
        const QByteArray oldDisplay = qgetenv("DISPLAY");
        qputenv("DISPLAY", m_display.toLocal8Bit());
        WinAMP_Control link;
        link.setWinampPath(wrapper);
        const bool started = link.StartPlayer();
        oldDisplay.isEmpty() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", oldDisplay);
        QVERIFY(started);

        qulonglong window = 0;
        QVERIFY(QTest::qWaitFor([&] { return (window = playerWindow()) != 0; }, 20000));
        QVERIFY(run(m_xprop, {"-id", QString::number(window), "WM_CLASS"}, m_display)
                    .startsWith("WM_CLASS(STRING) = \"KVPLAY\""));
        // Whatever the idle screen would draw comes within moments of the window.
        QPair<qint64, qint64> idle;
        for (int look = 0; look < 6; ++look) {
            idle = grab(window);
            QVERIFY(idle.second > 0);
            QVERIFY2(idle.first == 0,
                     qPrintable(QStringLiteral("%1 of %2 pixels lit").arg(idle.first).arg(idle.second)));
            QTest::qWait(400);
        }

        link.ClearPlaylist();
        QVERIFY(link.PlayFile("av://lavfi:color=c=red:s=320x240:d=30"));
        link.SendCommand(PlayerLink::CmdPlay);
        QVERIFY(QTest::qWaitFor(
            [&] {
                const auto shown = grab(window);
                return shown.first > shown.second / 2;
            },
            20000));
        link.SendCommand(PlayerLink::CmdStop);
        QVERIFY(QTest::qWaitFor([&] { return grab(window).first == 0; }, 20000));
    }
};

KV_TEST_CLASS(TestPlayerWindow)
#include "tst_playerwindow.moc"
