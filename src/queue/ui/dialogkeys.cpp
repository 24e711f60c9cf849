#include "dialogkeys.h"

#include <QKeyEvent>
#include <QWidget>

DialogKeys::DialogKeys(QWidget* dialog, std::function<void()> ok, std::function<void()> cancel)
    : QObject(dialog), m_ok(std::move(ok)), m_cancel(std::move(cancel)) {}

void DialogKeys::install(QWidget* dialog, std::function<void()> ok, std::function<void()> cancel) {
    auto* keys = new DialogKeys(dialog, std::move(ok), std::move(cancel));
    dialog->installEventFilter(keys);
    for (QWidget* child : dialog->findChildren<QWidget*>())
        child->installEventFilter(keys);
}

bool DialogKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_ok();
        return true;
    case Qt::Key_Escape:
        m_cancel();
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}
