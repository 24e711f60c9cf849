#include "kvtool.h"

#include "core/prompts.h"
#include "import/fileconventions.h"
#include "import/importrun.h"
#include "import/importsession.h"

#include <QTextStream>

namespace {

// Answers the naming question No (so that it comes once), leaves the list of
// files left out to the tool's own output, and hands every other box and
// dialog to the prompts the tool had.
class ImportPrompts final : public Prompts {
public:
    explicit ImportPrompts(Prompts& inner) : m_inner(inner) {}
    int msgBox(const QString& text, int style, const QString& title) override {
        if (title == QLatin1String("Import Error")) {
            QTextStream(stderr) << title << ": " << text << " No\n";
            return No;
        }
        // The tool lists every file left out itself, not only the box's first ones.
        if (title == ImportRun::kNamesLeftOutTitle)
            return Ok;
        return m_inner.msgBox(text, style, title);
    }
    std::optional<QString> inputBox(const QString& t, const QString& title, const QString& d) override {
        return m_inner.inputBox(t, title, d);
    }
    QString openFile(const QString& t, const QString& f, const QString& x) override {
        return m_inner.openFile(t, f, x);
    }
    QString saveFile(const QString& t, const QString& p, const QString& x) override {
        return m_inner.saveFile(t, p, x);
    }
    QString chooseFolder(const QString& t, const QString& f) override { return m_inner.chooseFolder(t, f); }
    std::optional<QColor> chooseColor(const QColor& c) override { return m_inner.chooseColor(c); }
    std::optional<QFont> chooseFont(const QFont& f) override { return m_inner.chooseFont(f); }

private:
    Prompts& m_inner;
};

int usage(const QString& why) {
    QTextStream(stderr) << "korvane-tool import: " << why << "\n"
                        << "usage: korvane-tool import FOLDER --convention N [--kamikaze]\n";
    QTextStream err(stderr);
    for (const FileConvention& c : FileConventions())
        err << "  " << c.number << "\t" << c.text << "\n";
    return 2;
}

} // namespace

namespace kvtool {

int runImport(const QStringList& args) {
    QString folder;
    int convention = -1;
    bool kamikaze = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == QLatin1String("--kamikaze")) {
            kamikaze = true;
        } else if (a == QLatin1String("--convention")) {
            bool ok = false;
            convention = args.value(++i).toInt(&ok);
            if (!ok || !IsFileConventionNumber(convention))
                return usage(QStringLiteral("--convention takes a number from 0 to 12"));
        } else if (a.startsWith(QLatin1String("--"))) {
            return usage(QStringLiteral("unknown option ") + a);
        } else if (folder.isEmpty()) {
            folder = a;
        } else {
            return usage(QStringLiteral("one folder only"));
        }
    }
    if (folder.isEmpty())
        return usage(QStringLiteral("no folder given"));
    if (convention < 0)
        return usage(QStringLiteral("no --convention given"));
    if (!IsFolder(folder)) {
        QTextStream(stderr) << "Invalid Folder: Please choose a valid folder (" << folder << ")\n";
        return 1;
    }

    if (!openWorkingFolder(CatalogueUse::Write))
        return 1;
    Prompts& console = ::prompts();
    ImportPrompts prompts(console);
    setPrompts(&prompts);

    ImportRun run;
    run.setKamikazeSource([kamikaze] { return kamikaze; });
    const qint32 newBefore = importSession().NewTrackCount;
    run.GetTracks(folder, convention);
    setPrompts(&console);

    QTextStream out(stdout);
    out << "processed " << run.processedCount() << "\n";
    out << "new " << importSession().NewTrackCount - newBefore << "\n";
    for (const QString& name : run.NamesLeftOut)
        out << "not imported, the name is not UTF-8: " << name << "\n";
    // What stopped the run has been said on standard error (the box).
    return run.stopped() ? 1 : 0;
}

} // namespace kvtool
