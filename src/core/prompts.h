#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <optional>

// Every message box and dialog of the program goes through this interface, so
// that tests can answer them. Box styles are the classic numbers: the low digit
// picks the buttons (0 OK, 1 OK/Cancel, 3 Yes/No/Cancel, 4 Yes/No, 5 Retry/Cancel),
// 16 critical, 32 question, 48 warning, 64 information; 4096 makes it system-modal.
class Prompts {
public:
    enum Style : int {
        OkOnly = 0,
        OkCancel = 1,
        AbortRetryIgnore = 2,
        YesNoCancel = 3,
        YesNo = 4,
        RetryCancel = 5,
        Critical = 16,
        Question = 32,
        Exclamation = 48,
        Information = 64,
        SystemModal = 4096,
    };
    // The button a box returns, by the classic numbers.
    enum Answer : int { Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

    virtual ~Prompts() = default;

    // The answer of a box of `style` that is taken without asking: its first
    // button (Yes for a question).
    static int firstButton(int style);

    virtual int msgBox(const QString& text, int style, const QString& title) = 0;
    // Returns nothing when the host cancels.
    virtual std::optional<QString> inputBox(const QString& text, const QString& title,
                                            const QString& defaultText) = 0;
    // File and folder choosers return an empty text when cancelled. `filter` is in
    // Qt's form: "Songs (*.mp3 *.zip);;All files (*)".
    virtual QString openFile(const QString& title, const QString& folder, const QString& filter) = 0;
    virtual QString saveFile(const QString& title, const QString& path, const QString& filter) = 0;
    virtual QString chooseFolder(const QString& title, const QString& folder) = 0;
    virtual std::optional<QColor> chooseColor(const QColor& initial) = 0;
    virtual std::optional<QFont> chooseFont(const QFont& initial) = 0;
};

// The process-wide prompts: those a test installed, else the program's own
// (the dialogs on screen, once the program has set them), else prompts on
// the console (a box is written to standard error and takes its first button).
Prompts& prompts();
// Installs `p` (not owned) in place of the program's prompts; nullptr restores them.
void setPrompts(Prompts* p);
// The program's own prompts (not owned).
void setProgramPrompts(Prompts* p);
