// The profile-file reader and writer (see perfil_ini.h).
#include "files/perfil_ini.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <utility>
#include <vector>

#include "platform/archivos.h"
#include "velqua/texto.h"

namespace velqua {
namespace perfil {
namespace {

bool EsBlanco(char c) { return c == ' ' || c == '\t'; }

std::string_view Recorta(std::string_view s) {
  while (!s.empty() && EsBlanco(s.front())) s.remove_prefix(1);
  while (!s.empty() && EsBlanco(s.back())) s.remove_suffix(1);
  return s;
}

// A value enclosed in a matching pair of quotes loses the pair.
std::string_view Desentrecomilla(std::string_view s) {
  if (s.size() >= 2 && (s.front() == '"' || s.front() == '\'') && s.back() == s.front()) {
    return s.substr(1, s.size() - 2);
  }
  return s;
}

// The line of `todo` that starts at `i`, and `i` moved past its end. Lines
// end at "\n"; a "\r" before it belongs to the line end, a "\r" anywhere
// else to the line. Text after the last "\n" is a line; nothing after it is
// none.
std::string_view SiguienteLinea(std::string_view todo, size_t& i) {
  size_t fin = todo.find('\n', i);
  if (fin == std::string_view::npos) fin = todo.size();
  std::string_view linea = todo.substr(i, fin - i);
  if (!linea.empty() && linea.back() == '\r') linea.remove_suffix(1);
  i = fin + 1;
  return linea;
}

std::vector<std::string_view> Lineas(std::string_view todo) {
  std::vector<std::string_view> lineas;
  size_t i = 0;
  while (i < todo.size()) lineas.push_back(SiguienteLinea(todo, i));
  return lineas;
}

// The section name of a "[...]" line (up to its last "]", trimmed); false
// when the line is no section line.
bool NombreSeccion(std::string_view linea, std::string_view& nombre) {
  linea = Recorta(linea);
  if (linea.empty() || linea.front() != '[') return false;
  const size_t cierre = linea.rfind(']');
  nombre =
      Recorta(cierre == std::string_view::npos ? linea.substr(1) : linea.substr(1, cierre - 1));
  return true;
}

// The key of a "key=value" line, trimmed; false when the line has no "=".
bool NombreClave(std::string_view linea, std::string_view& clave, std::string_view& valor) {
  const size_t igual = linea.find('=');
  if (igual == std::string_view::npos) return false;
  clave = Recorta(linea.substr(0, igual));
  valor = Desentrecomilla(Recorta(linea.substr(igual + 1)));
  return true;
}

// Identity of a file on disk, to tell whether a cached parse is still valid.
struct Identidad {
  bool bolExiste = false;
  dev_t dev = 0;
  ino_t ino = 0;
  off_t size = 0;
  int64_t mtime_s = 0;
  int64_t mtime_ns = 0;
  bool operator==(const Identidad& o) const {
    return bolExiste == o.bolExiste && dev == o.dev && ino == o.ino && size == o.size &&
           mtime_s == o.mtime_s && mtime_ns == o.mtime_ns;
  }
};

// The identity of a regular file; bolExiste false for anything else.
Identidad IdentidadDe(const std::string& nombre) {
  Identidad id;
  struct stat st {};
  if (stat(nombre.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return id;
  id.bolExiste = true;
  id.dev = st.st_dev;
  id.ino = st.st_ino;
  id.size = st.st_size;
  id.mtime_s = static_cast<int64_t>(st.st_mtim.tv_sec);
  id.mtime_ns = static_cast<int64_t>(st.st_mtim.tv_nsec);
  return id;
}

// The whole content of a regular file; false when it cannot be read.
bool LeeTodo(const std::string& nombre, std::string& contenido) {
  std::ifstream f(nombre, std::ios::binary);
  if (!f) return false;
  f.seekg(0, std::ios::end);
  const std::streamoff largo = f.tellg();
  if (largo < 0) return false;
  f.seekg(0, std::ios::beg);
  contenido.assign(static_cast<size_t>(largo), '\0');
  f.read(contenido.data(), largo);
  contenido.resize(static_cast<size_t>(f.gcount()));  // a file that shrank meanwhile
  return !f.bad();
}

// The operating system's name of a Windows-1252 file name.
std::string NombreSistemaAnsi(const char* lpFileName) {
  return plataforma::NombreSistema(DesdeAnsi(lpFileName));
}

}  // namespace

// ---- parsing and lookup ----

unsigned char PerfilIni::Pliega(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c + 32);
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<unsigned char>(c + 32);
  if (c == 0x8A || c == 0x8C || c == 0x8E) return static_cast<unsigned char>(c + 0x10);  // Š Œ Ž
  if (c == 0x9F) return 0xFF;                                                            // Ÿ
  return c;
}

size_t PerfilIni::HashPlegado::operator()(std::string_view s) const {
  uint64_t h = 1469598103934665603ull;  // FNV-1a over the folded bytes
  for (char c : s) {
    h ^= Pliega(static_cast<unsigned char>(c));
    h *= 1099511628211ull;
  }
  return static_cast<size_t>(h);
}

bool PerfilIni::IgualPlegado::operator()(std::string_view a, std::string_view b) const {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Pliega(static_cast<unsigned char>(a[i])) != Pliega(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

PerfilIni::PerfilIni(std::string cadContenido) : contenido_(std::move(cadContenido)) {
  Claves* actual = nullptr;  // null before the first section and in a repeated one
  std::string_view todo(contenido_);
  size_t i = 0;
  while (i < todo.size()) {  // line by line, without a vector of all lines
    const std::string_view linea = SiguienteLinea(todo, i);
    std::string_view nombre;
    std::string_view valor;
    if (NombreSeccion(linea, nombre)) {
      auto [it, nuevo] = secciones_.try_emplace(nombre);
      actual = nuevo ? &it->second : nullptr;
    } else if (actual != nullptr && NombreClave(linea, nombre, valor)) {
      actual->try_emplace(nombre, valor);  // the first key of a name wins
    }
  }
}

const std::string_view* PerfilIni::Valor(std::string_view seccion, std::string_view clave) const {
  const auto s = secciones_.find(Recorta(seccion));
  if (s == secciones_.end()) return nullptr;
  const auto k = s->second.find(Recorta(clave));
  return k == s->second.end() ? nullptr : &k->second;
}

// ---- the read session ----

struct SesionLecturaPerfil::Estado {
  std::string nombre;
  Identidad id;
  std::unique_ptr<PerfilIni> perfil;
};

namespace {

thread_local SesionLecturaPerfil::Estado* tlsSesion = nullptr;

std::unique_ptr<PerfilIni> Analiza(const std::string& nombre, const Identidad& id) {
  std::string contenido;
  if (!id.bolExiste || !LeeTodo(nombre, contenido)) contenido.clear();
  return std::make_unique<PerfilIni>(std::move(contenido));
}

// Calls f with the parsed file: from the session when one is active and still
// valid, otherwise parsed for this call alone.
template <typename F>
auto ConPerfil(const std::string& nombre, F f) {
  const Identidad id = IdentidadDe(nombre);
  if (tlsSesion == nullptr) return f(*Analiza(nombre, id));
  SesionLecturaPerfil::Estado& e = *tlsSesion;
  if (e.perfil == nullptr || e.nombre != nombre || !(e.id == id)) {
    e.perfil.reset();  // release the old parse before making the new one
    e.perfil = Analiza(nombre, id);
    e.nombre = nombre;
    e.id = id;
  }
  return f(*e.perfil);
}

// A write makes every cached parse of the file stale.
void OlvidaCache(const std::string& nombre) {
  if (tlsSesion != nullptr && tlsSesion->nombre == nombre) tlsSesion->perfil.reset();
}

}  // namespace

SesionLecturaPerfil::SesionLecturaPerfil()
    : estado_(std::make_unique<Estado>()), anterior_(tlsSesion) {
  tlsSesion = estado_.get();
}

SesionLecturaPerfil::~SesionLecturaPerfil() { tlsSesion = anterior_; }

// ---- the two platform functions ----

uint32_t GetPrivateProfileStringA(const char* lpAppName, const char* lpKeyName,
                                  const char* lpDefault, char* lpReturnedString, uint32_t nSize,
                                  const char* lpFileName) {
  if (lpReturnedString == nullptr || nSize == 0) return 0;
  lpReturnedString[0] = '\0';
  if (lpAppName == nullptr || lpKeyName == nullptr || lpFileName == nullptr) return 0;
  const std::string nombre = NombreSistemaAnsi(lpFileName);
  std::string_view valor = lpDefault != nullptr ? std::string_view(lpDefault) : std::string_view();
  std::string copia;  // the value outlives the parse only through this copy
  ConPerfil(nombre, [&](const PerfilIni& p) {
    if (const std::string_view* v = p.Valor(lpAppName, lpKeyName)) {
      copia.assign(v->substr(0, nSize - 1));
      valor = copia;
    }
    return 0;
  });
  const size_t n = std::min<size_t>(valor.size(), nSize - 1);
  valor.copy(lpReturnedString, n);
  lpReturnedString[n] = '\0';
  return static_cast<uint32_t>(n);
}

namespace {

// The content after setting `clave` = `valor` in `seccion` (see perfil_ini.h).
std::string ConValor(std::string_view contenido, std::string_view seccion, std::string_view clave,
                     std::string_view valor) {
  std::vector<std::string_view> viejas = Lineas(contenido);
  std::vector<std::string> lineas(viejas.begin(), viejas.end());
  const PerfilIni::IgualPlegado igual;
  size_t ini = lineas.size();
  for (size_t i = 0; i < lineas.size() && ini == lineas.size(); ++i) {
    std::string_view nombre;
    if (NombreSeccion(lineas[i], nombre) && igual(nombre, Recorta(seccion))) ini = i;
  }
  const std::string nueva = std::string(clave) + "=" + std::string(valor);
  if (ini == lineas.size()) {  // a new section at the end
    if (!lineas.empty() && !Recorta(lineas.back()).empty()) lineas.emplace_back();
    lineas.push_back("[" + std::string(seccion) + "]");
    lineas.push_back(nueva);
  } else {
    size_t ultima = ini;  // last non-blank line of the section
    bool bolHecho = false;
    for (size_t j = ini + 1; j < lineas.size() && !bolHecho; ++j) {
      std::string_view nombre;
      std::string_view v;
      if (NombreSeccion(lineas[j], nombre)) break;
      if (!Recorta(lineas[j]).empty()) ultima = j;
      if (NombreClave(lineas[j], nombre, v) && igual(nombre, Recorta(clave))) {
        lineas[j] = std::string(nombre) + "=" + std::string(valor);  // in place, its own spelling
        bolHecho = true;
      }
    }
    if (!bolHecho) lineas.insert(lineas.begin() + static_cast<std::ptrdiff_t>(ultima + 1), nueva);
  }
  std::string out;
  out.reserve(contenido.size() + nueva.size() + 16);
  for (const std::string& l : lineas) out.append(l).append("\r\n");
  return out;
}

}  // namespace

int32_t WritePrivateProfileStringA(const char* lpAppName, const char* lpKeyName,
                                   const char* lpString, const char* lpFileName) {
  if (lpAppName == nullptr || lpKeyName == nullptr || lpString == nullptr ||
      lpFileName == nullptr || *lpFileName == '\0') {
    return 0;
  }
  const std::string nombre = NombreSistemaAnsi(lpFileName);
  struct stat st {};
  std::string contenido;
  if (stat(nombre.c_str(), &st) == 0) {
    if (!S_ISREG(st.st_mode) || !LeeTodo(nombre, contenido)) return 0;
  }
  const std::string nuevo = ConValor(contenido, lpAppName, lpKeyName, lpString);
  OlvidaCache(nombre);
  std::ofstream f(nombre, std::ios::binary | std::ios::trunc);
  if (!f) return 0;
  f.write(nuevo.data(), static_cast<std::streamsize>(nuevo.size()));
  f.close();
  return f ? 1 : 0;
}

}  // namespace perfil
}  // namespace velqua
