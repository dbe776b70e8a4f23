#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QStringList>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/company/ini_file.h"
#include "data/record/tb_table.h"
#include "search/alku_merkki_edit.h"
#include "search/grid_column.h"
#include "search/record_rows.h"

namespace search {

class TableModel;

/// The browsing window over one record table: order by any key, nearest search, filters by dropping
/// a text on a column, a range of the key, passive records, layout in "FORMS.INI".
///
/// The rows are the model's (it pages by key, filters and counts in idle time); `Hakutable` stands
/// on the grid's current record, whatever the filter.
///
/// Use: construct, set table, base filter, handler; then FormCreate() (the first show calls it when
/// nobody has). A descendant calls FormCreate() at the end of its constructor, so that its own
/// hooks are called.
class TBtrHakuForm : public QDialog {
    Q_OBJECT
  public:
    /// Called with the grid as sender and the table standing on the chosen record. The form may be
    /// on its way out already: keep no pointer to either.
    using ChooseHandler = std::function<void(QTableView* sender, const data::TtbTable& record)>;

    /// `componentName` is the form's section in "FORMS.INI".
    explicit TBtrHakuForm(const QString& componentName = QStringLiteral("BtrHakuForm"),
                          QWidget* parent = nullptr);
    ~TBtrHakuForm() override;

    // --- before FormCreate()
    void setTableName(const QString& name) { m_tableName = name; }
    /// The filter of the caller's own ("passiivinen = false"); may also be changed later.
    void setBaseFilter(const QString& expression);
    const QString& baseFilter() const { return m_baseFilter; }
    /// Key to begin with, by number ("0"); a saved "Lajittelu" of the layout wins.
    void setIndexName(const QString& number) { m_initialIndex = number; }
    /// The field whose value a choice gives and a dragged row carries ("numero"); default: the
    /// first field of key 0.
    void setResultField(const QString& field) { m_resultField = field; }
    const QString& resultField() const { return m_resultField; }

    void setChooseHandler(ChooseHandler handler) { m_choose = std::move(handler); }

    /// Opens the table, creates the columns, reads layout and settings. Once.
    /// @throws data::DataError when the table cannot be opened.
    void FormCreate();

    // --- what a caller gets
    /// The selected records, in the order of the rows.
    std::vector<data::StoredRecord> Valitut();
    int Valittuja() const;
    /// A field's value in the current record, by name, case ignored; invalid without a record.
    /// @throws data::DataError(NoSuchField)
    data::Value KenttaArvo(const QString& field) const;

    // --- users: a form that serves several caller windows is kept while one of them is registered
    void lisaaKayttaja(const QString& caller);
    void poistaKayttaja(const QString& caller);
    bool OnkoKayttajia(const QString& caller = {}) const;
    /// Closed for good: deletes itself when control returns to the event loop. A new one is due.
    bool isLeaving() const { return m_leaving; }

    // --- layout
    void Tallennus(bool withHeight);  ///< @throws data::DataError(Io, ...)
    void Lataus();

    // --- controls, by their given names (also object names)
    QComboBox* IndexCombo;
    QLineEdit* SearchEdit;
    TAlkuMerkkiEdit* Suodatin;
    QCheckBox* AlueRajaus;
    QCheckBox* Passiiviset;
    QCheckBox* Jatahakuauki;
    QLabel* HakuLabel;
    QTableView* DBGrid1;
    QToolBar* DBNavigator1;
    QTimer* Timer;
    QAction* Tallenna;
    QAction* Tallennakorkeus;
    data::TtbTable* Hakutable;

    TableModel& model() const { return *m_model; }
    const QString& userFilter() const { return m_userFilter; }
    /// The expression that the table's filter now is.
    QString tableFilter() const;

    /// Selects a key by its place in IndexCombo and orders by it.
    void selectIndex(int place);
    /// Goes to the nearest record of a key, by number-as-text; `value` is its first field's.
    /// @return false when there is no such key or the value is none of its field's.
    bool gotoNearest(const QString& index, const QString& value);
    /// A text dropped on a column.
    void dropText(const QString& text, int column, bool onIndicator = false);
    /// Drops user filter and range, back to the base filter.
    void NollaaSuodin();

  protected:
    // --- what descendants add
    /// The columns before any saved layout; default: every field of the table. Computed columns
    /// are listed here too. The table is open.
    virtual std::vector<GridColumn> defaultColumns() const;
    /// Whether a column may be shown at all now ("VERKKOKAUPPA" without the integration).
    virtual bool columnAllowed(const QString& field) const;
    /// After the fields exist and before the rows are shown: display formats and values of
    /// Hakutable's fields, lookups of the window.
    virtual void afterOpen() {}
    /// Keys of their own in the form's section of "FORMS.INI".
    virtual void saveExtra(company::IniFile& file, const QString& section) const;
    virtual void loadExtra(const company::IniFile& file, const QString& section);
    /// Accepts or rejects a record in record-by-record search. Called for records that match.
    virtual bool PerusSuodata(const RecordRow& record) const;
    virtual CellColours cellColours(const RecordRow& record, const GridColumn& column) const;
    /// Where a column's shown texts are looked up, for drops.
    virtual std::optional<ColumnLookup> columnLookup(const QString& field) const;
    /// A drop that the descendant handles itself: @return true. It may set a user filter.
    virtual bool dropOnColumn(const QString& text, const GridColumn& column);
    /// A key pressed in Suodatin, before the form's own handling. @return true when done with.
    virtual bool filterKey(QKeyEvent& event);
    /// Reread what the descendant caches (activation, refresh).
    virtual void dropCaches() {}

    void setUserFilter(const QString& expression);
    /// Shows the records that `accept` takes, found by walking the table now, with the wait window.
    /// @return false when the user broke off (the rows before then stay).
    bool searchRecords(std::function<bool(const data::StoredRecord&)> accept);
    const data::RecordLayout& recordLayout() const { return Hakutable->layout(); }

    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void done(int result) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void buildControls();
    void buildNavigator();
    void buildMenu();
    void connectControls();
    void fillIndexes();
    void buildColumns(const company::IniFile& file);
    void applyHeader();
    void TallennaClick();
    QString keyTitle(const QString& field) const;
    bool guarded(const std::function<void()>& work);
    void columnMenu(const QPoint& place);

    // keys and searching
    void IndexComboCloseUp();
    void stepIndex(int by);
    void SearchEditChange();
    void TimerTimer();
    bool searchEditKey(QKeyEvent& event);
    bool suodatinKey(QKeyEvent& event);
    bool gridKey(QKeyEvent& event);
    void SuodatinChange();
    void asetaAlue();
    void AlueRajausClick(bool on);
    bool commonKey(QKeyEvent& event);
    bool moveToNearest(const QString& text);

    // filters
    void asetaSuodatin(const QString& text);
    void recordSearch(const GridColumn& column);
    void applyFilter();
    void PassiivisetClick();
    QString lookupExpression(const ColumnLookup& lookup, const QString& name);

    // rows
    void currentChanged(int row);
    void wantVisible();
    void showRows(std::optional<RecordRows::Range> range, RecordRows::Accept accept);
    void describeRows();
    std::optional<data::StoredRecord> currentRecord() const;
    bool placeTable(int row);
    bool isStillShown(const data::StoredRecord& shown) const;
    void goToRow(int row);
    void refreshRows(bool all);
    void showRechecked();
    void rowIsGone(const std::optional<data::StoredRecord>& shown);
    void tellError(const QString& text);
    void DBGrid1DblClick();
    void Peruuta();
    void startRowDrag();
    void updateNavigator();

    QString m_tableName;
    QString m_baseFilter;
    QString m_initialIndex = QStringLiteral("0");
    QString m_resultField;
    QString m_userFilter;
    QString m_suodatinText;  // as asetaSuodatin keeps it
    bool m_matchAnywhere = false;
    bool m_hasPassive = false;
    bool m_suppressCompletion = false;
    bool m_created = false;
    bool m_shown = false;          // rows have been shown once
    bool m_activatedOnce = false;  // the first activation shows what was just read
    bool m_ownActivation = false;  // the next one is the window's own doing: nothing is read anew
    bool m_leaving = false;
    bool m_recordFiltering = false;  // the rows are those of a record-by-record search
    bool m_searchSecondName = false;
    QStringList m_users;
    ChooseHandler m_choose;
    std::optional<RecordRows::Range> m_range;
    QAction* m_first;
    QAction* m_prior;
    QAction* m_next;
    QAction* m_last;
    QLabel* m_count;      // how many rows there are
    QLabel* m_condition;  // what restricts them
    std::unique_ptr<data::TtbTable> m_table;
    std::unique_ptr<TableModel> m_model;
};

}  // namespace search
