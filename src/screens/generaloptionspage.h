#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

// The "General" page of the options screen. Every box and list writes its
// setting, and the program's value of it, the moment it changes; the parts
// that act on a setting follow SettingsNotifier. The default singer's name is
// taken over when the screen closes (takeOverDefaultName).
class GeneralOptionsPage : public QWidget {
    Q_OBJECT
public:
    explicit GeneralOptionsPage(QWidget* parent = nullptr);

    // Writes the name in txtDefaultName as the default singer's, or "No Name"
    // when the box is empty or blank.
    void takeOverDefaultName();

    QLineEdit* txtDefaultName;
    QSpinBox* spnAutoPlayDelay;
    QLineEdit* txtWinampPath;
    QPushButton *btnWinampPath, *ButtonResetWinampPath;
    QComboBox* cboColorSchemes;

private:
    void buildBoxes();
    void buildOthers();
    void chooseWinampPath();
};
