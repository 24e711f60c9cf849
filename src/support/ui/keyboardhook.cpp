#include "keyboardhook.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

KeyboardHook::KeyboardHook(QObject* parent) : QObject(parent) {
    if (QCoreApplication::instance())
        QCoreApplication::instance()->installEventFilter(this);
}

KeyboardHook::~KeyboardHook() {
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeEventFilter(this);
}

int KeyboardHook::keyCodeOf(const QKeyEvent* e) {
    const int key = e->key();
    const bool keypad = e->modifiers() & Qt::KeypadModifier;
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return key; // the same numbers
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return keypad ? 96 + (key - Qt::Key_0) : key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return 112 + (key - Qt::Key_F1);
    switch (key) {
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Shift:
        return 16;
    case Qt::Key_Control:
        return 17;
    case Qt::Key_Alt:
        return 18;
    case Qt::Key_Pause:
        return 19;
    case Qt::Key_CapsLock:
        return 20;
    case Qt::Key_Escape:
        return 27;
    case Qt::Key_Space:
        return 32;
    case Qt::Key_PageUp:
        return 33;
    case Qt::Key_PageDown:
        return 34;
    case Qt::Key_End:
        return 35;
    case Qt::Key_Home:
        return 36;
    case Qt::Key_Left:
        return 37;
    case Qt::Key_Up:
        return 38;
    case Qt::Key_Right:
        return 39;
    case Qt::Key_Down:
        return 40;
    case Qt::Key_Insert:
        return 45;
    case Qt::Key_Delete:
        return 46;
    // The digit keys with Shift, on the common layout.
    case Qt::Key_ParenRight:
        return keypad ? 0 : 48;
    case Qt::Key_Exclam:
        return 49;
    case Qt::Key_At:
        return 50;
    case Qt::Key_NumberSign:
        return 51;
    case Qt::Key_Dollar:
        return 52;
    case Qt::Key_Percent:
        return 53;
    case Qt::Key_AsciiCircum:
        return 54;
    case Qt::Key_Ampersand:
        return 55;
    case Qt::Key_Asterisk:
        return keypad ? 106 : 56;
    case Qt::Key_ParenLeft:
        return 57;
    case Qt::Key_Plus:
        return keypad ? 107 : 187;
    case Qt::Key_Equal:
        return 187;
    case Qt::Key_Minus:
        return keypad ? 109 : 189;
    case Qt::Key_Underscore:
        return 189;
    case Qt::Key_Period:
        return keypad ? 110 : 190;
    case Qt::Key_Greater:
        return 190;
    case Qt::Key_Comma:
    case Qt::Key_Less:
        return 188;
    case Qt::Key_Slash:
        return keypad ? 111 : 191;
    case Qt::Key_Question:
        return 191;
    case Qt::Key_Semicolon:
    case Qt::Key_Colon:
        return 186;
    case Qt::Key_Apostrophe:
    case Qt::Key_QuoteDbl:
        return 222;
    case Qt::Key_BracketLeft:
    case Qt::Key_BraceLeft:
        return 219;
    case Qt::Key_Backslash:
    case Qt::Key_Bar:
        return 220;
    case Qt::Key_BracketRight:
    case Qt::Key_BraceRight:
        return 221;
    case Qt::Key_QuoteLeft:
    case Qt::Key_AsciiTilde:
        return 192;
    default:
        return 0;
    }
}

int KeyboardHook::shiftOf(const QKeyEvent* e) {
    const Qt::KeyboardModifiers m = e->modifiers();
    return (m & Qt::ShiftModifier ? kShift : 0) | (m & Qt::ControlModifier ? kCtrl : 0) |
           (m & Qt::AltModifier ? kAlt : 0);
}

bool KeyboardHook::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease)
        return false;
    // A key event travels from the window to the focus widget and, when not
    // taken, on to its parents; every step passes this filter. Report it once:
    // when it reaches the widget with the focus (or the active window when no
    // widget has it).
    if (!watched->isWidgetType())
        return false;
    QWidget* target = QApplication::focusWidget();
    if (!target)
        target = QApplication::activeWindow();
    if (watched != target)
        return false;

    auto* key = static_cast<QKeyEvent*>(event);
    int code = keyCodeOf(key);
    if (code == 0)
        return false;
    int shift = shiftOf(key);
    const Handler& handler = type == QEvent::KeyPress ? m_keyDown : m_keyUp;
    if (!handler)
        return false;
    // Errors in the hook are ignored: a key must never be lost to one.
    try {
        handler(code, shift);
    } catch (...) {
        return false;
    }
    return code == 0;
}
