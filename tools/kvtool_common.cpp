#include "kvtool.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/prompts.h"
#include "core/workingfolder.h"

#include <QTextStream>

namespace {

// Without a screen, boxes are written to standard error and answered with
// their first button; dialogs are cancelled.
class ConsolePrompts final : public Prompts {
public:
    int msgBox(const QString& text, int style, const QString& title) override {
        QTextStream(stderr) << title << ": " << text << "\n";
        switch (style & 0x0F) {
        case YesNo:
        case YesNoCancel: return Yes;
        default: return Ok;
        }
    }
    std::optional<QString> inputBox(const QString&, const QString&, const QString&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
    std::optional<QColor> chooseColor(const QColor&) override { return {}; }
    std::optional<QFont> chooseFont(const QFont&) override { return {}; }
};

} // namespace

namespace kvtool {

bool openWorkingFolder() {
    static ConsolePrompts console;
    setPrompts(&console);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    return OpenDatabase();
}

} // namespace kvtool
