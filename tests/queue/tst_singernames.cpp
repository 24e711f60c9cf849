#include "queue/propercase.h"
#include "queue/singernames.h"
#include "testrunner.h"

#include <QTest>

class TestSingerNames : public QObject {
    Q_OBJECT

private slots:
    void init() { SingerNames.clear(); }

    void addToListArray_data() {
        QTest::addColumn<QStringList>("history");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QStringList>("array");
        QTest::newRow("overwrites last history name")
            << QStringList{"Ann", "Bob"} << QStringList{"Dee"} << QStringList{"", "Def", "Ann", "Dee", ""};
        QTest::newRow("known name not added")
            << QStringList{"Ann", "Bob"} << QStringList{"Ann"} << QStringList{"", "Def", "Ann", "Bob"};
    }
    void addToListArray() {
        QFETCH(QStringList, history);
        QFETCH(QStringList, added);
        InitSingerNames(QStringLiteral("Def"));
        // The history's names, in the order LoadSingerNames would give them.
        for (int i = 0; i < history.size(); ++i) {
            SingerNames.resize(2 + i + 1);
            SingerNames[2 + i] = history.at(i);
        }
        for (const QString& n : added)
            AddToListArray(n);
        QTEST(SingerNames, "array");
    }

    void properCase_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* typed, const char* expected) {
            QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(expected);
        };
        row("lower", "john smith", "John Smith");
        row("irish", "sinead o'connor", "Sinead O'Connor");
        row("non-ascii", "élodie ÖZTÜRK", "Élodie Öztürk");
    }
    void properCase() {
        QFETCH(QString, typed);
        QTEST(ProperCase(typed), "expected");
    }
};

KV_TEST_CLASS(TestSingerNames)
#include "tst_singernames.moc"
