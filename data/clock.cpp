#include "data/clock.h"

#include <utility>

namespace data {

namespace {

std::function<QDateTime()>& source() {
    static std::function<QDateTime()> current;
    return current;
}

}  // namespace

QDateTime Clock::now() {
    if (source())
        return source()();
    static qint64 lastSecond = -1;
    static QDateTime last;
    const qint64 second = QDateTime::currentSecsSinceEpoch();
    if (second != lastSecond) {
        last = QDateTime::fromSecsSinceEpoch(second);
        lastSecond = second;
    }
    return last;
}

QDateTime Clock::preciseNow() {
    return source() ? source()() : QDateTime::currentDateTime();
}

Clock::Override::Override(std::function<QDateTime()> replacement)
    : m_previous(std::exchange(source(), std::move(replacement))) {}

Clock::Override::~Override() {
    source() = std::move(m_previous);
}

}  // namespace data
