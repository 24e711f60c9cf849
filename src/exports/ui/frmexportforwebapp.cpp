#include "frmexportforwebapp.h"

#include "core/prompts.h"
#include "exports/songbook.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

template <typename W> W* named(W* w, const char* name) {
    w->setObjectName(QLatin1String(name));
    return w;
}

} // namespace

frmExportForWebApp::frmExportForWebApp(QWidget* owner) : QDialog(owner) {
    setObjectName(QStringLiteral("frmExportForWebApp"));
    setWindowTitle(QStringLiteral("Export For Mobile App"));
    setModal(true);
    if (owner)
        setWindowIcon(owner->windowIcon());

    Label2 = named(new QLabel(QStringLiteral("Songbook Title"), this), "Label2");
    txtSongBookTitle = named(new QLineEdit(this), "txtSongBookTitle");
    chkUseEmailAddressForRequests =
        named(new QCheckBox(QStringLiteral("Allow Email Requests"), this), "chkUseEmailAddressForRequests");
    Label1 = named(new QLabel(QStringLiteral("Your Email Address for Requests"), this), "Label1");
    txtEmailAddress = named(new QLineEdit(this), "txtEmailAddress");
    lblLabel1 =
        named(new QLabel(QStringLiteral("Your Cell/ Mobile No for song requests"), this), "lblLabel1");
    txtCellNo = named(new QLineEdit(this), "txtCellNo");
    chkUseMobileForRequests =
        named(new QCheckBox(QStringLiteral("Use for Requests"), this), "chkUseMobileForRequests");
    lblPressF1 = named(
        new QLabel(QStringLiteral("Press F1 for explanation of the the use of the above fields."), this),
        "lblPressF1");
    cmdExportForMobile = named(new QPushButton(QStringLiteral("Export"), this), "cmdExportForMobile");
    btnCancel = named(new QPushButton(QStringLiteral("Cancel"), this), "btnCancel");
    for (QPushButton* b : {cmdExportForMobile, btnCancel}) {
        b->setToolTip(QStringLiteral("Search for an imported song"));
        b->setAutoDefault(false);
    }
    Label2->setBuddy(txtSongBookTitle);
    Label1->setBuddy(txtEmailAddress);
    lblLabel1->setBuddy(txtCellNo);

    auto* grid = new QGridLayout(this);
    grid->addWidget(Label2, 0, 0);
    grid->addWidget(txtSongBookTitle, 0, 1, 1, 2);
    grid->addWidget(chkUseEmailAddressForRequests, 1, 1, 1, 2);
    grid->addWidget(Label1, 2, 0);
    grid->addWidget(txtEmailAddress, 2, 1, 1, 2);
    grid->addWidget(lblLabel1, 3, 0);
    grid->addWidget(txtCellNo, 3, 1);
    grid->addWidget(chkUseMobileForRequests, 3, 2);
    grid->addWidget(lblPressF1, 4, 0, 1, 3);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdExportForMobile);
    buttons->addWidget(btnCancel);
    grid->addLayout(buttons, 5, 0, 1, 3);

    // Form_Load: nothing allowed yet, so the address box waits for the tick.
    m_cancelled = false;
    m_useEmailForRequests = false;
    txtEmailAddress->setEnabled(false);

    connect(chkUseEmailAddressForRequests, &QCheckBox::clicked, this,
            &frmExportForWebApp::chkUseEmailAddressForRequests_Click);
    connect(chkUseMobileForRequests, &QCheckBox::clicked, this,
            &frmExportForWebApp::chkUseMobileForRequests_Click);
    connect(cmdExportForMobile, &QPushButton::clicked, this, &frmExportForWebApp::cmdExportForMobile_Click);
    connect(btnCancel, &QPushButton::clicked, this, &frmExportForWebApp::btnCancel_Click);
}

void frmExportForWebApp::chkUseEmailAddressForRequests_Click() {
    m_useEmailForRequests = chkUseEmailAddressForRequests->isChecked();
    txtEmailAddress->setEnabled(m_useEmailForRequests);
}

void frmExportForWebApp::chkUseMobileForRequests_Click() {
    // Ticking it takes the tick from the address box, as unticking that by
    // hand would; the number itself goes nowhere.
    if (chkUseMobileForRequests->isChecked() && chkUseEmailAddressForRequests->isChecked()) {
        chkUseEmailAddressForRequests->setChecked(false);
        chkUseEmailAddressForRequests_Click();
    }
}

void frmExportForWebApp::cmdExportForMobile_Click() {
    m_songBookTitle = txtSongBookTitle->text();
    m_emailAddress = txtEmailAddress->text();
    if (m_songBookTitle.trimmed().isEmpty()) {
        prompts().msgBox(QStringLiteral("Songbook Title cannot be blank"), Prompts::OkOnly,
                         QStringLiteral("Blank Songbook Title"));
        return;
    }
    if (const QString error = Songbook::titleProblem(m_songBookTitle); !error.isEmpty()) {
        prompts().msgBox(error, Prompts::Exclamation, QStringLiteral("Songbook Title"));
        return;
    }
    if (m_useEmailForRequests && m_emailAddress.trimmed().isEmpty()) {
        prompts().msgBox(
            QStringLiteral("Email address canot be blank if you have enabled emailing song requests"),
            Prompts::OkOnly, QStringLiteral("Blank Email Address"));
        return;
    }
    accept();
}

void frmExportForWebApp::btnCancel_Click() {
    m_cancelled = true;
    QDialog::reject();
}

void frmExportForWebApp::reject() {
    btnCancel_Click();
}
