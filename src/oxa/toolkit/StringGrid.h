#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Grid.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace oxa {

// The toolkit's string grid: a drawing grid that keeps a text and an object
// reference per cell, draws the text and edits it in place (goEditing).
// Reading a cell outside the grid gives an empty text (or nullptr); writing
// one raises EInvalidGridOperation. Objects are referenced, not owned.
class OXA_EXPORT TStringGrid : public TCustomGrid
{
    Q_OBJECT

public:
    explicit TStringGrid(QWidget *parent = nullptr);
    ~TStringGrid() override;

    // How far in from a cell's top-left corner its text is written.
    static constexpr int TextOffset = 2;

    QString Cells(int ACol, int ARow) const;
    void SetCells(int ACol, int ARow, const QString &Value);
    QObject *Objects(int ACol, int ARow) const;
    void SetObjects(int ACol, int ARow, QObject *Value);

    // A whole row (column) as a list of ColCount (RowCount) texts; setting
    // one takes as many texts as fit and empties the rest.
    QStringList Rows(int ARow) const;
    void SetRows(int ARow, const QStringList &Value);
    QStringList Cols(int ACol) const;
    void SetCols(int ACol, const QStringList &Value);
    // Exchanges two whole rows, texts and objects, and repaints them.
    void ExchangeRows(int ARow1, int ARow2);

protected:
    // ExchangeRows without the repaint, for reordering many rows at once;
    // the caller repaints.
    void SwapRows(int ARow1, int ARow2);
    // The stored text of a cell without a copy; an empty text outside the
    // grid. Valid until the cell changes.
    const QString &CellText(int ACol, int ARow) const;
    // Fills the cell with the canvas brush and writes its text in the
    // canvas pen two pixels in from the top-left corner; then OnDrawCell.
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    // The cell's text, passed through OnGetEditText.
    QString GetEditText(int ACol, int ARow) override;
    // Stores the edited text, then OnSetEditText.
    void SetEditText(int ACol, int ARow, const QString &Value) override;
    void ColumnMoved(int FromIndex, int ToIndex) override;
    void RowMoved(int FromIndex, int ToIndex) override;
    void SizeChanged(int OldColCount, int OldRowCount) override;

private:
    void CheckCell(int ACol, int ARow) const;
    // The texts are kept row by row; a row list grows only as far as its
    // last written column.
    QList<QStringList> m_texts;
    // Empty until the first object is stored; then one list per row.
    QList<QList<QObject *>> m_objects;
};

} // namespace oxa
