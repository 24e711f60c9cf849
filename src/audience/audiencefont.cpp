#include "audiencefont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QStringList>

namespace audiencefont {

namespace {
bool installed(const QString& family) {
    if (family.trimmed().isEmpty())
        return false;
    const QStringList all = QFontDatabase::families();
    return all.contains(family, Qt::CaseInsensitive);
}
} // namespace

QString resolveFamily(const QString& name) {
    if (installed(name))
        return name;
    // Seven-segment and dot-matrix lookalikes first, then any monospaced font.
    static const char* const kLookalikes[] = {"DSEG7 Classic", "DSEG14 Classic", "Digital-7 Mono",
                                              "Digital-7",     "LCDMono2",       "VT323"};
    for (const char* f : kLookalikes)
        if (installed(QString::fromLatin1(f)))
            return QString::fromLatin1(f);
    QFont probe(name);
    probe.setStyleHint(QFont::TypeWriter, QFont::PreferDefault);
    probe.setFixedPitch(true);
    const QString matched = QFontInfo(probe).family();
    if (installed(matched) && QFontInfo(probe).fixedPitch())
        return matched;
    const QString fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    if (installed(fixed))
        return fixed;
    return QFontInfo(QFont()).family();
}

QFont font(const QString& name, int pointSize, bool bold) {
    QFont f(resolveFamily(name));
    f.setStyleHint(QFont::TypeWriter);
    if (pointSize > 0)
        f.setPointSize(pointSize);
    f.setBold(bold);
    return f;
}

} // namespace audiencefont
