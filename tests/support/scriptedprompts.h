#pragma once

#include "core/prompts.h"

#include <QList>
#include <QQueue>
#include <QString>
#include <QVariant>

// Prompts for tests: answers come from a script, in order, and every prompt is
// recorded. When the script runs dry a box answers its first button and a
// dialog is cancelled. It is in force while it lives, and puts back the
// prompts it replaced (the test runner's own, which never block) when it goes.
class ScriptedPrompts : public Prompts {
public:
    struct Call {
        QString
            kind; // "msgBox", "inputBox", "openFile", "saveFile", "chooseFolder", "chooseColor", "chooseFont"
        QString title;
        QString text;
        int style = 0;
    };

    ScriptedPrompts();
    ~ScriptedPrompts() override;

    // Queue a button number for the next message box, or a text for the next
    // input box or a path for the next file or folder chooser.
    void answer(const QVariant& a) { m_answers.enqueue(a); }

    QList<Call> calls;
    // The titles of the message boxes shown, in order.
    QStringList boxTitles() const;
    int countTitle(const QString& title) const;

    int msgBox(const QString& text, int style, const QString& title) override;
    std::optional<QString> inputBox(const QString& text, const QString& title, const QString& def) override;
    QString openFile(const QString& title, const QString& folder, const QString& filter) override;
    QString saveFile(const QString& title, const QString& path, const QString& filter) override;
    QString chooseFolder(const QString& title, const QString& folder) override;
    std::optional<QColor> chooseColor(const QColor& initial) override;
    std::optional<QFont> chooseFont(const QFont& initial) override;

private:
    QVariant next();
    Prompts* m_previous = nullptr;
    QString nextText(const QString& kind, const QString& title, const QString& text);
    QQueue<QVariant> m_answers;
};
