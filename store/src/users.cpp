#include "velqua/store/users.h"

#include "sql_store.h"

namespace velqua_store {
namespace {

User UserOf(const ResultRow& r) { return {r.Text(0), r.Text(1), r.Text(2), r.Text(3)}; }

}  // namespace

void PutUser(Store& store, const User& user) {
  ConnectionOf(store).Run(
      "INSERT INTO users (name, role, password_hash, created_utc) VALUES ($1, $2, $3, $4) "
      "ON CONFLICT (name) DO UPDATE SET role = excluded.role, "
      "password_hash = excluded.password_hash",
      {user.name, user.role, user.password_hash,
       user.created_utc.empty() ? UtcNow() : user.created_utc});
}

std::optional<User> FindUser(Store& store, const std::string& name) {
  std::optional<User> found;
  ConnectionOf(store).Run(
      "SELECT name, role, password_hash, created_utc FROM users WHERE name = $1", {name},
      [&](const ResultRow& r) { found = UserOf(r); });
  return found;
}

std::vector<User> ListUsers(Store& store) {
  std::vector<User> users;
  ConnectionOf(store).Run("SELECT name, role, password_hash, created_utc FROM users ORDER BY name",
                          {}, [&](const ResultRow& r) { users.push_back(UserOf(r)); });
  return users;
}

bool RemoveUser(Store& store, const std::string& name) {
  return ConnectionOf(store).Run("DELETE FROM users WHERE name = $1", {name}) > 0;
}

int64_t CountUsers(Store& store) {
  int64_t n = 0;
  ConnectionOf(store).Run("SELECT count(*) FROM users", {},
                          [&](const ResultRow& r) { n = r.Int(0); });
  return n;
}

}  // namespace velqua_store
