#pragma once

#include <QString>
#include <memory>

class frmMain;

// The program as main() brings it up: the look of the host's screens, the
// polite end on SIGTERM, SIGINT and SIGHUP (the main window closes, so that
// the shutdown saves what it saves), and the main window with its start-up.
// Anything that starts the console starts it through here, so there is one
// way of putting it together.
class KorvaneApplication {
public:
    // Needs the QApplication to exist; gives it the program's name and look.
    KorvaneApplication();
    // Closes the main window (running its shutdown) if it is still open.
    ~KorvaneApplication();
    KorvaneApplication(const KorvaneApplication&) = delete;
    KorvaneApplication& operator=(const KorvaneApplication&) = delete;

    // Builds the main window and runs its start-up. False when the program
    // must end (the host has been told why). `commandLine` is the arguments
    // joined by blanks.
    bool start(const QString& commandLine);
    // The main window, once start() has built it.
    frmMain* mainWindow() const { return m_main.get(); }

private:
    std::unique_ptr<frmMain> m_main;
};
