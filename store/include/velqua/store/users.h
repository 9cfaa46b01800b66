// The people who may open the web page (velqua serve): a name, a role and
// the hash of a password. The store keeps only what it is given; hashing
// and checking passwords belong to the web layer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velqua/store/store.h"

namespace velqua_store {

struct User {
  std::string name;           // unique
  std::string role;           // "admin" or "viewer"
  std::string password_hash;  // an Argon2id hash string ("$argon2id$v=19$...")
  std::string created_utc;    // "YYYY-MM-DDTHH:MM:SSZ"; set by PutUser when ""
};

// Adds the user, or replaces the role and password hash of the user of
// that name (its creation time stays). Throws StoreError.
void PutUser(Store& store, const User& user);

// The user of that name, if stored.
std::optional<User> FindUser(Store& store, const std::string& name);

// Every user, by name.
std::vector<User> ListUsers(Store& store);

// Removes the user of that name; false when there was none.
bool RemoveUser(Store& store, const std::string& name);

// The number of users: the web page asks for a login once there is one.
int64_t CountUsers(Store& store);

}  // namespace velqua_store
