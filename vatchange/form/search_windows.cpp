#include "vatchange/form/search_windows.h"

#include <utility>

#include "search/group_haku.h"
#include "search/tuote_haku.h"

namespace vatchange {

namespace {

const QString kNumberKey = QStringLiteral("0");

template <class Form>
void openWindow(QWidget* parent, const QString& present,
                std::function<void(const QString& key)> chosen) {
    search::TBtrHakuForm* form = Form::instanssi(parent->window());
    form->lisaaKayttaja(TAlvMuutosLomake::kFormName);
    form->setChooseHandler([field = form->resultField(), chosen = std::move(chosen)](
                               QTableView*, const data::TtbTable& record) {
        chosen(record.fieldByName(field).asString().trimmed());
    });
    // Who has ordered the window by another key looks for something else than the present number.
    const bool hasNumber = !present.isEmpty() && present != QLatin1String("0");
    if (hasNumber && form->Hakutable->indexName() == kNumberKey)
        form->gotoNearest(kNumberKey, present);
    form->show();
    form->raise();
    form->activateWindow();
}

}  // namespace

std::map<SearchKind, Chooser> searchWindows() {
    return {{SearchKind::SubGroup, &openWindow<search::TArHakuForm>},
            {SearchKind::ProductGroup, &openWindow<search::TTrHakuForm>},
            {SearchKind::MainGroup, &openWindow<search::TPrHakuForm>},
            {SearchKind::Product, &openWindow<search::TTuoteHakuForm>}};
}

}  // namespace vatchange
