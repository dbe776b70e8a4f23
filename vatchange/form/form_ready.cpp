#include <QMenu>
#include <algorithm>

#include "data/sql/uni_query.h"
#include "framework/ui/close_deferral.h"
#include "framework/ui/dialogs.h"
#include "vatchange/definition/definition_codec.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/ready_definitions.h"

// The form's ready definitions, and the tick for all price levels.

namespace vatchange {

namespace {

struct VatClass {
    int number;
    QString name;
};

/// The classes with a rate; rates are stored in single precision.
std::vector<VatClass> classesWith(data::Database& database, double percent) {
    data::TUniQuery query(&database);
    query.sql().setText(QStringLiteral("SELECT luokka, Prosentti, Selite FROM ALVKANTA"));
    std::vector<VatClass> classes;
    for (query.open(); !query.eof(); query.next()) {
        const double rate = query.fieldByName(QStringLiteral("Prosentti")).asFloat();
        if (static_cast<float>(rate) == static_cast<float>(percent)) {
            classes.push_back(
                {static_cast<int>(query.fieldByName(QStringLiteral("luokka")).asInteger()),
                 query.fieldByName(QStringLiteral("Selite")).asString().trimmed()});
        }
    }
    std::sort(classes.begin(), classes.end(),
              [](const VatClass& a, const VatClass& b) { return a.number < b.number; });
    return classes;
}

}  // namespace

void TAlvMuutosLomake::chooseReadyDefinition() {
    QMenu menu(this);
    for (const RateChange& change : kRateChanges)
        menu.addAction(change.caption());
    const QAction* chosen = nullptr;
    {
        const framework::CloseDeferral deferral(this);
        chosen = menu.exec(m_ready->mapToGlobal(QPoint(0, m_ready->height())));
    }
    const auto place = menu.actions().indexOf(chosen);
    if (place >= 0)
        framework::reportErrors(this,
                                [&] { fillReady(kRateChanges[static_cast<std::size_t>(place)]); });
}

std::optional<int> TAlvMuutosLomake::classOfRate(double percent) {
    const std::vector<VatClass> classes = classesWith(m_database, percent);
    if (classes.empty()) {
        framework::Dialogs::warning(
            this, QStringLiteral("Yrityksessä ei ole alv-luokkaa, jonka kanta on %1. Lisää luokka "
                                 "ensin yrityksen alv-kantoihin.")
                      .arg(percentText(percent)));
        return std::nullopt;
    }
    if (classes.size() == 1)
        return classes.front().number;
    QStringList answers;
    for (const VatClass& found : classes)
        answers += QStringLiteral("%1 %2").arg(found.number).arg(found.name).trimmed();
    answers += QStringLiteral("&Peruuta");
    const int answer = framework::Dialogs::choose(
        this,
        QStringLiteral("Alv-luokkia, joiden kanta on %1, on useita. Mikä niistä?")
            .arg(percentText(percent)),
        answers);
    if (answer >= static_cast<int>(classes.size()))
        return std::nullopt;
    return classes[static_cast<std::size_t>(answer)].number;
}

void TAlvMuutosLomake::fillReady(const RateChange& change) {
    const auto source = classOfRate(change.source);
    const auto target = source ? classOfRate(change.target) : std::nullopt;
    if (!target || !mayLoseChanges())
        return;
    showUnsaved(
        {{}, change.caption(), encodeDefinition(readyDefinition(change, *source, *target))});
    showStatus(QStringLiteral("Täytetty luokat %1 → %2 ja kaikki hintatasot. Valitse optiot ja "
                              "talleta määrittely.")
                   .arg(*source)
                   .arg(*target));
}

void TAlvMuutosLomake::refreshAllKept() {
    int kept = 0;
    for (int level = 1; level <= kPriceLevels; ++level)
        kept += m_controls.keep(level)->isChecked() ? 1 : 0;
    const QSignalBlocker blocker(m_controls.keepAll);
    m_controls.keepAll->setCheckState(kept == 0              ? Qt::Unchecked
                                      : kept == kPriceLevels ? Qt::Checked
                                                             : Qt::PartiallyChecked);
}

// Ticks all levels unless all are ticked.
void TAlvMuutosLomake::keepAllClicked() {
    bool all = true;
    for (int level = 1; level <= kPriceLevels; ++level)
        all = all && m_controls.keep(level)->isChecked();
    if (!all && !ratePercent(static_cast<int>(m_controls.targetClass->value()))) {
        NaytaViesti(kCheckTargetClass);  // once, not for each level
    } else {
        for (int level = 1; level <= kPriceLevels; ++level)
            m_controls.keep(level)->setChecked(!all);
    }
    refreshAllKept();
}

}  // namespace vatchange
