// Any text as a statement: its parameters are found, and every dialect's rewriting ends, is
// idempotent where promised, and keeps the parameters.

#include "data/sql/uni_query.h"
#include "engines/embedded/sql_text.h"
#include "engines/shops/dialect.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 2048)  // the rewriting of nested calls is not linear
        return 0;
    const QString sql = inputText(data, size);
    const QStringList names = data::parameterNames(sql);
    for (const QString& name : names)
        require(!name.isEmpty() && sql.contains(u':' + name));
    require(data::parameterNames(engines::embedded::engineText(sql)).size() <= names.size());
    for (const char* engine : {"", "OpenLink Virtuoso", "MariaDB", "SQLite"}) {
        const engines::shops::Dialect& dialect = engines::shops::dialectFor(QLatin1String(engine));
        const engines::shops::RewrittenSql rewritten =
            dialect.rewritten(sql, [](const QString& column) {
                return column.endsWith(QLatin1String("pvm"), Qt::CaseInsensitive);
            });
        for (const QString& parameter : rewritten.parameters)
            require(names.contains(parameter, Qt::CaseInsensitive));
    }
    return 0;
}
