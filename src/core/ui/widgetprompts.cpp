#include "widgetprompts.h"

#include "core/prompts.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPointer>

namespace {

// Message boxes, input boxes and the system dialogs on Qt's own widgets.
class WidgetPrompts final : public Prompts {
public:
    QPointer<QWidget> parent;

    int msgBox(const QString& text, int style, const QString& title) override {
        QMessageBox box(parent);
        box.setWindowTitle(title);
        box.setText(text);
        switch (style & 0x70) {
        case Critical:
            box.setIcon(QMessageBox::Critical);
            break;
        case Question:
            box.setIcon(QMessageBox::Question);
            break;
        case Exclamation:
            box.setIcon(QMessageBox::Warning);
            break;
        case Information:
            box.setIcon(QMessageBox::Information);
            break;
        default:
            box.setIcon(QMessageBox::NoIcon);
            break;
        }
        struct Choice {
            QMessageBox::StandardButton button;
            int answer;
        };
        QList<Choice> choices;
        switch (style & 0x0F) {
        case OkCancel:
            choices = {{QMessageBox::Ok, Ok}, {QMessageBox::Cancel, Cancel}};
            break;
        case AbortRetryIgnore:
            choices = {
                {QMessageBox::Abort, Abort}, {QMessageBox::Retry, Retry}, {QMessageBox::Ignore, Ignore}};
            break;
        case YesNoCancel:
            choices = {{QMessageBox::Yes, Yes}, {QMessageBox::No, No}, {QMessageBox::Cancel, Cancel}};
            break;
        case YesNo:
            choices = {{QMessageBox::Yes, Yes}, {QMessageBox::No, No}};
            break;
        case RetryCancel:
            choices = {{QMessageBox::Retry, Retry}, {QMessageBox::Cancel, Cancel}};
            break;
        default:
            choices = {{QMessageBox::Ok, Ok}};
            break;
        }
        QMessageBox::StandardButtons buttons;
        for (const auto& c : choices)
            buttons |= c.button;
        box.setStandardButtons(buttons);
        // The second and third default-button flags (256, 512) pick a later button.
        const int defaultIndex = (style & 0x300) >> 8;
        if (defaultIndex < choices.size())
            box.setDefaultButton(choices[defaultIndex].button);
        if (style & SystemModal)
            box.setWindowModality(Qt::ApplicationModal);
        const auto pressed = static_cast<QMessageBox::StandardButton>(box.exec());
        for (const auto& c : choices)
            if (c.button == pressed)
                return c.answer;
        // Closing the box by its frame counts as its cancel button, or OK when it has none.
        for (const auto& c : choices)
            if (c.answer == Cancel || c.answer == No)
                return c.answer;
        return choices.first().answer;
    }

    std::optional<QString> inputBox(const QString& text, const QString& title,
                                    const QString& defaultText) override {
        bool ok = false;
        QString v = QInputDialog::getText(parent, title, text, QLineEdit::Normal, defaultText, &ok);
        if (!ok)
            return std::nullopt;
        return v;
    }

    QString openFile(const QString& title, const QString& folder, const QString& filter) override {
        return QFileDialog::getOpenFileName(parent, title, folder, filter);
    }
    QString saveFile(const QString& title, const QString& path, const QString& filter) override {
        return QFileDialog::getSaveFileName(parent, title, path, filter);
    }
    QString chooseFolder(const QString& title, const QString& folder) override {
        return QFileDialog::getExistingDirectory(parent, title, folder);
    }
    std::optional<QColor> chooseColor(const QColor& initial) override {
        QColor c = QColorDialog::getColor(initial, parent);
        if (!c.isValid())
            return std::nullopt;
        return c;
    }
    std::optional<QFont> chooseFont(const QFont& initial) override {
        bool ok = false;
        QFont f = QFontDialog::getFont(&ok, initial, parent);
        if (!ok)
            return std::nullopt;
        return f;
    }
};

WidgetPrompts& widgetPrompts() {
    static WidgetPrompts p;
    return p;
}

} // namespace

void useWidgetPrompts(QWidget* parent) {
    widgetPrompts().parent = parent;
    setProgramPrompts(&widgetPrompts());
}
