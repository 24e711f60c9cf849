#pragma once

#include <QObject>
#include <functional>

class QWidget;

// Sees the keys of a dialog before its controls do: Enter (either key) runs
// `ok` and Escape runs `cancel`, whichever control has the focus, the name
// boxes included.
class DialogKeys : public QObject {
    Q_OBJECT
public:
    static void install(QWidget* dialog, std::function<void()> ok, std::function<void()> cancel);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    DialogKeys(QWidget* dialog, std::function<void()> ok, std::function<void()> cancel);
    std::function<void()> m_ok;
    std::function<void()> m_cancel;
};
