// The editor of an enumeration column's texts: exactly CheckLevel rows, and
// the column takes the edited texts only on OK.

#include "oxa/grids/CheckDBGrid.h"
#include "oxa/grids/StringListValues.h"
#include "oxa/toolkit/StringGrid.h"
#include "support/TestSupport.h"

#include <QPushButton>
#include <QtTest>

using namespace oxa;

class TestStringListValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsOneRowPerValue_data()
    {
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<int>("level");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("fewer texts than values")
            << QStringList{"a", "b"} << 3 << QStringList{"a", "b", ""};
        QTest::newRow("no values") << QStringList{"a"} << 0 << QStringList{};
    }
    void showsOneRowPerValue()
    {
        QFETCH(QStringList, values);
        QFETCH(int, level);
        TStringListValuesForm form;
        form.LoadStrings(values, level);
        QCOMPARE(form.CountStrings(), level);
        QStringList read;
        for (int i = 0; i < form.CountStrings(); ++i) {
            QCOMPARE(form.ValueStringGrid()->Cells(0, i + 1), QString::number(i));
            read << form.GetString(i);
        }
        QTEST(read, "shown");
        QCOMPARE(form.GetString(level), QString());
    }

    void columnTakesTheTextsOnOk_data()
    {
        QTest::addColumn<int>("result");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("OK") << int(mrOk) << QStringList{"plánováno", "podáno"};
        QTest::newRow("Storno") << int(mrCancel) << QStringList{"x"};
    }
    void columnTakesTheTextsOnOk()
    {
        QFETCH(int, result);
        TEnhancedDBGrid grid;
        auto *column = qobject_cast<TCheckValueColumn *>(grid.Columns()->Add());
        column->SetStringValues({QStringLiteral("x")});
        column->SetCheckLevel(2);
        test::DialogAnswerer answerer([result](QDialog *dialog) {
            auto *form = qobject_cast<TStringListValuesForm *>(dialog);
            form->ValueStringGrid()->SetCells(1, 1, QStringLiteral("plánováno"));
            form->ValueStringGrid()->SetCells(1, 2, QStringLiteral("podáno"));
            return result;
        });
        QCOMPARE(TStringValuesProperty::Edit(column), result == mrOk);
        QTEST(column->StringValues(), "expected");
        QCOMPARE(TStringValuesProperty::GetValue(), QStringLiteral("(TParams)"));
    }
};

QTEST_MAIN(TestStringListValues)
#include "tst_stringlistvalues.moc"
