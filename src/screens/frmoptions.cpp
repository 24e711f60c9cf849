#include "frmoptions.h"

#include "widgetmakers.h"

#include "core/errorlog.h"
#include "core/prompts.h"

#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

using widgetmakers::named;

namespace {

QFrame* pageFrame(const char* name) {
    auto* f = named(new QFrame, name);
    f->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(f);
    layout->setContentsMargins(8, 8, 8, 8);
    return f;
}

} // namespace

frmOptions::frmOptions(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmOptions"));
    setWindowTitle(QStringLiteral("Options"));
    setModal(true);

    fraButtons = named(new QFrame(this), "fraButtons");
    auto* buttons = new QVBoxLayout(fraButtons);
    auto pageButton = [&](const char* name, const QString& caption) {
        auto* b = named(new QPushButton(caption, fraButtons), name);
        b->setCheckable(true);
        b->setAutoExclusive(true);
        b->setMinimumHeight(36);
        buttons->addWidget(b);
        return b;
    };
    btnGeneral = pageButton("btnGeneral", QStringLiteral("General"));
    btnJingles = pageButton("btnJingles", QStringLiteral("Fill Buttons"));
    btnShowSecondScreen = pageButton("btnShowSecondScreen", QStringLiteral("Audience Screen"));
    btnExport = pageButton("btnExport", QStringLiteral("Export/Manage"));
    buttons->addStretch(1);
    cmdCheckForUpdates =
        named(new QPushButton(QStringLiteral("Check For Updates"), fraButtons), "cmdCheckForUpdates");
    buttons->addWidget(cmdCheckForUpdates);

    fraGeneral = pageFrame("fraGeneral");
    fraJingles = pageFrame("fraJingles");
    fraSecondScreen = pageFrame("fraSecondScreen");
    fraDatabase = pageFrame("fraDatabase");
    m_pages = {fraGeneral, fraJingles, fraSecondScreen, fraDatabase};
    m_stack = new QStackedWidget(this);
    for (QFrame* f : m_pages)
        m_stack->addWidget(f);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(fraButtons);
    layout->addWidget(m_stack, 1);

    const std::array<QPushButton*, 4> switches = {btnGeneral, btnJingles, btnShowSecondScreen, btnExport};
    for (int i = 0; i < 4; ++i)
        connect(switches[i], &QPushButton::clicked, this, [this, i] { showPage(Page(i)); });
    connect(cmdCheckForUpdates, &QPushButton::clicked, this, [] {
        prompts().msgBox(QStringLiteral("Korvane is updated with the system's other packages: your package "
                                        "manager brings each new version."),
                         Prompts::Information, QStringLiteral("Check For Updates"));
    });
    resize(760, 560);
    showPage(General);
}

void frmOptions::setPageContent(Page page, QWidget* content) {
    m_pages[page]->layout()->addWidget(content);
}

void frmOptions::showPage(Page page) {
    m_stack->setCurrentIndex(page);
    const std::array<QPushButton*, 4> switches = {btnGeneral, btnJingles, btnShowSecondScreen, btnExport};
    switches[page]->setChecked(true);
}

frmOptions::Page frmOptions::currentPage() const {
    return Page(m_stack->currentIndex());
}

bool frmOptions::mayClose() {
    if (m_closed)
        return true;
    if (m_hooks.importRunning && m_hooks.importRunning()) {
        prompts().msgBox(
            QStringLiteral("Songs are currently being imported, please cancel the import or wait for "
                           "the process to complete before closing this screen."),
            Prompts::Information, QStringLiteral("Close Screen"));
        return false;
    }
    m_closed = true;
    Guarded(QStringLiteral("Options Form Unload"), 1, [this] {
        if (m_hooks.closed)
            m_hooks.closed();
    });
    return true;
}

void frmOptions::done(int result) {
    if (mayClose())
        QDialog::done(result);
}

void frmOptions::closeEvent(QCloseEvent* e) {
    if (mayClose())
        QDialog::closeEvent(e);
    else
        e->ignore();
}
