#pragma once

#include "data/record/tb_table.h"
#include "vatchange/orders/alv_muutos_mt.h"

namespace vatchange {

/// A float field with the precision that its storage keeps.
class AmountField {
  public:
    AmountField(data::TtbTable& table, const char* name)
        : m_field(table.fieldByName(QString::fromLatin1(name))) {
        const data::RecordLayout& layout = table.layout();
        const data::TFieldCacheItem& item = layout.field(layout.indexOf(m_field.fieldName()));
        if (item.storage == data::Storage::Float && item.storedLength == sizeof(float))
            m_precision = Amount::Precision::Single;
    }
    Amount get() const { return Amount(m_field.asFloat(), m_precision); }
    Amount empty() const { return Amount(0.0, m_precision); }
    void set(double value) { m_field.setFloat(value); }
    const data::TField& field() const { return m_field; }

  private:
    data::TField& m_field;
    Amount::Precision m_precision = Amount::Precision::Double;
};

inline data::TField& fieldOf(data::TtbTable& table, const char* name) {
    return table.fieldByName(QString::fromLatin1(name));
}

/// The fields of a sales order's header and rows, looked up once.
struct TAlvMuutosMt::SalesFields {
    SalesFields(data::TtbTable& header, data::TtbTable& row)
        : veloitustapa(fieldOf(header, "Veloitustapa")),
          summa(header, "summa"),
          headerKate(header, "kate"),
          headerKateAlv0(header, "katealv0"),
          summaAlv0(header, "summaALV0"),
          tilausNro(fieldOf(row, "tilausnro")),
          riviNro(fieldOf(row, "rivinro")),
          verokanta(fieldOf(row, "verokanta")),
          ostoVero(fieldOf(row, "OstoVero")),
          toimitettava(fieldOf(row, "Toimitettava")),
          maara(fieldOf(row, "Maara")),
          alennus(fieldOf(row, "alennus")),
          ahinta(row, "Ahinta"),
          ahintaAlv0(row, "AhintaAlv0"),
          ostohinta(row, "ostohinta"),
          ostohintaAlv0(row, "OstohintaAlv0"),
          netto(row, "netto"),
          kate(row, "kate"),
          kateAlv0(row, "katealv0"),
          rakenneEmo(fieldOf(row, "rakenneEmo")),
          pakettiLapsi(fieldOf(row, "pakettilapsi")),
          onVariKokoEmo(fieldOf(row, "OnVariKokoEmo")) {}

    data::TField& veloitustapa;
    AmountField summa;
    AmountField headerKate;
    AmountField headerKateAlv0;
    AmountField summaAlv0;

    data::TField& tilausNro;
    data::TField& riviNro;
    data::TField& verokanta;
    data::TField& ostoVero;
    data::TField& toimitettava;
    data::TField& maara;
    data::TField& alennus;
    AmountField ahinta;
    AmountField ahintaAlv0;
    AmountField ostohinta;
    AmountField ostohintaAlv0;
    AmountField netto;
    AmountField kate;
    AmountField kateAlv0;
    data::TField& rakenneEmo;
    data::TField& pakettiLapsi;
    data::TField& onVariKokoEmo;
};

/// The same of a purchase order.
struct TAlvMuutosMt::PurchaseFields {
    PurchaseFields(data::TtbTable& header, data::TtbTable& row)
        : summa(header, "summa"),
          summaAlv0(header, "SummaAlv0"),
          riviNro(fieldOf(row, "RiviNro")),
          alvLuokka(fieldOf(row, "AlvLuokka")),
          tulematta(fieldOf(row, "Tulematta")),
          ostoHinta(row, "OstoHinta"),
          ostoHintaAlv0(row, "OstoHintaAlv0"),
          maara(fieldOf(row, "Maara")),
          alennus(fieldOf(row, "Alennus")),
          rowSumma(row, "Summa"),
          variKokoLapsi(fieldOf(row, "VariKokoLapsi")) {}

    /// The persistent fields of the row table; the others of its dictionary are not opened.
    static std::vector<data::FieldDeclaration> declarations() {
        std::vector<data::FieldDeclaration> fields;
        for (const char* name : {"TilausNro", "RiviNro", "AlvLuokka", "Tulematta", "OstoHinta",
                                 "OstoHintaAlv0", "Maara", "Alennus", "Summa", "VariKokoLapsi"}) {
            data::FieldDeclaration field;
            field.name = QString::fromLatin1(name);
            if (field.name == QLatin1String("OstoHinta"))
                field.displayFormat = QStringLiteral("#0.00");
            fields.push_back(field);
        }
        return fields;
    }

    AmountField summa;
    AmountField summaAlv0;

    data::TField& riviNro;
    data::TField& alvLuokka;
    data::TField& tulematta;
    AmountField ostoHinta;
    AmountField ostoHintaAlv0;
    data::TField& maara;
    data::TField& alennus;
    AmountField rowSumma;
    data::TField& variKokoLapsi;
};

}  // namespace vatchange
