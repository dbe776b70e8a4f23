#pragma once

#include "search/btr_haku_form.h"

namespace search {

/// Base of the three group windows: they return "Nro", show the web shop flag as "K" or "E", and
/// show rows of groups outside the web shop in red.
class GroupHakuForm : public TBtrHakuForm {
    Q_OBJECT
  public:
    struct Kind {
        QString component;  ///< the section in "FORMS.INI"
        QString caption;
        QString table;
        QString webShopFlag;
        QSize clientSize;
        bool alwaysColoured;  ///< also without the web shop integration
    };

  protected:
    GroupHakuForm(const Kind& kind, QWidget* parent);

    void afterOpen() override;
    CellColours cellColours(const GridRow& row, const GridColumn& column) const override;
    void dropCaches() override;

  private:
    void readWebShopSettings();

    QString m_webShopFlag;
    bool m_alwaysColoured;
    bool m_coloured = false;
};

/// Product groups.
class TTrHakuForm : public GroupHakuForm {
    Q_OBJECT
  public:
    explicit TTrHakuForm(QWidget* parent = nullptr);
    /// The program's only window of this class, created on demand. @throws data::DataError
    static TTrHakuForm* instanssi(QWidget* parent = nullptr);
};

/// Main groups; coloured with or without the web shop integration.
class TPrHakuForm : public GroupHakuForm {
    Q_OBJECT
  public:
    explicit TPrHakuForm(QWidget* parent = nullptr);
    static TPrHakuForm* instanssi(QWidget* parent = nullptr);  ///< as TTrHakuForm's

  protected:
    std::vector<GridColumn> defaultColumns() const override;
};

/// Sub-groups.
class TArHakuForm : public GroupHakuForm {
    Q_OBJECT
  public:
    explicit TArHakuForm(QWidget* parent = nullptr);
    static TArHakuForm* instanssi(QWidget* parent = nullptr);  ///< as TTrHakuForm's

  protected:
    std::vector<GridColumn> defaultColumns() const override;
};

}  // namespace search
