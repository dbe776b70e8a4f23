#include "search/group_haku.h"

#include <span>

#include "company/connection_module.h"
#include "search/product_settings.h"

namespace search {

namespace {

constexpr QColor kNotInWebShop(255, 0, 0);

struct Column {
    const char16_t* field;
    const char16_t* title;
    int width;
    bool visible = true;
};

std::vector<GridColumn> gridColumns(std::span<const Column> columns) {
    std::vector<GridColumn> result;
    for (const Column& column : columns)
        result.push_back({.field = QString::fromUtf16(column.field),
                          .title = QString::fromUtf16(column.title),
                          .width = column.width,
                          .visible = column.visible});
    return result;
}

}  // namespace

GroupHakuForm::GroupHakuForm(const Kind& kind, QWidget* parent)
    : TBtrHakuForm(kind.component, parent),
      m_webShopFlag(kind.webShopFlag),
      m_alwaysColoured(kind.alwaysColoured) {
    setWindowTitle(kind.caption);
    setTableName(kind.table);
    setResultField(QStringLiteral("Nro"));
    resize(kind.clientSize);
    setFirstSize(kind.clientSize);
    SelitysLabel->setText(QStringLiteral("<span style='color:%1'>■</span> ei verkkokaupassa")
                              .arg(kNotInWebShop.name()));
    readWebShopSettings();
}

void GroupHakuForm::readWebShopSettings() {
    m_coloured = m_alwaysColoured || webShopInUse(company::companyDatabase());
    SelitysLabel->setVisible(m_coloured);
}

void GroupHakuForm::afterOpen() {
    Hakutable->fieldByName(m_webShopFlag).setDisplayValues(QStringLiteral("K;E"));
}

void GroupHakuForm::dropCaches() {
    readWebShopSettings();
}

CellColours GroupHakuForm::cellColours(const GridRow& row, const GridColumn& column) const {
    if (!m_coloured || row.flag(m_webShopFlag))
        return TBtrHakuForm::cellColours(row, column);
    return {kNotInWebShop, {}};
}

TTrHakuForm::TTrHakuForm(QWidget* parent)
    : GroupHakuForm(
          {QStringLiteral("TrHakuForm"), QStringLiteral("Tuoteryhmän haku"),
           QStringLiteral("TRYHMA"), QStringLiteral("OnWebKaupassa"), QSize(360, 450), false},
          parent) {
    FormCreate();
}

TTrHakuForm* TTrHakuForm::instanssi(QWidget* parent) {
    return onlyForm<TTrHakuForm>(parent);
}

TPrHakuForm::TPrHakuForm(QWidget* parent)
    : GroupHakuForm(
          {QStringLiteral("PrHakuForm"), QStringLiteral("Pääryhmän haku"), QStringLiteral("PRYHMA"),
           QStringLiteral("OnWebKaupassa"), QSize(512, 470), true},
          parent) {
    FormCreate();
}

TPrHakuForm* TPrHakuForm::instanssi(QWidget* parent) {
    return onlyForm<TPrHakuForm>(parent);
}

std::vector<GridColumn> TPrHakuForm::defaultColumns() const {
    static constexpr Column kColumns[] = {
        {u"NRO", u"Nro", 60},
        {u"nimi", u"Nimi", 200},
        {u"tili", u"Tili", 80},
        {u"OnWebKaupassa", u"Verkkokaupassa", 110},
        {u"WebKauppaJarjestys", u"Verkkokauppa järjestys", 150},
        {u"MuutosPvm", u"Muutospvm", 90},
        {u"MuutosKlo", u"Muutosklo", 80},
        {u"Osasto", u"Osasto", 60, false},
        {u"Nimi2", u"Nimi2", 200},
        {u"RyhmaTyyppi", u"Ryhmätyyppi", 80, false},
        {u"Jemma", u"Jemma", 120, false},
        {u"KeittioRyhma", u"Keittiöryhmä", 90},
    };
    return gridColumns(kColumns);
}

TArHakuForm::TArHakuForm(QWidget* parent)
    : GroupHakuForm(
          {QStringLiteral("ArHakuForm"), QStringLiteral("Aliryhmän haku"),
           QStringLiteral("ALIRYHMA"), QStringLiteral("Verkkokaupassa"), QSize(505, 336), false},
          parent) {
    FormCreate();
}

TArHakuForm* TArHakuForm::instanssi(QWidget* parent) {
    return onlyForm<TArHakuForm>(parent);
}

std::vector<GridColumn> TArHakuForm::defaultColumns() const {
    static constexpr Column kColumns[] = {
        {u"Nro", u"Nro", 65},
        {u"Nimi", u"Nimi", 200},
        {u"TuoteRyhma", u"Tuoteryhmä", 80},
        {u"Verkkokaupassa", u"Verkkokaupassa", 110},
    };
    return gridColumns(kColumns);
}

}  // namespace search
