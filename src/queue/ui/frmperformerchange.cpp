#include "frmperformerchange.h"

#include <QLineEdit>

frmPerformerChange::frmPerformerChange(QWidget* parent) : PerformerDialogBase(parent) {
    setObjectName(QStringLiteral("frmPerformerChange"));
    txtPerformerName = new QLineEdit(this);
    txtPerformerName->setObjectName(QStringLiteral("txtPerformerName"));
    txtPerformerName->setMinimumWidth(220);
    placeNameControl(txtPerformerName);
}

QString frmPerformerChange::nameText() const {
    return txtPerformerName->text();
}

void frmPerformerChange::loadNameControl() {
    txtPerformerName->clear();
    txtPerformerName->setFocus();
}
