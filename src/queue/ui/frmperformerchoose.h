#pragma once

#include "performerdialogbase.h"

class QComboBox;

// "Choose Singer" with the known singer names to pick from or a new name to type.
class frmPerformerChoose : public PerformerDialogBase {
    Q_OBJECT
public:
    explicit frmPerformerChoose(QWidget* parent = nullptr);

    QComboBox* cboSingerNames;

protected:
    QString nameText() const override;
    void loadNameControl() override;
};
