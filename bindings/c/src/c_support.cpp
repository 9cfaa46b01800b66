// The per-thread last error, the text rules and the handle checks.
#include "c_support.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "velqua/error.h"
#include "velqua/records/common.h"
#include "velqua/texto.h"

namespace velqua_c {
namespace {

struct LastError {
  int32_t number = 0;
  std::u16string source;
  std::u16string description;
};

thread_local LastError tLast;

}  // namespace

int32_t Succeed() noexcept {
  tLast.number = 0;
  tLast.source.clear();
  tLast.description.clear();
  return 0;
}

int32_t Fail(int32_t number, const std::u16string& source,
             const std::u16string& description) noexcept {
  tLast.number = number;
  try {
    tLast.source = source;
    tLast.description = description;
  } catch (...) {  // no memory for the texts: the number still tells
    tLast.source.clear();
    tLast.description.clear();
  }
  return number;
}

int32_t FailWithCurrent() noexcept {
  try {
    throw;
  } catch (const velqua::Error& e) {
    return Fail(e.Number(), e.Source(), e.Description());
  } catch (const velqua_records::Failure& e) {
    // The road's own refusals (a file, a JSON form) name the file and the
    // fault in one line, as the program prints them.
    return Fail(VELQUA_ERROR_ARGUMENTO, u"Velqua", velqua::DesdeUtf8(e.what()));
  } catch (const std::bad_alloc&) {
    return Fail(VELQUA_ERROR_MEMORIA, u"Velqua", u"Memoria insuficiente");
  } catch (const std::exception& e) {
    return Fail(VELQUA_ERROR_INTERNO, u"Velqua", u"Error interno: " + velqua::DesdeUtf8(e.what()));
  } catch (...) {
    return Fail(VELQUA_ERROR_INTERNO, u"Velqua", u"Error interno");
  }
}

HandleKind KindOf(const void* handle) {
  HandleKind kind;
  std::memcpy(&kind, handle, sizeof kind);
  return kind;
}

void ThrowArgument() {
  throw velqua::Error(VELQUA_ERROR_ARGUMENTO, u"Velqua",
                      u"Argumento o llamada a procedimiento no válida");
}

namespace {

// The handle behind p, of kind `kind`: 91 for none, 13 for another kind.
// The kind is read as bytes: p may point to a handle of another type.
template <typename Handle>
Handle& Check(const Handle* p, HandleKind kind) {
  if (p == nullptr) velqua::LanzaObjetoNoEstablecido();
  if (KindOf(p) != kind) velqua::LanzaTiposNoCoinciden();
  return *const_cast<Handle*>(p);
}

}  // namespace

velqua_bindings::ListenedConfig& Cfg(const velqua_cfg* cfg) {
  return Check(cfg, HandleKind::kCfg).object;
}

velqua::clsTraductor& Trad(const velqua_trad* trad) {
  return Check(trad, HandleKind::kTrad).object;
}

velqua_translation& Translation(const velqua_translation* translation) {
  return Check(translation, HandleKind::kTranslation);
}

std::u16string In(const char* text) {
  return text == nullptr ? std::u16string() : velqua::DesdeUtf8(text);
}

void Store(char** out, const std::string& text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, text.c_str(), text.size() + 1);
  *out = copy;
}

void Store(char** out, const std::u16string& text) { Store(out, velqua::AUtf8(text)); }

}  // namespace velqua_c

extern "C" {

void velqua_free(char* text) { std::free(text); }

int32_t velqua_error_number(void) { return velqua_c::tLast.number; }

int32_t velqua_error_source(char** source) {
  if (source == nullptr) return VELQUA_ERROR_ARGUMENTO;
  try {
    velqua_c::Store(source, velqua_c::tLast.source);
    return 0;
  } catch (...) {
    return VELQUA_ERROR_MEMORIA;
  }
}

int32_t velqua_error_description(char** description) {
  if (description == nullptr) return VELQUA_ERROR_ARGUMENTO;
  try {
    velqua_c::Store(description, velqua_c::tLast.description);
    return 0;
  } catch (...) {
    return VELQUA_ERROR_MEMORIA;
  }
}

}  // extern "C"
