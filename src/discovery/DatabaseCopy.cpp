#include "discovery/DatabaseCopy.h"

#include "crypto/CHandle.h"
#include "discovery/ClientFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>

namespace nimbrel {

namespace {

using Database = CHandle<sqlite3, sqlite3_close>;
using Statement = CHandle<sqlite3_stmt, sqlite3_finalize>;

bool copyFile(const QString &from, const QString &to)
{
    const auto bytes = clientFile(from);
    QFile file(to);
    return bytes && file.open(QFile::WriteOnly) &&
           file.write(QByteArray::fromStdString(*bytes)) == static_cast<qint64>(bytes->size()) &&
           file.flush();
}

// A table may be a view that never ends: the query does.
void setBounds(sqlite3 *database)
{
    constexpr int maximumValue = 1 << 16;
    constexpr int maximumSteps = 20'000; // of SQLite's machine: a table of settings takes hundreds
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, maximumValue);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_progress_handler(
        database, maximumSteps, [](void *) { return 1; }, nullptr);
}

Database openDatabase(const QString &path)
{
    sqlite3 *opened = nullptr;
    const int code = sqlite3_open_v2(QFile::encodeName(path).constData(), &opened,
                                     SQLITE_OPEN_READWRITE, nullptr);
    Database database(opened);
    if (code != SQLITE_OK)
        return nullptr;
    setBounds(database.get());
    return database;
}

Statement prepare(sqlite3 *database, const char *query)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, query, -1, &statement, nullptr);
    return Statement(statement);
}

std::optional<QByteArray> linesOf(sqlite3_stmt *statement)
{
    constexpr qsizetype maximumSize = 1 << 20;
    QByteArray lines;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW && lines.size() < maximumSize) {
        const unsigned char *const text = sqlite3_column_text(statement, 0);
        lines.append(reinterpret_cast<const char *>(text)).append('\n'); // null is an empty line
    }
    return code == SQLITE_DONE ? std::optional(lines) : std::nullopt;
}

} // namespace

std::optional<QByteArray> databaseLines(const QString &path, const char *query)
{
    if (!somethingExists(path))
        return std::nullopt;
    const QTemporaryDir folder; // only its maker may look in
    const QString copy = folder.filePath(QStringLiteral("copy.db"));
    if (!folder.isValid() || !copyFile(path, copy))
        return std::nullopt;
    for (const char *part : {"-wal", "-journal"}) {
        const QLatin1String suffix(part);
        if (somethingExists(path + suffix) && !copyFile(path + suffix, copy + suffix))
            return std::nullopt;
    }
    const Database database = openDatabase(copy);
    const Statement statement = database ? prepare(database.get(), query) : nullptr;
    return statement ? linesOf(statement.get()) : std::nullopt;
}

} // namespace nimbrel
