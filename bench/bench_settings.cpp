// The settings file read by a start-up and written at shutdown, when one of
// its values is a single line of 20 MB (a file damaged, or pasted into): the
// start-up's reads take the file from memory after the first, so the long
// line costs one read, not one per setting.
#include "benchcommon.h"

#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/consoleprompts.h"
#include "core/globals.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "core/startupsettings.h"
#include "core/workingfolder.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    bench::privateHome();
    QCoreApplication app(argc, argv);
    ConsolePrompts silent;
    setPrompts(&silent);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    {
        QFile f(oSettings->FileName());
        f.open(QIODevice::Append);
        f.write("\nScrollerStartupText=" + QByteArray(20 * 1024 * 1024, 'x') + "\n");
    }
    const QString source = QStringLiteral("bench");
    const double reads = bench::medianMs(
        5, [] { oSettings = std::make_unique<CIniFile>(); }, [&] { ReadStartupSettings(source); });
    bench::print("start-up settings reads, a 20 MB line in the file", reads, "ms", 1000);
    const double write = bench::medianMs(5, nullptr, [] { settings::writeText(keys::MainLeft, "120"); });
    bench::print("one settings write (whole file to disk), same file", write, "ms", 1000);
    return 0;
}
