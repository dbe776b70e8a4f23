#include <QApplication>
#include <QTest>
#include <QTimer>
#include "data/sql/uni_query.h"
#include "engines/embedded/embedded_database.h"
#include "framework/ui/program_style.h"
#include "vatchange/run/change_run.h"
#include "vatchange/views/changes_window.h"
class SilentPorts : public vatchange::RunPorts {
  public:
    bool unattended() const override { return true; }
    void NaytaViesti(const QString&) override {}
    void showMessage(const QString&) override {}
    bool ask(const QString&) override { return false; }
    void log(const QString&) override {}
    void status(const QString&) override {}
    void progress(qint64, qint64) override {}
    void processEvents() override {}
    bool cancelled() const override { return false; }
    QString programFileName() const override { return QStringLiteral("p"); }
    bool skipEarlyDateCheck() const override { return true; }
};
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Finnish));
    QApplication::setStyle(new framework::ProgramStyle);
    if (argc > 3 && QByteArray(argv[3]) == "dark") {
        QPalette p;
        p.setColor(QPalette::Window, QColor(42,46,50)); p.setColor(QPalette::WindowText, Qt::white);
        p.setColor(QPalette::Base, QColor(27,30,32)); p.setColor(QPalette::AlternateBase, QColor(35,38,41));
        p.setColor(QPalette::Text, QColor(252,252,252)); p.setColor(QPalette::Button, QColor(49,54,59));
        p.setColor(QPalette::ButtonText, Qt::white); p.setColor(QPalette::Highlight, QColor(61,174,233));
        app.setPalette(p);
    }
    auto db = engines::openEmbedded(QStringLiteral("KOE"), QString::fromLocal8Bit(argv[1]));
    if (db->journal()->runs().empty()) {
        vatchange::ChangeDefinition d;
        d.sourceClass = 1; d.targetClass = 5;
        for (int i = 0; i < 3; ++i) d.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], true};
        d.priceChangeLimit = 0.5;
        d.customerPriceLists = d.campaigns = d.quantityDiscounts = d.recurringInvoicing = true;
        d.salesOrders = d.salesOrderFromVat0 = true;
        d.purchaseOrders = d.purchaseOrderFromVat0 = true;
        SilentPorts ports;
        vatchange::runChange(*db, {d}, ports);
    }
    vatchange::ChangesContext c{QStringLiteral("Esimerkki"), QStringLiteral("Ajo 1: Alv 24 - 25,5, 1.9.2024 klo 6.30"), 1, db.get()};
    auto* w = vatchange::showRunChanges({1}, c, nullptr);
    while (w->isReading()) QTest::qWait(20);
    if (argc > 4) w->resize(QString::fromLatin1(argv[4]).section('x',0,0).toInt(), QString::fromLatin1(argv[4]).section('x',1,1).toInt());
    if (argc > 5) { for (auto* b : w->controls().finding) if (b->objectName() == QLatin1String(argv[5])) b->click(); }
    QTest::qWait(300);
    w->grab().save(QString::fromLocal8Bit(argv[2]));
    return 0;
}
