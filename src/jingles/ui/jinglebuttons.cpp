#include "jinglebuttons.h"

#include "jingles/jinglebank.h"

#include <QPushButton>

JingleButtons::JingleButtons(JingleBank& bank, const std::array<QPushButton*, 16>& buttons, QObject* parent)
    : QObject(parent), m_bank(bank), m_buttons(buttons) {
    for (int i = 0; i < JingleBank::kButtons; ++i) {
        if (!m_buttons[size_t(i)])
            continue;
        connect(m_buttons[size_t(i)], &QPushButton::clicked, this, [this, i] { m_bank.cmdJingle_Click(i); });
    }
    connect(&m_bank, &JingleBank::buttonsChanged, this, &JingleButtons::refresh);
    refresh();
}

void JingleButtons::refresh() {
    for (int i = 0; i < JingleBank::kButtons; ++i) {
        QPushButton* b = m_buttons[size_t(i)];
        if (!b)
            continue;
        // A caption with an ampersand shows it as it stands, not as an access key.
        QString caption = m_bank.button(i).caption;
        b->setText(caption.replace(QLatin1Char('&'), QLatin1String("&&")));
        b->setProperty("Tag", m_bank.button(i).tag);
        b->setToolTip(m_bank.button(i).tag);
    }
}
