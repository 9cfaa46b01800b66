#include "velqua/web/users.h"

#include <sodium.h>

#include "velqua/store/users.h"

namespace velqua_web {
namespace {

void StartSodium() {
  if (sodium_init() < 0) throw UserError("libsodium could not start");
}

bool NameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '_' || c == '-' || c == '@';
}

}  // namespace

std::string HashPassword(const std::string& password) {
  StartSodium();
  char hash[crypto_pwhash_STRBYTES];
  if (crypto_pwhash_str(hash, password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    throw UserError("hashing the password ran out of memory");
  }
  return hash;
}

bool CheckPassword(const std::string& hash, const std::string& password) {
  StartSodium();
  if (hash.size() >= crypto_pwhash_STRBYTES) return false;
  return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

void AddUser(velqua_store::Store& store, const std::string& name, const std::string& role,
             const std::string& password) {
  if (name.empty() || name.size() > 64) {
    throw UserError("a user name has 1 to 64 characters");
  }
  for (char c : name) {
    if (!NameCharacter(c)) {
      throw UserError("user name '" + name +
                      "': only letters, digits, '.', '_', '-' and '@' are allowed");
    }
  }
  if (role != "admin" && role != "viewer") {
    throw UserError("role '" + role + "': use admin or viewer");
  }
  if (password.size() < 8) throw UserError("a password has at least 8 characters");
  if (password.size() > 1024) throw UserError("a password has at most 1024 characters");
  velqua_store::PutUser(store, {name, role, HashPassword(password), ""});
}

}  // namespace velqua_web
