#include "oxa/toolkit/Catalogue.h"

#include <QStringList>

namespace oxa {

Catalogue &Catalogue::Instance()
{
    static Catalogue catalogue;
    return catalogue;
}

void Catalogue::RegisterComponents(const QList<TComponentEntry> &entries)
{
    for (const TComponentEntry &entry : entries) {
        m_components.removeIf(
            [&](const TComponentEntry &e) { return e.ClassName == entry.ClassName; });
        m_components.append(entry);
    }
}

void Catalogue::RegisterPropertyEditor(const TPropertyEditorEntry &entry)
{
    m_editors.removeIf([&](const TPropertyEditorEntry &e) {
        return e.OwnerClass == entry.OwnerClass && e.PropertyName == entry.PropertyName;
    });
    m_editors.append(entry);
}

const TComponentEntry *Catalogue::Find(const QString &className) const
{
    for (const TComponentEntry &entry : m_components) {
        if (entry.ClassName == className)
            return &entry;
    }
    return nullptr;
}

QStringList Catalogue::Pages() const
{
    QStringList pages;
    for (const TComponentEntry &entry : m_components) {
        if (!pages.contains(entry.Page))
            pages.append(entry.Page);
    }
    return pages;
}

QObject *Catalogue::Create(const QString &className, QWidget *owner) const
{
    const TComponentEntry *entry = Find(className);
    return entry && entry->Factory ? entry->Factory(owner) : nullptr;
}

void Catalogue::Clear()
{
    m_components.clear();
    m_editors.clear();
}

} // namespace oxa
