#pragma once

#include "oxa/oxa_export.h"

#include "oxa/controls/EditOxa.h"

#include <QChar>
#include <QString>
#include <compare>

namespace oxa {

// The toolkit's currency: a fixed-point number with four decimals, kept as
// a count of ten-thousandths so that amounts add up without rounding.
class OXA_EXPORT TCurrency
{
public:
    constexpr TCurrency() = default;
    static constexpr TCurrency FromScaled(qint64 tenThousandths)
    {
        return TCurrency(tenThousandths);
    }
    // Rounds to four decimals; EConvertError for a value out of range.
    static TCurrency FromDouble(double value);

    constexpr qint64 Scaled() const { return m_scaled; }
    double ToDouble() const { return double(m_scaled) / 10000.0; }

    friend constexpr auto operator<=>(TCurrency, TCurrency) = default;

private:
    constexpr explicit TCurrency(qint64 scaled) : m_scaled(scaled) { }
    qint64 m_scaled = 0;
};

// The decimal separator the numeric edits type, show and read. It is the
// Czech comma unless the host says otherwise, typically once at start-up
// from its locale:
//     oxa::SetDecimalSeparator(QLocale().decimalPoint().at(0));
// A digit, a sign or a null character is refused with EInvalidOperation.
OXA_EXPORT QChar DecimalSeparator();
OXA_EXPORT void SetDecimalSeparator(QChar separator);

// A TEditOxa for numbers. NumType decides which typed characters it takes:
//   ntNone      none at all (only pasting and setting the text change it);
//   ntInteger   digits and a minus;
//   ntCardinal  digits;
//   ntDouble,
//   ntCurrency  digits, a minus and the decimal separator (typed as "," or
//               ".", inserted as DecimalSeparator()).
// Backspace belongs to every type but ntNone. A minus always goes to the
// front, once; nothing may be typed in front of it; one separator at most.
// Enter is swallowed. Esc and Delete are keys, not typed characters, and
// keep their meaning.
//
// The text is rewritten in the canonical form of the type (Refresh) on entry,
// on exit, when Digits changes and after every paste (Ctrl+V, Shift+Insert,
// the context menu, PasteFromClipboard). A paste that does not convert is
// undone and its conversion error shown; a text that does not convert on exit
// keeps the focus in the edit and shows the error.
//
// The value accessors keep the toolkit's ways: an empty text or a lone minus
// reads as 0; getCardinal converts as a signed integer (so a text above
// 2147483647 does not convert), and setCardinal prints its value as a signed
// one (3000000000 shows as -1294967296).
class OXA_EXPORT TNumEditOxa : public TEditOxa
{
    Q_OBJECT
    Q_PROPERTY(TAlignment Aligment READ Aligment WRITE SetAligment NOTIFY aligmentChanged)
    Q_PROPERTY(int Digits READ Digits WRITE SetDigits NOTIFY digitsChanged)
    Q_PROPERTY(TNumType NumType READ NumType WRITE SetNumType NOTIFY numTypeChanged)

public:
    enum TNumType { ntNone, ntInteger, ntCardinal, ntDouble, ntCurrency };
    Q_ENUM(TNumType)
    enum TAlignment { taLeftJustify, taRightJustify, taCenter };
    Q_ENUM(TAlignment)

    static constexpr int MaxDigits = 4;

    explicit TNumEditOxa(QWidget *parent = nullptr);

    // Spelled so: the name the forms know it by.
    TAlignment Aligment() const { return fAligment; }
    void SetAligment(TAlignment value);
    int Digits() const { return fDigits; }
    // Values outside 0..4 are clamped; the text is rewritten at once.
    void SetDigits(int value);
    TNumType NumType() const { return fNumType; }
    // Stored only: the text is rewritten at the next entry or exit.
    void SetNumType(TNumType value);

    // The text, with "0" for an empty text or a lone minus.
    QString GetText() const;
    // The value of the text; EConvertError when the text does not convert.
    qint32 getInteger() const;
    quint32 getCardinal() const;
    double getDouble() const;
    TCurrency getCurrency() const;

    void setInteger(qint32 value);
    void setCardinal(quint32 value);
    // Fixed notation with Digits decimals; EConvertError for NaN and infinity.
    void setDouble(double value);
    void setCurrency(TCurrency value);

    // The printf format of setDouble: "%0.2f" for two decimals.
    QString GetMaska() const;
    // Rewrites the text in the canonical form of NumType (ntNone: nothing);
    // EConvertError when the text does not convert.
    void Refresh();
    // Pastes the clipboard's text and rewrites it, as Ctrl+V does.
    void PasteFromClipboard();

    void PopUpOnItemClick(QObject *Sender, TItemTyp Item, QChar Key) override;

Q_SIGNALS:
    void aligmentChanged();
    void digitsChanged();
    void numTypeChanged();

protected:
    void KeyDown(Word &Key, TShiftState Shift) override;
    void KeyPress(QChar &Key) override;
    void KeyUp(Word &Key, TShiftState Shift) override;
    void DoEnter() override;
    void DoExit() override;

    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    // The text and selection a failed paste returns to.
    struct TEditState
    {
        QString text;
        int selStart = 0;
        int selLength = 0;
    };
    TEditState SaveState() const;
    void RestoreState(const TEditState &state);
    // What a paste message handler does after the paste itself.
    void WMPaste(const TEditState &before);

    bool IsAccepted(QChar Key) const;
    int SelStart() const;
    void SetCanonicalText(const QString &canonical);

    TAlignment fAligment = taLeftJustify;
    Word fCtrlKey = 0;
    int fDigits = 0;
    TNumType fNumType = ntNone;
};

OXA_EXPORT void RegisterNumEditOxa();

} // namespace oxa
