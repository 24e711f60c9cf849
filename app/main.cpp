#include "screens/korvaneapplication.h"

#include <QApplication>
#include <QString>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    KorvaneApplication korvane;
    if (!korvane.start(app.arguments().mid(1).join(QLatin1Char(' '))))
        return 1;
    return app.exec();
}
