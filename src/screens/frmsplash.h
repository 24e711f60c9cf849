#pragma once

#include <QLabel>
#include <QTimer>
#include <QWidget>

// The splash shown while the program starts. It stays at least SplashTimer's
// interval (five seconds), and signals `done` when both that time is over and
// the start-up has said ReadyToWork, whichever comes last.
class frmSplash : public QWidget {
    Q_OBJECT
public:
    explicit frmSplash(QWidget* parent = nullptr);

    // Centres the splash over `over`, on top of every window, and shows it.
    void ShowSplash(QWidget* over, int minimumMs = 5000);
    // A stage's text; the event queue is pumped so that it shows at once.
    void setProgress(const QString& text);
    QString progress() const { return lblProgress->text(); }
    void ReadyToWork();

    QLabel* lblProgress;
    QLabel* lblApplicationDetails;
    QTimer* SplashTimer;

signals:
    void done();

private:
    void finishIfBoth();
    bool m_timerElapsed = false;
    bool m_ready = false;
};
