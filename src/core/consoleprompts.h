#pragma once

#include "prompts.h"

// Prompts for a program without a screen (the command-line tool, the
// benchmarks): a box is written to standard error and answered with its first
// button (Yes for a question); a dialog is cancelled.
class ConsolePrompts final : public Prompts {
public:
    int msgBox(const QString& text, int style, const QString& title) override;
    std::optional<QString> inputBox(const QString&, const QString&, const QString&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
    std::optional<QColor> chooseColor(const QColor&) override { return {}; }
    std::optional<QFont> chooseFont(const QFont&) override { return {}; }
};
