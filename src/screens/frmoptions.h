#pragma once

#include <QDialog>
#include <array>
#include <functional>

class QFrame;
class QPushButton;
class QStackedWidget;

// The options screen: four pages switched by the buttons of fraButtons, each
// page's controls writing their settings at once (there is no OK or Cancel).
// The pages are built by the areas that own them and placed in their frames.
class frmOptions : public QDialog {
    Q_OBJECT
public:
    enum Page { General = 0, Jingles = 1, SecondScreen = 2, Database = 3 };

    // What the screen asks of the rest of the program when it closes.
    struct CloseHooks {
        // True while an import runs: the screen then refuses to close.
        std::function<bool()> importRunning;
        // Runs once the screen has agreed to close (the fill buttons and the
        // default singer are taken over there).
        std::function<void()> closed;
    };

    explicit frmOptions(QWidget* parent = nullptr);

    void setCloseHooks(CloseHooks hooks) { m_hooks = std::move(hooks); }
    // Puts `content` into the page's frame, which then owns it.
    void setPageContent(Page page, QWidget* content);
    QFrame* page(Page page) const { return m_pages[page]; }
    // Shows one page and hides the other three.
    void showPage(Page page);
    Page currentPage() const;

    QFrame* fraButtons;
    QPushButton *btnGeneral, *btnJingles, *btnShowSecondScreen, *btnExport, *cmdCheckForUpdates;
    QFrame *fraGeneral, *fraJingles, *fraSecondScreen, *fraDatabase;

protected:
    void done(int result) override;
    void closeEvent(QCloseEvent* e) override;

private:
    bool mayClose();

    QStackedWidget* m_stack;
    std::array<QFrame*, 4> m_pages;
    CloseHooks m_hooks;
    bool m_closed = false;
};
