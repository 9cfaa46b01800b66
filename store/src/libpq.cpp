#include "libpq.h"

#include <dlfcn.h>

#include <cstring>

#include "velqua/store/store.h"

namespace velqua_store {
namespace {

LibPq Load() {
  void* library = ::dlopen("libpq.so.5", RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw StoreError(::dlerror());
  LibPq pq;
  // A symbol's address is an object pointer: copied, not cast, into the
  // function pointer.
#define VELQUA_LIBPQ_LOAD(name)                             \
  if (void* symbol = ::dlsym(library, #name)) {             \
    std::memcpy(&pq.name, &symbol, sizeof symbol);          \
  } else {                                                  \
    throw StoreError(std::string("libpq has no ") + #name); \
  }
  VELQUA_LIBPQ_FUNCTIONS(VELQUA_LIBPQ_LOAD)
#undef VELQUA_LIBPQ_LOAD
  return pq;
}

}  // namespace

const LibPq& Pq(const std::string& database) {
  try {
    static const LibPq pq = Load();  // a failed load is tried again on the next call
    return pq;
  } catch (const StoreError& e) {
    throw StoreError("database '" + database +
                     "': PostgreSQL needs libpq (Debian package libpq5): " + e.what());
  }
}

}  // namespace velqua_store
