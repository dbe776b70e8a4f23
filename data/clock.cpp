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
    return source() ? source()() : QDateTime::currentDateTime();
}

Clock::Override::Override(std::function<QDateTime()> replacement)
    : m_previous(std::exchange(source(), std::move(replacement))) {}

Clock::Override::~Override() {
    source() = std::move(m_previous);
}

}  // namespace data
