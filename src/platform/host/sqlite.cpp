#include "platform/host/sqlite.h"

namespace Platform::Host::Sqlite {

Database Open(const std::string& file, int busyMilliseconds) {
    sqlite3* opened = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
    Database database(opened);
    if (result != SQLITE_OK) return nullptr;
    sqlite3_busy_timeout(opened, busyMilliseconds);
    return database;
}

Statement Prepare(const Database& database, const char* text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(database.get(), text, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    return Statement(statement);
}

int Execute(const Database& database, const char* text) {
    return sqlite3_exec(database.get(), text, nullptr, nullptr, nullptr);
}

Query::~Query() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

Query& Query::Bind(std::string_view text) {
    sqlite3_bind_text64(statement_, ++bound_, text.empty() ? "" : text.data(), text.size(),
                        SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

Query& Query::Bind(std::uint32_t number) {
    sqlite3_bind_int64(statement_, ++bound_, number);
    return *this;
}

Query& Query::Bind(std::span<const std::byte> data) {
    // A null pointer would bind NULL.
    const void* bytes = data.empty() ? static_cast<const void*>("") : data.data();
    sqlite3_bind_blob64(statement_, ++bound_, bytes, data.size(), SQLITE_STATIC);
    return *this;
}

bool Query::Next() {
    result_ = sqlite3_step(statement_);
    return result_ == SQLITE_ROW;
}

int Query::Run() {
    Next();
    return result_;
}

std::uint32_t Query::Number(int column) const {
    return static_cast<std::uint32_t>(sqlite3_column_int64(statement_, column));
}

std::string_view Query::Text(int column) const {
    const auto* text = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::vector<std::byte> Query::Data(int column) const {
    const auto* data = static_cast<const std::byte*>(sqlite3_column_blob(statement_, column));
    return {data, data + sqlite3_column_bytes(statement_, column)};
}

}  // namespace Platform::Host::Sqlite
