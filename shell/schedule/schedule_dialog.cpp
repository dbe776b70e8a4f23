#include "shell/schedule/schedule_dialog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFormLayout>
#include <QVBoxLayout>

#include "data/clock.h"
#include "framework/ui/dialogs.h"
#include "platform/schedule/task_scheduler.h"

namespace shell {

namespace {

constexpr int kMargin = 14;
constexpr int kTextWidth = 460;
const QTime kSuggestedTime(0, 15);

QLabel* paragraph(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(kTextWidth);
    return label;
}

QString untilText(qint64 seconds) {
    const qint64 minutes = seconds / 60;
    const qint64 hours = minutes / 60;
    const qint64 days = hours / 24;
    if (days > 0)
        return QStringLiteral("%1 vrk %2 h").arg(days).arg(hours % 24);
    if (hours > 0)
        return QStringLiteral("%1 h %2 min").arg(hours).arg(minutes % 60);
    return QStringLiteral("%1 min").arg(minutes);
}

}  // namespace

void removeScheduleAndTask(const QString& company) {
    platform::TaskScheduler::instance().remove(scheduleId(company));
    removeSchedule(company);
}

ScheduleDialog::ScheduleDialog(const QString& company, const company::BatchList& list,
                               QWidget* parent)
    : QDialog(parent),
      m_company(company),
      m_existing(readSchedule(company)),
      m_run(new QRadioButton(QStringLiteral("&Eräajo"), this)),
      m_rehearse(
          new QRadioButton(QStringLiteral("Eräajon k&oeajo (yrityksen tiedot eivät muutu)"), this)),
      m_date(new framework::DateEdit(this)),
      m_time(new QLineEdit(this)),
      m_inWords(paragraph({}, this)),
      m_schedule(new QPushButton(QStringLiteral("A&jasta"), this)),
      m_remove(new QPushButton(QStringLiteral("&Poista ajastus"), this)) {
    setObjectName(QStringLiteral("Ajastus"));
    setWindowTitle(QStringLiteral("Eräajon ajastus"));
    for (const QString& name : list)
        if (!name.isEmpty())
            m_definitions.append(name);

    auto* what = new QVBoxLayout;
    what->addWidget(m_run);
    what->addWidget(m_rehearse);
    m_run->setObjectName(QStringLiteral("EraajoRadio"));
    m_rehearse->setObjectName(QStringLiteral("KoeajoRadio"));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    column->addWidget(paragraph(
        QStringLiteral("Käyttöjärjestelmän ajastin käynnistää ajon, vaikka ohjelma on suljettu ja "
                       "käyttäjä kirjautunut ulos. Koneen on oltava silloin käynnissä. Yli tunnin "
                       "myöhässä käynnistynyttä ajoa ei tehdä."),
        this));
    column->addWidget(paragraph(
        QStringLiteral("Ajetaan talletettu luettelo sellaisena kuin se silloin on, nyt: ") +
            m_definitions.join(QStringLiteral("; ")),
        this));
    column->addLayout(what);
    column->addLayout(buildMoment());
    column->addWidget(m_inWords);
    column->addLayout(buildButtons());
    column->setSizeConstraint(QLayout::SetFixedSize);
    showExisting();
    showMoment();
    framework::describeByHints(*this);
    m_date->setFocus();
}

QLayout* ScheduleDialog::buildMoment() {
    m_date->setObjectName(QStringLiteral("AjastusPaiva"));
    m_time->setObjectName(QStringLiteral("AjastusKello"));
    m_time->setToolTip(QStringLiteral("Kellonaika, esimerkiksi 0.15"));
    m_time->setMaxLength(5);
    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("P&äivä"), m_date);
    fields->addRow(QStringLiteral("&Kello"), m_time);
    if (platform::TaskScheduler::instance().takesPassword()) {
        m_password = new QLineEdit(this);
        m_password->setObjectName(QStringLiteral("AjastusSalasana"));
        m_password->setEchoMode(QLineEdit::Password);
        m_password->setToolTip(
            QStringLiteral("Windows-tunnuksesi salasana. Tarvitaan, jos yritys on verkkolevyllä.\n"
                           "Windows säilyttää sen, Taksavaihe ei."));
        fields->addRow(QStringLiteral("&Windows-salasana"), m_password);
    }
    connect(m_date, &QLineEdit::textChanged, this, &ScheduleDialog::showMoment);
    connect(m_time, &QLineEdit::textChanged, this, &ScheduleDialog::showMoment);
    return fields;
}

QLayout* ScheduleDialog::buildButtons() {
    m_schedule->setObjectName(QStringLiteral("AjastaButton"));
    m_schedule->setDefault(true);
    m_remove->setObjectName(QStringLiteral("PoistaAjastusButton"));
    m_remove->setAutoDefault(false);
    auto* cancel = new QPushButton(QStringLiteral("Pe&ruuta"), this);
    cancel->setObjectName(QStringLiteral("PeruutaButton"));
    cancel->setAutoDefault(false);
    connect(m_schedule, &QPushButton::clicked, this,
            [this] { framework::reportErrors(this, [this] { schedule(); }); });
    connect(m_remove, &QPushButton::clicked, this,
            [this] { framework::reportErrors(this, [this] { removeExisting(); }); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_remove);
    buttons->addStretch();
    buttons->addWidget(m_schedule);
    buttons->addWidget(cancel);
    return buttons;
}

void ScheduleDialog::showExisting() {
    const bool waits = m_existing && m_existing->moment > data::Clock::now();
    const QDateTime shown =
        waits ? m_existing->moment : QDateTime(data::Clock::today().addDays(1), kSuggestedTime);
    m_date->setDate(shown.date());
    m_time->setText(shown.toString(QStringLiteral("H.mm")));
    (m_existing && m_existing->rehearsal ? m_rehearse : m_run)->setChecked(true);
    m_remove->setVisible(m_existing.has_value());
}

QDateTime ScheduleDialog::moment() const {
    const QTime time = typedTime();
    return m_date->date().isValid() && time.isValid() ? QDateTime(m_date->date(), time)
                                                      : QDateTime();
}

QTime ScheduleDialog::typedTime() const {
    const QString text = m_time->text().trimmed().replace(u':', u'.');
    const QTime time = QTime::fromString(text, QStringLiteral("H.mm"));
    return time.isValid() ? time : QTime::fromString(text, QStringLiteral("H"));
}

void ScheduleDialog::showMoment() {
    const QDateTime chosen = moment();
    const qint64 left = data::Clock::now().secsTo(chosen);
    // an hour that summer time leaves out: Qt takes another one
    const bool leftOut = chosen.isValid() && chosen.toUTC().toLocalTime().time() != typedTime();
    m_schedule->setEnabled(chosen.isValid() && !leftOut && left > 0);
    if (!chosen.isValid())
        m_inWords->setText(QStringLiteral("Anna päivä ja kellonaika."));
    else if (leftOut)
        m_inWords->setText(QStringLiteral("Sitä hetkeä ei ole: kello siirtyy silloin kesäaikaan."));
    else if (left <= 0)
        m_inWords->setText(QStringLiteral("Hetki on jo mennyt."));
    else
        m_inWords->setText(QStringLiteral("Ajo käynnistyy %1, eli %2 kuluttua.")
                               .arg(momentText(chosen), untilText(left)));
}

bool ScheduleDialog::agreesToLogon() {
    platform::TaskScheduler& scheduler = platform::TaskScheduler::instance();
    if (scheduler.runsWithoutLogon())
        return true;
    const QString command = scheduler.commandForWithoutLogon();
    const int answer = framework::Dialogs::choose(
        this,
        QStringLiteral("Järjestelmä ajaa tehtäviäsi nyt vain, kun olet kirjautuneena. Sallitaanko "
                       "niiden ajo muulloinkin?\r(%1)")
            .arg(command),
        {QStringLiteral("&Salli"), QStringLiteral("&Ajasta silti"), QStringLiteral("Pe&ruuta")});
    if (answer == 2)
        return false;
    if (answer == 0 && !scheduler.allowWithoutLogon())
        framework::Dialogs::warning(
            this, QStringLiteral("Järjestelmä ei antanut lupaa. Pyydä ylläpitäjää antamaan komento "
                                 "\"%1\"; ilman sitä ajo käynnistyy vain, jos olet silloin "
                                 "kirjautuneena.")
                      .arg(command));
    return true;
}

void ScheduleDialog::schedule() {
    if (!agreesToLogon())
        return;
    const ScheduleNote note{m_company, moment(), m_rehearse->isChecked()};
    platform::ScheduledTask task;
    task.id = scheduleId(m_company);
    task.description =
        QStringLiteral("Taksavaihe: %1, %2")
            .arg(note.rehearsal ? QStringLiteral("eräajon koeajo") : QStringLiteral("eräajo"),
                 m_company);
    task.program = QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
    task.arguments = {m_company, QStringLiteral("/E"), scheduleSwitch(note.moment)};
    if (note.rehearsal)
        task.arguments.insert(2, QStringLiteral("/KOEAJO"));
    task.moment = note.moment;
    // first the note: a task without its note does nothing
    writeSchedule(note);
    try {
        platform::TaskScheduler::instance().store(
            task, m_password != nullptr ? m_password->text() : QString());
    } catch (...) {
        if (m_existing && platform::TaskScheduler::instance().exists(task.id))
            writeSchedule(*m_existing);
        else
            removeSchedule(m_company);
        throw;
    }
    accept();
}

void ScheduleDialog::removeExisting() {
    removeScheduleAndTask(m_company);
    m_removed = true;
    accept();
}

}  // namespace shell
