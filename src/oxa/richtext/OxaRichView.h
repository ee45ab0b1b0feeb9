#pragma once

#include "oxa/oxa_export.h"
#include "oxa/richtext/RichDocument.h"
#include "oxa/toolkit/Keys.h"

#include <QTextEdit>
#include <functional>
#include <memory>

class QIODevice;
class QMenu;

namespace oxa {

// Formatting commands of the editor.
enum TARVFontStyle {
    afsClear,
    afsBold,
    afsUnBold,
    afsItalic,
    afsUnItalic,
    afsUnderline,
    afsUnUnderline,
    afsStrikeline,
    afsUnStrikeline,
    afsFontUp,
    afsFontDown,
    afsFontNone,
};

// The editor's own alignment order (the engine's is left, right, center, justify).
enum TARVParaStyle { apsLeft, apsCenter, apsRight, apsJustify };

// A table request, as the table dialog fills it.
struct TTableCreateInfo
{
    int Cols = 1;
    int Rows = 1;
    int Width = 0; // pixels; 0 for automatic width
    TColor CellBorderColor = clBlack;
    int CellBorderWidth = 1;
};

// The rich-text editor: a document of items in numbered styles, formatting
// by simple commands and shortcuts, a guard against a stuck key, tables and
// links, the tagged-text form and the stream format of its documents.
class OXA_EXPORT TOxaRichView : public QTextEdit
{
    Q_OBJECT
    Q_PROPERTY(bool SaveFontName READ SaveFontName WRITE SetSaveFontName NOTIFY saveFontNameChanged)
    Q_PROPERTY(bool Inserting READ Inserting WRITE SetInserting NOTIFY OnChangeInserting)
    Q_PROPERTY(
        int MinimalHeight READ MinimalHeight WRITE SetMinimalHeight NOTIFY minimalHeightChanged)
    Q_PROPERTY(bool AutoSize READ AutoSize WRITE SetAutoSize NOTIFY autoSizeChanged)
    Q_PROPERTY(bool SpellCheck READ SpellCheck WRITE SetSpellCheck NOTIFY spellCheckChanged)

public:
    explicit TOxaRichView(QWidget *parent = nullptr);
    ~TOxaRichView() override;

    // The engine: the document's items, styles and undo.
    RichDocument *RVData() const;
    const TRVStyle &Style() const;
    void SetStyle(const TRVStyle &style);

    bool SaveFontName() const;
    void SetSaveFontName(bool value);
    bool Inserting() const;
    void SetInserting(bool value);
    int MinimalHeight() const;
    void SetMinimalHeight(int value);
    bool AutoSize() const;
    void SetAutoSize(bool value);

    // The stuck-key guard's limit of consecutive presses of one key.
    static constexpr int MaxKeyRepeat = 50;

    // Formatting of the selection or of the insertion point.
    void SetFontStyle(TARVFontStyle style);
    TFontStyles GetFontStyle() const;
    void SetFontName(const QString &name);
    void SetFontSize(int size);
    void SetColor(TColor color);
    void SetBgColor(TColor color);
    void SetParaStyle(TARVParaStyle style);
    // The current text and paragraph style numbers.
    int CurTextStyleNo() const;
    int CurParaStyleNo() const;
    void ApplyTextStyle(int styleNo);

    // Tables. InsTable beeps when the table cannot be inserted.
    bool InsTable(const TTableCreateInfo &info);
    // Shows the table dialog and inserts the table the user designed there;
    // false when the user cancelled or the table could not be inserted.
    bool InsTableDlg();
    // The table under the caret, or null.
    QTextTable *CurrentTable() const;
    bool DeleteTable();
    void SetTableColor(TColor color);
    void SetTableBorderColor(TColor color);
    void SetCellBorderWidth(int width);
    void SetTableProps(const TRVTableProps &props);

    void InsLink(const QString &Text, int data, int style, bool Space);

    // Text.
    QString GetText(int ItemStart, int ItemStop) const;
    QString GetFormatText(int ItemStart, int OffsetStart, int ItemStop, int OffsetStop) const;
    QString GetSelFormatText() const;
    void InsertFormatText(const QString &text);
    void InsertFontText(const QString &text, TFontStyles styles);
    // Inserts text at the caret in the current style.
    void InsertText(const QString &text);
    // Pastes the clipboard's plain text in the current style ("Vložit jako text").
    void PasteText();
    // The plain text of an item; a table's cells by rows.
    QString GetAllItemText(int index) const;
    bool IsEmpty() const;
    void Clear();

    // Items, as the engine offers them.
    int ItemCount() const;
    int GetItemStyle(int itemNo) const;
    int GetItemPara(int itemNo) const;
    QString GetItemText(int itemNo) const;
    QString GetItemTag(int itemNo) const;
    void SetItemTag(int itemNo, const QString &tag);
    bool IsParaStart(int itemNo) const;
    // The selection's ends, ordered; false when nothing is selected.
    bool GetSelectionBounds(TCursorPos &start, TCursorPos &end) const;

    // Operations between BeginUpdate and EndUpdate work on one cursor; the
    // caret and the view follow once, at EndUpdate (calls nest).
    void BeginUpdate();
    void EndUpdate();

    // Undo and redo.
    void Undo();
    void Redo();
    int UndoAction() const;
    int RedoAction() const;
    QString UndoName() const;
    QString RedoName() const;
    void BeginUndoGroup(int undoType);
    void SetUndoGroupMode(bool on);

    // Streams (header of styles, then the body).
    void SaveOxaRVFToStream(QIODevice &stream);
    void LoadOxaRVFFromStream(QIODevice &stream);
    QByteArray SaveOxaRVFToString();
    void LoadOxaRVFFromString(const QByteArray &value);
    // The body alone, with no style header.
    QByteArray SaveRVFToString() const;
    void LoadRVFFromString(const QByteArray &value);
    void AppendRVFFromString(const QByteArray &value);
    void InsertRVFFromStringEd(const QByteArray &value);

    // Caret.
    void CaretToBegin();
    void CaretToEnd();
    void CaretToEndLine();
    bool IsCaretInBegin() const;
    bool IsCaretInEnd() const;
    bool IsCaretInFirstLine() const;
    bool IsCaretInLastLine() const;
    QPoint GetCaretPos() const;
    TCursorPos GetCursorPos() const;
    void SetCursorPos(const TCursorPos &pos);
    QPoint GetCaretClientPos() const;
    int GetCaretY() const;
    int GetCaretHeight() const;

    bool TryFocus();

    // The key handling of the editor, from a virtual-key code.
    void KeyDown(Word &Key, TShiftState Shift);

    // Czech spell checking as the user types: misspelt words get a red wavy
    // underline that is drawn over the document, never stored in it. On by
    // default when the dictionary is installed (SpellCheckAvailable).
    bool SpellCheck() const;
    void SetSpellCheck(bool value);
    bool SpellCheckAvailable() const;
    // The personal word list, one per process (shared by every editor).
    QStringList PersonalWords() const;
    void SetPersonalWords(const QStringList &words);
    // Puts at the top of a context menu, when viewportPos lies in a misspelt
    // word, up to five corrections and "Přidat do slovníku", then a separator.
    // Returns the number of actions added (0 for a correct word).
    int AddSpellingActions(QMenu *menu, const QPoint &viewportPos);

Q_SIGNALS:
    void saveFontNameChanged();
    void minimalHeightChanged();
    void autoSizeChanged();
    void OnVScrolled();
    void OnChangeHeight(int height);
    void OnChangeInserting();
    void OnTextJump(int itemNo);
    void OnCaretMoveOxa();
    void OnPopup();
    void spellCheckChanged();
    // The user added a word to the personal word list from the context menu.
    void personalWordAdded(const QString &word);

protected:
    bool KeyDownFormating(Word Key, TShiftState Shift);
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData *source) const override;

private:
    class Private;
    std::unique_ptr<Private> const d;
    friend class Private;
};

void RegisterOxaRichView();

} // namespace oxa
