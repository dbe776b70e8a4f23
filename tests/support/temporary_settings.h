#pragma once

#include <QTemporaryDir>

namespace test {

/// The folder that the whole test program uses as XDG_CONFIG_HOME: empty at its start, gone at its
/// end.
QString settingsFolder();

}  // namespace test
