#pragma once

#include <QString>

class QPushButton;
class QWidget;

// A button of a dialog, named as the program knows it, with its tip. It never
// becomes the dialog's default button, so Enter in a text box presses nothing.
QPushButton* makeDialogButton(QWidget* parent, const char* name, const QString& caption, const QString& tip);
