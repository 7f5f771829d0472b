#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

/// A thin cover over SQLite: owners, and queries that are always reset. One thread at a time.
namespace Platform::Host::Sqlite {

struct Close {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
/// A prepared statement; null when its text or the database is wrong.
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

/// Opens the file or makes it. Null when that fails. A call that finds the database locked by
/// another process waits for it that long.
Database Open(const std::string& file, int busyMilliseconds);
Statement Prepare(const Database& database, const char* text);
/// Runs statements that give no rows. The answer is SQLite's.
[[nodiscard]] int Execute(const Database& database, const char* text);

/// One run of a prepared statement. Parameters are bound from the first on, and what is bound has
/// to outlive the query.
class Query {
public:
    explicit Query(const Statement& statement) : statement_(statement.get()) {}
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    Query& Bind(std::string_view text);
    Query& Bind(std::uint32_t number);
    Query& Bind(std::span<const std::byte> data);

    /// True when there is a row; false at the end and on an error.
    bool Next();
    /// Runs a statement without rows, or up to the first row.
    int Run();
    /// SQLite's answer to the last step.
    int Result() const { return result_; }

    std::uint32_t Number(int column) const;
    std::string_view Text(int column) const;  ///< valid until the next step
    std::vector<std::byte> Data(int column) const;

private:
    sqlite3_stmt* statement_;
    int bound_ = 0;
    int result_ = SQLITE_OK;
};

}  // namespace Platform::Host::Sqlite
