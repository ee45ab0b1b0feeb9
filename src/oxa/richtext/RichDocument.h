#pragma once

#include "oxa/oxa_export.h"
#include "oxa/richtext/RVStyle.h"

#include <QObject>
#include <QString>
#include <QTextCursor>
#include <functional>
#include <memory>

class QTextDocument;
class QTextTable;
class QTextCharFormat;
class QTextBlockFormat;

namespace oxa {

// The style number of a table item.
inline constexpr int rvsTableItem = -60;

// The kinds of undo steps, numbered as the toolbar names them.
enum TUndoType {
    utNone = 0,
    utDeleting = 1,
    utInserting = 2,
    utParagraph = 3,
    utEditing = 4,
    utPageBreak = 5,
    utRemovePageBreak = 6,
    utTyping = 7,
    utTag = 8,
    utFormatting = 9,
    utInsertCheckpoint = 10,
    utRemoveCheckpoint = 11,
    utEditCheckpoint = 12,
    utModifying = 13,
    utCustom = 33,
};

// A caret or selection end: the item and the offset in it. Text items count
// offsets from 1 (before the first character) to length + 1; a table item
// has 0 (before it) and 1 (after it).
struct TCursorPos
{
    int Item = 0;
    int Offset = 0;
    bool operator==(const TCursorPos &) const = default;
};

// The properties of a table item.
struct OXA_EXPORT TRVTableProps
{
    int BestWidth = 0; // pixels; 0 lets the table take its content's width
    int BorderWidth = 0;
    int BorderVSpacing = 0;
    int BorderHSpacing = 0;
    int CellBorderWidth = 1;
    TColor CellBorderColor = clBlack;
    int CellBorderStyle = 2; // 2 is a plain solid line
    int CellHSpacing = 0;
    int CellVSpacing = 0;
    int CellPadding = 2;
    TColor Color = clNone;
    bool operator==(const TRVTableProps &) const = default;
};

// The document of the rich-text editor: a QTextDocument read and written as
// a list of items, with a style sheet. Every character carries the number of
// its text style and every paragraph the number of its paragraph style, so
// the style sheet describes all of the document.
class OXA_EXPORT RichDocument : public QObject
{
    Q_OBJECT

public:
    explicit RichDocument(QObject *parent = nullptr);
    ~RichDocument() override;

    QTextDocument *Document() const;
    const TRVStyle &Style() const;
    // Replaces the style sheet; the document's formats follow it.
    void SetStyle(const TRVStyle &style);
    // The number of a style of that format; a new style is appended when
    // there is none (existing numbers keep their meaning).
    int FindOrAddTextStyle(const TFontInfo &info);
    int FindOrAddParaStyle(const TParaInfo &info);

    // Items of the document's top level.
    int ItemCount() const;
    int GetItemStyle(int itemNo) const;
    int GetItemPara(int itemNo) const;
    QString GetItemText(int itemNo) const;
    QString GetItemTag(int itemNo) const;
    void SetItemTag(int itemNo, const QString &tag);
    bool IsParaStart(int itemNo) const;
    QTextTable *GetItemTable(int itemNo) const;
    // Item and offset of a document position, and back.
    TCursorPos PositionToItem(int position) const;
    int ItemToPosition(const TCursorPos &pos) const;

    // The Qt formats of a style (what the document stores for it).
    QTextCharFormat TextFormat(int styleNo, const QString &tag = QString()) const;
    QTextBlockFormat ParaFormat(int paraNo) const;
    // Style numbers of formats; formats without a number count as style 0.
    static int TextStyleOf(const QTextCharFormat &format);
    static int ParaStyleOf(const QTextBlockFormat &format);
    static QString TagOf(const QTextCharFormat &format);

    // Style conversion: every run of the selection (or the insertion point)
    // gets the style that differs from its own as change makes it differ.
    void ConvertTextStyle(QTextCursor &cursor, const std::function<void(TFontInfo &)> &change);
    void ConvertParaStyle(QTextCursor &cursor, const std::function<void(TParaInfo &)> &change);
    void ApplyTextStyle(QTextCursor &cursor, int styleNo);
    void ApplyParaStyle(QTextCursor &cursor, int paraNo);
    // The format the cursor types with; an empty paragraph takes it as well.
    void SetInsertionFormat(QTextCursor &cursor, const QTextCharFormat &format);
    // The text style the cursor types with.
    int CurTextStyleNo(const QTextCursor &cursor) const;
    int CurParaStyleNo(const QTextCursor &cursor) const;
    // Drops the styles no item uses (standard styles stay) and renumbers.
    // The undo history is cleared, since its steps refer to old numbers.
    void DeleteUnusedStyles(bool textStyles, bool paraStyles);
    // Old style number -> new number for the styles in use (or standard),
    // -1 for the others; what DeleteUnusedStyles would do.
    QList<int> UsedTextStyleMap() const;
    QList<int> UsedParaStyleMap() const;

    // Inserts text in a style; CR LF or LF starts a new paragraph.
    void InsertText(QTextCursor &cursor, const QString &text, int styleNo);
    void InsertText(QTextCursor &cursor, const QString &text);
    void Clear();
    bool IsEmpty() const;

    // Tables.
    QTextTable *InsertTable(QTextCursor &cursor, int rows, int cols, const TRVTableProps &props,
                            const QString &name = QString());
    static TRVTableProps TableProps(const QTextTable *table);
    void SetTableProps(QTextTable *table, const TRVTableProps &props);
    void SetCellColor(QTextTable *table, int row, int col, TColor color);
    static TColor CellColor(const QTextTable *table, int row, int col);
    // The name of a table item ("tabulka" for the tables the editor inserts).
    static QString TableName(const QTextTable *table);
    void SetTableName(QTextTable *table, const QString &name);

    // Undo and redo with the kinds of the steps.
    void BeginUndoGroup(int undoType);
    void SetUndoGroupMode(bool on);
    // The kind that the next edits record (outside a group).
    void BeginUndoCustom(const QString &name);
    int UndoAction() const;
    int RedoAction() const;
    QString UndoName() const;
    QString RedoName() const;
    void Undo(QTextCursor *cursor = nullptr);
    void Redo(QTextCursor *cursor = nullptr);
    void ClearUndo();

    // Sets the kind of the next undo step for the lifetime of the object.
    class OXA_EXPORT UndoScope
    {
    public:
        UndoScope(RichDocument *doc, int undoType);
        ~UndoScope();
        UndoScope(const UndoScope &) = delete;
        UndoScope &operator=(const UndoScope &) = delete;

    private:
        RichDocument *m_doc;
        int m_previous;
        bool m_changed;
    };

    // Typed keys make one undo step until the caret goes elsewhere or
    // something else is done; this ends the current step.
    void BreakTypingRun();

    // Marks the items as stale (edits inside an edit block send no signal).
    void Invalidate();

Q_SIGNALS:
    void UndoChanged();

private:
    QTextCharFormat MakeTextFormat(int styleNo) const;

    class Private;
    std::unique_ptr<Private> const d;
};

} // namespace oxa
