#pragma once

#include "oxa/oxa_export.h"

#include <QList>
#include <QObject>
#include <QString>
#include <functional>

class QWidget;

namespace oxa {

// One class offered on a palette page.
struct OXA_EXPORT TComponentEntry
{
    QString Page;      // "Oxa", "Oxa Edits", "Oxa Diar", ...
    QString ClassName; // "TEditOxa"
    QString Unit;      // the unit whose Register added it: "EditOxa"
    bool IsWidget = true;
    QString IncludeFile; // header a form includes for the class
    std::function<QObject *(QWidget *owner)> Factory;
};

// A design-time property editor attached to a property of a class.
struct OXA_EXPORT TPropertyEditorEntry
{
    QString OwnerClass;
    QString PropertyName;
    QString EditorClass;
};

// The run-time registry of the library's component classes. Each unit's
// Register function adds its classes; a host creates a class by name.
class OXA_EXPORT Catalogue
{
public:
    static Catalogue &Instance();

    // Registers the classes on a page; a class registered again replaces
    // its earlier entry.
    void RegisterComponents(const QList<TComponentEntry> &entries);
    void RegisterPropertyEditor(const TPropertyEditorEntry &entry);

    const QList<TComponentEntry> &Components() const { return m_components; }
    const QList<TPropertyEditorEntry> &PropertyEditors() const { return m_editors; }
    const TComponentEntry *Find(const QString &className) const;
    QStringList Pages() const;

    // Creates an instance of a registered class, owned by owner; nullptr for
    // a class that is not registered.
    QObject *Create(const QString &className, QWidget *owner = nullptr) const;

    void Clear();

private:
    QList<TComponentEntry> m_components;
    QList<TPropertyEditorEntry> m_editors;
};

// An entry for a widget class T constructed as T(QWidget *parent).
template<class T>
TComponentEntry WidgetEntry(const QString &page, const QString &className, const QString &unit,
                            const QString &includeFile)
{
    return {page, className,   unit,
            true, includeFile, [](QWidget *owner) -> QObject * { return new T(owner); }};
}

// An entry for a non-visual class T constructed as T(QObject *owner).
template<class T>
TComponentEntry ComponentEntry(const QString &page, const QString &className, const QString &unit,
                               const QString &includeFile)
{
    return {page,  className,   unit,
            false, includeFile, [](QWidget *owner) -> QObject * { return new T(owner); }};
}

} // namespace oxa
