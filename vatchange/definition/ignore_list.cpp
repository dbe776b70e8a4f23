#include "vatchange/definition/ignore_list.h"

#include <algorithm>

namespace vatchange {

IgnoreList parseIgnoreList(const QString& text) {
    IgnoreList list;
    for (const QString& part : text.split(u',')) {
        const QString item = part.trimmed();
        if (item.isEmpty())
            continue;
        const bool digits = std::all_of(item.begin(), item.end(), [](QChar character) {
            return character >= u'0' && character <= u'9';
        });
        bool fits = false;
        const qint64 number = item.toLongLong(&fits);
        if (digits && fits)
            list.numbers += number;
        else
            list.dropped += item;
    }
    return list;
}

}  // namespace vatchange
