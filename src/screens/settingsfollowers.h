#pragma once

#include <QObject>

class MainParts;
class QWidget;

// What changes at once when the host changes a setting: the queue list's drag
// and sort, the search list's "show all", the auto-play delay, and the colour
// scheme of every host window. Listens to SettingsNotifier, and gives every
// dialog of the main window the scheme as it comes up.
class SettingsFollowers : public QObject {
    Q_OBJECT
public:
    SettingsFollowers(MainParts& parts, QWidget* mainWindow);

    // Gives the current scheme to every host window that is open (the audience window keeps its own).
    void applyColorScheme();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(const QString& key);
    // True for a window whose parents lead to the main window.
    bool opensFromMainWindow(const QWidget* window) const;

    MainParts& m_parts;
    QWidget* m_mainWindow;
};
