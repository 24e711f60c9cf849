#include "screens/frmmain.h"

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
void applyLook(QApplication& app) {
    app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
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
    app.setPalette(p);
    // The labels ask for Tahoma; narrow faces stand in for it where it is missing.
    QFont::insertSubstitutions(QStringLiteral("Tahoma"),
                               {QStringLiteral("DejaVu Sans Condensed"), QStringLiteral("Liberation Sans Narrow"),
                                QStringLiteral("DejaVu Sans")});
    // The window's measures are laid out for a small dialog font.
    QFont f = app.font();
    f.setPointSize(8);
    app.setFont(f);
}

// A polite end (SIGTERM, SIGINT, SIGHUP) closes the main window, so that the
// shutdown saves what it saves, just as when the host closes the window.
int g_signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char c = 1;
    [[maybe_unused]] auto n = ::write(g_signalPipe[1], &c, 1);
}

void closeOnSignals(QWidget* window) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_signalPipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [window] {
        char c;
        [[maybe_unused]] auto n = ::read(g_signalPipe[0], &c, 1);
        window->close();
        QCoreApplication::quit();
    });
    struct sigaction sa = {};
    sa.sa_handler = onSignal;
    sigemptyset(&sa.sa_mask);
    sa.sa_flags = SA_RESTART;
    for (int sig : {SIGTERM, SIGINT, SIGHUP})
        sigaction(sig, &sa, nullptr);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Korvane"));
    applyLook(app);
    frmMain main;
    closeOnSignals(&main);
    if (!main.Form_Load(app.arguments().mid(1).join(QLatin1Char(' '))))
        return 1;
    return app.exec();
}
