#pragma once

#include <QWidget>

class AudienceScreen;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

// The options screen's page of the audience screen. Every control writes its
// setting the moment it changes (there is no OK or Cancel), and the running
// audience window, when there is one, follows at once.
class fraSecondScreen : public QWidget {
    Q_OBJECT
public:
    // The texts the page shows when the settings hold none.
    static inline const QString kStartupTextDefault = QStringLiteral("Welcome to our Show");
    static inline const QString kTemplateDefault =
        QStringLiteral("Could %p please make their way to the stage towards the end of this performance");

    // `audience` (not owned) may be null: then only the settings change.
    explicit fraSecondScreen(AudienceScreen* audience, QWidget* parent = nullptr);

    QCheckBox* chkShowSecondScreen;
    QCheckBox* chkEnableNextPerformer;
    QCheckBox* chkNextPerformerPosition;
    QLabel* Label11;
    QLineEdit* txtScrollerStartupText;
    QPushButton* btnSetStartupText;
    QLabel* Label9;
    QLineEdit* txtScroller;
    QPushButton* btnSaveScrollerText;
    QLabel* Label18;
    QRadioButton* optScrollerPosition[3];
    QLabel* Label2;
    QSpinBox* spnScrollerSpeed;
    QPushButton* btnFont;
    QPushButton* btnAudienceFontColor;
    QPushButton* btnScrollerBackColor;
    QLabel* lblSampleText;
    QPushButton* btnResetScreen;

private:
    void load();
    void dressSample();
    void chkShowSecondScreen_Click(bool on);
    void btnSetStartupText_Click();
    void btnSaveScrollerText_Click();
    void optScrollerPosition_Click(int index);
    void spnScrollerSpeed_Change(int value);
    void btnFont_Click();
    void btnAudienceFontColor_Click();
    void btnScrollerBackColor_Click();
    void btnResetScreen_Click();

    AudienceScreen* m_audience;
    QButtonGroup* m_positions;
    bool m_loading = false;
};
