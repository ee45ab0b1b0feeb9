#include "oxa/richtext/RichClipboard.h"

#include "oxa/richtext/RichBody.h"
#include "oxa/richtext/RichDocument.h"
#include "oxa/toolkit/Exceptions.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>
#include <QTextDocument>
#include <QTextDocumentFragment>

namespace oxa::RichClipboard {

namespace {

constexpr quint32 PayloadMagic = 0x4F585243; // "OXRC"

void WriteStyle(QDataStream &out, const TRVStyle &style)
{
    out << qint32(style.TextStyles.size());
    for (const TFontInfo &i : style.TextStyles)
        out << i.StyleName << i.FontName << qint32(i.Size) << qint32(i.Style.toInt())
            << quint32(i.Color) << quint32(i.BackColor) << i.Jump << i.Standard;
    out << qint32(style.ParaStyles.size());
    for (const TParaInfo &i : style.ParaStyles)
        out << i.StyleName << qint32(i.FirstIndent) << qint32(i.LeftIndent) << qint32(i.SpaceBefore)
            << qint32(i.SpaceAfter) << qint32(i.LineSpacing) << qint32(i.Alignment) << i.Standard;
}

bool ReadStyle(QDataStream &in, TRVStyle &style)
{
    qint32 count = 0;
    in >> count;
    if (in.status() != QDataStream::Ok || count < 1 || count > 100000)
        return false;
    style.TextStyles.clear();
    for (qint32 n = 0; n < count && in.status() == QDataStream::Ok; ++n) {
        TFontInfo i;
        qint32 size, bits;
        quint32 color, back;
        in >> i.StyleName >> i.FontName >> size >> bits >> color >> back >> i.Jump >> i.Standard;
        i.Size = size;
        i.Style = TFontStyles::fromInt(bits & 0xF);
        i.Color = color;
        i.BackColor = back;
        style.TextStyles.append(i);
    }
    in >> count;
    if (in.status() != QDataStream::Ok || count < 1 || count > 100000)
        return false;
    style.ParaStyles.clear();
    for (qint32 n = 0; n < count && in.status() == QDataStream::Ok; ++n) {
        TParaInfo i;
        qint32 first, left, before, after, spacing, alignment;
        in >> i.StyleName >> first >> left >> before >> after >> spacing >> alignment >> i.Standard;
        i = {i.StyleName,
             first,
             left,
             before,
             after,
             spacing,
             alignment >= 0 && alignment <= 3 ? TRVAlignment(alignment) : rvaLeft,
             i.Standard};
        style.ParaStyles.append(i);
    }
    return in.status() == QDataStream::Ok;
}

// Offers our own type, HTML and plain text; HTML and text are made on request.
class RichMimeData : public QMimeData
{
public:
    RichMimeData(QByteArray payload, QTextDocumentFragment fragment)
        : m_payload(std::move(payload)), m_fragment(std::move(fragment))
    { }

    QStringList formats() const override
    {
        return {QString::fromLatin1(MimeType), QStringLiteral("text/html"),
                QStringLiteral("text/plain")};
    }
    bool hasFormat(const QString &mime) const override { return formats().contains(mime); }

protected:
    QVariant retrieveData(const QString &mime, QMetaType type) const override
    {
        if (mime == QLatin1String(MimeType))
            return m_payload;
        if (mime == QLatin1String("text/html"))
            return m_fragment.toHtml();
        if (mime == QLatin1String("text/plain"))
            return m_fragment.toPlainText();
        return QMimeData::retrieveData(mime, type);
    }

private:
    QByteArray m_payload;
    QTextDocumentFragment m_fragment;
};

} // namespace

QMimeData *MimeOfSelection(const RichDocument &doc, const QTextCursor &cursor, bool)
{
    const QTextDocumentFragment fragment = cursor.selection();
    RichDocument copy;
    copy.SetStyle(doc.Style());
    QTextCursor c(copy.Document());
    c.insertFragment(fragment);
    QByteArray payload;
    QDataStream out(&payload, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_0);
    out << PayloadMagic;
    WriteStyle(out, doc.Style());
    out << RichBody::Save(copy);
    return new RichMimeData(payload, fragment);
}

bool CanPaste(const QMimeData *source)
{
    return source &&
        (source->hasFormat(QString::fromLatin1(MimeType)) || source->hasHtml() ||
         source->hasText());
}

namespace {

bool PasteOwn(RichDocument &doc, QTextCursor &cursor, const QByteArray &payload)
{
    QDataStream in(payload);
    in.setVersion(QDataStream::Qt_6_0);
    quint32 magic = 0;
    in >> magic;
    TRVStyle source;
    QByteArray body;
    if (magic != PayloadMagic || !ReadStyle(in, source))
        return false;
    in >> body;
    if (in.status() != QDataStream::Ok)
        return false;
    RichBody::ContentPtr content;
    try {
        content =
            RichBody::Parse(body, int(source.TextStyles.size()), int(source.ParaStyles.size()));
    } catch (const Exception &) {
        return false;
    }
    // The source's styles become the same-looking styles of this sheet.
    QList<int> textMap, paraMap;
    for (const TFontInfo &info : source.TextStyles)
        textMap.append(doc.FindOrAddTextStyle(info));
    for (const TParaInfo &info : source.ParaStyles)
        paraMap.append(doc.FindOrAddParaStyle(info));
    cursor.beginEditBlock();
    RichBody::Insert(doc, cursor, *content, textMap, paraMap);
    cursor.endEditBlock();
    return true;
}

} // namespace

void Paste(RichDocument &doc, QTextCursor &cursor, const QMimeData *source)
{
    if (!source)
        return;
    if (source->hasFormat(QString::fromLatin1(MimeType)) &&
        PasteOwn(doc, cursor, source->data(QString::fromLatin1(MimeType))))
        return;
    if (source->hasHtml()) {
        QTextDocument foreign;
        foreign.setHtml(source->html());
        const RichBody::ContentPtr content = RichBody::FromForeign(foreign, doc);
        cursor.beginEditBlock();
        RichBody::Insert(doc, cursor, *content);
        cursor.endEditBlock();
        return;
    }
    PasteText(doc, cursor, source);
}

void PasteText(RichDocument &doc, QTextCursor &cursor, const QMimeData *source)
{
    if (source && source->hasText()) {
        cursor.beginEditBlock();
        if (cursor.hasSelection())
            cursor.removeSelectedText();
        doc.InsertText(cursor, source->text());
        cursor.endEditBlock();
    }
}

} // namespace oxa::RichClipboard
