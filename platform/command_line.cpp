#include "platform/command_line.h"

#include <algorithm>

#include "platform/text_order.h"

namespace platform {

namespace {

QStringList& stored() {
    static QStringList list;
    return list;
}

QString withSlash(const QString& parameter) {
    return parameter.startsWith(u'-') ? u'/' + parameter.sliced(1) : parameter;
}

bool contains(const QString& name, qsizetype from) {
    const QStringList& list = stored();
    return std::any_of(list.begin() + std::min(from, list.size()), list.end(),
                       [&name](const QString& parameter) { return sameSwitch(parameter, name); });
}

}  // namespace

bool sameSwitch(const QString& parameter, const QString& name) {
    return sameIgnoringAsciiCase(withSlash(parameter), withSlash(name));
}

void setParameters(const QStringList& parameters) {
    stored() = parameters;
}

const QStringList& parameters() {
    return stored();
}

bool hasSwitch(const QString& name) {
    return contains(name, 0);
}

bool hasSwitchAfterFirst(const QString& name) {
    return contains(name, 1);
}

}  // namespace platform
