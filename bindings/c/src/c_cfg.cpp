// The configuration (clsCfgConmut) through the C interface: one function a
// property read or write or an operation, each a thin call under Guard.
#include <new>

#include "c_support.h"
#include "velqua/records/config_io.h"

using velqua::clsCfgConmut;
using velqua_c::Cfg;
using velqua_c::Change;
using velqua_c::Get;
using velqua_c::Guard;
using velqua_c::In;

namespace {

const clsCfgConmut& Read(const velqua_cfg* cfg) { return Cfg(cfg).cfg(); }

// A C listener: a function and its user pointer.
class CListener : public velqua_bindings::Listener {
 public:
  CListener(velqua_oyente function, void* user) : function_(function), user_(user) {}
  bool Is(velqua_oyente function, void* user) const {
    return function_ == function && user_ == user;
  }

 protected:
  void Notify(int32_t notification) override { function_(user_, notification); }

 private:
  velqua_oyente function_;
  void* user_;
};

// Returns a new handle through *out, or the error of creating it.
template <typename Make>
int32_t Create(velqua_cfg** out, Make&& make) {
  return Guard([&] {
    if (out == nullptr) velqua_c::ThrowArgument();
    *out = make();
  });
}

}  // namespace

extern "C" {

int32_t velqua_cfg_create(velqua_cfg** cfg) {
  return Create(cfg, [] { return new velqua_cfg(std::make_shared<clsCfgConmut>()); });
}

int32_t velqua_cfg_load(const char* path, velqua_cfg** cfg) {
  return Create(cfg, [&] {
    velqua_records::SwitchConfig loaded =
        velqua_records::LoadSwitchConfig(path == nullptr ? "" : path);
    return new velqua_cfg(std::move(loaded.cfg), std::move(loaded.form),
                          std::move(loaded.delivery));
  });
}

void velqua_cfg_release(velqua_cfg* cfg) {
  if (cfg == nullptr || velqua_c::KindOf(cfg) != HandleKind::kCfg) return;
  cfg->kind = HandleKind::kReleased;
  delete cfg;
}

int32_t velqua_cfg_iniciar(velqua_cfg* cfg) {
  return Change(cfg, [](clsCfgConmut& c) { c.Iniciar(); });
}
int32_t velqua_cfg_modificado_get(const velqua_cfg* cfg, bool* modificado) {
  return Get(modificado, [&] { return Read(cfg).Modificado(); });
}
int32_t velqua_cfg_modificado_set(velqua_cfg* cfg, bool modificado) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Modificado(modificado); });
}
int32_t velqua_cfg_hay_config(const velqua_cfg* cfg, bool* hay) {
  return Get(hay, [&] { return Read(cfg).HayConfig(); });
}
int32_t velqua_cfg_id_cfg_get(const velqua_cfg* cfg, int32_t* id) {
  return Get(id, [&] { return Read(cfg).IDCfg(); });
}
int32_t velqua_cfg_id_cfg_set(velqua_cfg* cfg, int32_t id) {
  return Change(cfg, [&](clsCfgConmut& c) { c.IDCfg(id); });
}
int32_t velqua_cfg_version_get(const velqua_cfg* cfg, int32_t* version) {
  return Get(version, [&] { return Read(cfg).Version(); });
}
int32_t velqua_cfg_nombre_version_get(const velqua_cfg* cfg, char** nombre) {
  return Get(nombre, [&] { return Read(cfg).NombreVersion(); });
}
int32_t velqua_cfg_caso_get(const velqua_cfg* cfg, int32_t* caso) {
  return Get(caso, [&] { return Read(cfg).Caso(); });
}
int32_t velqua_cfg_caso_set(velqua_cfg* cfg, int32_t caso) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Caso(static_cast<velqua::emCasos>(caso)); });
}
int32_t velqua_cfg_nombre_caso_get(const velqua_cfg* cfg, char** nombre) {
  return Get(nombre, [&] { return Read(cfg).NombreCaso(); });
}
int32_t velqua_cfg_obt_nombre_caso(const velqua_cfg* cfg, int32_t caso, char** nombre) {
  return Get(nombre, [&] { return Read(cfg).ObtNombreCaso(static_cast<velqua::emCasos>(caso)); });
}
int32_t velqua_cfg_marca_get(const velqua_cfg* cfg, char** marca) {
  return Get(marca, [&] { return Read(cfg).Marca(); });
}
int32_t velqua_cfg_marca_set(velqua_cfg* cfg, const char* marca) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Marca(In(marca)); });
}
int32_t velqua_cfg_modelo_get(const velqua_cfg* cfg, char** modelo) {
  return Get(modelo, [&] { return Read(cfg).Modelo(); });
}
int32_t velqua_cfg_modelo_set(velqua_cfg* cfg, const char* modelo) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Modelo(In(modelo)); });
}
int32_t velqua_cfg_nombre_conmutador_get(const velqua_cfg* cfg, char** nombre) {
  return Get(nombre, [&] { return Read(cfg).NombreConmutador(); });
}
int32_t velqua_cfg_comentarios_get(const velqua_cfg* cfg, char** comentarios) {
  return Get(comentarios, [&] { return Read(cfg).Comentarios(); });
}
int32_t velqua_cfg_comentarios_set(velqua_cfg* cfg, const char* comentarios) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Comentarios(In(comentarios)); });
}
int32_t velqua_cfg_separador_get(const velqua_cfg* cfg, char** separador) {
  return Get(separador, [&] { return Read(cfg).Separador(); });
}
int32_t velqua_cfg_separador_set(velqua_cfg* cfg, const char* separador) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Separador(In(separador)); });
}
int32_t velqua_cfg_lista_separador_get(const velqua_cfg* cfg, char** lista) {
  return Get(lista, [&] { return Read(cfg).ListaSeparador(); });
}
int32_t velqua_cfg_tam_max_separador_get(const velqua_cfg* cfg, int16_t* tam) {
  return Get(tam, [&] { return Read(cfg).TamMaxSeparador(); });
}
int32_t velqua_cfg_tam_max_comentarios_get(const velqua_cfg* cfg, int16_t* tam) {
  return Get(tam, [&] { return Read(cfg).TamMaxComentarios(); });
}

int32_t velqua_cfg_dato_activo_get(const velqua_cfg* cfg, int32_t* clave) {
  return Get(clave, [&] { return Read(cfg).DATOActivo(); });
}
int32_t velqua_cfg_dato_activo_set(velqua_cfg* cfg, int32_t clave) {
  return Change(cfg,
                [&](clsCfgConmut& c) { c.DATOActivo(static_cast<velqua::emParamDato>(clave)); });
}
int32_t velqua_cfg_cte_activo_get(const velqua_cfg* cfg, int32_t* clave) {
  return Get(clave, [&] { return Read(cfg).CTEActivo(); });
}
int32_t velqua_cfg_cte_activo_set(velqua_cfg* cfg, int32_t clave) {
  return Change(
      cfg, [&](clsCfgConmut& c) { c.CTEActivo(static_cast<velqua::emParamDatoConstante>(clave)); });
}
int32_t velqua_cfg_hay_dato_get(const velqua_cfg* cfg, bool* hay) {
  return Get(hay, [&] { return Read(cfg).HayDATO(); });
}
int32_t velqua_cfg_hay_cte_get(const velqua_cfg* cfg, bool* hay) {
  return Get(hay, [&] { return Read(cfg).HayCTE(); });
}
int32_t velqua_cfg_tipo_dato_dato_get(const velqua_cfg* cfg, int32_t* tipo) {
  return Get(tipo, [&] { return Read(cfg).TipoDatoDATO(); });
}
int32_t velqua_cfg_tipo_dato_dato_set(velqua_cfg* cfg, int32_t tipo) {
  return Change(cfg,
                [&](clsCfgConmut& c) { c.TipoDatoDATO(static_cast<velqua::emTipoDato>(tipo)); });
}
int32_t velqua_cfg_tipo_dato_cte_get(const velqua_cfg* cfg, int32_t* tipo) {
  return Get(tipo, [&] { return Read(cfg).TipoDatoCTE(); });
}
int32_t velqua_cfg_dato_pos_get(const velqua_cfg* cfg, uint8_t* pos) {
  return Get(pos, [&] { return Read(cfg).DATOPos(); });
}
int32_t velqua_cfg_dato_pos_set(velqua_cfg* cfg, uint8_t pos) {
  return Change(cfg, [&](clsCfgConmut& c) { c.DATOPos(pos); });
}
int32_t velqua_cfg_cte_pos_get(const velqua_cfg* cfg, uint8_t* pos) {
  return Get(pos, [&] { return Read(cfg).CTEPos(); });
}
int32_t velqua_cfg_cte_pos_set(velqua_cfg* cfg, uint8_t pos) {
  return Change(cfg, [&](clsCfgConmut& c) { c.CTEPos(pos); });
}
int32_t velqua_cfg_dato_tam_get(const velqua_cfg* cfg, uint8_t* tam) {
  return Get(tam, [&] { return Read(cfg).DATOTam(); });
}
int32_t velqua_cfg_dato_tam_set(velqua_cfg* cfg, uint8_t tam) {
  return Change(cfg, [&](clsCfgConmut& c) { c.DATOTam(tam); });
}
int32_t velqua_cfg_cte_tam_get(const velqua_cfg* cfg, uint8_t* tam) {
  return Get(tam, [&] { return Read(cfg).CTETam(); });
}
int32_t velqua_cfg_cte_tam_set(velqua_cfg* cfg, uint8_t tam) {
  return Change(cfg, [&](clsCfgConmut& c) { c.CTETam(tam); });
}
int32_t velqua_cfg_constante_get(const velqua_cfg* cfg, char** constante) {
  return Get(constante, [&] { return Read(cfg).Constante(); });
}
int32_t velqua_cfg_constante_set(velqua_cfg* cfg, const char* constante) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Constante(In(constante)); });
}

int32_t velqua_cfg_activa_pin(velqua_cfg* cfg, int32_t puerto, int16_t pin_vector,
                              int16_t pin_conectar) {
  return Change(cfg, [&](clsCfgConmut& c) {
    c.ActivaPin(static_cast<velqua::emPuertoSerial>(puerto), pin_vector, pin_conectar);
  });
}
int32_t velqua_cfg_desactiva_pin(velqua_cfg* cfg, int32_t puerto, int16_t pin_vector,
                                 int16_t pin_desconectar) {
  return Change(cfg, [&](clsCfgConmut& c) {
    c.DesactivaPin(static_cast<velqua::emPuertoSerial>(puerto), pin_vector, pin_desconectar);
  });
}
int32_t velqua_cfg_pines_conectados(const velqua_cfg* cfg, int32_t puerto, int16_t pin_conmut,
                                    int16_t pin_pc, bool* conectados) {
  return Get(conectados, [&] {
    return Read(cfg).PinesConectados(static_cast<velqua::emPuertoSerial>(puerto), pin_conmut,
                                     pin_pc);
  });
}
int32_t velqua_cfg_hay_configuracion_smdr(const velqua_cfg* cfg, int32_t puerto, bool* hay) {
  return Get(hay, [&] {
    return Read(cfg).HayConfiguracionSMDR(static_cast<velqua::emPuertoSerial>(puerto));
  });
}
int32_t velqua_cfg_limpia_configuracion_smdr(velqua_cfg* cfg, int32_t puerto) {
  return Change(cfg, [&](clsCfgConmut& c) {
    c.LimpiaConfiguracionSMDR(static_cast<velqua::emPuertoSerial>(puerto));
  });
}

int32_t velqua_cfg_abrir(velqua_cfg* cfg, const char* archivo) {
  return velqua_c::Guard([&] {
    velqua_c::Cfg(cfg).Run([&](clsCfgConmut& c) { c.Abrir(In(archivo)); });
    velqua_c::Cfg(cfg).ForgetRecordForm();
  });
}
int32_t velqua_cfg_guardar_como(velqua_cfg* cfg, const char* archivo) {
  return Change(cfg, [&](clsCfgConmut& c) { c.GuardarComo(In(archivo)); });
}
int32_t velqua_cfg_importar(velqua_cfg* cfg, const char* archivo) {
  return velqua_c::Guard([&] {
    velqua_c::Cfg(cfg).Run([&](clsCfgConmut& c) { c.Importar(In(archivo)); });
    velqua_c::Cfg(cfg).ForgetRecordForm();
  });
}
int32_t velqua_cfg_exportar(velqua_cfg* cfg, const char* archivo) {
  return Change(cfg, [&](clsCfgConmut& c) { c.Exportar(In(archivo)); });
}

int32_t velqua_cfg_agrega_oyente(velqua_cfg* cfg, velqua_oyente oyente, void* usuario) {
  return Guard([&] {
    velqua_bindings::ListenedConfig& c = Cfg(cfg);
    if (oyente != nullptr) c.Add(std::make_unique<CListener>(oyente, usuario));
  });
}
int32_t velqua_cfg_quita_oyente(velqua_cfg* cfg, velqua_oyente oyente, void* usuario) {
  return Guard([&] {
    Cfg(cfg).Remove([&](const velqua_bindings::Listener& l) {
      return static_cast<const CListener&>(l).Is(oyente, usuario);
    });
  });
}

}  // extern "C"
