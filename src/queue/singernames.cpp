#include "singernames.h"

#include "core/errorlog.h"
#include "history/historystore.h"

QStringList SingerNames;

void InitSingerNames(const QString& defaultName) {
    while (SingerNames.size() < 3)
        SingerNames.append(QString());
    SingerNames[0] = QString();
    SingerNames[1] = defaultName;
}

void LoadSingerNames() {
    Guarded(QStringLiteral("KvApp.frmMain.InitialiseStartup"), 11, [] {
        const QStringList names = HistoryStore::singerNames();
        for (int index = 2; index - 2 < names.size(); ++index) {
            SingerNames.resize(index + 1);
            SingerNames[index] = names.at(index - 2);
        }
    });
}

void AddToListArray(const QString& clientName) {
    const qsizetype top = SingerNames.size() - 1;
    for (qsizetype i = 1; i <= top - 1; ++i) {
        if (SingerNames.at(i) == clientName)
            return;
    }
    if (top < 0) {
        SingerNames = {clientName, QString()};
        return;
    }
    SingerNames.append(QString());
    SingerNames[top] = clientName;
}

QStringList SingerNamesForList() {
    return SingerNames.mid(0, std::max<qsizetype>(0, SingerNames.size() - 1));
}
