#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

// "Export For Mobile App": asks the host for the songbook's title and
// whether the host's address goes into it for song requests. The options
// page shows it modally and reads its properties when it closes.
class frmExportForWebApp : public QDialog {
    Q_OBJECT
public:
    explicit frmExportForWebApp(QWidget* owner = nullptr);

    bool useEmailForRequests() const { return m_useEmailForRequests; }
    void setUseEmailForRequests(bool v) { m_useEmailForRequests = v; }
    bool useMobileForRequests() const { return m_useMobileForRequests; }
    void setUseMobileForRequests(bool v) { m_useMobileForRequests = v; }
    QString songBookTitle() const { return m_songBookTitle; }
    void setSongBookTitle(const QString& v) { m_songBookTitle = v; }
    QString CellNo() const { return m_cellNo; }
    void setCellNo(const QString& v) { m_cellNo = v; }
    QString EmailAddress() const { return m_emailAddress; }
    void setEmailAddress(const QString& v) { m_emailAddress = v; }
    bool Cancelled() const { return m_cancelled; }
    void setCancelled(bool v) { m_cancelled = v; }

    QLabel* Label2;
    QLineEdit* txtSongBookTitle;
    QCheckBox* chkUseEmailAddressForRequests;
    QLabel* Label1;
    QLineEdit* txtEmailAddress;
    QLabel* lblLabel1;
    QLineEdit* txtCellNo;
    QCheckBox* chkUseMobileForRequests;
    QLabel* lblPressF1;
    QPushButton* cmdExportForMobile;
    QPushButton* btnCancel;

public slots:
    void chkUseEmailAddressForRequests_Click();
    void chkUseMobileForRequests_Click();
    void cmdExportForMobile_Click();
    void btnCancel_Click();
    // Closing the window by its frame or Escape cancels.
    void reject() override;

private:
    bool m_useEmailForRequests = false;
    bool m_useMobileForRequests = false;
    QString m_songBookTitle;
    QString m_cellNo;
    QString m_emailAddress;
    bool m_cancelled = false;
};
