#pragma once

#include <QDialog>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "data/table/tb_table.h"
#include "platform/ini_file.h"
#include "search/filter_state.h"
#include "search/form_layout.h"
#include "search/grid_header.h"
#include "search/key_search.h"
#include "search/row_cursor.h"
#include "search/search_controls.h"

namespace search {

/// The browsing window over one record table: order by any key, nearest search, filters by dropping
/// a text on a column, a range of the key, passive records, layout in "FORMS.INI".
///
/// The form connects its controls to the parts that do the work: FilterState (what restricts the
/// rows), KeySearch and Completion (typing a key value), TableModel (the rows: pages by key,
/// filter, idle counting), RowCursor (the current row), GridHeader and FormLayout (columns and
/// sizes). `Hakutable` stands on the grid's current record, whatever the filter.
///
/// Use: construct, set table, base filter, handler; then FormCreate() (the first show calls it
/// otherwise). A descendant calls FormCreate() at the end of its constructor, so that its own hooks
/// are called.
class TBtrHakuForm : public QDialog, public SearchControls {
    Q_OBJECT
  public:
    /// Called with the grid as sender and the table standing on the chosen record. The form may be
    /// closing already: keep no pointer to either.
    using ChooseHandler = std::function<void(QTableView* sender, const data::TtbTable& record)>;

    /// `componentName` is the form's section in "FORMS.INI".
    explicit TBtrHakuForm(const QString& componentName = QStringLiteral("BtrHakuForm"),
                          QWidget* parent = nullptr);
    ~TBtrHakuForm() override;

    // --- before FormCreate()
    void setTableName(const QString& name) { m_tableName = name; }
    /// The caller's own filter ("passiivinen = false"); may be changed later.
    void setBaseFilter(const QString& expression);
    const QString& baseFilter() const { return m_filter.baseFilter(); }
    /// Key to begin with, by number ("0"); a saved "Lajittelu" of the layout wins.
    void setIndexName(const QString& number) { m_initialIndex = number; }
    /// The window is never opened smaller than this because of its last size; a saved layout may
    /// be.
    void setFirstSize(const QSize& size);
    /// The field whose value a choice returns and a drag carries ("numero"); default: the first
    /// field of key 0.
    void setResultField(const QString& field) { m_resultField = field; }
    const QString& resultField() const { return m_resultField; }

    void setChooseHandler(ChooseHandler handler) { m_choose = std::move(handler); }

    /// Opens the table, creates the columns, reads layout and settings. Once.
    /// @throws data::DataError if the table cannot be opened.
    void FormCreate();

    // --- what a caller gets
    /// The selected records, in the order of the rows.
    std::vector<data::StoredRecord> Valitut() const { return m_view->cursor.selected(); }
    int Valittuja() const { return m_view->cursor.selectedCount(); }
    /// A field's value in the current record (name case-insensitive); invalid without a record.
    /// @throws data::DataError(NoSuchField)
    data::Value KenttaArvo(const QString& field) const;

    // --- users: a form that serves several caller windows stays open while one is registered
    void lisaaKayttaja(const QString& caller);
    void poistaKayttaja(const QString& caller);
    bool OnkoKayttajia(const QString& caller = {}) const;
    /// Closed for good: deletes itself when control returns to the event loop.
    bool isLeaving() const { return m_stage == Stage::Leaving; }

    // --- layout
    void Tallennus(bool withHeight);  ///< @throws data::DataError(Io, ...)
    void Lataus();

    data::TtbTable* const Hakutable;

    TableModel& model() const { return m_view->model; }
    QString userFilter() const { return m_filter.userFilter(); }
    /// The table's current filter expression.
    QString tableFilter() const { return changedFilter().expression(); }

    /// Orders by the key at this index of IndexCombo.
    void selectIndex(int place);
    /// Moves to the nearest record in a key, by number as text; `value`: of the key's first field.
    /// @return false if there is no such key or its field cannot store the value.
    bool gotoNearest(const QString& index, const QString& value);
    /// A text dropped on a column.
    void dropText(const QString& text, int column, bool onIndicator = false);
    /// Removes user filter and range; the base filter stays.
    void NollaaSuodin();

  protected:
    // --- what descendants add
    /// The columns before any saved layout; default: every field of the table. Computed columns
    /// are listed here too. The table is open.
    virtual std::vector<GridColumn> defaultColumns() const;
    /// Whether a column may be shown ("VERKKOKAUPPA" only with the integration).
    virtual bool columnAllowed(const QString& field) const;
    /// Called when the fields exist, before rows are shown: set display formats and values of
    /// Hakutable's fields, create lookups.
    virtual void afterOpen() {}
    /// Saves the descendant's own keys in the form's section of "FORMS.INI".
    virtual void saveExtra(platform::IniFile& file, const QString& section) const;
    virtual void loadExtra(const platform::IniFile& file, const QString& section);
    /// Accepts or rejects a record in record-by-record search. Called for records that match.
    virtual bool PerusSuodata(const GridRow& row) const;
    virtual CellColours cellColours(const GridRow& row, const GridColumn& column) const;
    /// The lookup behind a column's shown texts, for drops; default: a number dropped on the name
    /// of an order's delivery or billing customer finds the customer by number.
    virtual std::optional<ColumnLookup> columnLookup(const QString& field) const;
    /// Handles a drop in the descendant; @return true if handled. May set a user filter.
    virtual bool dropOnColumn(const QString& text, const GridColumn& column);
    /// Handles a key pressed in Suodatin before the form does. @return true if handled.
    virtual bool filterKey(QKeyEvent& event);
    /// Drops the descendant's caches (activation, refresh).
    virtual void dropCaches() {}

    /// `words`: what the user is shown instead of the expression.
    void setUserFilter(const QString& expression, const QString& words = {});
    /// Shows the records that `test` accepts, found by reading the whole table with the wait window
    /// open. `words`: what the user searches for, with the column.
    /// @return false if the user cancelled (the rows stay).
    bool searchRecords(const RowTest& test, const QString& words,
                       const std::optional<KeyTextTest>& byKey = {});
    const data::RecordLayout& recordLayout() const { return Hakutable->layout(); }

    /// The program's only window of a class; null if there is none.
    template <class Form>
    static QPointer<Form>& onlyForm() {
        static QPointer<Form> only;
        return only;
    }
    /// The same, created if there is none or it is closing.
    template <class Form>
    static Form* onlyForm(QWidget* parent) {
        QPointer<Form>& only = onlyForm<Form>();
        if (only.isNull() || only->isLeaving())
            only = new Form(parent);
        return only;
    }

    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void done(int result) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void connectControls();
    void connectNavigator();
    void fillIndexes();
    void readSettings();
    void columnMenu(const QPoint& place);
    void chooseColumns();
    void sortByColumn(int column);
    void showOrder();
    void showHints();
    QString keyHeading() const;
    void TallennaClick(bool withHeight);
    bool guarded(const std::function<void()>& work);
    void showError(const QString& text);

    // keys and searching
    void IndexComboCloseUp();
    void stepIndex(int by);
    void SearchEditChange();
    void TimerTimer();
    bool moveToNearest(const QString& text);
    void searchNow();
    void quickSearch();
    bool searchEditKey(QKeyEvent& event);
    bool suodatinKey(QKeyEvent& event);
    bool gridKey(QKeyEvent& event);
    bool commonKey(QKeyEvent& event);
    void asetaAlue();
    void AlueRajausClick(bool on);

    // filters
    FilterState changedFilter() const;
    void applyFilter(FilterState filter);
    void showRows(FilterState filter, RowTest test);
    void describeRows();
    void SuodatinChange();
    void PassiivisetClick();
    void dropFiltered(const QString& text, const GridColumn& column);
    void searchColumn(const GridColumn& column, const SearchText& search);
    bool walkRecords(const RowTest& test, const std::optional<KeyTextTest>& byKey);

    // rows
    void goToRow(int row);
    void currentChanged(const QModelIndex& current, const QModelIndex& previous);
    void refreshRows(bool all);
    void updateNavigator();
    void startRowDrag();
    void DBGrid1DblClick();
    void choose();
    bool isStillShown(const data::StoredRecord& shown) const;
    void rowIsGone(const std::optional<data::StoredRecord>& shown);
    void Peruuta();

    /// Exists while the table is open.
    struct View {
        explicit View(TBtrHakuForm& form);
        TableModel model;
        RowCursor cursor;
        KeySearch keys;
        GridHeader header;
    };
    /// Opening ends when rows are shown for the first time, Leaving begins with the last close.
    enum class Stage { Opening, Showing, Leaving };
    /// The next activation does not reread rows that were read just before it.
    enum class NextActivation { KeepsRows, Rereads };

    QString m_tableName;
    QString m_initialIndex = QStringLiteral("0");
    QString m_resultField;
    QSize m_firstSize;
    bool m_bothNames = false;  // a setting: searches of "nimi" look at "nimi2" too
    Stage m_stage = Stage::Opening;
    NextActivation m_nextActivation = NextActivation::KeepsRows;
    FilterState m_filter;
    Completion m_completion;
    QStringList m_users;
    ChooseHandler m_choose;
    data::TtbTable m_table;
    std::unique_ptr<View> m_view;
};

}  // namespace search
