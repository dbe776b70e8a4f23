#include "vatchange/journal/order_fingerprint.h"

#include <QCryptographicHash>
#include <QList>

namespace vatchange {

namespace {

constexpr int kRowsAtATime = 200;
const QByteArray kOrderWord = QByteArrayLiteral("order");

}  // namespace

QByteArray orderFingerprint(data::TableFile& headers, data::TableFile& rows, qint64 number) {
    const data::KeyValues key{data::Value(number)};
    const auto header = headers.seek(0, data::SeekOp::Equal, key, 1);
    if (header.empty())
        return {};
    QCryptographicHash hash(QCryptographicHash::Md5);
    hash.addData(header.front().bytes);
    auto records = rows.seek(0, data::SeekOp::Equal, key, kRowsAtATime);
    while (!records.empty()) {
        for (const data::StoredRecord& record : records) {
            if (rows.compare(0, record.bytes, key) != 0)
                return hash.result().toHex();
            hash.addData(record.bytes);
        }
        const data::StoredRecord last = std::move(records.back());
        records = rows.next(0, last, data::Direction::Forward, kRowsAtATime);
    }
    return hash.result().toHex();
}

QByteArray orderMarkText(const OrderMark& mark) {
    return kOrderWord + ' ' + mark.table.toUtf8() + ' ' + QByteArray::number(mark.number) + ' ' +
           mark.fingerprint;
}

std::optional<OrderMark> orderMarkOf(const QByteArray& text) {
    const QList<QByteArray> words = text.split(' ');
    if (words.size() != 4 || words[0] != kOrderWord)
        return std::nullopt;
    return OrderMark{QString::fromUtf8(words[1]), words[2].toLongLong(), words[3]};
}

}  // namespace vatchange
