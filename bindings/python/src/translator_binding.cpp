// clsTraductor for Python: properties as properties, operations as methods;
// Conmutador takes a configuration or None, and anything else is a type
// mismatch (error 13), as the automation interface reports it.
#include "python_support.h"
#include "velqua/traductor.h"

namespace velqua_python {
namespace {

using velqua::clsTraductor;
using TranslatorClass = py::class_<clsTraductor, std::shared_ptr<clsTraductor>>;

void BindFiles(TranslatorClass& c) {
  c.def_property(
      "ArchivoListaExtensionesKXTDA",
      [](const clsTraductor& t) { return t.ArchivoListaExtensionesKXTDA(); },
      [](clsTraductor& t, const py::object& cadArch) {
        t.ArchivoListaExtensionesKXTDA(FileName(cadArch));
      });
  c.def_property(
      "ArchivoLlamadasError", [](const clsTraductor& t) { return t.ArchivoLlamadasError(); },
      [](clsTraductor& t, const py::object& cadArch) {
        t.ArchivoLlamadasError(FileName(cadArch));
      });
  c.def_property(
      "BufferMultiplesLineas", [](const clsTraductor& t) { return t.BufferMultiplesLineas(); },
      [](clsTraductor& t, const std::u16string& cadB) { t.BufferMultiplesLineas(cadB); });
  c.def_property(
      "LlamadaActual", [](const clsTraductor& t) { return t.LlamadaActual(); },
      [](clsTraductor& t, const std::u16string& cadL) { t.LlamadaActual(cadL); });
  c.def_property("Conmutador", nullptr, [](clsTraductor& t, const py::object& iclsCmt) {
    if (iclsCmt.is_none()) return t.Conmutador(nullptr);
    if (!py::isinstance<PyConfig>(iclsCmt)) {
      t.Conmutador(nullptr);  // a failed binding leaves the translator unbound
      velqua::LanzaTiposNoCoinciden();
    }
    t.Conmutador(iclsCmt.cast<PyConfig&>().shared());
  });
  c.def("HayLlamada", &clsTraductor::HayLlamada);
  c.def("HayBufferMultiplesLineas", &clsTraductor::HayBufferMultiplesLineas);
  c.def_property_readonly("TipoLlamadaDetectada", [](const clsTraductor& t) {
    return static_cast<int32_t>(t.TipoLlamadaDetectada());
  });
  c.def_property_readonly("Atributo",
                          [](const clsTraductor& t) { return static_cast<int32_t>(t.Atributo()); });
}

void BindFields(TranslatorClass& c) {
  c.def_property_readonly("Dia", &clsTraductor::Dia);
  c.def_property_readonly("Mes", &clsTraductor::Mes);
  c.def_property_readonly("Anio", &clsTraductor::Anio);
  c.def_property_readonly("Hora", &clsTraductor::Hora);
  c.def_property_readonly("Duracion", &clsTraductor::Duracion);
  c.def_property_readonly("Ring", &clsTraductor::Ring);
  c.def_property_readonly("Marcacion", &clsTraductor::Marcacion);
  c.def_property_readonly("Extension", &clsTraductor::Extension);
  c.def_property_readonly("Troncal", &clsTraductor::Troncal);
  c.def_property_readonly("ExtensionReceptor", &clsTraductor::ExtensionReceptor);
  c.def_property_readonly("TroncalReceptor", &clsTraductor::TroncalReceptor);
  c.def_property_readonly("CodigoCuenta", &clsTraductor::CodigoCuenta);
  c.def(
      "HayConstanteLlamada",
      [](clsTraductor& t, int64_t emParamCte) {
        return t.HayConstanteLlamada(Narrow<velqua::emParamDatoConstante>(emParamCte));
      },
      py::arg("emParamCte"));
  c.def("BuscaLinea", &clsTraductor::BuscaLinea, py::arg("cadVal"));
}

}  // namespace

void BindTranslator(py::module_& m) {
  TranslatorClass c(m, "clsTraductor",
                    "The call record translator: bind a configuration with Conmutador, write "
                    "each record to LlamadaActual, then read the call's fields.");
  c.def(py::init([] { return std::make_shared<clsTraductor>(); }));
  BindFiles(c);
  BindFields(c);
}

}  // namespace velqua_python
