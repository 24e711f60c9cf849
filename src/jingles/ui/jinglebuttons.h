#pragma once

#include <QObject>
#include <array>

class JingleBank;
class QPushButton;

// Ties the main screen's sixteen cmdJingle buttons to the bank: each shows
// its button's caption and holds its path as the "Tag" property, and a click
// goes to the bank. The buttons stay the form's.
class JingleButtons : public QObject {
    Q_OBJECT
public:
    JingleButtons(JingleBank& bank, const std::array<QPushButton*, 16>& buttons, QObject* parent = nullptr);

    // Shows the bank's captions and tags on the buttons.
    void refresh();

private:
    JingleBank& m_bank;
    std::array<QPushButton*, 16> m_buttons;
};
