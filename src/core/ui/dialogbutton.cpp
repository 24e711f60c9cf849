#include "dialogbutton.h"

#include <QPushButton>

QPushButton* makeDialogButton(QWidget* parent, const char* name, const QString& caption, const QString& tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setToolTip(tip);
    b->setAutoDefault(false);
    return b;
}
