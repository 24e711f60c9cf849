#include "performerdialogbase.h"

#include "dialogkeys.h"
#include "queue/propercase.h"
#include "queue/singernames.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

PerformerDialogBase::PerformerDialogBase(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Choose Singer"));
    setModal(true);

    lblSingerName = new QLabel(QStringLiteral("Singer Name"), this);
    lblSingerName->setObjectName(QStringLiteral("lblSingerName"));
    OsenXPLabel1 = new QLabel(QStringLiteral("Song Key"), this);
    OsenXPLabel1->setObjectName(QStringLiteral("OsenXPLabel1"));
    spnKey = new QSpinBox(this);
    spnKey->setObjectName(QStringLiteral("spnKey"));
    spnKey->setRange(kMinKey, kMaxKey);
    spnKey->setValue(0);
    cmdOk = new QPushButton(QStringLiteral("&Ok"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdOk->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);

    m_grid = new QGridLayout(this);
    m_grid->addWidget(lblSingerName, 0, 0);
    m_grid->addWidget(OsenXPLabel1, 1, 0);
    m_grid->addWidget(spnKey, 1, 1, Qt::AlignLeft);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    m_grid->addLayout(buttons, 2, 0, 1, 2);

    connect(cmdOk, &QPushButton::clicked, this, &PerformerDialogBase::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &PerformerDialogBase::cmdCancel_Click);
}

void PerformerDialogBase::placeNameControl(QWidget* nameControl) {
    lblSingerName->setBuddy(nameControl);
    m_grid->addWidget(nameControl, 0, 1);
    setTabOrder(nameControl, spnKey);
    setTabOrder(spnKey, cmdOk);
    setTabOrder(cmdOk, cmdCancel);
    DialogKeys::install(
        this, [this] { cmdOk_Click(); }, [this] { cmdCancel_Click(); });
}

void PerformerDialogBase::AddToListArray() {
    ::AddToListArray(m_clientName);
}

void PerformerDialogBase::Form_Load() {
    m_cancelledForm = true;
    spnKey->setValue(0);
    loadNameControl();
}

int PerformerDialogBase::showModal() {
    Form_Load();
    return exec();
}

void PerformerDialogBase::cmdOk_Click() {
    m_cancelledForm = false;
    m_clientName = ProperCase(nameText());
    m_songKey = spnKey->value();
    AddToListArray();
    accept();
}

void PerformerDialogBase::cmdCancel_Click() {
    reject();
}
