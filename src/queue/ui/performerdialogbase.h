#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class QSpinBox;
class QGridLayout;

// What "Choose Singer" has in both its forms: the key spin box, the buttons,
// Enter and Escape, and the properties the caller reads after the dialog has
// closed. The name control is the subclass's.
class PerformerDialogBase : public QDialog {
    Q_OBJECT
public:
    static constexpr int kMinKey = -6;
    static constexpr int kMaxKey = 6;

    QLabel* lblSingerName;
    QLabel* OsenXPLabel1;
    QSpinBox* spnKey;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;

    QString ClientName() const { return m_clientName; }
    void setClientName(const QString& name) { m_clientName = name; }
    qint32 SongKey() const { return m_songKey; }
    void setSongKey(qint32 key) { m_songKey = key; }
    bool CancelledForm() const { return m_cancelledForm; }

    // Adds ClientName to the known singer names when it is new.
    void AddToListArray();

    // Readies the controls as a fresh load does; the preset ClientName and
    // SongKey are not shown.
    void Form_Load();
    // Form_Load, then the dialog, modal.
    int showModal();

    void cmdOk_Click();
    void cmdCancel_Click();

protected:
    explicit PerformerDialogBase(QWidget* parent);
    // Puts the name control in row 0 of the grid; called once by the subclass.
    void placeNameControl(QWidget* nameControl);
    virtual QString nameText() const = 0;
    virtual void loadNameControl() = 0;

private:
    QGridLayout* m_grid;
    QString m_clientName;
    qint32 m_songKey = 0;
    bool m_cancelledForm = true;
};
