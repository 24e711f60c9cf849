#include "generaloptionspage.h"

#include "colorschemes.h"
#include "widgetmakers.h"

#include "core/appsettings.h"
#include "core/errorlog.h"
#include "core/pathhelpers.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "queue/singernames.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

using widgetmakers::named;

namespace {

// One tick box of the page: the key it writes, the program's value it sets
// (none for a key only the file holds), and whether a tick means "off".
struct Box {
    const char* name;
    const char* caption;
    const SettingKey* key;
    bool AppSettings::*value;
    bool inverse;
    const char* tip;
};

const char kSearchPathTip[] = "When enabled searches the folder names as well as file name for search terms";

const Box kBoxes[] = {
    {"chkAllowDragAndDrop", "Allow Drag && Drop song positioning in the queue", &keys::AllowDragAndDrop,
     &AppSettings::AllowDragAndDrop, false, nullptr},
    {"chkAllowDoubleClicks", "Double clicking in the queue plays the selected song", &keys::AllowDoubleClicks,
     &AppSettings::AllowDoubleClicks, false, nullptr},
    {"chkNoFadeOnRestart", "No Fade on Restart", &keys::NoFadeOnRestart, &AppSettings::NoFadeOnRestart, false,
     nullptr},
    {"chkAutoRemoveFromQueue", "Auto remove song from queue when played", &keys::AutoRemoveFromQueue,
     &AppSettings::AutoRemoveFromQueue, false, nullptr},
    {"chkPromptForPerformer", "Do Not  Prompt For Performer Name (Use Default)", &keys::PromptForPerfomer,
     &AppSettings::PromptForPerfomer, true, nullptr},
    {"chkPlayFromPosOne", "Clicking play button plays the song at the top of the queue not the selected song",
     &keys::PlayFromPosition1, &AppSettings::PlayFromPosition1, false, nullptr},
    {"chkInteractiveSearch", "Use Interactive Search", &keys::InteractiveSearch,
     &AppSettings::InteractiveSearch, false,
     "Automatically searches for songs as you type over 4 characters. This should be off on large "
     "databases."},
    {"chkIncludeSongPath", "Include song path when searching", &keys::IncludeSongPath,
     &AppSettings::IncludeSongPath, false, kSearchPathTip},
    {"chkAccentBlindSearch", "Ignore accents when searching", &keys::AccentBlindSearch, nullptr, false,
     "A search for beyonce also finds Beyoncé, and ros finds Rós."},
    {"optShowAll", "Show all songs when search criteria is blank", &keys::ViewAllSongsAtStartup,
     &AppSettings::ViewAllSongsAtStartup, false,
     "All songs will be dispalyed when no search criteria has been entered. This should be off on large "
     "databases."},
    {"chkAllowSortingOnQueue", "Allow sorting on the queue", &keys::AllowSortingOnQueue,
     &AppSettings::AllowSortingOnQueue, false, nullptr},
    {"chkAutoSelectAllInHistory", "Add All option in history.", &keys::AutoSelectAllInHistory, nullptr, false,
     "Turns on/off the All entry in the history screen drop down."},
    {"chkSaveHistory", "Save History", &keys::SaveHistory, &AppSettings::SaveHistory, false, kSearchPathTip},
};

const QString kLoadSource = QStringLiteral("Options Form_load");

} // namespace

GeneralOptionsPage::GeneralOptionsPage(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("generalOptionsPage"));
    new QVBoxLayout(this);
    buildBoxes();
    buildOthers();
    static_cast<QVBoxLayout*>(layout())->addStretch(1);
}

void GeneralOptionsPage::buildBoxes() {
    for (const Box& b : kBoxes) {
        // "&&" in a caption shows one ampersand.
        auto* box = new QCheckBox(QString::fromLatin1(b.caption), this);
        box->setObjectName(QLatin1String(b.name));
        if (b.tip)
            box->setToolTip(QString::fromLatin1(b.tip));
        Guarded(kLoadSource, 1, [&] {
            const bool on = b.value ? Cfg.*(b.value) : settings::readBool(*b.key);
            box->setChecked(b.inverse ? !on : on);
        });
        connect(box, &QCheckBox::toggled, this, [b](bool ticked) {
            const bool on = b.inverse ? !ticked : ticked;
            if (b.value)
                Cfg.*(b.value) = on;
            settings::writeBool(*b.key, on);
        });
        layout()->addWidget(box);
    }
    // Kept for the host's eye: Delete always clears the search box.
    auto* delClears =
        named(new QCheckBox(QStringLiteral("Del Key Clears Search Criteria"), this), "chkDelClears");
    layout()->addWidget(delClears);
}

void GeneralOptionsPage::buildOthers() {
    auto* form = new QFormLayout;
    static_cast<QVBoxLayout*>(layout())->addLayout(form);

    txtDefaultName = named(new QLineEdit(Cfg.DefaultName, this), "txtDefaultName");
    form->addRow(QStringLiteral("Default Singer Name"), txtDefaultName);

    spnAutoPlayDelay = named(new QSpinBox(this), "spnAutoPlayDelay");
    spnAutoPlayDelay->setRange(5, 20);
    spnAutoPlayDelay->setValue(Cfg.AutoPlayDelay);
    connect(spnAutoPlayDelay, &QSpinBox::valueChanged, this, [](int seconds) {
        Cfg.AutoPlayDelay = seconds;
        settings::writeInt(keys::AutoPlayDelay, seconds);
    });
    form->addRow(QStringLiteral("Auto Play Delay"), spnAutoPlayDelay);

    auto* pathRow = new QHBoxLayout;
    txtWinampPath = named(new QLineEdit(Cfg.WinAmpPath, this), "txtWinampPath");
    txtWinampPath->setReadOnly(true);
    btnWinampPath = named(new QPushButton(QStringLiteral("..."), this), "btnWinampPath");
    btnWinampPath->setToolTip(QStringLiteral("Choose folder where winamp is located"));
    ButtonResetWinampPath = named(new QPushButton(QStringLiteral("Reset"), this), "ButtonResetWinampPath");
    pathRow->addWidget(txtWinampPath, 1);
    pathRow->addWidget(btnWinampPath);
    pathRow->addWidget(ButtonResetWinampPath);
    form->addRow(QStringLiteral("Winamp Path"), pathRow);
    connect(btnWinampPath, &QPushButton::clicked, this, &GeneralOptionsPage::chooseWinampPath);
    connect(ButtonResetWinampPath, &QPushButton::clicked, this,
            [this] { txtWinampPath->setText(keys::WinAmpPath.defaultText()); });

    cboColorSchemes = named(new QComboBox(this), "cboColorSchemes");
    cboColorSchemes->addItems(colorschemes::names());
    Guarded(kLoadSource, 2, [this] {
        const int scheme = settings::readInt(keys::ColorScheme);
        cboColorSchemes->setCurrentIndex(scheme >= 0 && scheme < cboColorSchemes->count() ? scheme : 0);
    });
    connect(cboColorSchemes, &QComboBox::currentIndexChanged, this, [](int index) {
        Cfg.ColorScheme = index;
        settings::writeInt(keys::ColorScheme, index);
    });
    form->addRow(QStringLiteral("ColorScheme"), cboColorSchemes);
}

void GeneralOptionsPage::chooseWinampPath() {
    const int answer = prompts().msgBox(
        QStringLiteral("Are you sure you want to change the path to winamp?\n"
                       "You only need do this if you have not installed winamp to its default folder\n"
                       "or have a non english operating system that does not use the program files folder"),
        Prompts::YesNo | Prompts::Question, QStringLiteral("Change Winamp Path"));
    if (answer != Prompts::Yes)
        return;
    const QString folder =
        prompts().chooseFolder(QStringLiteral("Select folder where winamp executable is located"), QString());
    if (folder.isEmpty())
        return;
    // The player's program in the chosen folder.
    const QString path = AddBackslash(folder) + QStringLiteral("mpv");
    txtWinampPath->setText(path);
    Cfg.WinAmpPath = path;
    settings::writeText(keys::WinAmpPath, path);
}

void GeneralOptionsPage::takeOverDefaultName() {
    QString name = txtDefaultName->text();
    if (name.trimmed().isEmpty())
        name = QStringLiteral("No Name");
    settings::writeText(keys::DefaultName, name);
    Cfg.DefaultName = name;
    if (SingerNames.size() > 1)
        SingerNames[1] = name;
}
