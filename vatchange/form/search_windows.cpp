#include "vatchange/form/search_windows.h"

#include <utility>

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

}  // namespace

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
