#pragma once

#include <QString>

class QFrame;
class QLabel;
class QObject;
class QPushButton;
class QTableView;
class QTimer;
class QWidget;

// Small makers for the host screens' controls: each control carries its name
// as its objectName(), and is placed in twips as the screens are drawn.
namespace widgetmakers {

template <class W> W* named(W* w, const char* name) {
    w->setObjectName(QLatin1String(name));
    return w;
}

void placeTw(QWidget* w, int left, int top, int width, int height);
QFrame* makeFrame(QWidget* parent, const char* name);
QPushButton* makeButton(QWidget* parent, const char* name, const QString& caption, const QString& tip,
                        int left, int top, int width, int height);
// A label; a bold one is a fixed caption of the song-on-stage panel, set a
// size smaller when this system's fonts draw it wider than its place.
QLabel* makeLabel(QWidget* parent, const char* name, const QString& caption, int left, int top, int width,
                  int height, bool bold);
QTimer* makeTimer(QObject* parent, const char* name, int interval);
// A list of whole rows, one selected at a time, not editable in place.
QTableView* makeList(QWidget* parent, const char* name);

} // namespace widgetmakers
