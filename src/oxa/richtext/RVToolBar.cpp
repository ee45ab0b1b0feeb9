#include "oxa/richtext/RVToolBar.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/RVToolBar_p.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/utilities/ColorDlg.h"

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QFontDatabase>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QTextDocument>
#include <QToolButton>

#include <array>

namespace oxa {

namespace {

constexpr int kIconSize = 16;
constexpr int kGapWidth = 8;

const QString &IdleUndoHint()
{
    static const QString hint = QStringLiteral("Zpět [Ctrl+Z]");
    return hint;
}
const QString &IdleRedoHint()
{
    static const QString hint = QStringLiteral("Vpřed [Ctrl+Shift+Z]");
    return hint;
}

// ---- the pictures of the "Icons" list, drawn here rather than loaded ----

using Painting = void (*)(QPainter &);

QIcon Paint(Painting painting)
{
    QPixmap pixmap(kIconSize, kIconSize);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    painting(p);
    p.end();
    return QIcon(pixmap);
}

void Letter(QPainter &p, const QString &text, bool bold, bool italic, QColor color = Qt::black)
{
    QFont font = p.font();
    font.setPixelSize(13);
    font.setBold(bold);
    font.setItalic(italic);
    p.setFont(font);
    p.setPen(color);
    p.drawText(QRect(0, 0, kIconSize, kIconSize - 2), Qt::AlignCenter, text);
}

// Four lines of a paragraph; lengths and placement show the alignment.
void Lines(QPainter &p, Qt::Alignment alignment)
{
    p.setPen(QPen(Qt::black, 1.5));
    const int widths[] = {14, 9, 14, 9};
    for (int i = 0; i < 4; ++i) {
        const int w = alignment == Qt::AlignJustify ? 14 : widths[i];
        const int x = alignment == Qt::AlignRight ? 15 - w
            : alignment == Qt::AlignHCenter       ? (16 - w) / 2
                                                  : 1;
        const int y = 3 + 3 * i;
        p.drawLine(x, y, x + w - 1, y);
    }
}

void Sheet(QPainter &p)
{
    p.setPen(Qt::darkGray);
    p.setBrush(Qt::white);
    p.drawRect(QRectF(2.5, 1.5, 10, 13));
}

void SheetLines(QPainter &p, int from)
{
    p.setPen(Qt::gray);
    for (int y = from; y < 13; y += 2)
        p.drawLine(5, y, 10, y);
}

void Clipboard(QPainter &p)
{
    p.setPen(Qt::darkGray);
    p.setBrush(QColor(0xC8, 0x9B, 0x5A));
    p.drawRoundedRect(QRectF(2.5, 2.5, 11, 12.5), 1.5, 1.5);
    p.setBrush(Qt::lightGray);
    p.drawRect(QRectF(5.5, 1.5, 5, 3));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(4.5, 5.5, 7, 8));
}

void Arrow(QPainter &p, bool back)
{
    if (!back) {
        p.translate(kIconSize, 0);
        p.scale(-1, 1);
    }
    p.setPen(QPen(QColor(0x20, 0x60, 0xB0), 2));
    p.setBrush(Qt::NoBrush);
    QPainterPath arc;
    arc.moveTo(4, 7);
    arc.cubicTo(8, 2, 15, 4, 13, 12);
    p.drawPath(arc);
    p.setBrush(QColor(0x20, 0x60, 0xB0));
    p.setPen(Qt::NoPen);
    p.drawPolygon(QPolygonF({QPointF(1, 4), QPointF(7, 4), QPointF(3, 10)}));
}

void ColourBar(QPainter &p, QColor colour, QColor letterBackground)
{
    if (letterBackground.isValid())
        p.fillRect(QRect(2, 1, 12, 11), letterBackground);
    p.setPen(Qt::black);
    QFont font = p.font();
    font.setPixelSize(11);
    font.setBold(true);
    p.setFont(font);
    p.drawText(QRect(0, 0, kIconSize, 12), Qt::AlignCenter, QStringLiteral("A"));
    p.fillRect(QRect(1, 12, 14, 3), colour);
}

void Plus(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x2E, 0x8B, 0x3A));
    p.drawRect(QRectF(6.5, 9, 3, 7));
    p.drawRect(QRectF(4.5, 11, 7, 3));
}

void SheetWithMark(QPainter &p, const QString &mark, QColor colour)
{
    Sheet(p);
    SheetLines(p, 4);
    QFont font = p.font();
    font.setPixelSize(9);
    font.setBold(true);
    p.setFont(font);
    p.setPen(colour);
    p.drawText(QRect(4, 6, 12, 10), Qt::AlignRight | Qt::AlignBottom, mark);
}

const std::array<Painting, 24> &Paintings()
{
    static const std::array<Painting, 24> paintings = {{
        [](QPainter &p) { Letter(p, QStringLiteral("B"), true, false); },
        [](QPainter &p) { Letter(p, QStringLiteral("I"), false, true); },
        [](QPainter &p) {
            Letter(p, QStringLiteral("U"), false, false);
            p.drawLine(4, 14, 12, 14);
        },
        [](QPainter &p) {
            Letter(p, QStringLiteral("S"), false, false);
            p.setPen(QPen(Qt::red, 1.5));
            p.drawLine(2, 8, 14, 8);
        },
        [](QPainter &p) { Lines(p, Qt::AlignLeft); },
        [](QPainter &p) { Lines(p, Qt::AlignHCenter); },
        [](QPainter &p) { Lines(p, Qt::AlignRight); },
        [](QPainter &p) { Lines(p, Qt::AlignJustify); },
        [](QPainter &p) { // scissors
            p.setPen(QPen(Qt::darkGray, 1.5));
            p.drawLine(5, 1, 10, 10);
            p.drawLine(11, 1, 6, 10);
            p.setPen(QPen(Qt::red, 1.5));
            p.setBrush(Qt::NoBrush);
            p.drawEllipse(QRectF(2, 10, 4, 4));
            p.drawEllipse(QRectF(10, 10, 4, 4));
        },
        [](QPainter &p) { // two sheets
            p.setPen(Qt::darkGray);
            p.setBrush(Qt::white);
            p.drawRect(QRectF(1.5, 1.5, 8, 10));
            p.drawRect(QRectF(6.5, 4.5, 8, 10));
        },
        [](QPainter &p) { Clipboard(p); },
        [](QPainter &p) {
            Clipboard(p);
            Letter(p, QStringLiteral("T"), true, false, QColor(0x20, 0x60, 0xB0));
        },
        [](QPainter &p) { Arrow(p, true); },
        [](QPainter &p) { Arrow(p, false); },
        [](QPainter &p) { ColourBar(p, Qt::yellow, QColor(0xFF, 0xFF, 0x99)); },
        [](QPainter &p) { ColourBar(p, Qt::red, QColor()); },
        [](QPainter &p) {
            Sheet(p);
            SheetLines(p, 4);
            Plus(p);
        },
        nullptr, // index 17 has no picture
        [](QPainter &p) { SheetWithMark(p, QStringLiteral("V"), QColor(0x20, 0x60, 0xB0)); },
        [](QPainter &p) { // a capsule
            p.translate(8, 8);
            p.rotate(-45);
            p.setPen(Qt::darkGray);
            p.setBrush(QColor(0xD0, 0x30, 0x30));
            p.drawRoundedRect(QRectF(-7, -3, 7, 6), 3, 3);
            p.setBrush(Qt::white);
            p.drawRoundedRect(QRectF(0, -3, 7, 6), 3, 3);
        },
        [](QPainter &p) { SheetWithMark(p, QStringLiteral("A"), QColor(0x2E, 0x8B, 0x3A)); },
        [](QPainter &p) { SheetWithMark(p, QStringLiteral("D"), QColor(0xB0, 0x20, 0x20)); },
        [](QPainter &p) { // stacked blocks
            p.setPen(Qt::darkGray);
            p.setBrush(QColor(0xA0, 0xC0, 0xE8));
            p.drawRect(QRectF(1.5, 9.5, 6, 5));
            p.drawRect(QRectF(8.5, 9.5, 6, 5));
            p.drawRect(QRectF(5, 3.5, 6, 5));
        },
        [](QPainter &p) { // a table
            p.setPen(Qt::darkGray);
            p.setBrush(Qt::white);
            p.drawRect(QRectF(1.5, 2.5, 13, 11));
            p.fillRect(QRectF(2, 3, 12, 3), QColor(0xA0, 0xC0, 0xE8));
            p.drawLine(QPointF(1.5, 6.5), QPointF(14.5, 6.5));
            p.drawLine(QPointF(1.5, 10), QPointF(14.5, 10));
            p.drawLine(QPointF(6, 2.5), QPointF(6, 13.5));
            p.drawLine(QPointF(10.5, 2.5), QPointF(10.5, 13.5));
        },
    }};
    return paintings;
}

TRVToolButtonType AlignmentType(TRVAlignment alignment)
{
    switch (alignment) {
    case rvaCenter:
        return tbtCenterAlign;
    case rvaRight:
        return tbtRighAlign;
    case rvaJustify:
        return tbtJustifyAlign;
    default:
        return tbtLeftAlign;
    }
}

// A colour button's picture with its bar in the colour at the caret.
QIcon ColourButtonIcon(int imageIndex, const QColor &colour)
{
    QPixmap pixmap = TRVToolBar::Icons().at(imageIndex).pixmap(kIconSize, kIconSize);
    QPainter p(&pixmap);
    p.fillRect(QRect(1, 12, 14, 3), colour);
    p.end();
    return QIcon(pixmap);
}

bool IsComboType(TRVToolButtonType typ)
{
    return typ == tbtFontName || typ == tbtFontSize || typ == tbtTextStyle;
}

} // namespace

// ---- the operations shared with the context menu ----

bool RunEditorCommand(TOxaRichView *editor, TRVToolButtonType typ, bool checked)
{
    if (!editor)
        return false;
    switch (typ) {
    case tbtBold:
        editor->SetFontStyle(checked ? afsBold : afsUnBold);
        break;
    case tbtItalic:
        editor->SetFontStyle(checked ? afsItalic : afsUnItalic);
        break;
    case tbtUnderline:
        editor->SetFontStyle(checked ? afsUnderline : afsUnUnderline);
        break;
    case tbtStrikeOut:
        editor->SetFontStyle(checked ? afsStrikeline : afsUnStrikeline);
        break;
    case tbtLeftAlign:
        editor->SetParaStyle(apsLeft);
        break;
    case tbtCenterAlign:
        editor->SetParaStyle(apsCenter);
        break;
    case tbtRighAlign:
        editor->SetParaStyle(apsRight);
        break;
    case tbtJustifyAlign:
        editor->SetParaStyle(apsJustify);
        break;
    case tbtCut: {
        // A cut is a deletion for the undo list, as Ctrl+X is.
        RichDocument::UndoScope scope(editor->RVData(), utDeleting);
        editor->cut();
        break;
    }
    case tbtCopy:
        editor->copy();
        break;
    case tbtPaste:
        editor->paste();
        break;
    case tbtPasteText:
        editor->PasteText();
        break;
    case tbtUndo:
        editor->Undo();
        break;
    case tbtRedo:
        editor->Redo();
        break;
    case tbtTable:
        editor->InsTableDlg();
        break;
    default:
        return false;
    }
    return true;
}

bool EditorStateOf(const TOxaRichView *editor, TRVToolButtonType typ)
{
    if (!editor)
        return false;
    const TFontStyles styles = editor->GetFontStyle();
    switch (typ) {
    case tbtBold:
        return styles.testFlag(fsBold);
    case tbtItalic:
        return styles.testFlag(fsItalic);
    case tbtUnderline:
        return styles.testFlag(fsUnderline);
    case tbtStrikeOut:
        return styles.testFlag(fsStrikeOut);
    case tbtLeftAlign:
    case tbtCenterAlign:
    case tbtRighAlign:
    case tbtJustifyAlign:
        return AlignmentType(editor->Style().ParaStyle(editor->CurParaStyleNo()).Alignment) == typ;
    default:
        return false;
    }
}

// ---- the table of buttons ----

const TRVToolBar::TButtonsProperties &TRVToolBar::ButtonsProperties(TRVToolButtonType typ)
{
    static const std::array<TButtonsProperties, tbtTable + 1> table = {{
        {QString(), -1, tbkButton}, // tbtNone
        {QStringLiteral("Tučné [Ctrl+B]"), 0, tbkCheck},
        {QStringLiteral("Kurzíva [Ctrl+I]"), 1, tbkCheck},
        {QStringLiteral("Podtržené [Ctrl+P]"), 2, tbkCheck},
        {QStringLiteral("Preškrtnuté [Ctrl+S]"), 3, tbkCheck}, // spelt so on screen
        {QStringLiteral("Vlevo [Ctrl+L]"), 4, tbkCheckGrouped},
        {QStringLiteral("Na střed [Ctrl+E]"), 5, tbkCheckGrouped},
        {QStringLiteral("Vpravo [Ctrl+R]"), 6, tbkCheckGrouped},
        {QStringLiteral("Do bloku [Ctrl+J]"), 7, tbkCheckGrouped},
        {QStringLiteral("Vyjmout [Ctrl+X]"), 8, tbkButton},
        {QStringLiteral("Kopírovat [Ctrl+C]"), 9, tbkButton},
        {QStringLiteral("Vložit [Ctrl+V]"), 10, tbkButton},
        {QStringLiteral("Vložit jako text"), 11, tbkButton},
        {IdleUndoHint(), 12, tbkButton},
        {IdleRedoHint(), 13, tbkButton},
        {QStringLiteral("Barva pozadí"), 14, tbkCheck},
        {QStringLiteral("Barva písma"), 15, tbkCheck},
        {QString(), -1, tbkDivider},
        {QString(), -1, tbkSeparator},
        {QStringLiteral("Vložit"), 16, tbkSpeedButton},
        {QStringLiteral("Vložit..."), 16, tbkDropDown},
        {QStringLiteral("Písmo"), -1, tbkComboBox},
        {QStringLiteral("Velikost písma"), -1, tbkComboBox},
        {QStringLiteral("Styl textu"), -1, tbkComboBox},
        {QStringLiteral("Vložit textové vzory ..."), 18, tbkButton},
        {QStringLiteral("Vložit trvalé léky"), 19, tbkButton},
        {QStringLiteral("Vložit anamnézy"), 20, tbkButton},
        {QStringLiteral("Vložit trvalé diagnozy ..."), 21, tbkButton},
        {QStringLiteral("Vložit bloky ..."), 22, tbkButton},
        {QStringLiteral("Tabulka ..."), 23, tbkDropDown},
    }};
    return table.at(std::size_t(qBound(0, int(typ), int(tbtTable))));
}

QString TRVToolBar::UndoTypeName(int undoType)
{
    // The English names are the ones the users know; they stay.
    static const std::array<const char *, 13> names = {"mazání",
                                                       "vkládání",
                                                       "modifikace odstavce",
                                                       "editace",
                                                       "konec stránky",
                                                       "odstranění konce stránky",
                                                       "psaní",
                                                       "tag modification",
                                                       "formátování",
                                                       "inserting checkpoint",
                                                       "removing checkpoint",
                                                       "editing checkpoint",
                                                       "modifikace"};
    if (undoType < 1 || undoType > int(names.size()))
        return QString();
    return QString::fromUtf8(names.at(std::size_t(undoType - 1)));
}

TRVToolButtonTypes TRVToolBar::GroupTypes(TRVToolButtonGroup group)
{
    switch (group) {
    case tbgAll: {
        TRVToolButtonTypes all;
        for (int t = tbtBold; t <= tbtTable; ++t) {
            if (t != tbtDivider && t != tbtSeparator)
                all.insert(TRVToolButtonType(t));
        }
        return all;
    }
    case tbgStandard:
        return {tbtBold,        tbtItalic,    tbtUnderline,    tbtLeftAlign,
                tbtCenterAlign, tbtRighAlign, tbtJustifyAlign, tbtCut,
                tbtCopy,        tbtPaste,     tbtUndo,         tbtRedo};
    case tbgFontStyle:
        return {tbtBold, tbtItalic, tbtUnderline, tbtStrikeOut};
    case tbgAlign:
        return {tbtLeftAlign, tbtCenterAlign, tbtRighAlign, tbtJustifyAlign};
    case tbgClipboard:
        return {tbtCut, tbtCopy, tbtPaste, tbtPasteText};
    case tbgUndoRedo:
        return {tbtUndo, tbtRedo};
    case tbgColors:
        return {tbtBgColor, tbtFontColor};
    case tbgInclude:
        return {tbtInclude,    tbtIncludeSmall,     tbtInTextoveVzory, tbtInTrvaleLeky,
                tbtInAnamnezy, tbtInTrvaleDiagnozy, tbtInBloky,        tbtTable};
    case tbgFont:
        return {tbtFontName, tbtFontSize, tbtTextStyle};
    }
    return {};
}

const QList<QIcon> &TRVToolBar::Icons()
{
    static const QList<QIcon> icons = [] {
        QList<QIcon> list;
        for (Painting painting : Paintings())
            list.append(painting ? Paint(painting) : QIcon());
        return list;
    }();
    return icons;
}

// ---- the controls ----

TRVToolBar::TRVToolBar(QWidget *parent)
    : QToolBar(parent), d(std::make_unique<TRVToolBarPrivate>(this))
{
    setIconSize(QSize(kIconSize, kIconSize));
    d->fAlignGroup = new QButtonGroup(this);
    d->fAlignGroup->setExclusive(true);
}

TRVToolBar::~TRVToolBar()
{
    d->DisconnectEditor();
    if (d->fColorDialog)
        delete d->fColorDialog.data();
}

void TRVToolBar::Init(TOxaRichView *aEditor)
{
    d->DisconnectEditor();
    d->fEditor = aEditor;
    if (aEditor) {
        auto &c = d->fEditorConnections;
        c << connect(aEditor, &TOxaRichView::OnCaretMoveOxa, this, &TRVToolBar::getEditorState);
        c << connect(aEditor, &QTextEdit::currentCharFormatChanged, this,
                     &TRVToolBar::getEditorState);
        // Formatting of a selection moves no caret; the document tells.
        c << connect(aEditor->document(), &QTextDocument::contentsChanged, this,
                     &TRVToolBar::getEditorState);
        c << connect(aEditor->RVData(), &RichDocument::UndoChanged, this,
                     &TRVToolBar::UpdateUndoRedoName);
        // The editor is half gone when it says so: forget it before anything reads it.
        c << connect(aEditor, &QObject::destroyed, this, [this] {
            d->fEditor.clear();
            d->DisconnectEditor();
            Refresh();
        });
    }
    SetTextStyles();
    Refresh();
}

TOxaRichView *TRVToolBar::Editor() const
{
    return d->fEditor;
}

void TRVToolBarPrivate::DisconnectEditor()
{
    for (const QMetaObject::Connection &c : std::as_const(fEditorConnections))
        QObject::disconnect(c);
    fEditorConnections.clear();
}

void TRVToolBar::AddObjects(const TRVToolButtonTypes &types, QMenu *ppmenu)
{
    for (TRVToolButtonType typ : types)
        AddObject(typ, ppmenu);
}

void TRVToolBar::AddObjectGroups(const TRVToolButtonGroups &groups, bool separate, QMenu *ppmenu)
{
    bool first = true;
    for (TRVToolButtonGroup group : groups) {
        if (separate && !first)
            AddObject(tbtSeparator);
        AddObjectGroup(group, ppmenu);
        first = false;
    }
}

void TRVToolBar::AddObjectGroup(TRVToolButtonGroup group, QMenu *ppmenu)
{
    AddObjects(GroupTypes(group), ppmenu);
}

QObject *TRVToolBar::AddObject(TRVToolButtonType typ, QMenu *ppmenu)
{
    if (typ <= tbtNone || typ > tbtTable)
        return nullptr;
    const TRVToolButtonKind kind = ButtonsProperties(typ).Kind;
    if (kind != tbkSeparator && kind != tbkDivider && isInObjects(typ))
        return nullptr;
    QObject *control = d->CreateControl(typ, ppmenu);
    if (typ == tbtTextStyle)
        SetTextStyles();
    Refresh();
    return control;
}

QObject *TRVToolBarPrivate::CreateControl(TRVToolButtonType typ, QMenu *ppmenu)
{
    const TRVToolBar::TButtonsProperties &props = TRVToolBar::ButtonsProperties(typ);
    QObject *control = nullptr;
    QAction *action = nullptr;
    switch (props.Kind) {
    case tbkDivider:
        action = q->addSeparator();
        control = action;
        break;
    case tbkSeparator: {
        auto *gap = new QWidget(q);
        gap->setFixedSize(kGapWidth, kGapWidth);
        action = q->addWidget(gap);
        control = gap;
        break;
    }
    case tbkComboBox: {
        QComboBox *combo = CreateComboBox(typ);
        action = q->addWidget(combo);
        control = combo;
        break;
    }
    default: {
        QToolButton *button = CreateButton(typ, ppmenu);
        action = q->addWidget(button);
        control = button;
        break;
    }
    }
    fObjects.append({control, typ});
    fActions.append(action);
    return control;
}

QToolButton *TRVToolBarPrivate::CreateButton(TRVToolButtonType typ, QMenu *ppmenu)
{
    const TRVToolBar::TButtonsProperties &props = TRVToolBar::ButtonsProperties(typ);
    auto *button = new QToolButton(q);
    button->setToolTip(props.Hint);
    button->setAutoRaise(true);
    // The editor keeps the focus while the user clicks its toolbar.
    button->setFocusPolicy(Qt::NoFocus);
    button->setIconSize(QSize(kIconSize, kIconSize));
    if (props.ImageIndex >= 0)
        button->setIcon(TRVToolBar::Icons().value(props.ImageIndex));
    switch (props.Kind) {
    case tbkCheck:
        button->setCheckable(true);
        break;
    case tbkCheckGrouped:
        button->setCheckable(true);
        fAlignGroup->addButton(button);
        break;
    case tbkDropDown:
        if (ppmenu) {
            button->setMenu(ppmenu);
            button->setPopupMode(QToolButton::MenuButtonPopup);
        }
        break;
    case tbkSpeedButton:
        button->setText(props.Hint);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        break;
    default:
        break;
    }
    QObject::connect(button, &QToolButton::clicked, q, [this, button] { q->BtnClick(button); });
    return button;
}

QComboBox *TRVToolBarPrivate::CreateComboBox(TRVToolButtonType typ)
{
    auto *combo = new QComboBox(q);
    combo->setToolTip(TRVToolBar::ButtonsProperties(typ).Hint);
    if (typ == tbtTextStyle) {
        QObject::connect(combo, &QComboBox::activated, q, [this, combo] { q->BtnClick(combo); });
        return combo;
    }
    // Font name and size: chosen from the list or typed and confirmed with Enter.
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    if (typ == tbtFontName) {
        combo->addItems(QFontDatabase::families());
        combo->setMinimumContentsLength(12);
    } else {
        for (int size : {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72})
            combo->addItem(QString::number(size));
        combo->setMinimumContentsLength(3);
    }
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QObject::connect(combo, &QComboBox::textActivated, q, [this, combo] { q->BtnClick(combo); });
    // A typed value not in the list activates nothing; Enter applies it.
    QObject::connect(combo->lineEdit(), &QLineEdit::returnPressed, q, [this, combo] {
        if (combo->findText(combo->currentText()) < 0)
            q->BtnClick(combo);
    });
    return combo;
}

void TRVToolBar::Clear()
{
    if (d->fColorDialog)
        d->fColorDialog->close();
    for (QAction *action : std::as_const(d->fActions)) {
        removeAction(action);
        delete action; // a widget's action deletes the widget with it
    }
    d->fActions.clear();
    d->fObjects.clear();
    d->fShownColours.clear();
}

void TRVToolBar::SetEnable(bool enabled)
{
    d->fEnabled = enabled;
    for (int i = 0; i < d->fObjects.size(); ++i) {
        if (auto *widget = qobject_cast<QWidget *>(d->fObjects.at(i).Obj))
            widget->setEnabled(enabled);
    }
    UpdateUndoRedoName();
}

void TRVToolBar::Refresh()
{
    getEditorState();
    UpdateUndoRedoName();
}

void TRVToolBar::getEditorState()
{
    TOxaRichView *editor = d->fEditor;
    for (TRVToolButtonType typ : GroupTypes(tbgFontStyle)) {
        if (QToolButton *button = d->Button(typ))
            button->setChecked(EditorStateOf(editor, typ));
    }
    for (TRVToolButtonType typ : GroupTypes(tbgAlign)) {
        if (QToolButton *button = d->Button(typ); button && EditorStateOf(editor, typ))
            button->setChecked(true);
    }
    if (!editor)
        return;
    const TFontInfo &font = editor->Style().TextStyle(editor->CurTextStyleNo());
    d->ShowColour(tbtFontColor, font.Color);
    d->ShowColour(tbtBgColor, font.BackColor);
    d->SyncCombo(tbtFontName, font.FontName);
    d->SyncCombo(tbtFontSize, QString::number(font.Size));
    if (QComboBox *styles = d->Combo(tbtTextStyle)) {
        const int index = styles->findData(editor->CurTextStyleNo());
        if (styles->currentIndex() != index)
            styles->setCurrentIndex(index);
    }
}

void TRVToolBarPrivate::ShowColour(TRVToolButtonType typ, TColor color)
{
    QToolButton *button = Button(typ);
    if (!button || fShownColours.value(typ, clDefault) == color)
        return; // repainted only when the colour changes, not on every key
    fShownColours.insert(typ, color);
    const int image = TRVToolBar::ButtonsProperties(typ).ImageIndex;
    button->setIcon(color == clNone ? TRVToolBar::Icons().at(image)
                                    : ColourButtonIcon(image, ColorToQColor(color, button)));
}

void TRVToolBarPrivate::SyncCombo(TRVToolButtonType typ, const QString &text)
{
    QComboBox *combo = Combo(typ);
    // The combo the user is typing in is left alone.
    if (combo && combo->currentText() != text && !combo->hasFocus())
        combo->setEditText(text);
}

void TRVToolBar::UpdateUndoRedoName()
{
    TOxaRichView *editor = d->fEditor;
    d->UpdateStepButton(tbtUndo, editor ? editor->UndoAction() : utNone,
                        editor ? editor->UndoName() : QString(), IdleUndoHint(),
                        QStringLiteral("Zpět ("));
    d->UpdateStepButton(tbtRedo, editor ? editor->RedoAction() : utNone,
                        editor ? editor->RedoName() : QString(), IdleRedoHint(),
                        QStringLiteral("Vpřed ("));
}

void TRVToolBarPrivate::UpdateStepButton(TRVToolButtonType typ, int undoType,
                                         const QString &customName, const QString &idleHint,
                                         const QString &prefix)
{
    QToolButton *button = Button(typ);
    if (!button)
        return;
    button->setEnabled(fEnabled && undoType != utNone);
    if (undoType == utNone)
        button->setToolTip(idleHint);
    else
        button->setToolTip(
            prefix + (undoType == utCustom ? customName : TRVToolBar::UndoTypeName(undoType)) +
            QLatin1Char(')'));
}

TObjectProp TRVToolBar::GetButton(TRVToolButtonType aTyp) const
{
    for (const TObjectProp &object : d->fObjects) {
        if (object.Typ == aTyp)
            return object;
    }
    return {};
}

bool TRVToolBar::isInObjects(TRVToolButtonType typ) const
{
    return GetButton(typ).Obj != nullptr;
}

const QList<TObjectProp> &TRVToolBar::Objects() const
{
    return d->fObjects;
}

TRVToolButtonType TRVToolBarPrivate::TypeOf(const QObject *control) const
{
    for (const TObjectProp &object : fObjects) {
        if (object.Obj == control)
            return object.Typ;
    }
    return tbtNone;
}

QToolButton *TRVToolBarPrivate::Button(TRVToolButtonType typ) const
{
    return qobject_cast<QToolButton *>(q->GetButton(typ).Obj);
}

QComboBox *TRVToolBarPrivate::Combo(TRVToolButtonType typ) const
{
    return qobject_cast<QComboBox *>(q->GetButton(typ).Obj);
}

// ---- clicks ----

void TRVToolBar::BtnClick(QObject *Sender)
{
    const TRVToolButtonType typ = d->TypeOf(Sender);
    if (typ == tbtNone)
        return;
    bool Handled = false;
    if (OnButtonClick)
        OnButtonClick(Sender, typ, Handled);
    TOxaRichView *editor = d->fEditor;
    if (Handled || !editor) {
        Refresh(); // a check button the host kept from acting shows the editor's state again
        return;
    }
    auto *button = qobject_cast<QToolButton *>(Sender);
    HandleExceptions(this, [&] {
        if (typ == tbtBgColor || typ == tbtFontColor) {
            d->OpenColorDialog(button, typ == tbtBgColor ? cctBackground : cctFont);
            return;
        }
        if (IsComboType(typ)) {
            auto *combo = qobject_cast<QComboBox *>(Sender);
            d->ApplyCombo(typ, combo->currentText(), combo->currentIndex());
        } else if (!RunEditorCommand(editor, typ, button && button->isChecked())) {
            return; // the insertion buttons are the host's
        }
        if (d->fEditor)
            d->fEditor->setFocus();
    });
    Refresh();
}

void TRVToolBarPrivate::ApplyCombo(TRVToolButtonType typ, const QString &text, int index)
{
    if (typ == tbtFontName && !text.trimmed().isEmpty()) {
        fEditor->SetFontName(text.trimmed());
    } else if (typ == tbtFontSize) {
        bool ok = false;
        const int size = text.trimmed().toInt(&ok);
        if (ok && size > 0)
            fEditor->SetFontSize(size);
    } else if (typ == tbtTextStyle && index >= 0) {
        fEditor->ApplyTextStyle(Combo(tbtTextStyle)->itemData(index).toInt());
    }
}

void TRVToolBar::SetTextStyles()
{
    QComboBox *combo = d->Combo(tbtTextStyle);
    if (!combo)
        return;
    const QSignalBlocker blocker(combo);
    combo->clear();
    if (TOxaRichView *editor = d->fEditor) {
        const QList<TFontInfo> &styles = editor->Style().TextStyles;
        for (int i = 0; i < styles.size(); ++i) {
            if (!styles.at(i).StyleName.isEmpty())
                combo->addItem(styles.at(i).StyleName, i);
        }
    }
    getEditorState();
}

void TRVToolBarPrivate::OpenColorDialog(QToolButton *button, TColorChangeType type)
{
    if (fColorDialog)
        fColorDialog->close();
    fColorChangeType = type;
    const TFontInfo &font = fEditor->Style().TextStyle(fEditor->CurTextStyleNo());
    auto *form = new TColorForm(q);
    form->SetColor(type == cctBackground ? font.BackColor : font.Color);
    const QPoint at = button->mapToGlobal(QPoint(0, button->height()));
    form->Init(at.y(), at.x(), type == cctBackground ? cdmTransparent : cdmAutomatic);
    QObject::connect(form, &TColorForm::Closed, q,
                     [this](bool chosen, TColor color) { q->OnColorDialogClose(chosen, color); });
    fColorDialog = form;
    button->setChecked(true); // pressed while its picker is open
    form->show();
    form->activateWindow();
}

void TRVToolBar::OnColorDialogClose(bool chosen, TColor color)
{
    const TColorChangeType type = d->fColorChangeType;
    d->fColorChangeType = cctNone;
    d->fColorDialog = nullptr;
    for (TRVToolButtonType typ : {tbtBgColor, tbtFontColor}) {
        if (QToolButton *button = d->Button(typ))
            button->setChecked(false);
    }
    TOxaRichView *editor = d->fEditor;
    if (!editor)
        return;
    if (chosen && type == cctBackground)
        editor->SetBgColor(color);
    else if (chosen && type == cctFont)
        editor->SetColor(color);
    editor->activateWindow();
    editor->setFocus();
    Refresh();
}

TColorChangeType TRVToolBar::ColorChangeType() const
{
    return d->fColorChangeType;
}

TColorForm *TRVToolBar::ColorDialog() const
{
    return d->fColorDialog;
}

void RegisterRVToolBar()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TRVToolBar>(
        QStringLiteral("Oxa"), QStringLiteral("TRVToolBar"), QStringLiteral("RVToolBar"),
        QStringLiteral("oxa/richtext/RVToolBar.h"))});
}

} // namespace oxa
