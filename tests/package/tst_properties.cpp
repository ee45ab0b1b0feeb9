#include "oxa/diary/MonthGrid.h"
#include "oxa/package/Package.h"
#include "oxa/toolkit/Catalogue.h"

#include <QLineEdit>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <memory>
#include <vector>

using namespace oxa;

namespace {

std::unique_ptr<QObject> Create(const QString &className, QWidget *owner = nullptr)
{
    return std::unique_ptr<QObject>(Catalogue::Instance().Create(className, owner));
}

// The spy on the change signal of object's property.
std::unique_ptr<QSignalSpy> SpyOn(QObject *object, const char *property)
{
    const QMetaObject *meta = object->metaObject();
    const QMetaProperty p = meta->property(meta->indexOfProperty(property));
    return std::make_unique<QSignalSpy>(object, p.notifySignal());
}

// The properties meta declares itself that can change but announce nothing.
QStringList SilentProperties(const QMetaObject *meta)
{
    QStringList silent;
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty p = meta->property(i);
        if (!p.hasNotifySignal() && !p.isConstant())
            silent << QLatin1String(meta->className()) + QStringLiteral("::") +
                    QLatin1String(p.name());
    }
    return silent;
}

} // namespace

// The library's properties tell when they change, so that Designer, data
// mappers and bindings follow them.
class TestProperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { RegisterAll(); }
    // Every property an Oxa class publishes and that can change has a change
    // signal, whatever class declares it: the catalogue's classes and the day
    // grid (with the month grid under it), which a host places itself.
    void everyPublishedPropertyNotifies()
    {
        QWidget owner;
        std::vector<std::unique_ptr<QObject>> objects;
        QList<const QMetaObject *> classes{&TDayGrid::staticMetaObject};
        for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
            objects.push_back(Create(entry.ClassName, &owner));
            QVERIFY2(objects.back(), qPrintable(entry.ClassName));
            classes << objects.back()->metaObject();
        }
        QStringList silent;
        for (const QMetaObject *meta : std::as_const(classes))
            for (; meta; meta = meta->superClass())
                if (QByteArray(meta->className()).startsWith("oxa::"))
                    silent << SilentProperties(meta);
        silent.removeDuplicates();
        QVERIFY2(silent.isEmpty(), qPrintable(silent.join(QStringLiteral(", "))));
    }

    void writesNotifyOnceAndOnlyOnChange_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");
        // Declared once for many classes; a value the setter clamps.
        QTest::newRow("neighbour") << "TEditOxa" << QByteArray("FocUp") << QVariant();
        QTest::newRow("clamped digits") << "TNumEditOxa" << QByteArray("Digits") << QVariant(3);
    }

    void writesNotifyOnceAndOnlyOnChange()
    {
        QFETCH(QString, className);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        QWidget owner;
        QLineEdit neighbour(&owner);
        if (!value.isValid())
            value = QVariant::fromValue<QWidget *>(&neighbour);
        const std::unique_ptr<QObject> object = Create(className, &owner);
        const std::unique_ptr<QSignalSpy> spy = SpyOn(object.get(), property);
        QVERIFY(spy->isValid());
        QVERIFY(object->setProperty(property, value));
        QCOMPARE(spy->count(), 1);
        QVERIFY(object->setProperty(property, value));
        QCOMPARE(spy->count(), 1);
    }

    // Changes that no setter makes: the focus, the current cell moved by keys,
    // a neighbour destroyed.
    void focusAndUserMovesNotify()
    {
        QWidget form;
        auto *layout = new QVBoxLayout(&form);
        const std::unique_ptr<QObject> edit = Create(QStringLiteral("TEditOxa"), &form);
        const std::unique_ptr<QObject> grid = Create(QStringLiteral("TStringGridOxa"), &form);
        auto *editWidget = qobject_cast<QWidget *>(edit.get());
        auto *gridWidget = qobject_cast<QWidget *>(grid.get());
        layout->addWidget(editWidget);
        layout->addWidget(gridWidget);
        const auto focused = SpyOn(edit.get(), "IsFocused");
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        editWidget->setFocus();
        QTRY_VERIFY(edit->property("IsFocused").toBool());
        gridWidget->setFocus();
        QTRY_COMPARE(focused->count(), 2);

        const auto row = SpyOn(grid.get(), "Row");
        QTest::keyClick(gridWidget, Qt::Key_Down);
        QCOMPARE(row->count(), 1);

        auto *doomed = new QLineEdit(&form);
        edit->setProperty("FocDown", QVariant::fromValue<QWidget *>(doomed));
        const auto neighbour = SpyOn(edit.get(), "FocDown");
        delete doomed;
        QCOMPARE(neighbour->count(), 1);
        QCOMPARE(edit->property("FocDown").value<QWidget *>(), nullptr);
    }
};

QTEST_MAIN(TestProperties)
#include "tst_properties.moc"
