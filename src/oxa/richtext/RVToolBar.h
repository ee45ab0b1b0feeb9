#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/Color.h"

#include <QIcon>
#include <QList>
#include <QString>
#include <QToolBar>
#include <functional>
#include <memory>
#include <set>

class QMenu;

namespace oxa {

class TColorForm;
class TOxaRichView;
class TRVToolBarPrivate;

// The controls a toolbar can hold, in the order they are created.
// (tbtRighAlign is spelt so; hosts know it by that name.)
enum TRVToolButtonType {
    tbtNone,
    tbtBold,
    tbtItalic,
    tbtUnderline,
    tbtStrikeOut,
    tbtLeftAlign,
    tbtCenterAlign,
    tbtRighAlign,
    tbtJustifyAlign,
    tbtCut,
    tbtCopy,
    tbtPaste,
    tbtPasteText,
    tbtUndo,
    tbtRedo,
    tbtBgColor,
    tbtFontColor,
    tbtDivider,
    tbtSeparator,
    tbtInclude,
    tbtIncludeSmall,
    tbtFontName,
    tbtFontSize,
    tbtTextStyle,
    tbtInTextoveVzory,
    tbtInTrvaleLeky,
    tbtInAnamnezy,
    tbtInTrvaleDiagnozy,
    tbtInBloky,
    tbtTable,
};

enum TRVToolButtonKind {
    tbkButton,
    tbkCheck,
    tbkDropDown,
    tbkSeparator,
    tbkDivider,
    tbkCheckGrouped,
    tbkComboBox,
    tbkSpeedButton,
};

enum TRVToolButtonGroup {
    tbgAll,
    tbgStandard,
    tbgFontStyle,
    tbgAlign,
    tbgClipboard,
    tbgUndoRedo,
    tbgColors,
    tbgInclude,
    tbgFont,
};

// Sets of types and groups; iterating one runs in type (group) order.
using TRVToolButtonTypes = std::set<TRVToolButtonType>;
using TRVToolButtonGroups = std::set<TRVToolButtonGroup>;

// Which colour the shared colour picker is choosing.
enum TColorChangeType { cctNone, cctFont, cctBackground };

// A control of the toolbar and the type it stands for.
struct OXA_EXPORT TObjectProp
{
    QObject *Obj = nullptr;
    TRVToolButtonType Typ = tbtNone;
};

// Fired first on every click; a host that sets Handled keeps the toolbar
// from doing anything more.
using TOnButtonClick = std::function<void(QObject *Sender, TRVToolButtonType typ, bool &Handled)>;

// The toolbar of a TOxaRichView. It creates its controls from a fixed table
// of button types (tool buttons, check buttons, grouped alignment buttons,
// drop-downs, combo boxes for the font, gaps and dividers), mirrors the
// editor's state as the caret moves (font style, alignment, font, undo and
// redo with the names of their steps), and turns clicks into editor
// operations. The domain buttons (text templates, long-term medication,
// medical history, long-term diagnoses, text blocks) and the two "Vložit"
// buttons have no action of their own: they reach the host through
// OnButtonClick only.
//
// The formatting shortcuts named in the hints are the editor's own; the
// toolbar installs none.
class OXA_EXPORT TRVToolBar : public QToolBar
{
    Q_OBJECT

public:
    // One row of the button table.
    struct TButtonsProperties
    {
        QString Hint;
        int ImageIndex; // into Icons(); -1 for none
        TRVToolButtonKind Kind;
    };
    // The row of a type from tbtBold to tbtTable (tbtNone has an empty row).
    static const TButtonsProperties &ButtonsProperties(TRVToolButtonType typ);
    // The name of an undo step of the engine's undo types 1 to 13; empty otherwise.
    static QString UndoTypeName(int undoType);
    // The types a group stands for, in type order.
    static TRVToolButtonTypes GroupTypes(TRVToolButtonGroup group);

    explicit TRVToolBar(QWidget *parent = nullptr);
    ~TRVToolBar() override;

    // Binds the editor the toolbar drives (a weak reference; null unbinds).
    void Init(TOxaRichView *aEditor);
    TOxaRichView *Editor() const;

    // Create the controls of the types (groups) not created yet, in type
    // order; a drop-down button gets ppmenu as its menu. With separate, a
    // gap stands between two groups.
    void AddObjects(const TRVToolButtonTypes &types, QMenu *ppmenu = nullptr);
    void AddObjectGroups(const TRVToolButtonGroups &groups, bool separate, QMenu *ppmenu = nullptr);
    // Creates the control of one type; null when it is there already (gaps
    // and dividers may repeat) or for tbtNone.
    QObject *AddObject(TRVToolButtonType typ, QMenu *ppmenu = nullptr);
    void AddObjectGroup(TRVToolButtonGroup group, QMenu *ppmenu = nullptr);
    // Removes every control.
    void Clear();

    void SetEnable(bool enabled);
    // Reads the editor's state into the controls, then the undo and redo buttons.
    void Refresh();
    void getEditorState();
    void UpdateUndoRedoName();
    // The control of a type; Obj is null when the toolbar has none.
    TObjectProp GetButton(TRVToolButtonType aTyp) const;
    bool isInObjects(TRVToolButtonType typ) const;
    const QList<TObjectProp> &Objects() const;

    // The click of a control: OnButtonClick, then the toolbar's own action.
    void BtnClick(QObject *Sender);
    // Fills the "Styl textu" combo box with the editor's text styles.
    void SetTextStyles();
    // The colour picker closed; a chosen colour goes to the text or its background.
    void OnColorDialogClose(bool chosen, TColor color);
    TColorChangeType ColorChangeType() const;
    // The open colour picker, or null.
    TColorForm *ColorDialog() const;

    // The "Icons" image list: the pictures of the buttons by ImageIndex.
    static const QList<QIcon> &Icons();

    TOnButtonClick OnButtonClick;

private:
    std::unique_ptr<TRVToolBarPrivate> const d;
    friend class TRVToolBarPrivate;
};

OXA_EXPORT void RegisterRVToolBar();

} // namespace oxa
