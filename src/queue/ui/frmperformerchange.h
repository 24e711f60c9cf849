#pragma once

#include "performerdialogbase.h"

class QLineEdit;

// "Choose Singer" with a plain name box, for changing the singer of a queued row.
class frmPerformerChange : public PerformerDialogBase {
    Q_OBJECT
public:
    explicit frmPerformerChange(QWidget* parent = nullptr);

    QLineEdit* txtPerformerName;

protected:
    QString nameText() const override;
    void loadNameControl() override;
};
