// The two engines' connections (sqlite_connection.cpp, postgres_connection.cpp).
#pragma once

#include <memory>
#include <string>

#include "sql.h"

namespace velqua_store {

// Opens or creates the SQLite file at `path`; `name` names it in messages.
std::unique_ptr<Connection> ConnectSqlite(const std::string& path, const std::string& name);

// Connects to PostgreSQL with a libpq URL; `name` is the URL without its password.
std::unique_ptr<Connection> ConnectPostgres(const std::string& url, const std::string& name);

}  // namespace velqua_store
