#include "frasecondscreen.h"

#include "audience/audiencefont.h"
#include "audience/audienceplacement.h"
#include "audience/ui/audiencescreen.h"
#include "audience/ui/vbwscroller.h"
#include "audience/vbcolor.h"
#include "core/appsettings.h"
#include "core/prompts.h"
#include "core/settings.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {
template <typename W> W* named(W* w, const char* name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}
// The options screen reads the strip's text colour with white as its default.
const QString kFontColourDefault = QStringLiteral("16777215");
} // namespace

fraSecondScreen::fraSecondScreen(AudienceScreen* audience, QWidget* parent)
    : QWidget(parent), m_audience(audience) {
    setObjectName(QStringLiteral("fraSecondScreen"));
    chkShowSecondScreen =
        named(new QCheckBox(QStringLiteral(
                  "Use Singer/Audience Screen (Screen will show/hide after this screen is closed)")),
              "chkShowSecondScreen");
    chkEnableNextPerformer =
        named(new QCheckBox(QStringLiteral("Enable Automatic Display of Next Performer")),
              "chkEnableNextPerformer");
    chkNextPerformerPosition =
        named(new QCheckBox(QStringLiteral("Next performer is taken from song below the one played")),
              "chkNextPerformerPosition");
    Label11 = named(new QLabel(QStringLiteral("Scroller Startup Text")), "Label11");
    txtScrollerStartupText = named(new QLineEdit, "txtScrollerStartupText");
    btnSetStartupText = named(new QPushButton(QStringLiteral("Set")), "btnSetStartupText");
    Label9 = named(new QLabel(QStringLiteral("Scroller Next Singer Template")), "Label9");
    txtScroller = named(new QLineEdit, "txtScroller");
    txtScroller->setPlaceholderText(QStringLiteral("Use %p, %a, %t for perfomer , artist, track"));
    txtScroller->setToolTip(QStringLiteral("Use %p, %a, %t for perfomer , artist, track"));
    btnSaveScrollerText = named(new QPushButton(QStringLiteral("Save")), "btnSaveScrollerText");
    Label18 = named(new QLabel(QStringLiteral("Scroller Position")), "Label18");
    m_positions = new QButtonGroup(this);
    const char* const captions[3] = {"Top", "Bottom", "Hidden"};
    for (int i = 0; i < 3; ++i) {
        optScrollerPosition[i] = new QRadioButton(QString::fromLatin1(captions[i]));
        optScrollerPosition[i]->setObjectName(QStringLiteral("optScrollerPosition%1").arg(i));
        m_positions->addButton(optScrollerPosition[i], i);
    }
    Label2 = named(new QLabel(QStringLiteral("Scroller Speed (1=Fast 5=Slow)")), "Label2");
    spnScrollerSpeed = named(new QSpinBox, "spnScrollerSpeed");
    spnScrollerSpeed->setRange(1, 5);
    btnFont = named(new QPushButton(QStringLiteral("Font")), "btnFont");
    btnAudienceFontColor = named(new QPushButton(QStringLiteral("Font Color")), "btnAudienceFontColor");
    btnScrollerBackColor = named(new QPushButton(QStringLiteral("Back Color")), "btnScrollerBackColor");
    lblSampleText = named(new QLabel(QStringLiteral("Sample Text")), "lblSampleText");
    lblSampleText->setAutoFillBackground(true);
    lblSampleText->setAlignment(Qt::AlignCenter);
    lblSampleText->setMinimumHeight(60);
    btnResetScreen = named(new QPushButton(QStringLiteral("Reset")), "btnResetScreen");
    btnResetScreen->setToolTip(
        QStringLiteral("Put the audience window back at the top left in its design size"));

    auto* grid = new QGridLayout(this);
    int row = 0;
    grid->addWidget(chkShowSecondScreen, row++, 0, 1, 3, Qt::AlignLeft);
    grid->addWidget(chkEnableNextPerformer, row++, 0, 1, 3, Qt::AlignLeft);
    grid->addWidget(chkNextPerformerPosition, row++, 0, 1, 3, Qt::AlignLeft);
    grid->addWidget(Label11, row++, 0, 1, 3);
    grid->addWidget(txtScrollerStartupText, row, 0, 1, 2);
    grid->addWidget(btnSetStartupText, row++, 2);
    grid->addWidget(Label9, row++, 0, 1, 3);
    grid->addWidget(txtScroller, row, 0, 1, 2);
    grid->addWidget(btnSaveScrollerText, row++, 2);
    auto* positions = new QHBoxLayout;
    positions->addWidget(Label18);
    for (auto* o : optScrollerPosition)
        positions->addWidget(o);
    positions->addStretch();
    grid->addLayout(positions, row++, 0, 1, 3);
    grid->addWidget(Label2, row, 0);
    grid->addWidget(spnScrollerSpeed, row++, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(btnFont);
    buttons->addWidget(btnAudienceFontColor);
    buttons->addWidget(btnScrollerBackColor);
    buttons->addStretch();
    buttons->addWidget(btnResetScreen);
    grid->addLayout(buttons, row++, 0, 1, 3);
    grid->addWidget(lblSampleText, row++, 0, 1, 3);
    grid->setRowStretch(row, 1);

    load();

    connect(chkShowSecondScreen, &QCheckBox::toggled, this, &fraSecondScreen::chkShowSecondScreen_Click);
    connect(chkEnableNextPerformer, &QCheckBox::toggled, this, [](bool on) {
        Cfg.EnableNextPerfomer = on;
        settings::writeBool(keys::EnableNextPerfomer, on);
    });
    connect(chkNextPerformerPosition, &QCheckBox::toggled, this, [](bool on) {
        Cfg.NextPerformerPosition = on;
        settings::writeBool(keys::NextPerformerPosition, on);
    });
    connect(btnSetStartupText, &QPushButton::clicked, this, &fraSecondScreen::btnSetStartupText_Click);
    connect(btnSaveScrollerText, &QPushButton::clicked, this, &fraSecondScreen::btnSaveScrollerText_Click);
    connect(m_positions, &QButtonGroup::idClicked, this, &fraSecondScreen::optScrollerPosition_Click);
    connect(spnScrollerSpeed, &QSpinBox::valueChanged, this, &fraSecondScreen::spnScrollerSpeed_Change);
    connect(btnFont, &QPushButton::clicked, this, &fraSecondScreen::btnFont_Click);
    connect(btnAudienceFontColor, &QPushButton::clicked, this, &fraSecondScreen::btnAudienceFontColor_Click);
    connect(btnScrollerBackColor, &QPushButton::clicked, this, &fraSecondScreen::btnScrollerBackColor_Click);
    connect(btnResetScreen, &QPushButton::clicked, this, &fraSecondScreen::btnResetScreen_Click);
}

void fraSecondScreen::load() {
    m_loading = true;
    chkShowSecondScreen->setChecked(Cfg.ShowSecondScreen);
    chkEnableNextPerformer->setChecked(Cfg.EnableNextPerfomer);
    chkNextPerformerPosition->setChecked(Cfg.NextPerformerPosition);
    txtScrollerStartupText->setText(settings::readText(keys::ScrollerStartupText, kStartupTextDefault));
    txtScroller->setText(settings::readText(keys::ScrollerText, kTemplateDefault));
    const int pos = Cfg.ScrollerPosition;
    if (pos >= 0 && pos < 3)
        optScrollerPosition[pos]->setChecked(true);
    spnScrollerSpeed->setValue(qBound(1, (settings::readInt(keys::ScrollerSpeed) + 5) / 10, 5));
    dressSample();
    m_loading = false;
}

void fraSecondScreen::dressSample() {
    lblSampleText->setFont(audiencefont::font(settings::readText(keys::Font),
                                              settings::readInt(keys::FontSize),
                                              settings::readBool(keys::FontBold)));
    QPalette pal = lblSampleText->palette();
    pal.setColor(
        QPalette::WindowText,
        vbcolor::toQColor(
            vbcolor::parse(settings::readText(keys::AudienceScrollerFontColor, kFontColourDefault)), pal));
    pal.setColor(QPalette::Window,
                 vbcolor::toQColor(vbcolor::parse(settings::readText(keys::AudienceScrollerColor)), pal));
    lblSampleText->setPalette(pal);
}

void fraSecondScreen::chkShowSecondScreen_Click(bool on) {
    Cfg.ShowSecondScreen = on;
    settings::writeBool(keys::ShowSecondScreen, on);
    // Ticked, the window comes at the close of the options screen (or the next start); unticked it goes now.
    if (!on && m_audience)
        m_audience->unload();
}

void fraSecondScreen::btnSetStartupText_Click() {
    const QString text = txtScrollerStartupText->text();
    if (m_audience && m_audience->loaded()) {
        m_audience->loaded()->setScrollerText(text);
        if (Cfg.UpdateScrollerImmediately)
            m_audience->loaded()->scroller->setText(text);
    }
    settings::writeText(keys::ScrollerStartupText, text);
    Cfg.ScrollerStartupText = text;
}

void fraSecondScreen::btnSaveScrollerText_Click() {
    Cfg.ScrollerText = txtScroller->text();
    settings::writeText(keys::ScrollerText, Cfg.ScrollerText);
}

void fraSecondScreen::optScrollerPosition_Click(int index) {
    Cfg.ScrollerPosition = index;
    if (m_audience && m_audience->loaded())
        m_audience->loaded()->SetScrollerPosition(index);
    settings::writeInt(keys::ScrollerPosition, index);
}

void fraSecondScreen::spnScrollerSpeed_Change(int value) {
    if (m_loading)
        return;
    const int ms = value * 10;
    if (m_audience && m_audience->loaded())
        m_audience->loaded()->scroller->model().setInterval(ms);
    settings::writeInt(keys::ScrollerSpeed, ms);
}

void fraSecondScreen::btnFont_Click() {
    const QFont current =
        audiencefont::font(settings::readText(keys::Font), settings::readInt(keys::FontSize),
                           settings::readBool(keys::FontBold));
    const std::optional<QFont> chosen = prompts().chooseFont(current);
    if (!chosen)
        return;
    const int size = chosen->pointSize() > 0 ? chosen->pointSize() : settings::readInt(keys::FontSize);
    if (m_audience && m_audience->loaded()) {
        ScrollerModel& m = m_audience->loaded()->scroller->model();
        m.setFontBold(chosen->bold());
        m.setFontSize(size);
        m.setFontName(audiencefont::resolveFamily(chosen->family()));
    }
    settings::writeBool(keys::FontBold, chosen->bold());
    settings::writeText(keys::Font, chosen->family());
    settings::writeInt(keys::FontSize, size);
    dressSample();
}

void fraSecondScreen::btnAudienceFontColor_Click() {
    const QColor current = vbcolor::toQColor(
        vbcolor::parse(settings::readText(keys::AudienceScrollerFontColor, kFontColourDefault)), palette());
    const std::optional<QColor> chosen = prompts().chooseColor(current);
    if (!chosen)
        return;
    const quint32 v = vbcolor::fromQColor(*chosen);
    if (m_audience && m_audience->loaded())
        m_audience->loaded()->scroller->model().setForeColor(v);
    settings::writeText(keys::AudienceScrollerFontColor, vbcolor::toText(v));
    dressSample();
}

void fraSecondScreen::btnScrollerBackColor_Click() {
    const QColor current =
        vbcolor::toQColor(vbcolor::parse(settings::readText(keys::AudienceScrollerColor)), palette());
    const std::optional<QColor> chosen = prompts().chooseColor(current);
    if (!chosen)
        return;
    const quint32 v = vbcolor::fromQColor(*chosen);
    if (m_audience && m_audience->loaded())
        m_audience->loaded()->scroller->model().setBackColor(v);
    settings::writeText(keys::AudienceScrollerColor, vbcolor::toText(v));
    dressSample();
}

void fraSecondScreen::btnResetScreen_Click() {
    // The window goes (saving its place), then the place is overwritten; it does not come back by itself.
    if (m_audience)
        m_audience->unload();
    settings::writeText(keys::SecLeft, QStringLiteral("0"));
    settings::writeText(keys::SecTop, QStringLiteral("0"));
    settings::writeInt(keys::SecState, 0);
    settings::writeText(keys::SecWidth, QString::number(audienceplacement::kDesignWidth));
    settings::writeText(keys::SecHeight, QString::number(audienceplacement::kDesignHeight));
}
