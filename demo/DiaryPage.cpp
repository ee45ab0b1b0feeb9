#include "DiaryPage.h"

#include "oxa/diary/DiarPanel.h"
#include "oxa/diary/EnhancedMonthCalendar.h"
#include "oxa/diary/MonthGrid.h"
#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/MessageService.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDateEdit>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QVBoxLayout>
#include <QVariant>

#include <algorithm>

using namespace oxa;

namespace {

QSqlDatabase Db()
{
    return QSqlDatabase::database(QStringLiteral("oxa-demo"));
}

TTime TimeFromText(const QString &text)
{
    const QTime t = QTime::fromString(text, QStringLiteral("HH:mm"));
    return t.isValid() ? EncodeTime(t.hour(), t.minute(), 0) : 0;
}

QString TimeText(TTime cas)
{
    return FormatDateTime(QStringLiteral("hh:nn"), cas);
}

QTime ToQTime(TTime cas)
{
    int h = 0, n = 0, s = 0, ms = 0;
    DecodeTime(cas, h, n, s, ms);
    return QTime(h, n);
}

QDate EntryDate(const TDayRecord &z)
{
    return DateTimeToQDate(SpocitejDatum(z.Den, z.RokMesic));
}

void SetEntryDate(TDayRecord &z, const QDate &date)
{
    const TDate datum = QDateToDateTime(date);
    z.Den = qint16(date.day());
    z.RokMesic = DateToMesicRok(datum);
}

TDayRecord RecordFromQuery(const QSqlQuery &q)
{
    TDayRecord z;
    z.ID_DIAR = q.value(0).toInt();
    z.ID_PORIZOVACI = q.value(1).toInt();
    z.Parafa = q.value(2).toString();
    z.Soukrome = q.value(3).toInt() != 0;
    SetEntryDate(z, QDate::fromString(q.value(4).toString(), Qt::ISODate));
    z.CasOd = TimeFromText(q.value(5).toString());
    z.CasDo = TimeFromText(q.value(6).toString());
    z.Popis = q.value(7).toString();
    z.ID_Barvy = qint16(q.value(8).toInt());
    z.ID_KONTAKT = q.value(9).toInt();
    z.KONTAKT = q.value(10).toString();
    z.RC = q.value(11).toString();
    z.TABULKA_REFERENCE = TZdrojKontaktu(std::clamp(q.value(12).toInt(), 0, 2));
    z.PODROBNOSTI = q.value(13).toString();
    z.SPLNENO = qint16(q.value(14).toInt());
    z.UPOZORNIT = qint16(q.value(15).toInt());
    z.JEDN_UPOZORNENI = TJednotkaUpozorneni(std::clamp(q.value(16).toInt(), 0, 2));
    z.idDiarPristroj = q.value(17).toInt();
    return z;
}

const char *const kSelectEntries =
    "SELECT id, id_porizovaci, parafa, soukrome, datum, cas_od, cas_do, popis, id_barvy, "
    "id_kontakt,"
    " kontakt, rc, tabulka_reference, podrobnosti, splneno, upozornit, jedn_upozorneni,"
    " id_diar_pristroj FROM diar";

// The small form in which the user edits one appointment.
class EntryDialog : public QDialog
{
public:
    EntryDialog(const TDayRecord &zaznam, QWidget *parent) : QDialog(parent), m_zaznam(zaznam)
    {
        setWindowTitle(zaznam.ID_DIAR ? QStringLiteral("Záznam diáře")
                                      : QStringLiteral("Nový záznam"));
        m_popis->setObjectName(QStringLiteral("editPopis"));
        m_od->setObjectName(QStringLiteral("timeOd"));
        m_do->setObjectName(QStringLiteral("timeDo"));
        m_popis->setMaxLength(TShortString<33>::Capacity);
        m_popis->setText(zaznam.Popis);
        m_datum->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
        m_datum->setCalendarPopup(true);
        m_datum->setDate(EntryDate(zaznam));
        for (QTimeEdit *edit : {m_od, m_do})
            edit->setDisplayFormat(QStringLiteral("HH:mm"));
        m_od->setTime(ToQTime(zaznam.CasOd));
        m_do->setTime(ToQTime(zaznam.CasDo));
        m_kontakt->setText(zaznam.KONTAKT);
        m_kontakt->setReadOnly(zaznam.TABULKA_REFERENCE != zkNone);
        m_podrobnosti->setPlainText(zaznam.PODROBNOSTI);
        m_podrobnosti->setFixedHeight(70);
        m_splneno->setRange(0, 100);
        m_splneno->setSuffix(QStringLiteral(" %"));
        m_splneno->setValue(zaznam.SPLNENO);
        m_soukrome->setChecked(zaznam.Soukrome);

        auto *form = new QFormLayout;
        form->addRow(QStringLiteral("&Popis:"), m_popis);
        form->addRow(QStringLiteral("&Datum:"), m_datum);
        auto *times = new QHBoxLayout;
        times->addWidget(m_od);
        times->addWidget(new QLabel(QStringLiteral("–")));
        times->addWidget(m_do);
        // A label of a row of widgets needs its buddy for the "&" to be a key.
        auto *timeLabel = new QLabel(QStringLiteral("Č&as:"));
        timeLabel->setBuddy(m_od);
        form->addRow(timeLabel, times);
        form->addRow(QStringLiteral("&Kontakt:"), m_kontakt);
        form->addRow(QStringLiteral("Po&drobnosti:"), m_podrobnosti);
        form->addRow(QStringLiteral("&Splněno:"), m_splneno);
        form->addRow(QString(), m_soukrome);
        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Uložit"));
        buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Storno"));
        connect(buttons, &QDialogButtonBox::accepted, this, &EntryDialog::Accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        auto *layout = new QVBoxLayout(this);
        layout->addLayout(form);
        layout->addWidget(buttons);
    }

    const TDayRecord &Zaznam() const { return m_zaznam; }

private:
    void Accept()
    {
        if (m_popis->text().trimmed().isEmpty()) {
            MessageService::ShowWarning(QStringLiteral("Vyplňte popis záznamu."), this);
            return;
        }
        if (m_do->time() < m_od->time()) {
            MessageService::ShowWarning(QStringLiteral("Záznam nemůže skončit dřív, než začne."),
                                        this);
            return;
        }
        m_zaznam.Popis = m_popis->text().trimmed();
        SetEntryDate(m_zaznam, m_datum->date());
        m_zaznam.CasOd = EncodeTime(m_od->time().hour(), m_od->time().minute(), 0);
        m_zaznam.CasDo = EncodeTime(m_do->time().hour(), m_do->time().minute(), 0);
        m_zaznam.KONTAKT = m_kontakt->text().trimmed();
        m_zaznam.PODROBNOSTI = m_podrobnosti->toPlainText().trimmed();
        m_zaznam.SPLNENO = qint16(m_splneno->value());
        m_zaznam.Soukrome = m_soukrome->isChecked();
        accept();
    }

    TDayRecord m_zaznam;
    QLineEdit *m_popis = new QLineEdit(this);
    QDateEdit *m_datum = new QDateEdit(this);
    QTimeEdit *m_od = new QTimeEdit(this);
    QTimeEdit *m_do = new QTimeEdit(this);
    QLineEdit *m_kontakt = new QLineEdit(this);
    QPlainTextEdit *m_podrobnosti = new QPlainTextEdit(this);
    QSpinBox *m_splneno = new QSpinBox(this);
    QCheckBox *m_soukrome = new QCheckBox(QStringLiteral("S&oukromý záznam"), this);
};

} // namespace

DiaryPage::DiaryPage(QWidget *parent) : QWidget(parent)
{
    setProperty(
        "statusHint",
        QStringLiteral("Šipky mění den, Ctrl+šipky přesunou vybraný záznam o den "
                       "nebo týden (Ctrl+Z přesun vrátí), Enter jej otevře, Delete smaže."));
    BuildLayout();
    LoadSettings();
    GoTo(QDate::currentDate());
    LoadEntries();
    WirePanel();
    MarkHolidays();
}

void DiaryPage::BuildLayout()
{
    m_calendar = new TEnhancedMonthCalendar(this);
    m_calendar->setFirstDayOfWeek(Qt::Monday);
    m_calendar->setMaximumWidth(280);
    m_panel = new TDiarPanel(this);

    auto *views = new QButtonGroup(this);
    auto *viewRow = new QHBoxLayout;
    const QList<QPair<QString, TDiarSize>> sizes{{QStringLiteral("&Den"), dsDay},
                                                 {QStringLiteral("&Pracovní týden"), dsWorkWeek},
                                                 {QStringLiteral("&Týden"), dsWeek},
                                                 {QStringLiteral("&Měsíc"), dsMonth}};
    for (const auto &[title, size] : sizes) {
        auto *button = new QPushButton(title, this);
        button->setCheckable(true);
        button->setChecked(size == m_panel->DiarSize());
        views->addButton(button, int(size));
        viewRow->addWidget(button);
    }
    connect(views, &QButtonGroup::idClicked, this, [this](int id) {
        m_panel->SetDiarSize(TDiarSize(id));
        m_panel->setFocus();
    });
    auto *novy = new QPushButton(QStringLiteral("&Nový záznam"), this);
    novy->setObjectName(QStringLiteral("buttonNovyZaznam"));
    connect(novy, &QPushButton::clicked, this, [this] { NewEntry(m_panel->SelectedDay()); });
    // Ctrl+arrows move an entry at once, by a day or a week, and are often
    // pressed a few times in a row; a question at every step would spoil
    // them, so each move can be taken back instead, the last one first.
    m_undo = new QPushButton(QStringLiteral("&Vrátit přesun"), this);
    m_undo->setObjectName(QStringLiteral("buttonVratitPresun"));
    m_undo->setToolTip(QStringLiteral("Vrátí naposledy přesunutý záznam na jeho den (Ctrl+Z)."));
    m_undo->setEnabled(false);
    connect(m_undo, &QPushButton::clicked, this, &DiaryPage::UndoMove);
    auto *undoKey = new QShortcut(QKeySequence::Undo, this);
    undoKey->setContext(Qt::WidgetWithChildrenShortcut);
    connect(undoKey, &QShortcut::activated, this, &DiaryPage::UndoMove);

    m_detail = new QLabel(this);
    m_detail->setWordWrap(true);
    m_detail->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_detail->setTextFormat(Qt::PlainText);
    auto *hint = new QLabel(QStringLiteral("Kolečko a šipky mění den, Ctrl+šipky přesouvají "
                                           "vybraný záznam, záznamy lze také přetáhnout "
                                           "myší na jiný den. Dvojklik záznam otevře, Insert nebo "
                                           "dvojklik na volné místo založí nový, "
                                           "Delete záznam smaže. V měsíčním pohledu nabídne "
                                           "dvojklik na buňku všechny záznamy, které "
                                           "do ní zasahují."),
                            this);
    hint->setWordWrap(true);
    hint->setEnabled(false);

    auto *side = new QVBoxLayout;
    side->addWidget(m_calendar);
    side->addWidget(novy);
    side->addWidget(m_undo);
    side->addWidget(m_detail, 1);
    side->addWidget(hint);
    auto *main = new QVBoxLayout;
    main->addLayout(viewRow);
    main->addWidget(m_panel, 1);
    auto *layout = new QHBoxLayout(this);
    layout->addLayout(side);
    layout->addLayout(main, 1);
}

void DiaryPage::LoadSettings()
{
    TDiarNastaveni n;
    n.barvaSvatek = 0x9999FF;
    n.barvaSoNe = 0xE0E0E0;
    n.barvaPracDoba = 0xD8F5D8;
    n.barvaSchuzky = 0x0000FF;
    n.barvaSchuzkyMes = 0x0000FF;
    n.barvaSchuzkySouk = 0xE0C545;
    n.barvaDovol = 0x80D0FF;
    n.barvaObjednaniKLekari = 0xFFE0C0;
    n.minutDilek = 15;
    n.dblklikSchuzkaChangePac = false;

    QSqlQuery q(Db());
    if (q.exec(
            QStringLiteral("SELECT tyden, den, cas_od, cas_do, cas_od1, cas_do1 FROM prac_doba"))) {
        while (q.next()) {
            const int den = q.value(1).toInt();
            if (den < 1 || den > 7)
                continue;
            TPracDoba &doba = q.value(0).toInt() == 1 ? n.pracDobaLichy : n.pracDobaSudy;
            doba[den] = {TimeFromText(q.value(2).toString()), TimeFromText(q.value(3).toString()),
                         TimeFromText(q.value(4).toString()), TimeFromText(q.value(5).toString())};
        }
    }
    if (q.exec(QStringLiteral("SELECT den, cas_od, cas_do FROM objednani ORDER BY den, cas_od"))) {
        while (q.next()) {
            const int den = q.value(0).toInt();
            if (den >= 1 && den <= 7)
                n.objednaniKLekari[den].append({TimeFromText(q.value(1).toString()),
                                                TimeFromText(q.value(2).toString()), 0, 0});
        }
    }
    if (q.exec(QStringLiteral(
            "SELECT datum_od, datum_do, cas_od, cas_do, poznamka, barva FROM dovolena"))) {
        while (q.next()) {
            TDovolena d;
            d.DatumOd = QDateToDateTime(QDate::fromString(q.value(0).toString(), Qt::ISODate));
            d.DatumDo = QDateToDateTime(QDate::fromString(q.value(1).toString(), Qt::ISODate));
            d.CasOd = TimeFromText(q.value(2).toString());
            d.CasDo = TimeFromText(q.value(3).toString());
            d.Poznamka = q.value(4).toString();
            d.BarvaIsSet = !q.value(5).isNull();
            d.Barva = TColor(q.value(5).toUInt());
            n.dovolena.append(d);
        }
    }
    m_panel->SetDiarNastaveni(n);
}

void DiaryPage::WirePanel()
{
    connect(m_panel, &TDiarPanel::monthYearChanged, this, [this] { LoadEntries(); });
    m_panel->OnDayClick = [this](QObject *, TDate datum) {
        if (m_syncing)
            return;
        m_syncing = true;
        m_calendar->setSelectedDate(DateTimeToQDate(datum));
        m_syncing = false;
        ShowEntry(m_panel->GetSelectedItem());
    };
    connect(m_calendar, &QCalendarWidget::selectionChanged, this, [this] {
        if (!m_syncing)
            GoTo(m_calendar->selectedDate());
    });
    connect(m_calendar, &QCalendarWidget::currentPageChanged, this, &DiaryPage::FollowCalendarPage);
    m_calendar->OnEnhancedGetMonthInfoEvent = [this](QObject *, quint32 month, quint32 year,
                                                     quint32 &bold) {
        bold = BoldDays(int(month), int(year));
    };

    m_panel->OnDayEditEvent = [this](QObject *, const TDayRecord &z) { EditEntry(z); };
    m_panel->OnDayInsertEvent = [this](QObject *, TDate datum) { NewEntry(datum); };
    m_panel->OnDayDblClick = [this](QObject *, TDate datum) { NewEntry(datum); };
    m_panel->OnDayDeleteEvent = [this](QObject *, PDayRecord z, bool &allow) {
        allow = ConfirmDelete(*z);
    };
    m_panel->OnDayItemBeforeMoveEvent = [this](QObject *, const TDayRecord &,
                                               const TDayRecord &nove,
                                               bool &allow) { allow = AllowMove(nove); };
    m_panel->OnDayItemMoveEvent = [this](QObject *, const TDayRecord &stary,
                                         const TDayRecord &nove) { StoreMove(stary, nove); };
    m_panel->OnDayMoveEvent = m_panel->OnDayItemMoveEvent;
    m_panel->OnChangePacient = [this](QObject *, const TDayRecord &z) {
        m_detail->setText(
            QStringLiteral("Přechod na pacienta %1 (%2).\n\nV ambulanci by se nyní otevřela "
                           "jeho karta.")
                .arg(z.KONTAKT, z.RC));
    };
    m_panel->OnDaySelectItemEvent = [this](QObject *, QTreeWidgetItem *item, bool selected) {
        if (selected)
            ShowEntry(TDayListView::ItemRecord(item));
    };
}

void DiaryPage::GoTo(const QDate &date)
{
    m_syncing = true;
    m_panel->GotoDate(QDateToDateTime(date));
    m_calendar->setSelectedDate(date);
    m_syncing = false;
}

// The entries of the range the panel keeps, in one bulk load.
void DiaryPage::LoadEntries()
{
    QSqlQuery q(Db());
    q.prepare(QString::fromLatin1(kSelectEntries) +
              QStringLiteral(" WHERE datum BETWEEN ? AND ? ORDER BY datum, cas_od"));
    q.addBindValue(DateTimeToQDate(m_panel->DataDateMin()).toString(Qt::ISODate));
    q.addBindValue(DateTimeToQDate(m_panel->DataDateMax()).toString(Qt::ISODate));
    if (!q.exec()) {
        ReportError(QStringLiteral("Načtení diáře"), q);
        return;
    }
    m_panel->AddDayRecord_BeginUpdate();
    m_panel->Clear();
    while (q.next())
        m_panel->AddDayRecord(RecordFromQuery(q));
    m_panel->AddDayRecord_EndUpdate();
}

quint32 DiaryPage::BoldDays(int month, int year) const
{
    QSqlQuery q(Db());
    q.prepare(QStringLiteral("SELECT DISTINCT datum FROM diar WHERE datum BETWEEN ? AND ?"));
    const QDate first(year, month, 1);
    q.addBindValue(first.toString(Qt::ISODate));
    q.addBindValue(first.addMonths(1).addDays(-1).toString(Qt::ISODate));
    quint32 bold = 0;
    if (q.exec()) {
        while (q.next())
            bold |= 1u << (QDate::fromString(q.value(0).toString(), Qt::ISODate).day() - 1);
    }
    return bold;
}

void DiaryPage::MarkHolidays()
{
    const QColor colour = ColorToQColor(m_panel->DiarNastaveni().barvaSvatek, this);
    const QDate page(m_calendar->yearShown(), m_calendar->monthShown(), 1);
    // The page shows days of the month before and after as well.
    for (QDate day = page.addMonths(-1); day < page.addMonths(2); day = day.addDays(1)) {
        const QString name = NazevSvatku(QDateToDateTime(day));
        if (name.isEmpty())
            continue;
        QTextCharFormat format = m_calendar->dateTextFormat(day);
        format.setBackground(colour);
        format.setToolTip(name);
        m_calendar->setDateTextFormat(day, format);
    }
}

// The calendar's month arrows (and its month menu and year) move the diary
// to the same day of the month shown. A click on a day of the next month
// changes the page before it selects the day, so the diary follows only
// once the calendar is done, and only when the page and the diary still
// differ.
void DiaryPage::FollowCalendarPage(int, int)
{
    MarkHolidays();
    QMetaObject::invokeMethod(
        this,
        [this] {
            const QDate selected = DateTimeToQDate(m_panel->SelectedDay());
            if (m_syncing ||
                (selected.year() == m_calendar->yearShown() &&
                 selected.month() == m_calendar->monthShown()))
                return;
            m_panel->GotoMonth(m_calendar->monthShown(), m_calendar->yearShown());
            m_syncing = true;
            m_calendar->setSelectedDate(DateTimeToQDate(m_panel->SelectedDay()));
            m_syncing = false;
        },
        Qt::QueuedConnection);
}

void DiaryPage::ShowEntry(const TDayRecord *z)
{
    if (!z) {
        m_detail->clear();
        return;
    }
    QString text = SpocitejHodiny(z->CasOd, z->CasDo) + QLatin1Char(' ') + z->Popis.Text();
    if (!z->KONTAKT.isEmpty())
        text +=
            QStringLiteral("\n%1: %2").arg(ZdrojKontaktuNazev[z->TABULKA_REFERENCE], z->KONTAKT);
    if (!z->RC.isEmpty())
        text += QStringLiteral("\nRodné číslo: ") + z->RC;
    if (!z->PODROBNOSTI.isEmpty())
        text += QLatin1Char('\n') + z->PODROBNOSTI;
    text += QStringLiteral("\nZapsal: %1, splněno %2 %").arg(z->Parafa.Text()).arg(z->SPLNENO);
    m_detail->setText(text);
}

void DiaryPage::EditEntry(const TDayRecord &zaznam)
{
    TDayRecord zmeneny = zaznam;
    if (!AskEntry(zmeneny) || !StoreEntry(zmeneny, false))
        return;
    m_panel->ChangeDayRecord(zmeneny);
    m_calendar->UpdateBoldDays();
    ShowEntry(&zmeneny);
}

void DiaryPage::NewEntry(double datum)
{
    TDayRecord zaznam;
    zaznam.ID_PORIZOVACI = 1;
    zaznam.Parafa = QStringLiteral("MN");
    SetEntryDate(zaznam, DateTimeToQDate(datum));
    zaznam.CasOd = EncodeTime(8, 0, 0);
    zaznam.CasDo = EncodeTime(8, 15, 0);
    // In the month view the selected slots give the times.
    if (m_panel->MonthGridShowing()) {
        zaznam.CasOd = m_panel->getMonthGridSelectStartTime();
        zaznam.CasDo = m_panel->getMonthGridSelectEndTime();
    }
    if (!AskEntry(zaznam) || !StoreEntry(zaznam, true))
        return;
    m_panel->AddDayRecord(zaznam);
    m_calendar->UpdateBoldDays();
}

QStringList DiaryPage::Overlaps(const TDayRecord &z) const
{
    QSqlQuery q(Db());
    q.prepare(QStringLiteral("SELECT cas_od, cas_do, kontakt, popis FROM diar"
                             " WHERE datum = ? AND cas_od < ? AND cas_do > ? AND id <> ?"
                             " ORDER BY cas_od, cas_do"));
    q.addBindValue(EntryDate(z).toString(Qt::ISODate));
    q.addBindValue(TimeText(z.CasDo)); // "HH:mm" compares as the times do
    q.addBindValue(TimeText(z.CasOd));
    q.addBindValue(z.ID_DIAR);
    QStringList lines;
    if (!q.exec())
        return lines;
    while (q.next()) {
        const QString kontakt = q.value(2).toString().trimmed();
        const QString popis = q.value(3).toString().trimmed();
        lines << QStringLiteral("%1–%2 %3")
                     .arg(q.value(0).toString(), q.value(1).toString(),
                          kontakt.isEmpty() || popis.isEmpty()
                              ? kontakt + popis
                              : kontakt + QStringLiteral(": ") + popis);
    }
    return lines;
}

// An overlap is the user's call: "Ne" goes back to the dialog with
// everything typed, to choose another time.
bool DiaryPage::AskEntry(TDayRecord &zaznam)
{
    for (;;) {
        EntryDialog dialog(zaznam, this);
        if (MessageService::ExecDialog(&dialog) != mrOk)
            return false;
        zaznam = dialog.Zaznam();
        const QStringList overlaps = Overlaps(zaznam);
        if (overlaps.isEmpty())
            return true;
        const QString text =
            QStringLiteral("Záznam %1 dne %2 se překrývá s objednanými záznamy:\n%3\n\n"
                           "Uložit i přesto?")
                .arg(SpocitejHodiny(zaznam.CasOd, zaznam.CasDo),
                     EntryDate(zaznam).toString(QStringLiteral("d.M.yyyy")),
                     overlaps.join(QLatin1Char('\n')));
        if (MessageService::MessageDlg(text, mtConfirmation, mbYesNo, this, QString(), mbNo) ==
            mrYes)
            return true;
    }
}

bool DiaryPage::StoreEntry(TDayRecord &z, bool isNew)
{
    QSqlQuery q(Db());
    const QString columns = QStringLiteral(
        "id_porizovaci = ?, parafa = ?, soukrome = ?, datum = ?, cas_od = ?, cas_do = ?, popis = ?,"
        " id_barvy = ?, id_kontakt = ?, kontakt = ?, rc = ?, tabulka_reference = ?, podrobnosti = "
        "?,"
        " splneno = ?, upozornit = ?, jedn_upozorneni = ?, id_diar_pristroj = ?");
    q.prepare(
        isNew
            ? QStringLiteral("INSERT INTO diar (id_porizovaci, parafa, soukrome, datum, cas_od,"
                             " cas_do, popis, id_barvy, id_kontakt, kontakt, rc, tabulka_reference,"
                             " podrobnosti, splneno, upozornit, jedn_upozorneni, id_diar_pristroj)"
                             " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"
                             " RETURNING id")
            : QStringLiteral("UPDATE diar SET ") + columns + QStringLiteral(" WHERE id = ?"));
    const QVariantList values{z.ID_PORIZOVACI,
                              z.Parafa.Text(),
                              int(z.Soukrome),
                              EntryDate(z).toString(Qt::ISODate),
                              TimeText(z.CasOd),
                              TimeText(z.CasDo),
                              z.Popis.Text(),
                              z.ID_Barvy,
                              z.ID_KONTAKT,
                              z.KONTAKT,
                              z.RC,
                              int(z.TABULKA_REFERENCE),
                              z.PODROBNOSTI,
                              z.SPLNENO,
                              z.UPOZORNIT,
                              int(z.JEDN_UPOZORNENI),
                              z.idDiarPristroj};
    for (const QVariant &value : values)
        q.addBindValue(value);
    if (!isNew)
        q.addBindValue(z.ID_DIAR);
    if (!q.exec()) {
        ReportError(QStringLiteral("Uložení záznamu"), q);
        return false;
    }
    // The new key comes back with the row, as the data sets take it: SQLite
    // (since 3.35) and PostgreSQL both return it; lastInsertId has nothing
    // to give for PostgreSQL's serial keys.
    if (isNew) {
        if (!q.next()) {
            ReportError(QStringLiteral("Uložení záznamu"), q);
            return false;
        }
        z.ID_DIAR = q.value(0).toInt();
    }
    return true;
}

bool DiaryPage::ConfirmDelete(const TDayRecord &z)
{
    const QString text = QStringLiteral("Smazat záznam %1 %2 ze dne %3?")
                             .arg(SpocitejHodiny(z.CasOd, z.CasDo), z.Popis.Text(),
                                  EntryDate(z).toString(QStringLiteral("d.M.yyyy")));
    if (!MessageService::Confirm(text, this, mbNo)) // Enter keeps the entry
        return false;
    QSqlQuery q(Db());
    q.prepare(QStringLiteral("DELETE FROM diar WHERE id = ?"));
    q.addBindValue(z.ID_DIAR);
    if (!q.exec()) {
        ReportError(QStringLiteral("Smazání záznamu"), q);
        return false;
    }
    m_calendar->UpdateBoldDays();
    m_detail->clear();
    return true;
}

// An appointment is not moved onto a day of leave.
bool DiaryPage::AllowMove(const TDayRecord &nove)
{
    const TDate datum = SpocitejDatum(nove.Den, nove.RokMesic);
    for (const TDovolena &d : m_panel->DiarNastaveni().dovolena) {
        if (datum >= DateOf(d.DatumOd) && datum <= DateOf(d.DatumDo)) {
            MessageService::ShowWarning(
                QStringLiteral("Dne %1 je v diáři dovolená (%2), záznam nelze přesunout.")
                    .arg(DateToStr(datum), d.Poznamka.Text()),
                this);
            return false;
        }
    }
    return true;
}

bool DiaryPage::StoreEntryDate(const TDayRecord &zaznam, QSqlQuery &q)
{
    q.prepare(QStringLiteral("UPDATE diar SET datum = ? WHERE id = ?"));
    q.addBindValue(EntryDate(zaznam).toString(Qt::ISODate));
    q.addBindValue(zaznam.ID_DIAR);
    return q.exec();
}

void DiaryPage::StoreMove(const TDayRecord &stary, const TDayRecord &nove)
{
    QSqlQuery q(Db());
    if (!StoreEntryDate(nove, q)) {
        ReportError(QStringLiteral("Přesun záznamu"), q);
        return;
    }
    m_moves.append(stary);
    m_undo->setEnabled(true);
    m_calendar->UpdateBoldDays();
}

void DiaryPage::UndoMove()
{
    if (m_moves.isEmpty())
        return;
    const TDayRecord puvodni = m_moves.takeLast();
    m_undo->setEnabled(!m_moves.isEmpty());
    QSqlQuery q(Db());
    if (!StoreEntryDate(puvodni, q)) {
        ReportError(QStringLiteral("Vrácení přesunu"), q);
        return;
    }
    if (q.numRowsAffected() == 0) {
        MessageService::ShowWarning(
            QStringLiteral("Záznam %1 už v diáři není.").arg(puvodni.Popis.Text()), this);
        return;
    }
    // Back on its day, selected, as before the move.
    GoTo(EntryDate(puvodni));
    LoadEntries();
    m_panel->SelectItem(puvodni.ID_DIAR);
    ShowEntry(m_panel->GetSelectedItem());
    m_calendar->UpdateBoldDays();
    if (QWidget *list = m_panel->DayListView())
        list->setFocus();
}

void DiaryPage::ReportError(const QString &action, const QSqlQuery &query)
{
    MessageService::ShowError(
        QStringLiteral("%1 se nepodařilo: %2").arg(action, query.lastError().text()), this);
}
