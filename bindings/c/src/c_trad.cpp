// The translator (clsTraductor) through the C interface.
#include "c_support.h"
#include "velqua/error.h"

using velqua::clsTraductor;
using velqua_c::Get;
using velqua_c::Guard;
using velqua_c::In;
using velqua_c::Trad;

namespace {

// Runs a change of the translator.
template <typename Operation>
int32_t Change(velqua_trad* trad, Operation&& operation) {
  return Guard([&] { operation(Trad(trad)); });
}

}  // namespace

extern "C" {

int32_t velqua_trad_create(velqua_trad** trad) {
  return Guard([&] {
    if (trad == nullptr) velqua_c::ThrowArgument();
    *trad = new velqua_trad();
  });
}

void velqua_trad_release(velqua_trad* trad) {
  if (trad == nullptr || velqua_c::KindOf(trad) != HandleKind::kTrad) return;
  trad->kind = HandleKind::kReleased;
  delete trad;
}

// The configuration is taken from a velqua_cfg handle; any other handle is an
// object of the wrong type, and NULL unbinds, as in the automation interface.
int32_t velqua_trad_conmutador_set(velqua_trad* trad, const void* conmutador) {
  return Change(trad, [&](clsTraductor& t) {
    if (conmutador != nullptr && velqua_c::KindOf(conmutador) != HandleKind::kCfg) {
      t.Conmutador(nullptr);  // a failed binding leaves the translator unbound
      velqua::LanzaTiposNoCoinciden();
    }
    t.Conmutador(conmutador == nullptr
                     ? nullptr
                     : velqua_c::Cfg(static_cast<const velqua_cfg*>(conmutador)).shared());
  });
}

int32_t velqua_trad_archivo_lista_extensiones_kxtda_get(const velqua_trad* trad, char** archivo) {
  return Get(archivo, [&] { return Trad(trad).ArchivoListaExtensionesKXTDA(); });
}
int32_t velqua_trad_archivo_lista_extensiones_kxtda_set(velqua_trad* trad, const char* archivo) {
  return Change(trad, [&](clsTraductor& t) { t.ArchivoListaExtensionesKXTDA(In(archivo)); });
}
int32_t velqua_trad_archivo_llamadas_error_get(const velqua_trad* trad, char** archivo) {
  return Get(archivo, [&] { return Trad(trad).ArchivoLlamadasError(); });
}
int32_t velqua_trad_archivo_llamadas_error_set(velqua_trad* trad, const char* archivo) {
  return Change(trad, [&](clsTraductor& t) { t.ArchivoLlamadasError(In(archivo)); });
}
int32_t velqua_trad_buffer_multiples_lineas_get(const velqua_trad* trad, char** buffer) {
  return Get(buffer, [&] { return Trad(trad).BufferMultiplesLineas(); });
}
int32_t velqua_trad_buffer_multiples_lineas_set(velqua_trad* trad, const char* buffer) {
  return Change(trad, [&](clsTraductor& t) { t.BufferMultiplesLineas(In(buffer)); });
}
int32_t velqua_trad_llamada_actual_get(const velqua_trad* trad, char** llamada) {
  return Get(llamada, [&] { return Trad(trad).LlamadaActual(); });
}
int32_t velqua_trad_llamada_actual_set(velqua_trad* trad, const char* llamada) {
  return Change(trad, [&](clsTraductor& t) { t.LlamadaActual(In(llamada)); });
}
int32_t velqua_trad_hay_llamada(const velqua_trad* trad, bool* hay) {
  return Get(hay, [&] { return Trad(trad).HayLlamada(); });
}
int32_t velqua_trad_hay_buffer_multiples_lineas(const velqua_trad* trad, bool* hay) {
  return Get(hay, [&] { return Trad(trad).HayBufferMultiplesLineas(); });
}
int32_t velqua_trad_tipo_llamada_detectada_get(const velqua_trad* trad, int32_t* tipo) {
  return Get(tipo, [&] { return Trad(trad).TipoLlamadaDetectada(); });
}
int32_t velqua_trad_atributo_get(const velqua_trad* trad, int32_t* atributo) {
  return Get(atributo, [&] { return Trad(trad).Atributo(); });
}

int32_t velqua_trad_dia_get(velqua_trad* trad, int16_t* dia) {
  return Get(dia, [&] { return Trad(trad).Dia(); });
}
int32_t velqua_trad_mes_get(velqua_trad* trad, int16_t* mes) {
  return Get(mes, [&] { return Trad(trad).Mes(); });
}
int32_t velqua_trad_anio_get(velqua_trad* trad, int16_t* anio) {
  return Get(anio, [&] { return Trad(trad).Anio(); });
}
int32_t velqua_trad_hora_get(velqua_trad* trad, int32_t* segundos) {
  return Get(segundos, [&] { return Trad(trad).Hora(); });
}
int32_t velqua_trad_duracion_get(velqua_trad* trad, int32_t* segundos) {
  return Get(segundos, [&] { return Trad(trad).Duracion(); });
}
int32_t velqua_trad_ring_get(velqua_trad* trad, int32_t* segundos) {
  return Get(segundos, [&] { return Trad(trad).Ring(); });
}
int32_t velqua_trad_marcacion_get(velqua_trad* trad, char** marcacion) {
  return Get(marcacion, [&] { return Trad(trad).Marcacion(); });
}
int32_t velqua_trad_extension_get(velqua_trad* trad, char** extension) {
  return Get(extension, [&] { return Trad(trad).Extension(); });
}
int32_t velqua_trad_troncal_get(velqua_trad* trad, char** troncal) {
  return Get(troncal, [&] { return Trad(trad).Troncal(); });
}
int32_t velqua_trad_extension_receptor_get(velqua_trad* trad, char** extension) {
  return Get(extension, [&] { return Trad(trad).ExtensionReceptor(); });
}
int32_t velqua_trad_troncal_receptor_get(velqua_trad* trad, char** troncal) {
  return Get(troncal, [&] { return Trad(trad).TroncalReceptor(); });
}
int32_t velqua_trad_codigo_cuenta_get(velqua_trad* trad, char** codigo) {
  return Get(codigo, [&] { return Trad(trad).CodigoCuenta(); });
}

int32_t velqua_trad_hay_constante_llamada(velqua_trad* trad, int32_t constante, bool* hay) {
  return Get(hay, [&] {
    return Trad(trad).HayConstanteLlamada(static_cast<velqua::emParamDatoConstante>(constante));
  });
}
int32_t velqua_trad_busca_linea(velqua_trad* trad, const char* valor, int16_t* posicion) {
  return Get(posicion, [&] { return Trad(trad).BuscaLinea(In(valor)); });
}

}  // extern "C"
