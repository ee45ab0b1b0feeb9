#include "oxa/grids/CheckDBGrid.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/MessageService.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QWheelEvent>

namespace oxa {

namespace {

constexpr Word kNumPlus = VK_ADD;       // 107
constexpr Word kNumMinus = VK_SUBTRACT; // 109

const QString &dependencyCaption()
{
    static const QString caption = QStringLiteral("Řešení závislostí vlastností");
    return caption;
}

// Upper case of plain ASCII letters only, as field names are compared.
QString asciiUpper(const QString &text)
{
    QString result = text;
    for (QChar &c : result) {
        if (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
            c = QChar(c.unicode() - 'a' + 'A');
    }
    return result;
}

// Steps a field as the check-box columns do: a Boolean is inverted, a
// number goes to (value + 1) mod 2 with a truncating remainder.
void toggleField(TField *field)
{
    if (field->DataType() == ftBoolean)
        field->SetAsBoolean(!field->AsBoolean());
    else
        field->SetAsInteger((field->AsInteger() + 1) % 2);
}

} // namespace

// ---------------------------------------------------------------------------
// Free functions

bool MoveRight(Word Key, TShiftState Shift)
{
    return (Key == VK_TAB || Key == VK_RIGHT || Key == VK_DOWN) && Shift == TShiftState();
}

bool MoveLeft(Word Key, TShiftState Shift)
{
    return ((Key == VK_LEFT || Key == VK_UP) && Shift == TShiftState()) ||
        (Key == VK_TAB && Shift.testFlag(ssShift));
}

bool UrciSmerNastaveni(Word Key, TShiftState Shift)
{
    bool forward = Key == kNumPlus || Key == VK_SPACE;
    if (Shift.testFlag(ssShift))
        forward = !forward;
    return forward;
}

void JeStranovyPohyb(Word Key, TShiftState Shift, int &ColumnIndex, bool &MovesLeft,
                     bool &MovesRight, int ColumnCount)
{
    const bool shift = Shift.testFlag(ssShift);
    if (ColumnIndex == 0 && Key == VK_TAB && shift)
        ColumnIndex = ColumnCount;
    else if (ColumnIndex == ColumnCount - 1 && Key == VK_TAB && !shift)
        ColumnIndex = -1;
    MovesLeft = Key == VK_LEFT || (Key == VK_TAB && shift);
    MovesRight = Key == VK_RIGHT || (Key == VK_TAB && !shift);
    if (Shift.testFlag(ssCtrl)) {
        if (MovesLeft)
            ColumnIndex = std::min(1, ColumnCount);
        if (MovesRight)
            ColumnIndex = std::max(1, ColumnCount - 1);
    }
}

bool ValueMatch(const QString &ValueList, const QString &Value)
{
    // Split as field-name lists are: at ";", each name trimmed of blanks.
    int pos = 0;
    while (pos <= ValueList.size()) {
        int end = ValueList.indexOf(QLatin1Char(';'), pos);
        if (end < 0)
            end = int(ValueList.size());
        const QString name = ValueList.mid(pos, end - pos).trimmed();
        if (name.compare(Value, Qt::CaseInsensitive) == 0)
            return true;
        pos = end + 1;
    }
    return false;
}

void DrawCheckBox(QPainter *Painter, QWidget *Widget, const QRect &Rect, bool Checked, bool Flat)
{
    if (!Painter)
        return;
    QStyle *style = Widget ? Widget->style() : QApplication::style();
    QStyleOptionButton option;
    option.initFrom(Widget);
    const int size = std::min({style->pixelMetric(QStyle::PM_IndicatorWidth, &option, Widget),
                               Rect.width(), Rect.height()});
    option.rect = QRect(0, 0, size, size);
    option.rect.moveCenter(Rect.center());
    option.state = QStyle::State_Enabled | (Checked ? QStyle::State_On : QStyle::State_Off);
    if (Flat) {
        // The monochrome look: black on white, no shading.
        QPalette mono(Qt::black, Qt::white);
        mono.setColor(QPalette::Base, Qt::white);
        mono.setColor(QPalette::Text, Qt::black);
        mono.setColor(QPalette::Window, Qt::white);
        option.palette = mono;
    }
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, Painter, Widget);
}

// ---------------------------------------------------------------------------
// Columns

void TCheckColumn::SetCheck(bool Value)
{
    const auto before = Check();
    FChecking = Value;
    Changed();
    if (Check() != before)
        Q_EMIT checkChanged();
}

void TCheckColumn::SetFlat(bool Value)
{
    const auto before = Flat();
    IsFlat = Value;
    Changed();
    if (Flat() != before)
        Q_EMIT flatChanged();
}

void TCheckValueColumn::SetCheckLevel(int Value)
{
    const auto before = CheckLevel();
    StoreCheckLevel(Value);
    if (CheckLevel() != before)
        Q_EMIT checkLevelChanged();
}

void TCheckValueColumn::StoreCheckLevel(int Value)
{
    FCheckLevel = Value;
    Changed();
}

void TCheckValueColumn::SetStringValues(const QStringList &Value)
{
    const auto before = StringValues();
    FStringValues = Value;
    Changed();
    if (StringValues() != before)
        Q_EMIT stringValuesChanged();
}

void TEnhancedCheckValueColumn::SetChecking(bool Value)
{
    const auto before = Check();
    if (CheckLevel() >= 1 && Value) {
        const TModalResult answer = MessageService::MessageBox(
            Grid(),
            QStringLiteral("Zapnutím režimu checkboxu zrušíte nastavení textového výčtu. "
                           "Souhlasíte se změnou stavu?"),
            dependencyCaption(), mtConfirmation, mbYesNo);
        if (answer == mrYes) {
            StoreCheckLevel(0);
            FChecking = true;
        }
    } else {
        FChecking = Value;
    }
    Changed();
    if (Check() != before)
        Q_EMIT checkChanged();
}

void TEnhancedCheckValueColumn::SetCheckLevel(int Value)
{
    if (Value >= 1 && FChecking) {
        const TModalResult answer = MessageService::MessageBox(
            Grid(),
            QStringLiteral("Zapnutím režimu textového výčtu zrušíte nastavení checkboxu. "
                           "Souhlasíte se změnou stavu?"),
            dependencyCaption(), mtConfirmation, mbYesNo);
        if (answer == mrYes) {
            FChecking = false;
            StoreCheckLevel(Value);
        }
    } else {
        StoreCheckLevel(Value);
    }
    Changed();
}

void TEnhancedCheckValueColumn::SetFlat(bool Value)
{
    const auto before = Flat();
    IsFlat = Value;
    Changed();
    if (Flat() != before)
        Q_EMIT flatChanged();
}

// ---------------------------------------------------------------------------
// TOxaBaseDBGrid

namespace {

// Takes the data set's scroll handlers away for the probe and puts them
// back however the probe ends.
class ScrollHandlersAside
{
public:
    explicit ScrollHandlersAside(TDataSet *dataSet)
        : m_dataSet(dataSet), m_before(std::move(dataSet->BeforeScroll)),
          m_after(std::move(dataSet->AfterScroll))
    {
        m_dataSet->BeforeScroll = nullptr;
        m_dataSet->AfterScroll = nullptr;
    }
    ~ScrollHandlersAside()
    {
        m_dataSet->BeforeScroll = std::move(m_before);
        m_dataSet->AfterScroll = std::move(m_after);
    }
    ScrollHandlersAside(const ScrollHandlersAside &) = delete;
    ScrollHandlersAside &operator=(const ScrollHandlersAside &) = delete;

private:
    TDataSet *m_dataSet;
    TDataSet::TDataSetNotifyEvent m_before;
    TDataSet::TDataSetNotifyEvent m_after;
};

// The grid shows nothing of the probe's two moves.
class ControlsDisabled
{
public:
    explicit ControlsDisabled(TDataSet *dataSet) : m_dataSet(dataSet)
    {
        m_dataSet->DisableControls();
    }
    ~ControlsDisabled() { m_dataSet->EnableControls(); }
    ControlsDisabled(const ControlsDisabled &) = delete;
    ControlsDisabled &operator=(const ControlsDisabled &) = delete;

private:
    TDataSet *m_dataSet;
};

TDataSet *dataSetOf(const TCustomDBGrid *grid)
{
    TDataSource *source = grid->DataSource();
    TDataSet *dataSet = source ? source->DataSet() : nullptr;
    return dataSet && dataSet->Active() ? dataSet : nullptr;
}

} // namespace

TOxaBaseDBGrid::TOxaBaseDBGrid(QWidget *parent) : TDBGrid(parent) { }

TOxaBaseDBGrid::~TOxaBaseDBGrid() = default;

bool TOxaBaseDBGrid::OverNasledujiciZaznam(Word &Key, TShiftState Shift)
{
    if (Key == VK_TAB && Shift.testFlag(ssShift))
        return false;
    if (Key == VK_TAB && !FAllowAppend) {
        for (int c = Col() + 1; c <= ColCount() - 1; ++c) {
            if (TabStops(c))
                return false;
        }
    }
    TDataSet *dataSet = dataSetOf(this);
    if ((Key == VK_DOWN || Key == VK_TAB) && !FAllowAppend && dataSet) {
        const ControlsDisabled quiet(dataSet);
        const ScrollHandlersAside aside(dataSet);
        dataSet->Next();
        if (dataSet->Eof()) {
            Key = 0;
            dataSet->Cancel();
        } else {
            dataSet->Prior();
        }
    }
    return Key == VK_DOWN && dataSet && dataSet->Eof() && FAllowAppend;
}

void TOxaBaseDBGrid::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    // The indicator column is taken for granted here (ACol - 1).
    auto *column = ACol > 0 && ARow >= FixedRows()
        ? qobject_cast<TEnhancedCheckValueColumn *>(Columns()->Items(ACol - 1))
        : nullptr;
    if (column && column->CheckLevel() > 0 && !DBOptions().testFlag(dgEditing)) {
        SetDefaultTextSuppressed(true);
        try {
            TDBGrid::DrawCell(ACol, ARow, Rect, State);
        } catch (...) {
            SetDefaultTextSuppressed(false);
            throw;
        }
        SetDefaultTextSuppressed(false);
        return;
    }
    TDBGrid::DrawCell(ACol, ARow, Rect, State);
}

void TOxaBaseDBGrid::DoEnter()
{
    auto *column =
        qobject_cast<TEnhancedCheckValueColumn *>(Columns()->Items(Col() - IndicatorOffset()));
    if (column && column->CheckLevel() > 0)
        LockCell();
    TDBGrid::DoEnter();
}

void TOxaBaseDBGrid::wheelEvent(QWheelEvent *event)
{
    // The wheel acts as the arrow keys, without modifiers; no turn at all
    // counts as down.
    const Qt::Key key = event->angleDelta().y() > 0 ? Qt::Key_Up : Qt::Key_Down;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(this, &press);
    event->accept();
}

// ---------------------------------------------------------------------------
// TCheckDBGrid

TCheckDBGrid::TCheckDBGrid(QWidget *parent) : TOxaBaseDBGrid(parent) { }

TCheckDBGrid::~TCheckDBGrid() = default;

TDBGridColumns *TCheckDBGrid::CreateColumns()
{
    return new TDBGridColumns(this, [](TCustomDBGrid *grid) { return new TCheckColumn(grid); });
}

TCheckColumn *TCheckDBGrid::CheckColumn(int Index)
{
    return qobject_cast<TCheckColumn *>(Columns()->Items(Index));
}

void TCheckDBGrid::LockCell()
{
    TDBGridOptions options = DBOptions();
    if (options.testFlag(dgEditing))
        Editing = true;
    options &= ~TDBGridOptions(dgEditing);
    if (options.testFlag(dgAlwaysShowEditor))
        ShowEditor = true;
    options &= ~TDBGridOptions(dgAlwaysShowEditor);
    SetDBOptions(options);
}

void TCheckDBGrid::UnlockCell()
{
    TDBGridOptions options = DBOptions();
    if (Editing)
        options |= dgEditing;
    if (ShowEditor)
        options |= dgAlwaysShowEditor;
    SetDBOptions(options);
}

void TCheckDBGrid::SaveValue()
{
    TCheckColumn *column = CheckColumn(SelectedIndex());
    TField *field = SelectedField();
    TDataSet *dataSet = dataSetOf(this);
    if (!column || !field || !dataSet || column->ReadOnly() || !column->Check())
        return;
    dataSet->Edit();
    toggleField(field);
}

void TCheckDBGrid::CellClick(TColumn *Column)
{
    auto *column = qobject_cast<TCheckColumn *>(Column);
    if (column && column->Check()) {
        SaveValue();
        SetEditorMode(false);
    } else {
        SetEditorMode(true);
    }
    TOxaBaseDBGrid::CellClick(Column);
}

void TCheckDBGrid::KeyDown(Word &Key, TShiftState Shift)
{
    TCheckColumn *selected = CheckColumn(SelectedIndex());
    if (Key == VK_SPACE && selected && selected->Check())
        SaveValue();
    if (OverNasledujiciZaznam(Key, Shift)) {
        UnlockCell();
        TOxaBaseDBGrid::KeyDown(Key, Shift);
        LockCell();
        return;
    }
    int idx = Col() - 1;
    bool movesLeft = false;
    bool movesRight = false;
    JeStranovyPohyb(Key, Shift, idx, movesLeft, movesRight, Columns()->Count());
    auto isCheck = [this](int i) {
        TCheckColumn *column = CheckColumn(i);
        return column && column->Check();
    };
    if (movesLeft || movesRight)
        UnlockCell();
    if (Key == VK_RETURN && isCheck(idx))
        LockCell();
    if (movesLeft && isCheck(idx - 1))
        LockCell();
    if (movesRight && isCheck(idx + 1))
        LockCell();
    TOxaBaseDBGrid::KeyDown(Key, Shift);
}

void TCheckDBGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    const TGridCoord cell = MouseCoord(X, Y);
    TCheckColumn *column = CheckColumn(cell.X - IndicatorOffset());
    if (column && column->Check())
        LockCell();
    else
        UnlockCell();
    TOxaBaseDBGrid::MouseDown(Button, Shift, X, Y);
}

void TCheckDBGrid::DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                                  TGridDrawState State)
{
    TOxaBaseDBGrid::DrawColumnCell(Rect, DataCol, Column, State);
    auto *column = qobject_cast<TCheckColumn *>(Column);
    TField *field = Column ? Column->Field() : nullptr;
    QPainter *canvas = Canvas();
    if (!column || !column->Check() || !field || !canvas)
        return;
    canvas->fillRect(Rect, canvas->brush());
    DrawCheckBox(canvas, this, Rect, field->AsInteger() >= 1, column->Flat());
}

// ---------------------------------------------------------------------------
// TEnhancedDBGrid

class TEnhancedDBGridPrivate
{
public:
    bool Editing = false;
    bool CheckDBForward = false;
    bool ShowEditor = false;
    int OnFirstClickRow = -10;
    QLineEdit *FEdit = nullptr;
    bool FEditCancaled = false;
    bool FArrowToTabs = false;
    QString FNedefText;
    bool FEnableRightButton = false;
    QPoint lastMouse;
};

TEnhancedDBGrid::TEnhancedDBGrid(QWidget *parent)
    : TOxaBaseDBGrid(parent), d(new TEnhancedDBGridPrivate)
{
    d->FEdit = new QLineEdit(this);
    d->FEdit->hide();
    d->FEdit->installEventFilter(this);
    d->OnFirstClickRow = -10;
}

TEnhancedDBGrid::~TEnhancedDBGrid() = default;

bool TEnhancedDBGrid::ArrowToTabs() const
{
    return d->FArrowToTabs;
}
void TEnhancedDBGrid::SetArrowToTabs(bool Value)
{
    const auto before = ArrowToTabs();
    d->FArrowToTabs = Value;
    if (ArrowToTabs() != before)
        Q_EMIT arrowToTabsChanged();
}
QString TEnhancedDBGrid::NedefText() const
{
    return d->FNedefText;
}
void TEnhancedDBGrid::SetNedefText(const QString &Value)
{
    const auto before = NedefText();
    d->FNedefText = Value;
    InvalidateGrid();
    if (NedefText() != before)
        Q_EMIT nedefTextChanged();
}
bool TEnhancedDBGrid::EnableRightButton() const
{
    return d->FEnableRightButton;
}
void TEnhancedDBGrid::SetEnableRightButton(bool Value)
{
    const auto before = EnableRightButton();
    d->FEnableRightButton = Value;
    if (EnableRightButton() != before)
        Q_EMIT enableRightButtonChanged();
}
int TEnhancedDBGrid::OnFirstClickRow() const
{
    return d->OnFirstClickRow;
}
QLineEdit *TEnhancedDBGrid::ExtraEdit() const
{
    return d->FEdit;
}
bool TEnhancedDBGrid::CheckDBForward() const
{
    return d->CheckDBForward;
}
void TEnhancedDBGrid::SetCheckDBForward(bool Value)
{
    d->CheckDBForward = Value;
}

QString TEnhancedDBGrid::GetFEditText() const
{
    return d->FEdit ? d->FEdit->text() : QString();
}

void TEnhancedDBGrid::SetFEditText(const QString &Value)
{
    const auto before = GetFEditText();
    if (d->FEdit)
        d->FEdit->setText(Value);
    if (GetFEditText() != before)
        Q_EMIT extraEditTextChanged();
}

TDBGridColumns *TEnhancedDBGrid::CreateColumns()
{
    return new TDBGridColumns(this,
                              [](TCustomDBGrid *grid) { return new TCheckValueColumn(grid); });
}

TCheckValueColumn *TEnhancedDBGrid::ValueColumn(int Index) const
{
    auto *self = const_cast<TEnhancedDBGrid *>(this);
    return qobject_cast<TCheckValueColumn *>(self->Columns()->Items(Index));
}

bool TEnhancedDBGrid::IsSpecialColumn(int Index) const
{
    TCheckValueColumn *column = ValueColumn(Index);
    return column && column->CheckLevel() > 0;
}

void TEnhancedDBGrid::LockCell()
{
    TDBGridOptions options = DBOptions();
    if (options.testFlag(dgEditing))
        d->Editing = true;
    options &= ~TDBGridOptions(dgEditing);
    if (options.testFlag(dgAlwaysShowEditor))
        d->ShowEditor = true;
    options &= ~TDBGridOptions(dgAlwaysShowEditor);
    SetDBOptions(options);
    SetEditorMode(false);
}

void TEnhancedDBGrid::UnlockCell()
{
    TDBGridOptions options = DBOptions();
    if (d->Editing)
        options |= dgEditing;
    if (d->ShowEditor)
        options |= dgAlwaysShowEditor;
    SetDBOptions(options);
    SetEditorMode(true);
    d->OnFirstClickRow = -10;
}

void TEnhancedDBGrid::SaveValue(bool Forward)
{
    if (d->OnFirstClickRow == Row()) {
        TCheckValueColumn *column = ValueColumn(SelectedIndex());
        TField *field = SelectedField();
        TDataSet *dataSet = dataSetOf(this);
        if (column && field && dataSet && !column->ReadOnly()) {
            dataSet->Edit();
            const int level = column->CheckLevel();
            if (field->DataType() == ftBoolean)
                field->SetAsBoolean(!field->AsBoolean());
            else if (level >= 1 && Forward)
                field->SetAsInteger((field->AsInteger() + 1) % level);
            else if (level >= 1)
                field->SetAsInteger((field->AsInteger() - 1 + level) % level);
        }
    }
    d->OnFirstClickRow = Row();
}

void TEnhancedDBGrid::CellClick_Event(TColumn *Column)
{
    auto *column = qobject_cast<TCheckValueColumn *>(Column);
    if (column && column->CheckLevel() >= 1) {
        SaveValue(d->CheckDBForward);
        SetEditorMode(false);
    } else {
        SetEditorMode(true);
    }
}

void TEnhancedDBGrid::CellClick(TColumn *Column)
{
    CellClick_Event(Column);
    TOxaBaseDBGrid::CellClick(Column);
}

int TEnhancedDBGrid::LastMouseColumn() const
{
    const TGridCoord cell = MouseCoord(d->lastMouse.x(), d->lastMouse.y());
    return cell.X - IndicatorOffset();
}

void TEnhancedDBGrid::MouseDown_event()
{
    const int index = LastMouseColumn();
    TCheckValueColumn *column = ValueColumn(index);
    if (index > 0 && column && column->CheckLevel() >= 1)
        LockCell();
    else
        UnlockCell();
}

void TEnhancedDBGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    d->lastMouse = QPoint(X, Y);
    MouseDown_event();
    TOxaBaseDBGrid::MouseDown(Button, Shift, X, Y);
}

void TEnhancedDBGrid::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    d->CheckDBForward = Button == mbLeft;
    if (d->FEnableRightButton && Button == mbRight) {
        const TGridCoord cell = MouseCoord(X, Y);
        TCheckValueColumn *column = ValueColumn(cell.X - IndicatorOffset());
        if (column && column->CheckLevel() > 0 && !column->PopupMenu()) {
            d->CheckDBForward = false;
            Button = mbLeft;
        }
    }
    TOxaBaseDBGrid::MouseUp(Button, Shift, X, Y);
}

void TEnhancedDBGrid::KeyDown(Word &Key, TShiftState Shift)
{
    if (d->FArrowToTabs) {
        if (Key == VK_LEFT && Shift == TShiftState()) {
            Key = VK_TAB;
            Shift = ssShift;
        } else if (Key == VK_RIGHT) {
            Key = VK_TAB;
        }
    }
    TCheckValueColumn *selected = ValueColumn(SelectedIndex());
    const bool stepKey = Key == VK_SPACE || Key == kNumPlus || Key == kNumMinus;
    if (stepKey && selected && selected->CheckLevel() > 0)
        SaveValue(UrciSmerNastaveni(Key, Shift));

    int idx = Col() - 1;
    bool movesLeft = false;
    bool movesRight = false;
    const int count = Columns()->Count();
    JeStranovyPohyb(Key, Shift, idx, movesLeft, movesRight, count);

    // The first and the last column are stops: the key goes nowhere.
    if (movesLeft && Col() == FixedCols() && (Row() == FixedRows() || Key != VK_TAB)) {
        Key = 0;
        return;
    }
    if (movesRight) {
        bool visibleToTheRight = false;
        for (int i = SelectedIndex() + 1; i < count; ++i)
            visibleToTheRight = visibleToTheRight || Columns()->Items(i)->Visible();
        if (!visibleToTheRight) {
            Key = 0;
            return;
        }
    }
    auto isEnumeration = [this](int i) {
        TCheckValueColumn *column = ValueColumn(i);
        return column && column->CheckLevel() > 0;
    };
    try {
        if (OverNasledujiciZaznam(Key, Shift)) {
            UnlockCell();
            TOxaBaseDBGrid::KeyDown(Key, Shift);
            LockCell();
        } else {
            const bool onEnumeration = selected && selected->CheckLevel() > 0;
            if (onEnumeration &&
                (Key == VK_SPACE || Key == kNumPlus || Key == kNumMinus || Key == VK_DOWN ||
                 Key == VK_UP))
                LockCell();
            if (movesLeft || movesRight)
                UnlockCell();
            if (idx >= 0 && Key == VK_RETURN && isEnumeration(idx))
                LockCell();
            if (idx > 0 && movesLeft && isEnumeration(idx - 1))
                LockCell();
            if (idx < count - 1 && movesRight && isEnumeration(idx + 1))
                LockCell();
            if (idx == count - 1 && Key == VK_RIGHT)
                LockCell();
            TOxaBaseDBGrid::KeyDown(Key, Shift);
        }
    } catch (...) {
        if (IsSpecialColumn(idx))
            LockCell();
        if (d->FEdit->isVisible())
            d->FEdit->raise();
        throw;
    }
    if (d->FEdit->isVisible())
        d->FEdit->raise();
}

void TEnhancedDBGrid::DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                                     TGridDrawState State)
{
    TOxaBaseDBGrid::DrawColumnCell(Rect, DataCol, Column, State);
    auto *column = qobject_cast<TCheckValueColumn *>(Column);
    TField *field = Column ? Column->Field() : nullptr;
    QPainter *canvas = Canvas();
    TDataSet *dataSet = dataSetOf(this);
    if (!column || column->CheckLevel() <= 0 || !field || !canvas)
        return;
    canvas->fillRect(Rect, canvas->brush());
    const qlonglong value = field->AsInteger();
    QString text = d->FNedefText;
    if (value >= 0 && value < column->CheckLevel() && dataSet && !dataSet->IsEmpty()) {
        const QStringList values = column->StringValues();
        if (value >= values.size())
            throw EInvalidOperation(QStringLiteral("Index seznamu je mimo meze (%1)").arg(value));
        text = values.at(value);
    }
    canvas->drawText(Rect.adjusted(2, 2, 0, 0), Qt::AlignHCenter | Qt::AlignTop, text);
}

QRect TEnhancedDBGrid::ActualBoxRect(int aCol, int aRow) const
{
    return BoxRect(aCol, aRow, aCol, aRow);
}

void TEnhancedDBGrid::AktivujExtraEdit()
{
    d->FEdit->setVisible(true);
    const QRect box = ActualBoxRect(Col(), Row()).translated(viewport()->geometry().topLeft());
    d->FEdit->setGeometry(box.left(), box.top(), box.width(), box.height());
    d->FEdit->raise();
    d->FEdit->setFocus(Qt::OtherFocusReason);
    QApplication::processEvents();
}

void TEnhancedDBGrid::FEdit_Exit()
{
    if (!d->FEdit->isVisible())
        return;
    d->FEdit->hide();
    if (OnExtraEditExit)
        OnExtraEditExit(this, d->FEdit->text(), d->FEditCancaled);
    d->FEditCancaled = false;
}

bool TEnhancedDBGrid::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->FEdit)
        return TOxaBaseDBGrid::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
            d->FEditCancaled = key == Qt::Key_Escape;
            HandleExceptions(this, [this] { FEdit_Exit(); });
            setFocus(Qt::OtherFocusReason);
            return true;
        }
    } else if (event->type() == QEvent::FocusOut) {
        HandleExceptions(this, [this] { FEdit_Exit(); });
    }
    return TOxaBaseDBGrid::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------
// TEnhancedCheckDBGrid

TEnhancedCheckDBGrid::TEnhancedCheckDBGrid(QWidget *parent) : TEnhancedDBGrid(parent) { }

TEnhancedCheckDBGrid::~TEnhancedCheckDBGrid() = default;

TDBGridColumns *TEnhancedCheckDBGrid::CreateColumns()
{
    return new TDBGridColumns(
        this, [](TCustomDBGrid *grid) { return new TEnhancedCheckValueColumn(grid); });
}

TEnhancedCheckValueColumn *TEnhancedCheckDBGrid::CheckColumn(int Index) const
{
    return qobject_cast<TEnhancedCheckValueColumn *>(ValueColumn(Index));
}

bool TEnhancedCheckDBGrid::IsSpecialColumn(int Index) const
{
    TEnhancedCheckValueColumn *column = CheckColumn(Index);
    return column && (column->Check() || column->CheckLevel() > 0);
}

void TEnhancedCheckDBGrid::CellClick_Event(TColumn *Column)
{
    Q_UNUSED(Column)
}

void TEnhancedCheckDBGrid::SaveValue()
{
    TEnhancedCheckValueColumn *column = CheckColumn(SelectedIndex());
    TField *field = SelectedField();
    TDataSet *dataSet = dataSetOf(this);
    if (!column || !field || !dataSet || column->ReadOnly() || !column->Check())
        return;
    dataSet->Edit();
    toggleField(field);
}

void TEnhancedCheckDBGrid::CellClick(TColumn *Column)
{
    auto *column = qobject_cast<TEnhancedCheckValueColumn *>(Column);
    if (column && column->CheckLevel() >= 1) {
        TEnhancedDBGrid::SaveValue(CheckDBForward());
        SetEditorMode(false);
    } else if (column && column->Check()) {
        SaveValue();
        SetEditorMode(false);
    } else {
        SetEditorMode(true);
    }
    TEnhancedDBGrid::CellClick(Column);
}

void TEnhancedCheckDBGrid::KeyDown(Word &Key, TShiftState Shift)
{
    TEnhancedCheckValueColumn *column = CheckColumn(SelectedIndex());
    if (Key == VK_SPACE && column && column->Check())
        SaveValue();
    TEnhancedDBGrid::KeyDown(Key, Shift);
}

void TEnhancedCheckDBGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    const TGridCoord cell = MouseCoord(X, Y);
    if (IsSpecialColumn(cell.X - IndicatorOffset()))
        LockCell();
    else
        UnlockCell();
    TEnhancedDBGrid::MouseDown(Button, Shift, X, Y);
}

void TEnhancedCheckDBGrid::DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                                          TGridDrawState State)
{
    TEnhancedDBGrid::DrawColumnCell(Rect, DataCol, Column, State);
    auto *column = qobject_cast<TEnhancedCheckValueColumn *>(Column);
    TField *field = Column ? Column->Field() : nullptr;
    QPainter *canvas = Canvas();
    if (!column || !column->Check() || !field || !canvas)
        return;
    canvas->fillRect(Rect, canvas->brush());
    DrawCheckBox(canvas, this, Rect, field->AsInteger() >= 1, column->Flat());
}

// ---------------------------------------------------------------------------

void PreradeniSloupcuGridu(TEnhancedCheckDBGrid *Grid, QString Order)
{
    if (!Grid || !Grid->DataSource() || !Grid->DataSource()->DataSet() ||
        !Grid->DataSource()->DataSet()->Active())
        return;
    TDataSet *dataSet = Grid->DataSource()->DataSet();
    Grid->Columns()->Clear();
    while (!Order.isEmpty()) {
        const int separator = int(Order.indexOf(QLatin1Char(';')));
        const QString name = separator < 0 ? Order : Order.left(separator);
        // The name by the locale's rule, the fields by the ASCII rule.
        const QString wanted = name.toUpper();
        for (TField *field : dataSet->Fields()) {
            if (asciiUpper(field->FieldName()) == wanted)
                Grid->Columns()->Add()->SetFieldName(field->FieldName());
        }
        Order = separator < 0 ? QString() : Order.mid(separator + 1);
        Order = Order.trimmed();
    }
}

void RegisterCheckDBGrid()
{
    Catalogue::Instance().RegisterComponents(
        {WidgetEntry<TOxaBaseDBGrid>(QStringLiteral("Oxa"), QStringLiteral("TOxaBaseDBGrid"),
                                     QStringLiteral("CheckDBGrid"),
                                     QStringLiteral("oxa/grids/CheckDBGrid.h")),
         WidgetEntry<TCheckDBGrid>(QStringLiteral("Oxa"), QStringLiteral("TCheckDBGrid"),
                                   QStringLiteral("CheckDBGrid"),
                                   QStringLiteral("oxa/grids/CheckDBGrid.h")),
         WidgetEntry<TEnhancedDBGrid>(QStringLiteral("Oxa"), QStringLiteral("TEnhancedDBGrid"),
                                      QStringLiteral("CheckDBGrid"),
                                      QStringLiteral("oxa/grids/CheckDBGrid.h")),
         WidgetEntry<TEnhancedCheckDBGrid>(
             QStringLiteral("Oxa"), QStringLiteral("TEnhancedCheckDBGrid"),
             QStringLiteral("CheckDBGrid"), QStringLiteral("oxa/grids/CheckDBGrid.h"))});
}

} // namespace oxa
