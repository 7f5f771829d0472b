#include "platform/host/registry_store.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <utility>

#include "platform/host/descriptor.h"
#include "platform/host/errors.h"
#include "platform/host/machine.h"
#include "platform/text.h"

namespace Platform::Host {

namespace {

using Sqlite::Query;

constexpr int BusyMilliseconds = 30'000;
constexpr std::uint32_t SchemaVersion = 1;

constexpr const char* ConnectionSettings = "PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON;";

// Names are compared by what the folding made of them; the name as it was first written is kept.
constexpr const char* Schema = R"(
PRAGMA journal_mode = WAL;
BEGIN IMMEDIATE;
CREATE TABLE IF NOT EXISTS keys (
    id TEXT PRIMARY KEY,
    path TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS entries (
    key TEXT NOT NULL REFERENCES keys ON DELETE CASCADE,
    id TEXT NOT NULL,
    name TEXT NOT NULL,
    type INTEGER NOT NULL,
    data BLOB NOT NULL,
    PRIMARY KEY (key, id));
INSERT OR IGNORE INTO keys VALUES ('', '');
PRAGMA user_version = 1;
COMMIT;
)";

// Everything below a key sorts between its id with a "\" and its id with the next character.
constexpr const char* FindKeyText = "SELECT 1 FROM keys WHERE id = ?1";
constexpr const char* InsertKeyText = "INSERT OR IGNORE INTO keys VALUES (?1, ?2)";
constexpr const char* RemoveTreeText =
    R"(DELETE FROM keys WHERE id = ?1 OR (id > ?1 || '\' AND id < ?1 || ']'))";
constexpr const char* ListKeysText =
    R"(SELECT path FROM keys WHERE id > ?1 AND id < ?2 AND instr(substr(id, length(?1) + 1), '\') = 0
       ORDER BY id)";
constexpr const char* ReadValueText = "SELECT type, data FROM entries WHERE key = ?1 AND id = ?2";
constexpr const char* WriteValueText =
    "INSERT INTO entries VALUES (?1, ?2, ?3, ?4, ?5) "
    "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data";
constexpr const char* RemoveValueText = "DELETE FROM entries WHERE key = ?1 AND id = ?2";
constexpr const char* ListValuesText =
    "SELECT type, data, name FROM entries WHERE key = ?1 ORDER BY id";

Error ErrorFromSqlite(int code) {
    switch (code & 0xFF) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return Error::None;
        case SQLITE_NOMEM:
        case SQLITE_TOOBIG:
            return Error::NotEnoughMemory;
        case SQLITE_FULL:
            return Error::DiskFull;
        case SQLITE_CONSTRAINT:
            return Error::KeyDeleted;
        default:
            return Error::AccessDenied;
    }
}

/// For a statement that looks for one row.
Error ErrorOfRow(int result) {
    return result == SQLITE_DONE ? Error::FileNotFound : ErrorFromSqlite(result);
}

bool LockAlone(const Descriptor& file) {
    struct flock whole {};
    whole.l_type = F_WRLCK;
    while (fcntl(file.Get(), F_OFD_SETLKW, &whole) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

std::uint32_t ReadSchemaVersion(const Sqlite::Database& database) {
    const Sqlite::Statement statement = Sqlite::Prepare(database, "PRAGMA user_version");
    Query query(statement);
    return query.Next() ? query.Number(0) : 0;
}

std::string Fold(const std::wstring& name) {
    return Utf8FromWide(LowerCase(name));
}

/// The path without leading, trailing and doubled separators.
std::wstring Tidy(const std::wstring& path) {
    std::wstring tidy;
    bool separate = false;
    for (const wchar_t character : path) {
        if (character == L'\\') {
            separate = !tidy.empty();
            continue;
        }
        if (separate) tidy += L'\\';
        separate = false;
        tidy += character;
    }
    return tidy;
}

}  // namespace

std::string RegistryKeyId(const std::wstring& path) {
    return Fold(Tidy(path));
}

RegistryStore& RegistryStore::Instance() {
    static RegistryStore store(RegistryFile());
    return store;
}

RegistryStore::RegistryStore(const std::string& file) : openError_(Open(file)) {}

Error RegistryStore::Open(const std::string& file) {
    // Processes that make one database at the same moment fail in spite of the time-out.
    const Descriptor guard(open((file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!guard || !LockAlone(guard)) return ErrorFromErrno(errno);
    database_ = Sqlite::Open(file, BusyMilliseconds);
    if (!database_) return Error::AccessDenied;
    int result = Sqlite::Execute(database_, ConnectionSettings);
    if (result == SQLITE_OK && ReadSchemaVersion(database_) != SchemaVersion) {
        result = Sqlite::Execute(database_, Schema);
    }
    if (result != SQLITE_OK) return ErrorFromSqlite(result);

    const std::pair<Sqlite::Statement&, const char*> statements[] = {
        {findKey_, FindKeyText},         {insertKey_, InsertKeyText},
        {removeTree_, RemoveTreeText},   {listKeys_, ListKeysText},
        {readValue_, ReadValueText},     {writeValue_, WriteValueText},
        {removeValue_, RemoveValueText}, {listValues_, ListValuesText},
    };
    for (const auto& [statement, text] : statements) {
        statement = Sqlite::Prepare(database_, text);
        if (!statement) return Error::AccessDenied;
    }
    return Error::None;
}

Error RegistryStore::FindKey(const std::string& key) {
    const std::lock_guard lock(mutex_);
    if (!Succeeded(openError_)) return openError_;
    return ErrorOfRow(Query(findKey_).Bind(key).Run());
}

Error RegistryStore::CreateKey(const std::wstring& path) {
    const std::lock_guard lock(mutex_);
    if (!Succeeded(openError_)) return openError_;
    const std::wstring tidy = Tidy(path);
    if (Query(findKey_).Bind(Fold(tidy)).Run() == SQLITE_ROW) return Error::None;
    const int begun = Sqlite::Execute(database_, "BEGIN IMMEDIATE");
    if (begun != SQLITE_OK) return ErrorFromSqlite(begun);
    int result = InsertKeys(tidy);
    if (result == SQLITE_DONE) result = Sqlite::Execute(database_, "COMMIT");
    if (sqlite3_get_autocommit(database_.get()) == 0) {
        static_cast<void>(Sqlite::Execute(database_, "ROLLBACK"));  // the first error counts
    }
    return ErrorFromSqlite(result);
}

int RegistryStore::InsertKeys(const std::wstring& path) {
    int result = SQLITE_DONE;
    for (std::size_t end = 0; end < path.size() && result == SQLITE_DONE;) {
        end = std::min(path.find(L'\\', end + 1), path.size());
        const std::wstring key = path.substr(0, end);
        const std::string id = Fold(key);
        const std::string text = Utf8FromWide(key);
        result = Query(insertKey_).Bind(id).Bind(text).Run();
    }
    return result;
}

Error RegistryStore::RemoveTree(const std::string& key) {
    const std::lock_guard lock(mutex_);
    if (!Succeeded(openError_)) return openError_;
    return ErrorOfChange(Query(removeTree_).Bind(key).Run());
}

Error RegistryStore::ListKeys(const std::string& key, std::vector<std::wstring>& names) {
    const std::lock_guard lock(mutex_);
    names.clear();
    if (!Succeeded(openError_)) return openError_;
    const std::string first = key.empty() ? "" : key + '\\';
    const std::string end = key.empty() ? "\xFF" : key + ']';
    Query query(listKeys_);
    query.Bind(first).Bind(end);
    while (query.Next()) {
        const std::wstring path = WideFromUtf8(query.Text(0));
        names.push_back(path.substr(path.rfind(L'\\') + 1));
    }
    return ErrorFromSqlite(query.Result());
}

Error RegistryStore::ReadValue(const std::string& key, const std::wstring& name,
                               RegistryValue& value) {
    const std::lock_guard lock(mutex_);
    value = {};
    if (!Succeeded(openError_)) return openError_;
    const std::string id = Fold(name);
    Query query(readValue_);
    query.Bind(key).Bind(id);
    if (query.Next()) value = {static_cast<RegistryType>(query.Number(0)), query.Data(1)};
    return ErrorOfRow(query.Result());
}

Error RegistryStore::WriteValue(const std::string& key, const std::wstring& name, RegistryType type,
                                std::span<const std::byte> data) {
    const std::lock_guard lock(mutex_);
    if (!Succeeded(openError_)) return openError_;
    const std::string id = Fold(name);
    const std::string text = Utf8FromWide(name);
    Query query(writeValue_);
    query.Bind(key).Bind(id).Bind(text).Bind(static_cast<std::uint32_t>(type)).Bind(data);
    return ErrorFromSqlite(query.Run());
}

Error RegistryStore::RemoveValue(const std::string& key, const std::wstring& name) {
    const std::lock_guard lock(mutex_);
    if (!Succeeded(openError_)) return openError_;
    const std::string id = Fold(name);
    return ErrorOfChange(Query(removeValue_).Bind(key).Bind(id).Run());
}

Error RegistryStore::ListValues(const std::string& key, std::vector<NamedRegistryValue>& values) {
    const std::lock_guard lock(mutex_);
    values.clear();
    if (!Succeeded(openError_)) return openError_;
    Query query(listValues_);
    query.Bind(key);
    while (query.Next()) {
        values.push_back({WideFromUtf8(query.Text(2)),
                          {static_cast<RegistryType>(query.Number(0)), query.Data(1)}});
    }
    return ErrorFromSqlite(query.Result());
}

Error RegistryStore::ErrorOfChange(int result) const {
    if (result != SQLITE_DONE) return ErrorFromSqlite(result);
    return sqlite3_changes(database_.get()) > 0 ? Error::None : Error::FileNotFound;
}

}  // namespace Platform::Host
