#include "scriptedprompts.h"
#include "testrunner.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace kvtest {
std::vector<Factory>& registry() {
    static std::vector<Factory> r;
    return r;
}
} // namespace kvtest

// Each test executable runs in a home of its own, so that no test touches the
// user's files: data, documents, desktop and runtime folders all lie below it.
int main(int argc, char** argv) {
    QTemporaryDir home;
    if (!home.isValid())
        return 2;
    const QString h = home.path();
    for (const char* sub : {"data", "config", "runtime", "Documents", "Desktop", "cache"})
        QDir(h).mkpath(QString::fromLatin1(sub));
    QFile::setPermissions(h + "/runtime", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("HOME", h.toUtf8());
    qputenv("XDG_DATA_HOME", (h + "/data").toUtf8());
    qputenv("XDG_CONFIG_HOME", (h + "/config").toUtf8());
    qputenv("XDG_CACHE_HOME", (h + "/cache").toUtf8());
    qputenv("XDG_RUNTIME_DIR", (h + "/runtime").toUtf8());
    qputenv("XDG_DOCUMENTS_DIR", (h + "/Documents").toUtf8());
    qputenv("XDG_DESKTOP_DIR", (h + "/Desktop").toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    // A test that shows a box it did not script gets the box's first button
    // instead of a window nobody can answer.
    ScriptedPrompts unscripted;
    int failures = 0;
    for (const auto& make : kvtest::registry()) {
        QObject* t = make();
        failures += QTest::qExec(t, argc, argv);
        delete t;
    }
    return failures == 0 ? 0 : 1;
}
