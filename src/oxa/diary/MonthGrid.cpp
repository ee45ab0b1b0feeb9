#include "oxa/diary/MonthGrid_p.h"

#include "oxa/toolkit/GeometryScale.h"

#include <QCursor>
#include <QFont>
#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace oxa {

namespace {

constexpr int kRowCount = TMonthGridPrivate::kRowCount;
constexpr int kHintDelayMs = 250;
constexpr int kHintLifeMs = 4000;
// Working hours are stored as fractions of a day; an hour boundary may come
// out a hair below the whole slot, far less than one millisecond.
constexpr double kSlotEpsilon = 1e-7;

const QString kLineBreak = QStringLiteral("\r\n");

int PositiveMod(int value, int divisor)
{
    return (value % divisor + divisor) % divisor;
}

int ColumnWidthFor(int aDilekMinut)
{
    return aDilekMinut == 20 ? 12 : 9;
}

int CheckedSlotMinutes(int aDilekMinut)
{
    if (aDilekMinut < 1 || aDilekMinut > 60)
        throw EInvalidOperation(
            QStringLiteral("Neplatná délka časového dílku: %1 minut").arg(aDilekMinut));
    return aDilekMinut;
}

void AppendTwoDigits(QString &text, int value)
{
    text += QChar(u'0' + value / 10);
    text += QChar(u'0' + value % 10);
}

// "hh:mm" of a time of day already cut to whole minutes (not negative).
void AppendHhMm(QString &text, TTime aCas)
{
    const int minutes = int(std::lround((aCas - std::floor(aCas)) * 1440)) % 1440;
    AppendTwoDigits(text, minutes / 60);
    text += u':';
    AppendTwoDigits(text, minutes % 60);
}

// An entry's hint line: "AB  08:00-08:30 Kontakt: Popis"; a and b are its
// times cut to whole minutes.
QString HintLine(const TDayRecord &aZaznam, TTime a, TTime b)
{
    const QString kontakt = aZaznam.KONTAKT.trimmed();
    const QString popis = aZaznam.Popis.Text().trimmed();
    QString line;
    line.reserve(aZaznam.Parafa.Length() + 15 + kontakt.size() + popis.size());
    line += aZaznam.Parafa.Text();
    line += QLatin1String("  ");
    AppendHhMm(line, a);
    line += u'-';
    AppendHhMm(line, b);
    line += u' ';
    if (!kontakt.isEmpty() && !popis.isEmpty()) {
        line += kontakt;
        line += QLatin1String(": ");
        line += popis;
    } else {
        line += kontakt.isEmpty() ? popis : kontakt;
    }
    return line;
}

struct TMonthInfo
{
    int rok = 0;
    int mesic = 0;
    int den = 0;
    int dnu = 0;
    TDate prvni = 0; // the first day of the month
};

TMonthInfo MonthOf(TDate aDatum)
{
    TMonthInfo info;
    DecodeDate(aDatum, info.rok, info.mesic, info.den);
    info.dnu = DaysInAMonth(info.rok, info.mesic);
    info.prvni = DateOf(aDatum) - (info.den - 1);
    return info;
}

// The holiday name of day aDen when Easter Monday of the month's year is given.
QString HolidayName(int aDen, int aMesic, TDate aVelikonoce)
{
    for (const TSvatek &svatek : Svatky) {
        if (svatek.Den == aDen && svatek.Mesic == aMesic)
            return QString::fromUtf8(svatek.Text);
    }
    int rok = 0, mesic = 0, den = 0;
    DecodeDate(aVelikonoce, rok, mesic, den);
    if (den == aDen && mesic == aMesic)
        return QStringLiteral("Velikonoce");
    DecodeDate(IncDay(aVelikonoce, -3), rok, mesic, den);
    if (den == aDen && mesic == aMesic)
        return QStringLiteral("Velký pátek");
    return {};
}

} // namespace

const std::array<TSvatek, 11> Svatky{{
    {1, 1, "(01.01.) Nový rok"},
    {1, 5, "(01.05.) Svátek práce"},
    {8, 5, "(08.05.) Den vítezství"},
    {5, 7, "(05.07.) Den slovanských věrozvěstů Cyrila a Metoděje"},
    {6, 7, "(06.07.) Den upálení mistra Jana Husa"},
    {28, 9, "(28.09.) Den české státnosti"},
    {28, 10, "(28.10.) Den vzniku samostatného československého státu"},
    {17, 11, "(17.11.) Den boje za svobodu a demokracii"},
    {24, 12, "(24.12.) Štedrý den"},
    {25, 12, "(25.12.) 1. svátek vánocní"},
    {26, 12, "(26.12.) 2. svátek vánocní"},
}};

TDate VelikonocniPondeli(int aRok)
{
    const int a = PositiveMod(aRok, 19);
    const int b = PositiveMod(aRok, 4);
    const int c = PositiveMod(aRok, 7);
    const int d = (19 * a + 24) % 30;
    const int e = (2 * b + 4 * c + 6 * d + 5) % 7;
    const int D = d + e - 9;
    TDate nedele = 0;
    if (D == 25 && d == 28 && e == 6 && a > 10)
        nedele = EncodeDate(aRok, 4, 18);
    else if (D >= 1 && D <= 25)
        nedele = EncodeDate(aRok, 4, D);
    else if (D < 1)
        nedele = EncodeDate(aRok, 3, d + e + 22);
    else
        nedele = EncodeDate(aRok, 4, 19);
    return IncDay(nedele, 1);
}

QString NazevSvatku(TDate aDatum)
{
    int rok = 0, mesic = 0, den = 0;
    DecodeDate(aDatum, rok, mesic, den);
    return HolidayName(den, mesic, VelikonocniPondeli(rok));
}

// --- TMonthGrid ----------------------------------------------------------------

TMonthGridPrivate::TMonthGridPrivate(TMonthGrid *q, int aDilekMinut)
    : q(q), fDILKY_MINUTA(CheckedSlotMinutes(aDilekMinut)), fDILKY_HODINY(60 / aDilekMinut),
      fDILKY_HODINY_DEN(fDILKY_HODINY * 24)
{ }

void TMonthGridPrivate::ApplyGeometryScale()
{
    q->SetDefaultColWidth(ScalePixels(ColumnWidthFor(fDILKY_MINUTA)));
    q->SetDefaultRowHeight(ScalePixels(13));
    q->SetColWidths(0, ScalePixels(35));
    q->SetRowHeights(0, ScalePixels(14));
    // The cells were sized for 8-point Arial; the font grows with them.
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(8 * TGeometryScale::Instance()->Factor());
    q->setFont(font);
}

TMonthGrid::TMonthGrid(QWidget *AOwner, int aDilekMinut)
    : TDrawGrid(AOwner), d(std::make_unique<TMonthGridPrivate>(this, aDilekMinut))
{
    // The cells draw their own lines.
    SetOptions(TGridOptions(goRangeSelect | goThumbTracking));
    SetGridLineWidth(0);
    SetDefaultDrawing(false);
    SetRowCount(kRowCount);
    SetColCount(d->fDILKY_HODINY_DEN + 1);
    SetFixedRows(1);
    SetFixedCols(1);
    d->ApplyGeometryScale();
    connect(TGeometryScale::Instance(), &TGeometryScale::factorChanged, this,
            [this] { d->ApplyGeometryScale(); });

    d->fCellCols = ColCount();
    d->fDataPaint.resize(std::size_t(kRowCount * d->fCellCols));

    d->FHintTimer = new QTimer(this);
    d->FHintTimer->setSingleShot(true);
    connect(d->FHintTimer, &QTimer::timeout, this, [this] { OnHintTimer(); });
}

TMonthGrid::~TMonthGrid() = default;

TDate TMonthGrid::Datum() const
{
    return d->FDatum;
}

void TMonthGrid::StoreDatum(TDate Value)
{
    d->FDatum = Value;
}

int TMonthGrid::CasOd() const
{
    return d->FCasOd;
}

TMonthArray *TMonthGrid::Zaznamy() const
{
    return d->FZaznamy;
}

void TMonthGrid::SetZaznamy(TMonthArray *Value)
{
    if (Value == d->FZaznamy)
        return;
    d->FZaznamy = Value;
    Q_EMIT zaznamyChanged(Value);
}

int TMonthGrid::dilkyMinuta() const
{
    return d->fDILKY_MINUTA;
}

int TMonthGrid::dilkyHodiny() const
{
    return d->fDILKY_HODINY;
}

int TMonthGrid::dilkyHodinyDen() const
{
    return d->fDILKY_HODINY_DEN;
}

const TDiarNastaveni &TMonthGrid::DiarNastaveni() const
{
    return d->fDiarNastaveni;
}

TTime TMonthGrid::SlotStartTime(int ACol) const
{
    return double(ACol - 1) / d->fDILKY_HODINY_DEN;
}

TTime TMonthGrid::SlotEndTime(int ACol) const
{
    return double(ACol) / d->fDILKY_HODINY_DEN;
}

TDate TMonthGrid::MouseDownDatum() const
{
    return d->FMouseDownDatum;
}

bool TMonthGrid::HintActive() const
{
    return d->FHintActive;
}

QLabel *TMonthGrid::HintWindow() const
{
    return d->FHintWindow;
}

int TMonthGrid::MouseRow() const
{
    return d->FMouseRow;
}

int TMonthGrid::MouseCol() const
{
    return d->FMouseCol;
}

const TMonthGridStyle &TMonthGrid::Style() const
{
    return d->FStyle;
}

void TMonthGrid::SetDatum(TDate Value)
{
    if (Value == d->FDatum)
        return;
    d->FDatum = Value;
    const TMonthInfo month = MonthOf(Value);
    SetRowCount(month.dnu + 1);
    // Moved without SelectCell and Click: the host set the date itself.
    const int col = Col();
    SetSelection(TGridRect{col, month.den, col, month.den});
    ClampInView(col, month.den);
    InvalidateGrid();
    Q_EMIT datumChanged(Value);
}

void TMonthGrid::SetCasOd(int Value)
{
    const bool changed = Value != d->FCasOd;
    d->FCasOd = Value;
    const int col = std::clamp(Value * d->fDILKY_HODINY + 1, FixedCols(), ColCount() - 1);
    SetLeftCol(col);
    const int row = Row();
    SetSelection(TGridRect{col, row, col, row});
    if (changed)
        Q_EMIT casOdChanged(Value);
}

void TMonthGrid::SetDiarNastaveni(const TDiarNastaveni &aDiarNastaveni)
{
    d->fDiarNastaveni = aDiarNastaveni;
}

const TMonthGridCell &TMonthGrid::DataPaint(int ARow, int ACol) const
{
    if (ARow < 0 || ARow >= kRowCount || ACol < 0 || ACol >= d->fCellCols)
        throw EInvalidGridOperation(
            QStringLiteral("Buňka (%1, %2) mimo mřížku").arg(ACol).arg(ARow));
    return d->fDataPaint[std::size_t(ARow * d->fCellCols + ACol)];
}

int TMonthGrid::SlotColumn(TTime aCas) const
{
    int hour = 0, minute = 0, second = 0, msec = 0;
    DecodeTime(aCas, hour, minute, second, msec);
    const int col = (hour * 60 + minute) * d->fDILKY_HODINY / 60 + 1;
    return std::clamp(col, 1, d->fDILKY_HODINY_DEN);
}

TDate TMonthGrid::DatumRadku(int ARow) const
{
    int rok = 0, mesic = 0, den = 0;
    DecodeDate(d->FDatum, rok, mesic, den);
    return DateOf(d->FDatum) + (ARow - den);
}

// --- preparing the cells -------------------------------------------------------

void TMonthGrid::InitVykreslovani(int aDen)
{
    const TMonthInfo month = MonthOf(d->FDatum);
    const int lastRow = std::min(month.dnu, kRowCount - 1);
    int first = 1;
    int last = lastRow;
    if (aDen >= 0) {
        first = aDen;
        last = std::min(aDen, lastRow);
    } else {
        // Rows past the month's end are not shown; they keep nothing.
        for (int r = lastRow + 1; r < kRowCount; ++r)
            d->ClearRow(r, QString(), false);
    }
    if (first < 1 || first > last)
        return;

    const TDate velikonoce = VelikonocniPondeli(month.rok);
    for (int r = first; r <= last; ++r) {
        const TDate datum = month.prvni + (r - 1);
        const int tyden = DayOfTheWeek(datum);
        d->ClearRow(r, HolidayName(r, month.mesic, velikonoce), tyden >= 6);
        d->MarkEntries(r);
        const TPracDoba &pracDoba = WeekOf(datum) % 2 == 1 ? d->fDiarNastaveni.pracDobaLichy
                                                           : d->fDiarNastaveni.pracDobaSudy;
        d->MarkHours(r, pracDoba[tyden], d->fDiarNastaveni.barvaPracDoba);
        // Booking hours come after the working hours and take their place.
        for (const TPracDobaCas &interval : d->fDiarNastaveni.objednaniKLekari[tyden])
            d->MarkHours(r, interval, d->fDiarNastaveni.barvaObjednaniKLekari);
    }

    for (const TDovolena &dovolena : d->fDiarNastaveni.dovolena)
        d->MarkLeave(dovolena, first, last);
}

// Leave covers its days in this month: from its start time on its first day
// and up to its end time on its last day; a leave that began in an earlier
// month (or ends in a later one) covers the first (last) day of this one
// whole. Each covered cell gains the leave's note as a hint line.
void TMonthGridPrivate::MarkLeave(const TDovolena &aDovolena, int aFirst, int aLast)
{
    const TMonthInfo month = MonthOf(FDatum);
    const TDate konecMesice = month.prvni + (month.dnu - 1);
    const TDate od = DateOf(aDovolena.DatumOd);
    const TDate doDne = DateOf(aDovolena.DatumDo);
    if (od > konecMesice || doDne < month.prvni || doDne < od)
        return;
    const bool zacinaVMesici = od >= month.prvni;
    const bool konciVMesici = doDne <= konecMesice;
    const int prvniDen = zacinaVMesici ? int(od - month.prvni) + 1 : 1;
    const int posledniDen = konciVMesici ? int(doDne - month.prvni) + 1 : month.dnu;
    const int firstCol = zacinaVMesici ? std::max(SlotsBefore(aDovolena.CasOd) + 1, 1) : 1;
    const int lastCol = konciVMesici ? std::min(SlotsBefore(aDovolena.CasDo), fDILKY_HODINY_DEN)
                                     : fDILKY_HODINY_DEN;
    const QString line = aDovolena.Poznamka.IsEmpty()
        ? QString()
        : QStringLiteral("Dovolená: ") + aDovolena.Poznamka.Text();
    const QString lineAlone = line.trimmed();
    const TColor barva = aDovolena.BarvaIsSet ? aDovolena.Barva : fDiarNastaveni.barvaDovol;
    for (int r = std::max(aFirst, prvniDen); r <= std::min(aLast, posledniDen); ++r) {
        const int from = r == prvniDen ? firstCol : 1;
        const int to = r == posledniDen ? lastCol : fDILKY_HODINY_DEN;
        for (int c = from; c <= to; ++c) {
            TMonthGridCell &cell = Cell(r, c);
            cell.dovolena = true;
            cell.barva = barva;
            if (line.isEmpty())
                continue;
            if (cell.hint.isEmpty())
                cell.hint = lineAlone;
            else
                cell.hint = (cell.hint + kLineBreak + line).trimmed();
        }
    }
}

void TMonthGridPrivate::ClearRow(int ARow, const QString &aSvatek, bool aVikend)
{
    for (int c = 0; c < fCellCols; ++c) {
        TMonthGridCell &cell = Cell(ARow, c);
        cell = TMonthGridCell();
        cell.svatek = !aSvatek.isEmpty();
        cell.hint = aSvatek;
        cell.vikend = aVikend;
    }
}

// Every entry of the day marks the slots it meets, in the day's order: the
// first one found gives a slot its privacy and completion, each one adds its
// hint line. Only the columns around the entry's span are tested, and each
// hint is built in one piece once all its lines are known.
void TMonthGridPrivate::MarkEntries(int ARow)
{
    if (!FZaznamy)
        return;
    const TDayRecordArray zaznamy = FZaznamy->GetDayRecordArray(ARow, true);
    if (zaznamy.empty())
        return;

    std::vector<QString> lines;
    lines.reserve(zaznamy.size());
    fHits.clear();
    const double n = fDILKY_HODINY_DEN;
    for (const TDayRecord &zaznam : zaznamy) {
        const TTime a = TruncToMinutes(zaznam.CasOd);
        const TTime b = TruncToMinutes(zaznam.CasDo);
        if (a < 0 || b < 0 || b < a)
            continue;
        const int from = std::max(1, int(std::floor(a * n)));
        const int to = std::min(fDILKY_HODINY_DEN, int(std::ceil(b * n)) + 1);
        bool met = false;
        for (int c = from; c <= to; ++c) {
            if (!MinutesMeetSpan(a, b, q->SlotStartTime(c), q->SlotEndTime(c)))
                continue;
            if (!met) {
                met = true;
                lines.push_back(HintLine(zaznam, a, b));
            }
            fHits.push_back({c, int(lines.size()) - 1, &zaznam});
        }
    }
    SortHitsByColumn();

    std::vector<QString> trimmed(lines.size());
    for (auto it = fHits.begin(); it != fHits.end();) {
        const auto groupEnd =
            std::find_if(it, fHits.end(), [c = it->col](const THit &h) { return h.col != c; });
        TMonthGridCell &cell = Cell(ARow, it->col);
        cell.zaznam = true;
        cell.soukrom = it->zaznam->Soukrome;
        cell.splneno = it->zaznam->SPLNENO;
        if (groupEnd - it == 1) {
            QString &alone = trimmed[std::size_t(it->line)];
            if (alone.isNull())
                alone = lines[std::size_t(it->line)].trimmed();
            cell.hint = alone;
        } else {
            cell.hint = JoinTrimmed(lines, it, groupEnd);
        }
        it = groupEnd;
    }
}

// Orders the hits by column, keeping the day's order within a column (a
// counting sort on buffers that are kept between days).
void TMonthGridPrivate::SortHitsByColumn()
{
    fColumnStarts.assign(std::size_t(fCellCols) + 1, 0);
    for (const THit &hit : fHits)
        ++fColumnStarts[std::size_t(hit.col) + 1];
    for (std::size_t c = 1; c < fColumnStarts.size(); ++c)
        fColumnStarts[c] += fColumnStarts[c - 1];
    fSortedHits.resize(fHits.size());
    for (const THit &hit : fHits)
        fSortedHits[std::size_t(fColumnStarts[std::size_t(hit.col)]++)] = hit;
    fHits.swap(fSortedHits);
}

// The lines joined by line breaks and trimmed as a whole, in one allocation.
// Every line holds its times, so trimming never reaches past the first or
// the last line.
QString TMonthGridPrivate::JoinTrimmed(const std::vector<QString> &lines,
                                       std::vector<THit>::const_iterator from,
                                       std::vector<THit>::const_iterator to)
{
    qsizetype length = 0;
    for (auto it = from; it != to; ++it)
        length += lines[std::size_t(it->line)].size() + kLineBreak.size();
    QString hint;
    hint.reserve(length);
    for (auto it = from; it != to; ++it) {
        QStringView line = lines[std::size_t(it->line)];
        if (it == from) {
            while (!line.isEmpty() && line.front().isSpace())
                line = line.sliced(1);
        } else {
            hint += kLineBreak;
        }
        if (it + 1 == to) {
            while (!line.isEmpty() && line.back().isSpace())
                line.chop(1);
        }
        hint += line;
    }
    return hint;
}

// The whole slots that fit before a configured time: trunc(slots per day x
// time), kept from coming out one short by the time's rounding.
int TMonthGridPrivate::SlotsBefore(TTime aCas) const
{
    return int(std::floor(aCas * fDILKY_HODINY_DEN + kSlotEpsilon));
}

void TMonthGridPrivate::MarkHours(int ARow, const TPracDobaCas &aCas, TColor aBarva)
{
    const auto mark = [this, ARow, aBarva](TTime od, TTime doCasu) {
        if (!(od < doCasu))
            return;
        const int from = std::max(1, SlotsBefore(od) + 1);
        const int to = std::min(fDILKY_HODINY_DEN, SlotsBefore(doCasu));
        for (int c = from; c <= to; ++c) {
            TMonthGridCell &cell = Cell(ARow, c);
            cell.pracDoba = true;
            cell.barva = aBarva;
        }
    };
    mark(aCas.CasOd, aCas.CasDo);
    mark(aCas.CasOd1, aCas.CasDo1);
}

// --- questions about a cell ----------------------------------------------------

bool TMonthGrid::ExistujeZaznam(int ARow, int ACol, TColor &Color, int &Splneno) const
{
    if (!d->FZaznamy)
        return false;
    const QList<PDayRecord> found =
        d->FZaznamy->FindDayRecord(ARow, SlotStartTime(ACol), SlotEndTime(ACol));
    if (found.isEmpty())
        return false;
    Color = BarvaSchuzkyMonth[found.first()->Soukrome];
    Splneno = found.first()->SPLNENO;
    return true;
}

// A slot boundary cut to whole minutes; as an end, midnight is 23:59.
TTime TMonthGridPrivate::CutSlotTime(double aSlot) const
{
    TTime t = TimeOf(TruncToMinutes(aSlot / fDILKY_HODINY_DEN));
    if (aSlot > 0 && t == 0)
        t = EncodeTime(23, 59, 0);
    return t;
}

bool TMonthGrid::ExistujeKonfigZaznam(int ARow, int ACol, TColor &Color) const
{
    // Without leave nothing is reported, not even the working hours.
    if (d->fDiarNastaveni.dovolena.isEmpty())
        return false;
    const TTime s = d->CutSlotTime(ACol - 1);
    const TTime e = d->CutSlotTime(ACol);
    const TMonthInfo month = MonthOf(d->FDatum);
    const TDate D = month.prvni + (ARow - 1);
    const TTime konecDne = EncodeTime(23, 59, 0);

    for (const TDovolena &dovolena : d->fDiarNastaveni.dovolena) {
        const TDate F = DateOf(dovolena.DatumOd);
        const TDate T = DateOf(dovolena.DatumDo);
        bool leave = false;
        if (F < D && D < T)
            leave = true;
        else if (F == D && T != D)
            leave = dovolena.CasOd < e && konecDne > s;
        else if (F != D && T == D)
            leave = 0.0 < e && dovolena.CasDo > s;
        else if (F == D && T == D)
            leave = dovolena.CasOd < e && dovolena.CasDo > s;
        if (leave) {
            Color = d->fDiarNastaveni.barvaDovol;
            return true;
        }
    }

    const TPracDoba &pracDoba =
        WeekOf(D) % 2 == 1 ? d->fDiarNastaveni.pracDobaLichy : d->fDiarNastaveni.pracDobaSudy;
    const TPracDobaCas &hodiny = pracDoba[DayOfTheWeek(D)];
    if (hodiny.CasOd < e && hodiny.CasDo > s) {
        Color = d->fDiarNastaveni.barvaPracDoba;
        return true;
    }
    Color = clWhite;
    return false;
}

// --- selection -----------------------------------------------------------------

TTime TMonthGrid::GetSelCellStartTime() const
{
    return d->CutSlotTime(Selection().Left - 1);
}

TTime TMonthGrid::GetSelCellEndTime() const
{
    return d->CutSlotTime(Selection().Right);
}

void TMonthGrid::setSelectedCell(int startCol, int stopCol)
{
    const int last = ColCount() - 1;
    const int row = Row();
    SetSelection(GridRect({std::clamp(startCol, FixedCols(), last), row},
                          {std::clamp(stopCol, FixedCols(), last), row}));
}

void TMonthGrid::AktivujCas(TTime aCas)
{
    const int col = std::min(SlotColumn(aCas), ColCount() - 1);
    const int row = Row();
    SetSelection(TGridRect{col, row, col, row});
    ClampInView(col, row);
}

void TMonthGrid::PrekresliUdaj(TTime CasOd, TTime CasDo)
{
    const int row = Row();
    InvalidateRect(GridRect({SlotColumn(CasOd), row}, {SlotColumn(CasDo), row}));
}

bool TMonthGrid::SelectCell(int ACol, int ARow)
{
    const TDate oldDatum = d->FDatum;
    const TDate datum = ARow >= FixedRows() ? DatumRadku(ARow) : oldDatum;
    const bool newDay = !SameDate(datum, oldDatum);
    if (newDay)
        d->FDatum = datum;
    if (!TDrawGrid::SelectCell(ACol, ARow)) {
        d->FDatum = oldDatum;
        return false;
    }
    if (newDay && SameDate(d->FDatum, datum))
        Q_EMIT datumChanged(d->FDatum);
    return true;
}

void TMonthGrid::SelectionMoved(const TGridRect &OldSel, TGridCoord OldCurrent)
{
    TDrawGrid::SelectionMoved(OldSel, OldCurrent);
    // The current row is outlined across the whole grid.
    if (OldCurrent.Y != Row()) {
        InvalidateRow(OldCurrent.Y);
        InvalidateRow(Row());
    }
}

// --- mouse and hint ------------------------------------------------------------

bool TMonthGrid::IsMouseOk() const
{
    const QPoint p = viewport()->mapFromGlobal(QCursor::pos());
    int col = -1, row = -1, mouseCol = -1, mouseRow = -1;
    MouseToCell(p.x(), p.y(), col, row);
    MouseToCell(d->FMouseX, d->FMouseY, mouseCol, mouseRow);
    return col >= 0 && row >= 0 && col == mouseCol && row == mouseRow;
}

void TMonthGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    HideHint();
    int col = -1, row = -1;
    MouseToCell(X, Y, col, row);
    if (row >= FixedRows())
        d->FMouseDownDatum = DatumRadku(row);
    TDrawGrid::MouseDown(Button, Shift, X, Y);
}

void TMonthGrid::MouseMove(TShiftState Shift, int X, int Y)
{
    d->FMouseX = X;
    d->FMouseY = Y;
    int col = -1, row = -1;
    MouseToCell(X, Y, col, row);
    if (row >= FixedRows())
        row = DataRowOf(row);
    if (col != d->FMouseCol || row != d->FMouseRow) {
        HideHint();
        d->FMouseCol = col;
        d->FMouseRow = row;
        if (col >= 0 && row >= 0)
            d->FHintTimer->start(kHintDelayMs);
    }
    TDrawGrid::MouseMove(Shift, X, Y);
}

void TMonthGrid::MouseLeave()
{
    HideHint();
    d->FMouseCol = -1;
    d->FMouseRow = -1;
    TDrawGrid::MouseLeave();
}

void TMonthGrid::hideEvent(QHideEvent *event)
{
    HideHint();
    TDrawGrid::hideEvent(event);
}

void TMonthGrid::OnHintTimer()
{
    if (d->FHintActive) {
        HideHint();
        return;
    }
    if (d->FMouseRow < 1 || d->FMouseRow >= kRowCount || d->FMouseCol < 0 ||
        d->FMouseCol >= d->fCellCols)
        return;
    const QString &hint = d->Cell(d->FMouseRow, d->FMouseCol).hint;
    if (hint.isEmpty())
        return;
    d->FHintText = hint;
    ShowHint();
    d->FHintActive = true;
    d->FHintTimer->start(kHintLifeMs);
}

void TMonthGrid::ShowHint()
{
    if (!d->FHintWindow) {
        d->FHintWindow = new QLabel(this, Qt::ToolTip);
        d->FHintWindow->setTextFormat(Qt::PlainText);
        d->FHintWindow->setFrameStyle(QFrame::Box | QFrame::Plain);
        d->FHintWindow->setMargin(2);
        d->FHintWindow->setAutoFillBackground(true);
        QPalette palette = d->FHintWindow->palette();
        palette.setColor(QPalette::Window, ColorToQColor(clInfoBk, this));
        palette.setColor(QPalette::WindowText, ColorToQColor(clInfoText, this));
        d->FHintWindow->setPalette(palette);
    }
    d->FHintWindow->setText(QString(d->FHintText).replace(kLineBreak, QStringLiteral("\n")));
    d->FHintWindow->adjustSize();

    // Below the mouse pointer, moved left where it would leave the screen;
    // placed once shown, when the window frame is known.
    d->FHintWindow->show();
    QPoint pos = viewport()->mapToGlobal(QPoint(d->FMouseX, d->FMouseY + 18));
    if (const QScreen *scr = screen()) {
        const QRect area = scr->availableGeometry();
        const int width = d->FHintWindow->frameGeometry().width();
        pos.setX(std::max(area.left(), std::min(pos.x(), area.right() + 1 - width)));
    }
    d->FHintWindow->move(pos);
}

void TMonthGrid::HideHint()
{
    d->FHintTimer->stop();
    if (d->FHintWindow)
        d->FHintWindow->hide();
    d->FHintActive = false;
    d->FHintText.clear();
}

QString TMonthGrid::HintText() const
{
    return d->FHintText;
}

// --- drawing -------------------------------------------------------------------

QColor TMonthGrid::SettingsColor(TColor Color) const
{
    return ColorToQColor(Color, this);
}

void TMonthGrid::paintEvent(QPaintEvent *event)
{
    d->FStyle.white = QColor(0xFF, 0xFF, 0xFF);
    d->FStyle.highlight = ColorToQColor(clHighlight, this);
    d->FStyle.silver = QColor(0xC0, 0xC0, 0xC0);
    d->FStyle.black = QColor(0, 0, 0);
    d->FStyle.rowOutline = ColorToQColor(0x1389CD);
    d->FStyle.dotted = QPen(QColor(0x80, 0x80, 0x80), 0, Qt::DotLine);
    d->FStyle.hourTextWidth = QFontMetrics(font()).horizontalAdvance(QStringLiteral(" 00:00")) + 2;
    TDrawGrid::paintEvent(event);
}

QColor TMonthGrid::CellBackground(int ACol, int ARow) const
{
    if (ARow == 0)
        return d->FStyle.white;
    const TGridRect sel = Selection();
    if (sel.Top == sel.Bottom && sel.Top == ARow && ACol >= sel.Left && ACol <= sel.Right)
        return d->FStyle.highlight;
    if (ARow >= kRowCount || ACol >= d->fCellCols)
        return d->FStyle.white;
    const TMonthGridCell &cell = d->fDataPaint[std::size_t(ARow * d->fCellCols + ACol)];
    if (ACol >= FixedCols()) {
        if (cell.zaznam)
            return SettingsColor(BarvaSchuzkyMonth[cell.soukrom]);
        if (cell.svatek)
            return SettingsColor(d->fDiarNastaveni.barvaSvatek);
        if (cell.dovolena || cell.pracDoba)
            return SettingsColor(cell.barva);
    }
    if (cell.vikend)
        return SettingsColor(d->fDiarNastaveni.barvaSoNe);
    return d->FStyle.white;
}

void TMonthGrid::FillCell(const QRect &Rect, const QColor &Background)
{
    // Lines and texts set their own pens.
    Canvas()->fillRect(Rect, Background);
}

void TMonthGrid::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    Q_UNUSED(State);
    FillCell(Rect, CellBackground(ACol, ARow));
    if (ARow == 0 || ACol == 0) {
        DrawCellTexts(ACol, ARow, Rect, ARow > 0 ? DatumRadku(ARow) : d->FDatum);
    } else {
        const bool splneno = ARow < kRowCount && ACol < d->fCellCols &&
            d->fDataPaint[std::size_t(ARow * d->fCellCols + ACol)].splneno == 100;
        DrawDataLines(ACol, Rect, splneno);
    }
    DrawEdges(ACol, ARow, Rect);
}

void TMonthGrid::DrawCellTexts(int ACol, int ARow, const QRect &Rect, TDate aDen)
{
    QPainter *canvas = Canvas();
    canvas->setPen(d->FStyle.black);
    if (ARow == 0 && ACol == 0) {
        canvas->drawText(Rect.adjusted(1, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         FormatDateTime(QStringLiteral("mmm\"/\"yy"), d->FDatum));
        return;
    }
    if (ACol == 0) {
        int rok = 0, mesic = 0, den = 0;
        DecodeDate(aDen, rok, mesic, den);
        canvas->drawText(Rect, Qt::AlignLeft | Qt::AlignVCenter, ShortDayName(DayOfWeek(aDen)));
        canvas->drawText(Rect, Qt::AlignRight | Qt::AlignVCenter | Qt::TextIncludeTrailingSpaces,
                         QString::number(den) + QLatin1String(". "));
        canvas->fillRect(Rect.left(), Rect.bottom(), Rect.width(), 1, d->FStyle.silver);
        return;
    }
    // The hour's label spans all of its slots; each slot shows its part.
    const int slot = (ACol - 1) % d->fDILKY_HODINY;
    const int width = Rect.width();
    if (slot * width < d->FStyle.hourTextWidth) {
        const QRect hour(Rect.left() - slot * width, Rect.top(), d->fDILKY_HODINY * width,
                         Rect.height());
        canvas->setClipRect(Rect);
        canvas->drawText(hour, Qt::AlignLeft | Qt::AlignVCenter,
                         QLatin1Char(' ') + QString::number((ACol - 1) / d->fDILKY_HODINY) +
                             QLatin1String(":00"));
        canvas->setClipping(false);
    }
    canvas->fillRect(Rect.left(), Rect.bottom(), Rect.width(), 1, d->FStyle.black);
}

void TMonthGrid::DrawDataLines(int ACol, const QRect &Rect, bool Splneno)
{
    QPainter *canvas = Canvas();
    if (Splneno) {
        canvas->setPen(d->FStyle.black);
        canvas->drawLine(Rect.topLeft(), Rect.bottomRight());
    }
    canvas->fillRect(Rect.left(), Rect.top(), Rect.width(), 1, d->FStyle.silver);
    const int halfHour = d->fDILKY_HODINY / 2;
    if ((ACol - 1) % d->fDILKY_HODINY == 0) {
        canvas->fillRect(Rect.left(), Rect.top(), 1, Rect.height(), d->FStyle.black);
    } else if (halfHour > 0 && (ACol - 1) % halfHour == 0) {
        canvas->fillRect(Rect.left(), Rect.top(), 1, Rect.height(), d->FStyle.silver);
        canvas->setPen(d->FStyle.dotted);
        canvas->drawLine(Rect.left(), Rect.top(), Rect.left(), Rect.bottom());
    } else {
        canvas->fillRect(Rect.left(), Rect.top(), 1, Rect.height(), d->FStyle.silver);
    }
}

void TMonthGrid::DrawEdges(int ACol, int ARow, const QRect &Rect)
{
    QPainter *canvas = Canvas();
    if (ARow == RowCount() - 1)
        canvas->fillRect(Rect.left(), Rect.bottom(), Rect.width(), 1, d->FStyle.silver);
    if (ACol == ColCount() - 1)
        canvas->fillRect(Rect.right(), Rect.top(), 1, Rect.height(), d->FStyle.silver);
    if (ARow == Row()) {
        canvas->fillRect(Rect.left(), Rect.top(), Rect.width(), 1, d->FStyle.rowOutline);
        canvas->fillRect(Rect.left(), Rect.bottom(), Rect.width(), 1, d->FStyle.rowOutline);
    }
}

// --- TDayGrid --------------------------------------------------------------------

TDayGrid::TDayGrid(QWidget *AOwner, int aDilekMinut)
    : TMonthGrid(AOwner, aDilekMinut), d(std::make_unique<TDayGridPrivate>())
{
    SetRowCount(2);
    const int col = Col();
    SetSelection(TGridRect{col, 1, col, 1});
}

TDayGrid::~TDayGrid() = default;

int TDayGrid::SelColFrom() const
{
    return d->FSelColFrom;
}

int TDayGrid::SelColTo() const
{
    return d->FSelColTo;
}

void TDayGrid::SetDatum(TDate Value)
{
    if (Value == Datum())
        return;
    StoreDatum(Value);
    InvalidateGrid();
    Q_EMIT datumChanged(Value);
}

TDate TDayGrid::DatumRadku(int ARow) const
{
    Q_UNUSED(ARow);
    return DateOf(Datum());
}

int TDayGrid::DataRowOf(int ARow) const
{
    Q_UNUSED(ARow);
    int rok = 0, mesic = 0, den = 0;
    DecodeDate(Datum(), rok, mesic, den);
    return den;
}

int TDayGrid::GetSelectionStartCell() const
{
    return Selection().Left - 1;
}

int TDayGrid::GetSelectionEndCell() const
{
    return Selection().Right;
}

TTime TDayGrid::GetSelectionStartTime() const
{
    return double(Selection().Left - 1) / dilkyHodinyDen();
}

TTime TDayGrid::GetSelectionEndTime() const
{
    const TTime t = double(Selection().Right) / (dilkyHodiny() * 24);
    int hour = 0, minute = 0, second = 0, msec = 0;
    DecodeTime(t, hour, minute, second, msec);
    if (hour == 0 && minute == 0)
        return EncodeTime(23, 59, 0);
    return t;
}

void TDayGrid::setSelectionStartTime(TTime startTime, TTime stopTime)
{
    // std::rint rounds halves to the even neighbour. The end uses the slots
    // per hour, not per day: kept as the diary has always computed it.
    d->FSelColFrom = int(std::rint(dilkyHodinyDen() * startTime)) + 1;
    d->FSelColTo = int(std::rint(dilkyHodiny() * stopTime));
}

void TDayGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    if (X < ColWidths(0))
        return;
    TMonthGrid::MouseDown(Button, Shift, X, Y);
}

void TDayGrid::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    Q_UNUSED(State);
    const TDate datum = DateOf(Datum());
    int rok = 0, mesic = 0, den = 0;
    DecodeDate(datum, rok, mesic, den);

    TColor barva = clWhite;
    int splneno = 0;
    const bool dataCell = ARow >= 1 && ACol >= 1;
    const bool zaznam = dataCell && ExistujeZaznam(den, ACol, barva, splneno);
    QColor background;
    const TGridRect sel = Selection();
    if (ARow == 0)
        background = Style().white;
    else if (ACol >= sel.Left && ACol <= sel.Right)
        background = Style().highlight;
    else if (zaznam)
        background = SettingsColor(barva);
    else if (dataCell && ExistujeKonfigZaznam(den, ACol, barva))
        background = SettingsColor(barva);
    else
        background = SettingsColor(DaysColor[DayOfTheWeek(datum)]);

    FillCell(Rect, background);
    if (ARow == 0 || ACol == 0)
        DrawCellTexts(ACol, ARow, Rect, datum);
    else
        DrawDataLines(ACol, Rect, zaznam && splneno == 100);
    DrawEdges(ACol, ARow, Rect);
}

} // namespace oxa
