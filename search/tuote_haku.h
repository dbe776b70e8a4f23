#pragma once

#include <memory>

#include "search/btr_haku_form.h"

namespace search {

class ProductTexts;

/// The product browser: products with their groups and supplier by name, the stock of the current
/// store, shelf places and prices without VAT; passive products hidden.
class TTuoteHakuForm : public TBtrHakuForm {
    Q_OBJECT
  public:
    explicit TTuoteHakuForm(QWidget* parent = nullptr);
    ~TTuoteHakuForm() override;

    /// The program's only product window, created on demand. @throws data::DataError
    static TTuoteHakuForm* instanssi(QWidget* parent = nullptr);
    /// Shows instanssi() and brings it to the front.
    static void NaytaLomake(QWidget* parent = nullptr);
    /// Closes the window, if any.
    static void SuljeHaku();

    /// Fills the stock columns. Saved with the layout.
    QCheckBox* NaytaSaldot;

    /// The product's kind (TUOTE2).
    qint64 tuotelaji(const QString& product);

  protected:
    std::vector<GridColumn> defaultColumns() const override;
    bool columnAllowed(const QString& field) const override;
    void afterOpen() override;
    void saveExtra(platform::IniFile& file, const QString& section) const override;
    void loadExtra(const platform::IniFile& file, const QString& section) override;
    std::optional<ColumnLookup> columnLookup(const QString& field) const override;
    bool dropOnColumn(const QString& text, const GridColumn& column) override;
    bool filterKey(QKeyEvent& event) override;
    void dropCaches() override;

  private:
    void addStockBox();
    void searchShelfPlace(const QString& text);

    QStringList m_priceNames;
    std::unique_ptr<ProductTexts> m_texts;
};

}  // namespace search
