#include "data/dictionary/resources.h"

#include <QDir>

// Q_INIT_RESOURCE declares a function in the global namespace.
static void initialize() {
    Q_INIT_RESOURCE(dictionary);
}

namespace data {

void initDictionaryResources() {
    static const bool done = [] {
        initialize();
        return true;
    }();
    static_cast<void>(done);
}

}  // namespace data
