#include "oxa/toolkit/StringGrid.h"

#include <QPainter>

namespace oxa {

namespace {

const QString &EmptyText()
{
    static const QString empty;
    return empty;
}

// Moves one entry of a list that may be shorter than the line count.
template<class T>
void MoveEntry(QList<T> &list, int from, int to, int count)
{
    if (list.size() <= std::max(from, to))
        list.resize(count);
    list.move(from, to);
}

} // namespace

TStringGrid::TStringGrid(QWidget *parent) : TCustomGrid(parent)
{
    m_texts.resize(RowCount());
}

TStringGrid::~TStringGrid() = default;

void TStringGrid::CheckCell(int ACol, int ARow) const
{
    if (ACol < 0 || ARow < 0 || ACol >= ColCount() || ARow >= RowCount())
        throw EInvalidGridOperation(QStringLiteral("Index mřížky je mimo rozsah"));
}

QString TStringGrid::Cells(int ACol, int ARow) const
{
    if (ARow < 0 || ARow >= m_texts.size())
        return {};
    const QStringList &row = m_texts.at(ARow);
    return ACol >= 0 && ACol < row.size() ? row.at(ACol) : QString();
}

const QString &TStringGrid::CellText(int ACol, int ARow) const
{
    if (ARow < 0 || ARow >= m_texts.size())
        return EmptyText();
    const QStringList &row = m_texts.at(ARow);
    return ACol >= 0 && ACol < row.size() ? row.at(ACol) : EmptyText();
}

void TStringGrid::SetCells(int ACol, int ARow, const QString &Value)
{
    CheckCell(ACol, ARow);
    QStringList &row = m_texts[ARow];
    if (ACol >= row.size()) {
        if (Value.isEmpty())
            return;
        row.resize(ACol + 1);
    }
    row[ACol] = Value;
    InvalidateCell(ACol, ARow);
}

QObject *TStringGrid::Objects(int ACol, int ARow) const
{
    if (ARow < 0 || ARow >= m_objects.size())
        return nullptr;
    const QList<QObject *> &row = m_objects.at(ARow);
    return ACol >= 0 && ACol < row.size() ? row.at(ACol) : nullptr;
}

void TStringGrid::SetObjects(int ACol, int ARow, QObject *Value)
{
    CheckCell(ACol, ARow);
    if (m_objects.size() < RowCount())
        m_objects.resize(RowCount());
    QList<QObject *> &row = m_objects[ARow];
    if (ACol >= row.size())
        row.resize(ColCount(), nullptr);
    row[ACol] = Value;
}

QStringList TStringGrid::Rows(int ARow) const
{
    QStringList texts;
    if (ARow < 0 || ARow >= RowCount())
        return texts;
    texts = m_texts.at(ARow);
    texts.resize(ColCount());
    return texts;
}

void TStringGrid::SetRows(int ARow, const QStringList &Value)
{
    CheckCell(0, ARow);
    QStringList row = Value.mid(0, ColCount());
    m_texts[ARow] = row;
    InvalidateRow(ARow);
}

QStringList TStringGrid::Cols(int ACol) const
{
    QStringList texts;
    if (ACol < 0 || ACol >= ColCount())
        return texts;
    texts.reserve(RowCount());
    for (int r = 0; r < RowCount(); ++r)
        texts.append(Cells(ACol, r));
    return texts;
}

void TStringGrid::SetCols(int ACol, const QStringList &Value)
{
    CheckCell(ACol, 0);
    for (int r = 0; r < RowCount(); ++r)
        SetCells(ACol, r, r < Value.size() ? Value.at(r) : QString());
}

void TStringGrid::ExchangeRows(int ARow1, int ARow2)
{
    SwapRows(ARow1, ARow2);
    InvalidateRow(ARow1);
    InvalidateRow(ARow2);
}

void TStringGrid::SwapRows(int ARow1, int ARow2)
{
    CheckCell(0, ARow1);
    CheckCell(0, ARow2);
    if (ARow1 == ARow2)
        return;
    m_texts.swapItemsAt(ARow1, ARow2);
    if (!m_objects.isEmpty())
        m_objects.swapItemsAt(ARow1, ARow2);
}

void TStringGrid::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    if (DefaultDrawing()) {
        QPainter *canvas = Canvas();
        canvas->fillRect(Rect, canvas->brush());
        const QStringList &row = m_texts.at(ARow);
        const QString &text = ACol < row.size() ? row.at(ACol) : EmptyText();
        if (!text.isEmpty())
            canvas->drawText(Rect.adjusted(TextOffset, TextOffset, 0, 0),
                             Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, text);
    }
    TCustomGrid::DrawCell(ACol, ARow, Rect, State);
}

QString TStringGrid::GetEditText(int ACol, int ARow)
{
    QString value = Cells(ACol, ARow);
    if (OnGetEditText)
        OnGetEditText(this, ACol, ARow, value);
    return value;
}

void TStringGrid::SetEditText(int ACol, int ARow, const QString &Value)
{
    SetCells(ACol, ARow, Value);
    TCustomGrid::SetEditText(ACol, ARow, Value);
}

void TStringGrid::ColumnMoved(int FromIndex, int ToIndex)
{
    for (QStringList &row : m_texts)
        MoveEntry(row, FromIndex, ToIndex, ColCount());
    for (QList<QObject *> &row : m_objects)
        MoveEntry(row, FromIndex, ToIndex, ColCount());
    TCustomGrid::ColumnMoved(FromIndex, ToIndex);
}

void TStringGrid::RowMoved(int FromIndex, int ToIndex)
{
    m_texts.move(FromIndex, ToIndex);
    if (!m_objects.isEmpty())
        MoveEntry(m_objects, FromIndex, ToIndex, RowCount());
    TCustomGrid::RowMoved(FromIndex, ToIndex);
}

void TStringGrid::SizeChanged(int OldColCount, int OldRowCount)
{
    m_texts.resize(RowCount());
    if (!m_objects.isEmpty())
        m_objects.resize(RowCount());
    if (ColCount() < OldColCount) {
        for (QStringList &row : m_texts) {
            if (row.size() > ColCount())
                row.resize(ColCount());
        }
        for (QList<QObject *> &row : m_objects) {
            if (row.size() > ColCount())
                row.resize(ColCount());
        }
    }
    TCustomGrid::SizeChanged(OldColCount, OldRowCount);
}

} // namespace oxa
