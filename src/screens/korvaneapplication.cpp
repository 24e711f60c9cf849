#include "korvaneapplication.h"

#include "core/ui/widgetprompts.h"

#include "frmmain.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QSocketNotifier>
#include <QStyleFactory>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// The host works in a dim room: a dark palette on the Fusion style.
void applyLook() {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x26, 0x22, 0x2e));
    p.setColor(QPalette::WindowText, QColor(0xe8, 0xe6, 0xee));
    p.setColor(QPalette::Base, QColor(0x1b, 0x18, 0x21));
    p.setColor(QPalette::AlternateBase, QColor(0x24, 0x20, 0x2c));
    p.setColor(QPalette::Text, QColor(0xe8, 0xe6, 0xee));
    p.setColor(QPalette::Button, QColor(0x3a, 0x33, 0x47));
    p.setColor(QPalette::ButtonText, QColor(0xf4, 0xf2, 0xf8));
    p.setColor(QPalette::Highlight, QColor(0x8e, 0x44, 0xad));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x33, 0x47));
    p.setColor(QPalette::ToolTipText, Qt::white);
    QApplication::setPalette(p);
    // The labels ask for Tahoma; narrow faces stand in for it where it is missing.
    const QString tahoma = QStringLiteral("Tahoma");
    if (QFont::substitutes(tahoma).isEmpty())
        QFont::insertSubstitutions(tahoma,
                                   {QStringLiteral("DejaVu Sans Condensed"),
                                    QStringLiteral("Liberation Sans Narrow"), QStringLiteral("DejaVu Sans")});
    // The window's measures are laid out for a small dialog font.
    QFont f = QApplication::font();
    f.setPointSize(8);
    QApplication::setFont(f);
}

// The signal handler only writes a byte into a socket pair; the event loop
// reads it and closes the window. One pair serves the whole process.
int g_signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char c = 1;
    [[maybe_unused]] auto n = ::write(g_signalPipe[1], &c, 1);
}

bool installSignalPipe() {
    static const bool installed = [] {
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_signalPipe) != 0)
            return false;
        struct sigaction sa = {};
        sa.sa_handler = onSignal;
        sigemptyset(&sa.sa_mask);
        sa.sa_flags = SA_RESTART;
        for (int sig : {SIGTERM, SIGINT, SIGHUP})
            sigaction(sig, &sa, nullptr);
        return true;
    }();
    return installed;
}

void closeOnSignals(QWidget* window) {
    if (!installSignalPipe())
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [window] {
        char c;
        [[maybe_unused]] auto n = ::read(g_signalPipe[0], &c, 1);
        window->close();
        QCoreApplication::quit();
    });
}

} // namespace

KorvaneApplication::KorvaneApplication() {
    QApplication::setApplicationName(QStringLiteral("Korvane"));
    applyLook();
    // Messages before the main window stands (a second start, a settings
    // file that cannot be read) are boxes on screen too.
    useWidgetPrompts(nullptr);
}

KorvaneApplication::~KorvaneApplication() {
    if (m_main)
        m_main->close();
}

bool KorvaneApplication::start(const QString& commandLine) {
    m_main = std::make_unique<frmMain>();
    closeOnSignals(m_main.get());
    return m_main->Form_Load(commandLine);
}
