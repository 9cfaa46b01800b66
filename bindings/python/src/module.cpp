// The module velqua._velqua: the two classes, the translation, the
// enumerations and the errors. velqua/__init__.py builds the Pythonic names
// on it (velqua.Error, velqua.Call, the enumerations as IntEnum).
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include "python_support.h"
#include "road.h"
#include "velqua/enums.h"
#include "velqua/error.h"
#include "velqua/records/common.h"
#include "velqua/records/names.h"

namespace velqua_python {
namespace {

// velqua.Error, registered by velqua/__init__.py; kept for the process.
py::object* gError = nullptr;

void RaiseVelquaError(const velqua::Error& e) {
  if (gError == nullptr) {
    PyErr_SetString(PyExc_RuntimeError, e.what());
    return;
  }
  const py::object error = (*gError)(e.Number(), e.Source(), e.Description());
  PyErr_SetObject(gError->ptr(), error.ptr());
}

using Members = std::vector<std::pair<std::string, int32_t>>;

// Every member of an enumeration that the records layer names.
Members Named(velqua_records::EnumKind kind) {
  Members members;
  for (int32_t v = 0; v < 256; ++v) {
    if (const char* name = velqua_records::EnumNameOf(kind, v)) members.emplace_back(name, v);
  }
  return members;
}

py::dict Enumerations() {
  using velqua_records::EnumKind;
  py::dict e;
  e["emVersionConfiguracion"] = Members{{"emNoVersion", velqua::emNoVersion},
                                        {"emVersionActual", velqua::emVersionActual},
                                        {"emVersion2_0", velqua::emVersion2_0},
                                        {"emVersion3_0", velqua::emVersion3_0}};
  e["emCasos"] = Named(EnumKind::kCaso);
  e["emTipoDato"] = Named(EnumKind::kTipoDato);
  e["emParamDato"] = Named(EnumKind::kParamDato);
  e["emParamDatoConstante"] = Named(EnumKind::kParamDatoConstante);
  e["emPuertoSerial"] = Members{{"emNoPuerto", velqua::emNoPuerto},
                                {"emPuertoRJ45", velqua::emPuertoRJ45},
                                {"emPuertoDB9", velqua::emPuertoDB9},
                                {"emPuertoDB25", velqua::emPuertoDB25}};
  Members db9;
  const int32_t pins[] = {velqua::emDB9Pin1, velqua::emDB9Pin2, velqua::emDB9Pin3,
                          velqua::emDB9Pin4, velqua::emDB9Pin5, velqua::emDB9Pin6,
                          velqua::emDB9Pin7, velqua::emDB9Pin8, velqua::emDB9Pin9};
  for (int i = 0; i < 9; ++i) db9.emplace_back("emDB9Pin" + std::to_string(i + 1), pins[i]);
  e["emTablaConversionDB9DB25"] = db9;
  e["emTipoLlamadaTraductor"] = Named(EnumKind::kTipoLlamada);
  e["emAtributoTraductor"] = Named(EnumKind::kAtributo);
  e["emErroresConfig"] =
      Members{{"emNoErrorConfig", velqua::emNoErrorConfig},
              {"emErrorConfigNoHay", velqua::emErrorConfigNoHay},
              {"emErrorNoHayArchivo", velqua::emErrorNoHayArchivo},
              {"emErrorConfigDatosIncompletos", velqua::emErrorConfigDatosIncompletos},
              {"emErrorConfigExportar", velqua::emErrorConfigExportar},
              {"emErrorConfigImportar", velqua::emErrorConfigImportar},
              {"emErrorConfigAbrir", velqua::emErrorConfigAbrir},
              {"emErrorDesconocido", velqua::emErrorDesconocido}};
  return e;
}

}  // namespace

// The Python error of a C++ exception of the library or the bindings.
void SetPythonError(std::exception_ptr error) {
  try {
    std::rethrow_exception(std::move(error));
  } catch (const velqua::Error& e) {
    RaiseVelquaError(e);
  } catch (const velqua_records::Failure& e) {
    PyErr_SetString(PyExc_ValueError, e.what());
  } catch (const py::builtin_exception& e) {
    e.set_error();
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::exception& e) {
    PyErr_SetString(PyExc_RuntimeError, e.what());
  }
}

}  // namespace velqua_python

PYBIND11_MODULE(_velqua, m) {
  namespace py = pybind11;
  using namespace velqua_python;
  py::register_exception_translator([](std::exception_ptr error) {
    try {
      std::rethrow_exception(error);
    } catch (const velqua::Error& e) {
      RaiseVelquaError(e);
    } catch (const velqua_records::Failure& e) {
      PyErr_SetString(PyExc_ValueError, e.what());
    }
  });
  m.def("_register_error", [](py::object error) { gError = new py::object(std::move(error)); });
  m.def("_enumerations", &Enumerations);
  BindConfig(m);
  BindTranslator(m);
  BindCalls(m);
  BindReadCalls(m);
}
