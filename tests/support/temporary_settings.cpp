#include "tests/support/temporary_settings.h"

namespace test {

QString settingsFolder() {
    static QTemporaryDir folder;
    return folder.path();
}

}  // namespace test
