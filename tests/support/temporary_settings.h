#pragma once

#include <QTemporaryDir>

namespace test {

/// XDG_CONFIG_HOME of the whole test program: empty at its start, deleted at its end.
QString settingsFolder();

}  // namespace test
