#pragma once

#include "audience/scrollermodel.h"

#include <QFrame>

class QLabel;
class QMenu;

// The scrolling strip of the audience window. It paints only its back colour;
// the text is a child label, txtCredits, exactly as large as its text, which
// each tick moves. The strip clips it. Its arithmetic is ScrollerModel's, in
// twips, turned into pixels here when applied. The label never takes the
// focus, so no caret can show in it.
//
// A press of any button but the right one drags the window the strip stands
// in; the right one opens the window's popup menu.
class vbwScroller : public QFrame {
    Q_OBJECT
public:
    explicit vbwScroller(QWidget* parent = nullptr);

    ScrollerModel& model() { return m_model; }
    const ScrollerModel& model() const { return m_model; }
    QLabel* txtCredits() const { return m_txtCredits; }

    // The menu that the right button pops up (not owned).
    void setPopupMenu(QMenu* menu) { m_popup = menu; }

    // Conveniences of the host.
    QString text() const { return m_model.text(); }
    void setText(const QString& t) { m_model.setText(t); }
    void Reset() { m_model.Reset(); }

    // The label's place in pixels for a box place in twips.
    static QRect boxPixels(float left, float top, float width, float height);

protected:
    void showEvent(QShowEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;

private:
    void applyBox();
    void applyLook();

    ScrollerModel m_model;
    QLabel* m_txtCredits;
    QMenu* m_popup = nullptr;
    bool m_shown = false;
};
