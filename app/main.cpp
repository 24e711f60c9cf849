#include "screens/frmmain.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>

namespace {

// The host works in a dim room: a dark palette on the Fusion style.
void applyLook(QApplication& app) {
    app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x26, 0x22, 0x2e));
    p.setColor(QPalette::WindowText, QColor(0xe8, 0xe6, 0xee));
    p.setColor(QPalette::Base, QColor(0x1b, 0x18, 0x21));
    p.setColor(QPalette::AlternateBase, QColor(0x24, 0x20, 0x2c));
    p.setColor(QPalette::Text, QColor(0xe8, 0xe6, 0xee));
    p.setColor(QPalette::Button, QColor(0x3a, 0x33, 0x47));
    p.setColor(QPalette::ButtonText, QColor(0xf4, 0xf2, 0xf8));
    p.setColor(QPalette::Highlight, QColor(0x8e, 0x44, 0xad));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x33, 0x47));
    p.setColor(QPalette::ToolTipText, Qt::white);
    app.setPalette(p);
    // The window's measures are laid out for a small dialog font.
    QFont f = app.font();
    f.setPointSize(8);
    app.setFont(f);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Korvane"));
    applyLook(app);
    frmMain main;
    if (!main.Form_Load(app.arguments().mid(1).join(QLatin1Char(' '))))
        return 1;
    return app.exec();
}
