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
    // Exactly CheckLevel rows, numbered from 0, missing texts left empty.
    void showsOneRowPerValue()
    {
        TStringListValuesForm form;
        form.LoadStrings({QStringLiteral("a"), QStringLiteral("b")}, 3);
        QCOMPARE(form.CountStrings(), 3);
        QCOMPARE(form.ValueStringGrid()->Cells(0, 3), QStringLiteral("2"));
        QCOMPARE((QStringList{form.GetString(0), form.GetString(1), form.GetString(2),
                              form.GetString(3)}),
                 (QStringList{"a", "b", "", ""}));
        TStringListValuesForm none;
        none.LoadStrings({QStringLiteral("a")}, 0);
        QCOMPARE(none.CountStrings(), 0);
        QCOMPARE(none.GetString(0), QString());
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
