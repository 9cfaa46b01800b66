// clsCfgConmut for Python: properties as properties, operations as methods,
// listeners as callables, the host's picture box as any object with its
// members; and the Pythonic load, save and to_json of the program's forms.
#include <pybind11/functional.h>
#include <pybind11/stl.h>
#include <unistd.h>

#include <cerrno>

#include "python_support.h"
#include "velqua/cfg_conmut.h"
#include "velqua/records/bundled.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/records/config_json.h"
#include "velqua/superficie.h"

namespace velqua_python {

using velqua::clsCfgConmut;

void PyConfig::KeepListenerError(py::error_already_set&& error) {
  if (listener_error_ == nullptr) {
    listener_error_ = std::make_unique<py::error_already_set>(std::move(error));
  } else {
    error.discard_as_unraisable("a second listener error of one velqua operation");
  }
}

void PyConfig::RaiseListenerError() {
  if (listener_error_ == nullptr) return;
  const std::unique_ptr<py::error_already_set> error = std::move(listener_error_);
  throw py::error_already_set(*error);
}

void PyConfig::DropListenerError() {
  if (listener_error_ == nullptr) return;
  listener_error_->discard_as_unraisable("a listener of a failed velqua operation");
  listener_error_.reset();
}

std::u16string FileName(const py::object& name) {
  // Kept for the life of the process (a static py::object would be released
  // after the interpreter is gone).
  static const py::object* const fspath = new py::object(py::module_::import("os").attr("fspath"));
  return (*fspath)(name).cast<std::u16string>();
}

namespace {

const char* const kNotificationNames[] = {"", "CambioNombreConmutador", "ConfiguracionCargada",
                                          "Cambios"};

// A Python listener: called with the notification's name.
class PyListener : public velqua_bindings::Listener {
 public:
  PyListener(py::object callable, PyConfig* owner)
      : callable_(std::move(callable)), owner_(owner) {}
  const py::object& callable() const { return callable_; }

 protected:
  void Notify(int32_t notification) override {
    const py::gil_scoped_acquire gil;
    try {
      callable_(kNotificationNames[notification]);
    } catch (py::error_already_set& error) {
      owner_->KeepListenerError(std::move(error));
    }
  }

 private:
  py::object callable_;
  PyConfig* owner_;
};

// The host's picture box: any object with the members the drawings use,
// reached by name as the automation object model reaches it.
class PySurface : public velqua::Superficie {
 public:
  explicit PySurface(py::object box) : box_(std::move(box)) {}
  void FontName(const std::u16string& cadNombre) override { Set("FontName", py::cast(cadNombre)); }
  void FontSize(int16_t intPuntos) override { Set("FontSize", py::int_(intPuntos)); }
  void FontBold(bool bolNegrita) override { Set("FontBold", py::bool_(bolNegrita)); }
  void ForeColor(int32_t lnColor) override { Set("ForeColor", py::int_(lnColor)); }
  void CurrentX(float sglX) override { Set("CurrentX", py::float_(sglX)); }
  void CurrentY(float sglY) override { Set("CurrentY", py::float_(sglY)); }
  float TextHeight(const std::u16string& cadTexto) override {
    return box_.attr("TextHeight")(cadTexto).cast<float>();
  }
  void Line(int16_t intFlags, float x1, float y1, float x2, float y2, int32_t lnColor) override {
    box_.attr("Line")(intFlags, x1, y1, x2, y2, lnColor);
  }
  void Print(const std::u16string& cadTexto) override { box_.attr("Print")(cadTexto); }
  float TwipsPerPixelX() const override { return box_.attr("TwipsPerPixelX").cast<float>(); }
  float TwipsPerPixelY() const override { return box_.attr("TwipsPerPixelY").cast<float>(); }

 private:
  void Set(const char* name, const py::object& value) { py::setattr(box_, name, value); }
  py::object box_;
};

using ConfigClass = py::class_<PyConfig, std::shared_ptr<PyConfig>>;

// What Python passes for an argument of type A, and the value A it gives.
template <typename A>
struct Arg {
  using Python = std::conditional_t<std::is_integral_v<A> || std::is_enum_v<A>, int64_t, A>;
  static A From(Python v) {
    if constexpr (std::is_same_v<A, bool>) {
      return v;
    } else if constexpr (std::is_integral_v<A> || std::is_enum_v<A>) {
      return Narrow<A>(v);
    } else {
      return v;
    }
  }
};
template <>
struct Arg<const std::u16string&> {
  using Python = std::u16string;
  static const std::u16string& From(const std::u16string& v) { return v; }
};
template <>
struct Arg<bool> {
  using Python = bool;
  static bool From(bool v) { return v; }
};

// A value as Python sees it: enumerations as plain int (any 32-bit value
// may be stored, in the enumeration or not).
template <typename T>
auto Out(T value) {
  if constexpr (std::is_enum_v<T>) {
    return static_cast<int32_t>(value);
  } else {
    return value;
  }
}

template <typename T>
void ReadOnly(ConfigClass& c, const char* name, T (clsCfgConmut::*get)() const) {
  c.def_property_readonly(name, [get](const PyConfig& p) { return Out((p.cfg().*get)()); });
}

template <typename T, typename A>
void ReadWrite(ConfigClass& c, const char* name, T (clsCfgConmut::*get)() const,
               void (clsCfgConmut::*set)(A)) {
  c.def_property(
      name, [get](const PyConfig& p) { return Out((p.cfg().*get)()); },
      [set](PyConfig& p, typename Arg<A>::Python v) {
        p.Op([&](clsCfgConmut& cfg) { (cfg.*set)(Arg<A>::From(v)); });
      });
}

void BindProperties(ConfigClass& c) {
  ReadWrite(c, "Modificado", &clsCfgConmut::Modificado, &clsCfgConmut::Modificado);
  ReadWrite(c, "IDCfg", &clsCfgConmut::IDCfg, &clsCfgConmut::IDCfg);
  ReadOnly(c, "Version", &clsCfgConmut::Version);
  ReadOnly(c, "NombreVersion", &clsCfgConmut::NombreVersion);
  ReadWrite(c, "Caso", &clsCfgConmut::Caso, &clsCfgConmut::Caso);
  ReadOnly(c, "NombreCaso", &clsCfgConmut::NombreCaso);
  ReadWrite(c, "Marca", &clsCfgConmut::Marca, &clsCfgConmut::Marca);
  ReadWrite(c, "Modelo", &clsCfgConmut::Modelo, &clsCfgConmut::Modelo);
  ReadOnly(c, "NombreConmutador", &clsCfgConmut::NombreConmutador);
  ReadWrite(c, "Comentarios", &clsCfgConmut::Comentarios, &clsCfgConmut::Comentarios);
  ReadWrite(c, "Separador", &clsCfgConmut::Separador, &clsCfgConmut::Separador);
  ReadOnly(c, "ListaSeparador", &clsCfgConmut::ListaSeparador);
  ReadOnly(c, "TamMaxSeparador", &clsCfgConmut::TamMaxSeparador);
  ReadOnly(c, "TamMaxComentarios", &clsCfgConmut::TamMaxComentarios);
  ReadWrite(c, "DATOActivo", &clsCfgConmut::DATOActivo, &clsCfgConmut::DATOActivo);
  ReadWrite(c, "CTEActivo", &clsCfgConmut::CTEActivo, &clsCfgConmut::CTEActivo);
  ReadOnly(c, "HayDATO", &clsCfgConmut::HayDATO);
  ReadOnly(c, "HayCTE", &clsCfgConmut::HayCTE);
  ReadWrite(c, "TipoDatoDATO", &clsCfgConmut::TipoDatoDATO, &clsCfgConmut::TipoDatoDATO);
  ReadOnly(c, "TipoDatoCTE", &clsCfgConmut::TipoDatoCTE);
  ReadWrite(c, "DATOPos", &clsCfgConmut::DATOPos, &clsCfgConmut::DATOPos);
  ReadWrite(c, "CTEPos", &clsCfgConmut::CTEPos, &clsCfgConmut::CTEPos);
  ReadWrite(c, "DATOTam", &clsCfgConmut::DATOTam, &clsCfgConmut::DATOTam);
  ReadWrite(c, "CTETam", &clsCfgConmut::CTETam, &clsCfgConmut::CTETam);
  ReadWrite(c, "Constante", &clsCfgConmut::Constante, &clsCfgConmut::Constante);
}

// An operation on a serial port's wiring: (port, switch pin, computer pin).
template <typename R>
void Wiring(ConfigClass& c, const char* name,
            R (clsCfgConmut::*op)(velqua::emPuertoSerial, int16_t, int16_t), const char* pc) {
  c.def(
      name,
      [op](PyConfig& p, int64_t puerto, int64_t vector, int64_t pin) {
        return p.Op([&](clsCfgConmut& cfg) {
          return (cfg.*op)(Narrow<velqua::emPuertoSerial>(puerto), Narrow<int16_t>(vector),
                           Narrow<int16_t>(pin));
        });
      },
      py::arg("iemPuerto"), py::arg("intPinVector"), py::arg(pc));
}

void BindOperations(ConfigClass& c) {
  c.def("Iniciar", [](PyConfig& p) { p.Op([](clsCfgConmut& cfg) { cfg.Iniciar(); }); });
  c.def("HayConfig", [](const PyConfig& p) { return p.cfg().HayConfig(); });
  c.def(
      "ObtNombreCaso",
      [](const PyConfig& p, int64_t emC) {
        return p.cfg().ObtNombreCaso(Narrow<velqua::emCasos>(emC));
      },
      py::arg("emC"));
  Wiring(c, "ActivaPin", &clsCfgConmut::ActivaPin, "intPinConectar");
  Wiring(c, "DesactivaPin", &clsCfgConmut::DesactivaPin, "intPinDesconectar");
  c.def(
      "PinesConectados",
      [](const PyConfig& p, int64_t puerto, int64_t conmut, int64_t pc) {
        return p.cfg().PinesConectados(Narrow<velqua::emPuertoSerial>(puerto),
                                       Narrow<int16_t>(conmut), Narrow<int16_t>(pc));
      },
      py::arg("iemPuerto"), py::arg("intPinConmut"), py::arg("intPinPC"));
  c.def(
      "HayConfiguracionSMDR",
      [](const PyConfig& p, int64_t puerto) {
        return p.cfg().HayConfiguracionSMDR(Narrow<velqua::emPuertoSerial>(puerto));
      },
      py::arg("iemPuerto"));
  c.def(
      "LimpiaConfiguracionSMDR",
      [](PyConfig& p, int64_t puerto) {
        p.Op([&](clsCfgConmut& cfg) {
          cfg.LimpiaConfiguracionSMDR(Narrow<velqua::emPuertoSerial>(puerto));
        });
      },
      py::arg("iemPuerto"));
  c.def(
      "DibujaConfiguracionSMDR",
      [](const PyConfig& p, int64_t puerto, py::object picDib, float x, float y) {
        PySurface surface(std::move(picDib));
        p.cfg().DibujaConfiguracionSMDR(Narrow<velqua::emPuertoSerial>(puerto), surface, x, y);
      },
      py::arg("iemPuerto"), py::arg("picDib"), py::arg("sglPosX") = 0.0f,
      py::arg("sglPosY") = 0.0f);
  c.def(
      "DibujaTablaConversionDB9DB25",
      [](const PyConfig& p, py::object picDib, float x, float y) {
        PySurface surface(std::move(picDib));
        p.cfg().DibujaTablaConversionDB9DB25(surface, x, y);
      },
      py::arg("picDib"), py::arg("sglPosX") = 0.0f, py::arg("sglPosY") = 0.0f);
  using File = void (clsCfgConmut::*)(const std::u16string&);
  const std::pair<const char*, File> files[] = {{"Abrir", &clsCfgConmut::Abrir},
                                                {"GuardarComo", &clsCfgConmut::GuardarComo},
                                                {"Importar", &clsCfgConmut::Importar},
                                                {"Exportar", &clsCfgConmut::Exportar}};
  for (const auto& [name, op] : files) {
    c.def(
        name,
        [op = op](PyConfig& p, const py::object& cadArch) {
          const std::u16string file = FileName(cadArch);
          p.Op([&](clsCfgConmut& cfg) { (cfg.*op)(file); });
          if (op == &clsCfgConmut::Abrir || op == &clsCfgConmut::Importar) p.ForgetRecordForm();
        },
        py::arg("cadArch"));
  }
}

void BindListeners(ConfigClass& c) {
  c.def(
      "AgregaOyente",
      [](PyConfig& p, py::object oyente) {
        if (oyente.is_none()) return;
        if (!PyCallable_Check(oyente.ptr())) throw py::type_error("a listener must be callable");
        p.Add(std::make_unique<PyListener>(std::move(oyente), &p));
      },
      py::arg("oyente"));
  c.def(
      "QuitaOyente",
      [](PyConfig& p, const py::object& oyente) {
        p.Remove([&](const velqua_bindings::Listener& l) {
          return static_cast<const PyListener&>(l).callable().equal(oyente);
        });
      },
      py::arg("oyente"));
}

void BindPythonic(ConfigClass& c) {
  c.def_static("load", &Load, py::arg("path"),
               "A configuration read from a .cfg, .ini or .json file (by its extension).");
  c.def(
      "save",
      [](PyConfig& p, const py::object& path, bool force) {
        p.Op([&](clsCfgConmut&) {
          velqua_records::SwitchConfig config = p.switch_config();
          velqua_records::SaveSwitchConfigChecked(config, velqua_records::U8(FileName(path)),
                                                  force);
        });
      },
      py::arg("path"), py::arg("force") = false,
      "Writes the configuration as .cfg, .ini or .json (by the extension) and reads it back; "
      "a form that cannot hold it is refused (ValueError) unless force.");
  c.def(
      "to_json", [](PyConfig& p) { return velqua_records::ConfigToJson(p.cfg()); },
      "The configuration's readable JSON form.");
  c.def("__repr__", [](const PyConfig& p) {
    return u"<velqua.clsCfgConmut " + p.cfg().NombreConmutador() + u", case " +
           velqua_records::U16(std::to_string(p.cfg().Caso())) + u">";
  });
}

}  // namespace

std::shared_ptr<PyConfig> Load(const py::object& path) {
  const std::string name = velqua_records::U8(FileName(path));
  // A bundled switch's name is no file; a path that is none is an OSError, as open() says.
  if (velqua_records::ResolveConfig(name) == name && ::access(name.c_str(), R_OK) != 0) {
    PyErr_SetFromErrnoWithFilename(PyExc_OSError, name.c_str());
    throw py::error_already_set();
  }
  velqua_records::SwitchConfig loaded = velqua_records::LoadSwitchConfig(name);
  return std::make_shared<PyConfig>(std::move(loaded.cfg), std::move(loaded.form),
                                    std::move(loaded.delivery));
}

void BindConfig(py::module_& m) {
  ConfigClass c(m, "clsCfgConmut",
                "A switch configuration: how one switch prints its call records.");
  c.def(py::init([] { return std::make_shared<PyConfig>(std::make_shared<clsCfgConmut>()); }));
  BindProperties(c);
  BindOperations(c);
  BindListeners(c);
  BindPythonic(c);
  m.attr("Config") = c;
}

}  // namespace velqua_python
