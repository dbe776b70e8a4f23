#include "shell/schedule/schedule_line.h"

#include <QHBoxLayout>

#include "company/company.h"
#include "data/clock.h"
#include "data/error.h"
#include "platform/schedule/task_scheduler.h"
#include "shell/schedule/schedule_note.h"

namespace shell {

namespace {
constexpr int kRefreshMs = 30'000;
}

ScheduleLine::ScheduleLine(QWidget* parent)
    : QWidget(parent),
      m_text(new QLabel(this)),
      m_change(new QPushButton(QStringLiteral("&Muuta..."), this)),
      m_remove(new QPushButton(QStringLiteral("&Poista"), this)) {
    setObjectName(QStringLiteral("AjastusRivi"));
    m_text->setObjectName(QStringLiteral("AjastusTeksti"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_change->setObjectName(QStringLiteral("AjastusMuuta"));
    m_change->setToolTip(QStringLiteral("Muuttaa ajastuksen hetkeä"));
    m_remove->setObjectName(QStringLiteral("AjastusPoista"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_text, 1);
    for (QPushButton* button : {m_change, m_remove}) {
        button->setAutoDefault(true);
        row->addWidget(button);
    }
    connect(m_change, &QPushButton::clicked, this, &ScheduleLine::changeWanted);
    connect(m_remove, &QPushButton::clicked, this, &ScheduleLine::removeWanted);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &ScheduleLine::showText);
    hide();
}

void ScheduleLine::refresh() {
    m_isKnown = true;
    try {
        const QString& company = company::currentCompany().name;
        if (readSchedule(company))  // most have none: the scheduler need not be asked
            m_isKnown = platform::TaskScheduler::instance().exists(scheduleId(company));
    } catch (const data::DataError&) {
        // not to be found out: the text then says nothing about it
    }
    showText();
}

void ScheduleLine::showText() {
    QString text;
    bool waits = false;
    try {
        if (const auto note = readSchedule(company::currentCompany().name)) {
            const QDateTime now = data::Clock::now();
            waits = note->moment > now;
            text = scheduleText(*note, m_isKnown, now);
        }
    } catch (const std::exception& e) {
        text = QStringLiteral("Ajastusta ei voitu lukea: ") + data::errorText(e);
    }
    m_text->setText(text);
    m_change->setVisible(waits);
    m_remove->setToolTip(waits ? QStringLiteral("Poistaa ajastuksen: ajo ei käynnisty")
                               : QStringLiteral("Poistaa tiedon tästä ajastuksesta"));
    m_remove->setAccessibleDescription(m_remove->toolTip());
    setVisible(!text.isEmpty());
    if (text.isEmpty())
        m_timer.stop();
    else
        m_timer.start();
}

}  // namespace shell
