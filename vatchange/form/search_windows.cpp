#include "vatchange/form/search_windows.h"

#include <utility>

#include "search/drag_source.h"
#include "search/group_haku.h"
#include "search/tuote_haku.h"

namespace vatchange {

namespace {

const QString kNumberKey = QStringLiteral("0");

search::TBtrHakuForm* windowOf(SearchKind kind, QWidget* parent) {
    switch (kind) {
        case SearchKind::SubGroup:
            return search::TArHakuForm::instanssi(parent);
        case SearchKind::ProductGroup:
            return search::TTrHakuForm::instanssi(parent);
        case SearchKind::MainGroup:
            return search::TPrHakuForm::instanssi(parent);
        case SearchKind::Product:
            break;
    }
    return search::TTuoteHakuForm::instanssi(parent);
}

struct Kind {
    SearchKind kind;
    const char* table;
    const char* of;    // "the number is of a ..."
    const char* name;  // "... belongs here"
};

constexpr Kind kKinds[] = {{SearchKind::SubGroup, "ALIRYHMA", "aliryhmän", "aliryhmä"},
                           {SearchKind::ProductGroup, "TRYHMA", "tuoteryhmän", "tuoteryhmä"},
                           {SearchKind::MainGroup, "PRYHMA", "pääryhmän", "pääryhmä"},
                           {SearchKind::Product, "TUOTE", "tuotteen", "tuote"}};

const Kind* draggedKind(const QMimeData& data) {
    const QString table = search::dragTable(data);
    for (const Kind& kind : kKinds) {
        if (table == QLatin1String(kind.table))
            return &kind;
    }
    return nullptr;
}

QString refusal(const Kind& dragged, const char* wanted) {
    return QStringLiteral("Raahattu numero on %1, tähän kuuluu %2")
        .arg(QString::fromUtf8(dragged.of), QString::fromUtf8(wanted));
}

}  // namespace

QString dropRefusal(SearchKind kind, const QMimeData& data) {
    const Kind* dragged = draggedKind(data);
    if (dragged == nullptr || dragged->kind == kind)
        return {};
    for (const Kind& wanted : kKinds) {
        if (wanted.kind == kind)
            return refusal(*dragged, wanted.name);
    }
    return {};
}

QString classDropRefusal(const QMimeData& data) {
    const Kind* dragged = draggedKind(data);
    return dragged == nullptr ? QString() : refusal(*dragged, "alv-luokka");
}

void openSearchWindow(SearchKind kind, const QString& caller, QWidget* parent,
                      const QString& present, std::function<void(const QString& key)> chosen) {
    search::TBtrHakuForm* form = windowOf(kind, parent);
    form->lisaaKayttaja(caller);
    form->setChooseHandler([field = form->resultField(), chosen = std::move(chosen)](
                               QTableView*, const data::TtbTable& record) {
        chosen(record.fieldByName(field).asString().trimmed());
    });
    // A window ordered by another key is not moved to the present number.
    const bool hasNumber = !present.isEmpty() && present != QLatin1String("0");
    if (hasNumber && form->Hakutable->indexName() == kNumberKey)
        form->gotoNearest(kNumberKey, present);
    form->show();
    form->raise();
    form->activateWindow();
}

}  // namespace vatchange
