#pragma once

#include <QWidget>
#include <array>

class JinglePlayer;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QAction;

// The content of the options screen's page "Fill Buttons" (the frame
// fraJingles of frmOptions holds it): a text box for each
// of the sixteen buttons with a built-in button that picks its file, a Clear
// button beside each, the jingle output and the tick box that lets a jingle
// fade the karaoke song out. Every change is written at once; the main
// screen's captions follow when the options screen closes.
class JingleOptionsPage : public QWidget {
    Q_OBJECT
public:
    explicit JingleOptionsPage(JinglePlayer* player, QWidget* parent = nullptr);

    // Fills the page from the settings and the engine's outputs.
    void refill();

    std::array<QLineEdit*, 16> myJingle{};
    // The built-in button of each text box.
    std::array<QAction*, 16> myJingleButton{};
    std::array<QPushButton*, 16> btnClear{};
    QComboBox* cboAudiodevices = nullptr;
    QLabel* lblAudioDevice = nullptr;
    QPushButton* cmdSetAudioOutput = nullptr;
    QCheckBox* chkStopKaraoke = nullptr;

    void myJingle_ButtonClick(int index);
    void btnClear_Click(int index);
    void cmdSetAudioOutput_Click();
    void chkStopKaraoke_Click();

private:
    JinglePlayer* m_player;
};
