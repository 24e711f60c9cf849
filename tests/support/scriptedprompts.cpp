#include "scriptedprompts.h"

ScriptedPrompts::ScriptedPrompts() : m_previous(&prompts()) {
    setPrompts(this);
}
ScriptedPrompts::~ScriptedPrompts() {
    setPrompts(m_previous);
}

QVariant ScriptedPrompts::next() {
    return m_answers.isEmpty() ? QVariant() : m_answers.dequeue();
}

QStringList ScriptedPrompts::boxTitles() const {
    QStringList t;
    for (const auto& c : calls)
        if (c.kind == QLatin1String("msgBox"))
            t << c.title;
    return t;
}

int ScriptedPrompts::countTitle(const QString& title) const {
    return int(boxTitles().count(title));
}

int ScriptedPrompts::msgBox(const QString& text, int style, const QString& title) {
    calls.append({QStringLiteral("msgBox"), title, text, style});
    const QVariant a = next();
    return a.isValid() ? a.toInt() : firstButton(style);
}

// The input box and the colour and font choosers are recorded and cancelled.
// An input box takes the next answer when it is a text, else it is cancelled.
std::optional<QString> ScriptedPrompts::inputBox(const QString& text, const QString& title, const QString&) {
    calls.append({QStringLiteral("inputBox"), title, text, 0});
    if (!m_answers.isEmpty() && m_answers.head().typeId() == QMetaType::QString)
        return m_answers.dequeue().toString();
    return std::nullopt;
}
// A file or folder chooser returns the next answer when it is a text, else it is cancelled.
QString ScriptedPrompts::nextText(const QString& kind, const QString& title, const QString& text) {
    calls.append({kind, title, text, 0});
    if (!m_answers.isEmpty() && m_answers.head().typeId() == QMetaType::QString)
        return m_answers.dequeue().toString();
    return {};
}
QString ScriptedPrompts::openFile(const QString& title, const QString& folder, const QString&) {
    return nextText(QStringLiteral("openFile"), title, folder);
}
QString ScriptedPrompts::saveFile(const QString& title, const QString& path, const QString&) {
    return nextText(QStringLiteral("saveFile"), title, path);
}
QString ScriptedPrompts::chooseFolder(const QString& title, const QString& folder) {
    return nextText(QStringLiteral("chooseFolder"), title, folder);
}
std::optional<QColor> ScriptedPrompts::chooseColor(const QColor&) {
    calls.append({QStringLiteral("chooseColor"), {}, {}, 0});
    // A colour queued with answer() is chosen; anything else cancels.
    if (!m_answers.isEmpty() && m_answers.head().typeId() == QMetaType::QColor)
        return m_answers.dequeue().value<QColor>();
    return std::nullopt;
}
std::optional<QFont> ScriptedPrompts::chooseFont(const QFont&) {
    calls.append({QStringLiteral("chooseFont"), {}, {}, 0});
    if (!m_answers.isEmpty() && m_answers.head().typeId() == QMetaType::QFont)
        return m_answers.dequeue().value<QFont>();
    return std::nullopt;
}
