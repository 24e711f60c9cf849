#pragma once

#include <QObject>
#include <functional>

class QKeyEvent;

// The program's keyboard hook: an event filter on the whole application that
// reports every key going down or up to its handlers, before the widget with
// the focus sees it. Keys are reported by their virtual-key numbers (Enter 13,
// Escape 27, Delete 46, "0"-"9" 48-57, "A"-"Z" 65-90, the minus key 189, ...)
// with a shift state of Shift 1, Ctrl 2, Alt 4 added together. A handler that
// sets the key code to 0 swallows the key: it goes no further.
//
// The hook acts from construction to destruction; its owner makes it and drops
// it again (it is dropped while a dialog that takes text is open).
class KeyboardHook : public QObject {
    Q_OBJECT
public:
    using Handler = std::function<void(int& keyCode, int& shift)>;

    static constexpr int kShift = 1;
    static constexpr int kCtrl = 2;
    static constexpr int kAlt = 4;

    explicit KeyboardHook(QObject* parent = nullptr);
    ~KeyboardHook() override;

    void setKeyDownHandler(Handler h) { m_keyDown = std::move(h); }
    void setKeyUpHandler(Handler h) { m_keyUp = std::move(h); }

    // The virtual-key number of a key event, 0 for a key without one.
    static int keyCodeOf(const QKeyEvent* e);
    static int shiftOf(const QKeyEvent* e);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Handler m_keyDown;
    Handler m_keyUp;
};
