#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// The store of a control's design: values under names, where the case of a
// name does not matter ("text" finds what was written as "Text"). A read of a
// name that was never written gives the default the reader passes.
class PropertyBag {
public:
    QVariant read(const QString& name, const QVariant& defaultValue) const {
        const auto it = m_values.constFind(name.toLower());
        return it == m_values.cend() ? defaultValue : it->second;
    }
    void write(const QString& name, const QVariant& value) { m_values[name.toLower()] = {name, value}; }
    bool contains(const QString& name) const { return m_values.contains(name.toLower()); }
    // The names as they were first written, in case-blind order.
    QStringList names() const {
        QStringList out;
        for (const auto& [name, value] : m_values)
            out << name;
        return out;
    }

private:
    QMap<QString, std::pair<QString, QVariant>> m_values;
};
