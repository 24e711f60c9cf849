#include "settingsfollowers.h"

#include "colorschemes.h"
#include "mainparts.h"

#include "catalogue/ui/searchcontroller.h"
#include "core/appsettings.h"
#include "core/settings.h"
#include "queue/ui/queuecontroller.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QWidget>

SettingsFollowers::SettingsFollowers(MainParts& parts, QWidget* mainWindow)
    : QObject(mainWindow), m_parts(parts), m_mainWindow(mainWindow) {
    connect(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged, this,
            &SettingsFollowers::follow);
    qApp->installEventFilter(this);
}

bool SettingsFollowers::opensFromMainWindow(const QWidget* window) const {
    for (const QWidget* w = window->parentWidget(); w; w = w->parentWidget())
        if (w == m_mainWindow)
            return true;
    return false;
}

bool SettingsFollowers::eventFilter(QObject* watched, QEvent* event) {
    // Every dialog of the host's (the screens the main window opens, its
    // small dialogs and message boxes) takes the scheme as it comes up.
    if (event->type() == QEvent::Show) {
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (dialog && dialog->isWindow() && opensFromMainWindow(dialog))
            SetFormColors(*dialog, Cfg.ColorScheme);
    }
    return QObject::eventFilter(watched, event);
}

void SettingsFollowers::follow(const QString& key) {
    if (key == keys::AllowDragAndDrop.key())
        m_parts.queue().setDragAndDropAllowed(Cfg.AllowDragAndDrop);
    else if (key == keys::AllowSortingOnQueue.key())
        m_parts.queue().setSortingAllowed(Cfg.AllowSortingOnQueue);
    else if (key == keys::ViewAllSongsAtStartup.key())
        m_parts.search().ClearSearchList();
    else if (key == keys::AutoPlayDelay.key())
        m_parts.transport().setAutoPlayDelay(Cfg.AutoPlayDelay);
    else if (key == keys::ColorScheme.key())
        applyColorScheme();
}

void SettingsFollowers::applyColorScheme() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        // Host windows only: the main window and the screens it opened.
        if (w == m_mainWindow || w->parentWidget() == m_mainWindow)
            SetFormColors(*w, Cfg.ColorScheme);
    }
}
