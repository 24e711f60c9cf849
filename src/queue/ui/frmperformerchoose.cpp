#include "frmperformerchoose.h"

#include "queue/singernames.h"

#include <QComboBox>

frmPerformerChoose::frmPerformerChoose(QWidget* parent) : PerformerDialogBase(parent) {
    setObjectName(QStringLiteral("frmPerformerChoose"));
    cboSingerNames = new QComboBox(this);
    cboSingerNames->setObjectName(QStringLiteral("cboSingerNames"));
    cboSingerNames->setEditable(true);
    cboSingerNames->setInsertPolicy(QComboBox::NoInsert);
    cboSingerNames->setMinimumContentsLength(24);
    placeNameControl(cboSingerNames);
}

QString frmPerformerChoose::nameText() const {
    return cboSingerNames->currentText();
}

void frmPerformerChoose::loadNameControl() {
    cboSingerNames->clear();
    cboSingerNames->addItems(SingerNamesForList());
    cboSingerNames->setCurrentIndex(cboSingerNames->count() > 0 ? 0 : -1);
    cboSingerNames->setEditText(cboSingerNames->itemText(0));
    cboSingerNames->setFocus();
}
