// The people who may open the web page: passwords are kept as Argon2id
// hashes (libsodium's interactive limits: about 64 MiB and a tenth of a
// second a hash), never as given.
#pragma once

#include <string>

#include "velqua/records/common.h"
#include "velqua/store/store.h"

namespace velqua_web {

// A refused user: a bad name, role or password.
class UserError : public velqua_records::Failure {
 public:
  using Failure::Failure;
};

// The Argon2id hash string of a password. Throws UserError when the
// hashing cannot get its memory.
std::string HashPassword(const std::string& password);

// Whether the password is the one hashed (false for a malformed hash).
bool CheckPassword(const std::string& hash, const std::string& password);

// Adds the user, or sets a new role and password for the one of that name.
// A name is 1 to 64 letters, digits, '.', '_', '-' or '@'; a role "admin"
// or "viewer"; a password at least 8 bytes and at most 1,024. Throws
// UserError naming what is wrong; StoreError.
void AddUser(velqua_store::Store& store, const std::string& name, const std::string& role,
             const std::string& password);

}  // namespace velqua_web
