#include "oxa/grids/StringGridCheck.h"

#include "oxa/grids/StringGridCheck_p.h"
#include "oxa/toolkit/Catalogue.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

#include <numeric>

namespace oxa {

namespace {

int Sign(int value)
{
    return (value > 0) - (value < 0);
}

QPixmap SortImage(const char *name)
{
    return QPixmap(QStringLiteral(":/oxa/StringGridCheck/") + QLatin1String(name));
}

} // namespace

void QuickSort(int L, int R, int Direction, std::vector<int> &Indexy,
               const std::vector<QString> &Keys, const TStringGridSortCompare &SCompare)
{
    const auto compare = [&](int index, const QString &pivot) {
        return Sign(SCompare(Keys[Indexy[index]], pivot)) * Direction;
    };
    while (L < R) {
        int I = L;
        int J = R;
        const QString &pivot = Keys[Indexy[(L + R) / 2]];
        do {
            // The bounds only matter to a comparison that contradicts itself;
            // a consistent one stops at the pivot first.
            while (I < R && compare(I, pivot) < 0)
                ++I;
            while (J > L && compare(J, pivot) > 0)
                --J;
            if (I <= J) {
                std::swap(Indexy[I], Indexy[J]);
                ++I;
                --J;
            }
        } while (I <= J);
        if (J - L < R - I) {
            if (L < J)
                QuickSort(L, J, Direction, Indexy, Keys, SCompare);
            L = I;
        } else {
            if (I < R)
                QuickSort(I, R, Direction, Indexy, Keys, SCompare);
            R = J;
        }
    }
}

void ApplyPermutation(int First, const std::vector<int> &Indexy,
                      const std::function<void(int, int)> &Exchange)
{
    const int count = int(Indexy.size());
    std::vector<int> where(count); // where[row] = where that original row is now
    std::vector<int> holds(count); // holds[position] = the original row there
    std::iota(where.begin(), where.end(), 0);
    std::iota(holds.begin(), holds.end(), 0);
    for (int r = First; r < count; ++r) {
        const int wanted = Indexy[r];
        const int from = where[wanted];
        if (from == r)
            continue;
        Exchange(r, from);
        const int displaced = holds[r];
        holds[r] = wanted;
        holds[from] = displaced;
        where[wanted] = r;
        where[displaced] = from;
    }
}

TStringGridCheck::TStringGridCheck(QWidget *parent)
    : TStringGridOxa(parent), d(std::make_unique<Private>())
{
    d->FOznacene.resize(RowCount());
    d->FSortImages[soDescending] = SortImage("DESC");
    d->FSortImages[soAscending] = SortImage("ASC");
}

TStringGridCheck::~TStringGridCheck() = default;

int TStringGridCheck::CheckboxRow() const
{
    return d->FCheckRow;
}

void TStringGridCheck::SetCheckboxRow(int Value)
{
    const auto before = CheckboxRow();
    d->FCheckRow = Value;
    if (CheckboxRow() != before)
        Q_EMIT checkboxRowChanged();
}

bool TStringGridCheck::FlatCheckBox() const
{
    return d->FFlatCheckbox == DFCS_FLAT;
}

void TStringGridCheck::SetFlatCheckBox(bool Value)
{
    if (Value == FlatCheckBox())
        return;
    d->FFlatCheckbox = Value ? DFCS_FLAT : 0;
    InvalidateGrid();
    Q_EMIT FlatCheckBoxChanged(Value);
}

int TStringGridCheck::ASloupec() const
{
    return d->FASloupec;
}

void TStringGridCheck::SetASloupec(int Value)
{
    if (Value == d->FASloupec)
        return;
    d->FASloupec = Value;
    InvalidateGrid();
    Q_EMIT ASloupecChanged(Value);
}

bool TStringGridCheck::Sorting() const
{
    return d->FSortingAllow;
}

void TStringGridCheck::SetSorting(bool Value)
{
    if (Value == d->FSortingAllow)
        return;
    d->FSortingAllow = Value;
    InvalidateGrid();
    Q_EMIT SortingChanged(Value);
}

bool TStringGridCheck::CheckBox() const
{
    return d->FCheckBoxAllow;
}

void TStringGridCheck::SetCheckBox(bool Value)
{
    if (Value == d->FCheckBoxAllow)
        return;
    d->FCheckBoxAllow = Value;
    InvalidateGrid();
    Q_EMIT CheckBoxChanged(Value);
}

bool TStringGridCheck::Oznacene(int Row) const
{
    return Row >= 0 && Row < d->FOznacene.size() && d->FOznacene.at(Row);
}

void TStringGridCheck::SetOznacene(int Row, bool Value)
{
    if (Row < 0)
        throw EInvalidGridOperation(QStringLiteral("Index mřížky je mimo rozsah"));
    if (Row >= d->FOznacene.size())
        d->FOznacene.resize(Row + 1);
    if (d->FOznacene.at(Row) == Value)
        return;
    d->FOznacene[Row] = Value;
    InvalidateCell(d->FASloupec, Row);
    Q_EMIT OznaceneChanged(Row, Value);
}

TSortOrder TStringGridCheck::SortOrder() const
{
    return d->FSortOrder;
}

void TStringGridCheck::Sort(const TStringGridSortCompare &Compare, int SortCol)
{
    const int count = RowCount();
    if (count <= FixedRows() || !Compare)
        return;
    std::vector<int> indexy(count);
    std::iota(indexy.begin(), indexy.end(), 0);
    // The keys side by side, each showing its cell's text where it is stored:
    // no copy of the text and no count of its references to update, which
    // on 100,000 rows scattered in memory costs more than the comparisons.
    std::vector<QString> keys(count);
    for (int r = 0; r < count; ++r) {
        const QString &text = CellText(SortCol, r);
        keys[r] = QString::fromRawData(text.constData(), text.size());
    }
    const int direction = d->FSortOrder == soAscending ? 1 : -1;
    QuickSort(FixedRows(), count - 1, direction, indexy, keys, Compare);

    // The marks may not reach the last rows yet; the missing ones are false.
    if (d->FOznacene.size() < count)
        d->FOznacene.resize(count);
    ApplyPermutation(FixedRows(), indexy, [this](int a, int b) {
        SwapRows(a, b);
        d->FOznacene.swapItemsAt(a, b);
    });
    d->FShowOrderMark = true;
    InvalidateGrid();
}

bool TStringGridCheck::Locate(const TStringGridSortCompare &Compare, const QString &Value,
                              int LocateCol, int &LocRow) const
{
    Q_UNUSED(Compare);
    LocRow = Row();
    for (int r = FixedRows(); r < RowCount(); ++r) {
        if (Cells(LocateCol, r).startsWith(Value, Qt::CaseSensitive)) {
            LocRow = r;
            return true;
        }
    }
    return false;
}

int TStringGridCheck::Locate(const TStringGridSortCompare &Compare, const QString &Value,
                             int LocateCol) const
{
    int row = Row();
    Locate(Compare, Value, LocateCol, row);
    return row;
}

bool TStringGridCheck::IsCheckCell(int ACol, int ARow) const
{
    return d->FCheckBoxAllow && ACol == d->FASloupec && ARow >= FixedRows();
}

void TStringGridCheck::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    TStringGridOxa::DrawCell(ACol, ARow, Rect, State);
    if (IsCheckCell(ACol, ARow))
        DrawCheckBox(ARow, Rect);
    if (d->FShowOrderMark && d->FSortingAllow && ACol == d->MouseDownCol &&
        d->FSortOrder != soNone && ARow == 0)
        DrawOrderMark(Rect);
}

// The style draws its check box at its own indicator size, so the box is
// centred in the cell, as the platform centres a square box in a wider one.
void TStringGridCheck::DrawCheckBox(int ARow, const QRect &Rect)
{
    QPainter *canvas = Canvas();
    canvas->fillRect(Rect, canvas->brush());
    QStyleOptionButton option;
    option.initFrom(this);
    option.state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
    option.state |= Oznacene(ARow) ? QStyle::State_On : QStyle::State_Off;
    const int width =
        std::min(style()->pixelMetric(QStyle::PM_IndicatorWidth, &option, this), Rect.width());
    const int height =
        std::min(style()->pixelMetric(QStyle::PM_IndicatorHeight, &option, this), Rect.height());
    option.rect = QRect(Rect.x() + (Rect.width() - width) / 2,
                        Rect.y() + (Rect.height() - height) / 2, width, height);
    const QStyle::PrimitiveElement element = d->FFlatCheckbox == DFCS_FLAT
        ? QStyle::PE_IndicatorItemViewItemCheck
        : QStyle::PE_IndicatorCheckBox;
    style()->drawPrimitive(element, &option, canvas, this);
}

// The arrow's 8 x 7 pixels sit 3 pixels in from the cell's right edge,
// centred on the first row's height.
void TStringGridCheck::DrawOrderMark(const QRect &Rect)
{
    const QPixmap &image = d->FSortImages[d->FSortOrder];
    const int right = Rect.x() + Rect.width();
    const int middle = RowHeights(0) / 2;
    Canvas()->drawPixmap(QRect(right - 11, middle - 4, 8, 7), image, QRect(0, 0, 8, 7));
}

void TStringGridCheck::KeyDown(Word &Key, TShiftState Shift)
{
    if ((Key == VK_RETURN || Key == VK_SPACE) && IsCheckCell(Col(), Row())) {
        SetOznacene(Row(), !Oznacene(Row()));
        InvalidateCell(Col(), Row());
        Key = 0;
    }
    TStringGridOxa::KeyDown(Key, Shift);
}

void TStringGridCheck::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    if (GridState() == gsNormal) {
        const int oldCol = d->MouseDownCol;
        MouseToCell(X, Y, d->MouseDownCol, d->MouseDownRow);
        // The arrow is drawn in the column pressed last; show where it is now.
        if (d->FShowOrderMark && d->MouseDownCol != oldCol)
            InvalidateRow(0);
    }
    TStringGridOxa::MouseDown(Button, Shift, X, Y);
}

// None -> ascending -> descending -> ascending: 2 - order, with none (which
// stays none) taken as ascending.
void TStringGridCheck::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    if (GridState() == gsNormal && d->FSortingAllow) {
        int col = -1;
        int row = -1;
        MouseToCell(X, Y, col, row);
        if (row >= 0 && col == d->MouseDownCol && row == d->MouseDownRow &&
            row == FixedRows() - 1 && col >= FixedCols()) {
            d->FSortOrder = TSortOrder(2 - d->FSortOrder);
            if (d->FSortOrder == soNone)
                d->FSortOrder = soAscending;
            d->FShowOrderMark = false;
            if (OnSort)
                Safely([&] { OnSort(this, col); });
            Q_EMIT sortRequested(col);
            InvalidateGrid();
        }
    }
    TStringGridOxa::MouseUp(Button, Shift, X, Y);
}

void RegisterStringGridCheck()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TStringGridCheck>(
        QStringLiteral("Oxa"), QStringLiteral("TStringGridCheck"),
        QStringLiteral("StringGridCheck"), QStringLiteral("oxa/grids/StringGridCheck.h"))});
}

} // namespace oxa
