/* The C interface of Velqua (C99): the configuration (clsCfgConmut) and the
 * translator (clsTraductor) for hosts in any language, and the program's road
 * from record bytes to call rows. doc/bindings.md has the whole contract; in
 * short:
 *
 * - Names: velqua_<object>_<member>, the member in lower case with words
 *   joined by "_" (Marca -> marca, LlamadaActual -> llamada_actual, DATOPos ->
 *   dato_pos). A property is read with _get and written with _set; an
 *   operation keeps its verb (velqua_cfg_abrir) and gives its result through
 *   its last argument. <object> is cfg or trad; what has no counterpart in the
 *   two classes is named in English (velqua_cfg_load, velqua_translation_*).
 * - Results: every function returns 0 or the number of the error it failed
 *   with; that number, its source and its Spanish description stay readable on
 *   the calling thread (velqua_error_*) until the next call there. No C++
 *   exception leaves the library.
 * - Texts are NUL-terminated UTF-8. A text passed in is only read during the
 *   call (NULL is the empty text; malformed UTF-8 becomes U+FFFD). A text
 *   given out (char**) is new memory the caller owns and releases with
 *   velqua_free. A text the library passes to a callback is valid during that
 *   call only.
 * - Handles are opaque: create, use, release. A NULL handle fails with 91 and
 *   a handle of another kind with 13, as an unset or wrong object does in the
 *   automation interface. A handle is used by one thread at a time. */
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "velqua/export.h"

#ifdef __cplusplus
#include "velqua/enums.h"
extern "C" {
#else
#include "velqua/velqua_c_enums.h"
#endif

/* ---- Error numbers ---------------------------------------------------------
 * The library's own errors are 0x80040000 plus an emErroresConfig code (or
 * 1205, a DB25 pin 1), read as a negative int32_t; the runtime errors keep
 * their small numbers. Source "Velqua" for the runtime errors. */
enum {
  VELQUA_ERROR_ARGUMENTO = 5,          /* a NULL result pointer; a file the road refuses */
  VELQUA_ERROR_DESBORDAMIENTO = 6,     /* overflow: a column past 255, a number too large */
  VELQUA_ERROR_MEMORIA = 7,            /* out of memory */
  VELQUA_ERROR_INDICE = 9,             /* index out of range (a switch pin) */
  VELQUA_ERROR_TIPOS = 13,             /* a handle of the wrong kind */
  VELQUA_ERROR_INTERNO = 51,           /* a failure the library did not foresee */
  VELQUA_ERROR_OBJETO = 91,            /* no handle, or no configuration bound */
  VELQUA_ERROR_PIN_DB25 = -2147220299, /* 0x800404B5 */
  VELQUA_ERROR_ABRIR = -2147219999     /* 0x800405E1: not a configuration file */
};

/* The number of the library error of code `code` (emErroresConfig, 1205). */
#define VELQUA_NUMERO_ERROR(code) ((int32_t)(0x80040000u + (uint32_t)(code)))

/* ---- Handles, texts, errors ---- */
typedef struct velqua_cfg velqua_cfg;
typedef struct velqua_trad velqua_trad;
typedef struct velqua_translation velqua_translation;

/* Releases a text the library gave out; NULL is ignored. */
VELQUA_EXPORT void velqua_free(char* text);

/* The last error on this thread: its number (0 when the last call succeeded),
 * its source (e.g. "clsConfigConmut.Abrir") and its Spanish description,
 * composed as hosts show it (file errors end CR LF " Archivo :" and the name).
 * Reading them changes nothing; the texts are the caller's (velqua_free). */
VELQUA_EXPORT int32_t velqua_error_number(void);
VELQUA_EXPORT int32_t velqua_error_source(char** source);
VELQUA_EXPORT int32_t velqua_error_description(char** description);

/* ---- Configuration (clsCfgConmut; contracts in velqua/cfg_conmut.h) ---- */

/* A new configuration, reset (version 3, case 1, every text empty). */
VELQUA_EXPORT int32_t velqua_cfg_create(velqua_cfg** cfg);
/* A new configuration read from a file by its extension: .cfg (Abrir), .ini
 * (Importar) or .json (the program's readable form); or, for a name that is
 * not a file and has neither a folder nor an extension, the bundled switch of
 * that name ("hicom"), as the program's -c reads it. A missing file, an
 * unknown name or extension or a bad JSON form fail with 5 and an English
 * description naming the file and the fault; a file the library refuses with
 * the library's error. */
VELQUA_EXPORT int32_t velqua_cfg_load(const char* path, velqua_cfg** cfg);
/* Releases the handle and its listeners; translators bound to the
 * configuration keep it until they are released or rebound. NULL is ignored.
 * Never from inside one of its own notifications. */
VELQUA_EXPORT void velqua_cfg_release(velqua_cfg* cfg);

/* Identity, labels, case and change flag. */
VELQUA_EXPORT int32_t velqua_cfg_iniciar(velqua_cfg* cfg);
VELQUA_EXPORT int32_t velqua_cfg_modificado_get(const velqua_cfg* cfg, bool* modificado);
VELQUA_EXPORT int32_t velqua_cfg_modificado_set(velqua_cfg* cfg, bool modificado);
VELQUA_EXPORT int32_t velqua_cfg_hay_config(const velqua_cfg* cfg, bool* hay);
VELQUA_EXPORT int32_t velqua_cfg_id_cfg_get(const velqua_cfg* cfg, int32_t* id);
VELQUA_EXPORT int32_t velqua_cfg_id_cfg_set(velqua_cfg* cfg, int32_t id);
VELQUA_EXPORT int32_t velqua_cfg_version_get(const velqua_cfg* cfg, int32_t* version);
VELQUA_EXPORT int32_t velqua_cfg_nombre_version_get(const velqua_cfg* cfg, char** nombre);
VELQUA_EXPORT int32_t velqua_cfg_caso_get(const velqua_cfg* cfg, int32_t* caso);
VELQUA_EXPORT int32_t velqua_cfg_caso_set(velqua_cfg* cfg, int32_t caso);
VELQUA_EXPORT int32_t velqua_cfg_nombre_caso_get(const velqua_cfg* cfg, char** nombre);
VELQUA_EXPORT int32_t velqua_cfg_obt_nombre_caso(const velqua_cfg* cfg, int32_t caso,
                                                 char** nombre);
/* Fixed-width texts (50, 50, 250 and 10 characters), cut silently. */
VELQUA_EXPORT int32_t velqua_cfg_marca_get(const velqua_cfg* cfg, char** marca);
VELQUA_EXPORT int32_t velqua_cfg_marca_set(velqua_cfg* cfg, const char* marca);
VELQUA_EXPORT int32_t velqua_cfg_modelo_get(const velqua_cfg* cfg, char** modelo);
VELQUA_EXPORT int32_t velqua_cfg_modelo_set(velqua_cfg* cfg, const char* modelo);
VELQUA_EXPORT int32_t velqua_cfg_nombre_conmutador_get(const velqua_cfg* cfg, char** nombre);
VELQUA_EXPORT int32_t velqua_cfg_comentarios_get(const velqua_cfg* cfg, char** comentarios);
VELQUA_EXPORT int32_t velqua_cfg_comentarios_set(velqua_cfg* cfg, const char* comentarios);
VELQUA_EXPORT int32_t velqua_cfg_separador_get(const velqua_cfg* cfg, char** separador);
VELQUA_EXPORT int32_t velqua_cfg_separador_set(velqua_cfg* cfg, const char* separador);
VELQUA_EXPORT int32_t velqua_cfg_lista_separador_get(const velqua_cfg* cfg, char** lista);
VELQUA_EXPORT int32_t velqua_cfg_tam_max_separador_get(const velqua_cfg* cfg, int16_t* tam);
VELQUA_EXPORT int32_t velqua_cfg_tam_max_comentarios_get(const velqua_cfg* cfg, int16_t* tam);

/* Data-field and constant tables, through the active keys. */
VELQUA_EXPORT int32_t velqua_cfg_dato_activo_get(const velqua_cfg* cfg, int32_t* clave);
VELQUA_EXPORT int32_t velqua_cfg_dato_activo_set(velqua_cfg* cfg, int32_t clave);
VELQUA_EXPORT int32_t velqua_cfg_cte_activo_get(const velqua_cfg* cfg, int32_t* clave);
VELQUA_EXPORT int32_t velqua_cfg_cte_activo_set(velqua_cfg* cfg, int32_t clave);
VELQUA_EXPORT int32_t velqua_cfg_hay_dato_get(const velqua_cfg* cfg, bool* hay);
VELQUA_EXPORT int32_t velqua_cfg_hay_cte_get(const velqua_cfg* cfg, bool* hay);
VELQUA_EXPORT int32_t velqua_cfg_tipo_dato_dato_get(const velqua_cfg* cfg, int32_t* tipo);
VELQUA_EXPORT int32_t velqua_cfg_tipo_dato_dato_set(velqua_cfg* cfg, int32_t tipo);
VELQUA_EXPORT int32_t velqua_cfg_tipo_dato_cte_get(const velqua_cfg* cfg, int32_t* tipo);
VELQUA_EXPORT int32_t velqua_cfg_dato_pos_get(const velqua_cfg* cfg, uint8_t* pos);
VELQUA_EXPORT int32_t velqua_cfg_dato_pos_set(velqua_cfg* cfg, uint8_t pos);
VELQUA_EXPORT int32_t velqua_cfg_cte_pos_get(const velqua_cfg* cfg, uint8_t* pos);
VELQUA_EXPORT int32_t velqua_cfg_cte_pos_set(velqua_cfg* cfg, uint8_t pos);
VELQUA_EXPORT int32_t velqua_cfg_dato_tam_get(const velqua_cfg* cfg, uint8_t* tam);
VELQUA_EXPORT int32_t velqua_cfg_dato_tam_set(velqua_cfg* cfg, uint8_t tam);
VELQUA_EXPORT int32_t velqua_cfg_cte_tam_get(const velqua_cfg* cfg, uint8_t* tam);
VELQUA_EXPORT int32_t velqua_cfg_cte_tam_set(velqua_cfg* cfg, uint8_t tam);
VELQUA_EXPORT int32_t velqua_cfg_constante_get(const velqua_cfg* cfg, char** constante);
VELQUA_EXPORT int32_t velqua_cfg_constante_set(velqua_cfg* cfg, const char* constante);

/* Cable wiring of a port (emPuertoSerial); errors 6, 9 and the DB25 pin 1. */
VELQUA_EXPORT int32_t velqua_cfg_activa_pin(velqua_cfg* cfg, int32_t puerto, int16_t pin_vector,
                                            int16_t pin_conectar);
VELQUA_EXPORT int32_t velqua_cfg_desactiva_pin(velqua_cfg* cfg, int32_t puerto, int16_t pin_vector,
                                               int16_t pin_desconectar);
VELQUA_EXPORT int32_t velqua_cfg_pines_conectados(const velqua_cfg* cfg, int32_t puerto,
                                                  int16_t pin_conmut, int16_t pin_pc,
                                                  bool* conectados);
VELQUA_EXPORT int32_t velqua_cfg_hay_configuracion_smdr(const velqua_cfg* cfg, int32_t puerto,
                                                        bool* hay);
VELQUA_EXPORT int32_t velqua_cfg_limpia_configuracion_smdr(velqua_cfg* cfg, int32_t puerto);

/* Files: binary (abrir, guardar_como) and profile (importar, exportar). */
VELQUA_EXPORT int32_t velqua_cfg_abrir(velqua_cfg* cfg, const char* archivo);
VELQUA_EXPORT int32_t velqua_cfg_guardar_como(velqua_cfg* cfg, const char* archivo);
VELQUA_EXPORT int32_t velqua_cfg_importar(velqua_cfg* cfg, const char* archivo);
VELQUA_EXPORT int32_t velqua_cfg_exportar(velqua_cfg* cfg, const char* archivo);

/* ---- Notifications ----
 * A listener is called synchronously, in registration order, after the new
 * value is in place, with its user pointer and the notification's number.
 * It may read the configuration and add or remove listeners; it must not
 * release the handle. */
enum {
  VELQUA_CAMBIO_NOMBRE_CONMUTADOR = 1, /* Marca or Modelo changed, before its Cambios */
  VELQUA_CONFIGURACION_CARGADA = 2,    /* end of Iniciar, of a successful Abrir or Importar */
  VELQUA_CAMBIOS = 3                   /* any effective change of the content */
};
typedef void (*velqua_oyente)(void* usuario, int32_t notificacion);
/* Registers (oyente, usuario); a pair registered twice is called twice; a
 * NULL oyente is ignored. */
VELQUA_EXPORT int32_t velqua_cfg_agrega_oyente(velqua_cfg* cfg, velqua_oyente oyente,
                                               void* usuario);
/* Removes one registration of the pair; an unknown pair is ignored. */
VELQUA_EXPORT int32_t velqua_cfg_quita_oyente(velqua_cfg* cfg, velqua_oyente oyente, void* usuario);

/* ---- Drawings onto the host's surface ----
 * The host's picture box as callbacks, each given `usuario` first; units are
 * the surface's own (twips), colours 0x00BBGGRR. Every callback is required. */
typedef struct velqua_superficie {
  void* usuario;
  void (*font_name)(void* usuario, const char* nombre);
  void (*font_size)(void* usuario, int16_t puntos);
  void (*font_bold)(void* usuario, bool negrita);
  void (*fore_color)(void* usuario, int32_t color);
  void (*current_x)(void* usuario, float x);
  void (*current_y)(void* usuario, float y);
  float (*text_height)(void* usuario, const char* texto);
  /* Flags: 6 segment, 2 segment from the last end point, 22 outline, 38 filled. */
  void (*line)(void* usuario, int16_t flags, float x1, float y1, float x2, float y2, int32_t color);
  void (*print)(void* usuario, const char* texto);
  float (*twips_per_pixel_x)(void* usuario);
  float (*twips_per_pixel_y)(void* usuario);
} velqua_superficie;
/* Draws the cable diagram of a port with its top-left corner at (x, y).
 * A surface with a NULL callback fails with 5 before anything is drawn. */
VELQUA_EXPORT int32_t velqua_cfg_dibuja_configuracion_smdr(const velqua_cfg* cfg, int32_t puerto,
                                                           const velqua_superficie* superficie,
                                                           float x, float y);
/* Draws the DB9-to-DB25 conversion table (1350 x 1900 units). */
VELQUA_EXPORT int32_t velqua_cfg_dibuja_tabla_conversion_db9_db25(
    const velqua_cfg* cfg, const velqua_superficie* superficie, float x, float y);

/* ---- Translator (clsTraductor; contracts in velqua/traductor.h) ---- */

/* A new translator, unbound. */
VELQUA_EXPORT int32_t velqua_trad_create(velqua_trad** trad);
/* Releases the translator and its reference to the configuration. */
VELQUA_EXPORT void velqua_trad_release(velqua_trad* trad);

/* Binds the configuration of a velqua_cfg handle; NULL unbinds. Any other
 * kind of handle fails with 13 and leaves the translator unbound, as the
 * automation interface does with an object that is not a configuration. */
VELQUA_EXPORT int32_t velqua_trad_conmutador_set(velqua_trad* trad, const void* conmutador);

/* File names: the KX-TDA extension list and the unrecognised-record log. */
VELQUA_EXPORT int32_t velqua_trad_archivo_lista_extensiones_kxtda_get(const velqua_trad* trad,
                                                                      char** archivo);
VELQUA_EXPORT int32_t velqua_trad_archivo_lista_extensiones_kxtda_set(velqua_trad* trad,
                                                                      const char* archivo);
VELQUA_EXPORT int32_t velqua_trad_archivo_llamadas_error_get(const velqua_trad* trad,
                                                             char** archivo);
VELQUA_EXPORT int32_t velqua_trad_archivo_llamadas_error_set(velqua_trad* trad,
                                                             const char* archivo);
VELQUA_EXPORT int32_t velqua_trad_buffer_multiples_lineas_get(const velqua_trad* trad,
                                                              char** buffer);
VELQUA_EXPORT int32_t velqua_trad_buffer_multiples_lineas_set(velqua_trad* trad,
                                                              const char* buffer);
/* Writing a record detects its type and attribute (the intake). */
VELQUA_EXPORT int32_t velqua_trad_llamada_actual_get(const velqua_trad* trad, char** llamada);
VELQUA_EXPORT int32_t velqua_trad_llamada_actual_set(velqua_trad* trad, const char* llamada);
VELQUA_EXPORT int32_t velqua_trad_hay_llamada(const velqua_trad* trad, bool* hay);
VELQUA_EXPORT int32_t velqua_trad_hay_buffer_multiples_lineas(const velqua_trad* trad, bool* hay);
VELQUA_EXPORT int32_t velqua_trad_tipo_llamada_detectada_get(const velqua_trad* trad,
                                                             int32_t* tipo);
VELQUA_EXPORT int32_t velqua_trad_atributo_get(const velqua_trad* trad, int32_t* atributo);

/* Call fields, cut from the record at every read: 91 when unbound, 6 past
 * column 255. */
VELQUA_EXPORT int32_t velqua_trad_dia_get(velqua_trad* trad, int16_t* dia);
VELQUA_EXPORT int32_t velqua_trad_mes_get(velqua_trad* trad, int16_t* mes);
VELQUA_EXPORT int32_t velqua_trad_anio_get(velqua_trad* trad, int16_t* anio);
VELQUA_EXPORT int32_t velqua_trad_hora_get(velqua_trad* trad, int32_t* segundos);
VELQUA_EXPORT int32_t velqua_trad_duracion_get(velqua_trad* trad, int32_t* segundos);
VELQUA_EXPORT int32_t velqua_trad_ring_get(velqua_trad* trad, int32_t* segundos);
VELQUA_EXPORT int32_t velqua_trad_marcacion_get(velqua_trad* trad, char** marcacion);
VELQUA_EXPORT int32_t velqua_trad_extension_get(velqua_trad* trad, char** extension);
VELQUA_EXPORT int32_t velqua_trad_troncal_get(velqua_trad* trad, char** troncal);
VELQUA_EXPORT int32_t velqua_trad_extension_receptor_get(velqua_trad* trad, char** extension);
VELQUA_EXPORT int32_t velqua_trad_troncal_receptor_get(velqua_trad* trad, char** troncal);
VELQUA_EXPORT int32_t velqua_trad_codigo_cuenta_get(velqua_trad* trad, char** codigo);

/* Constant test and line search. */
VELQUA_EXPORT int32_t velqua_trad_hay_constante_llamada(velqua_trad* trad, int32_t constante,
                                                        bool* hay);
VELQUA_EXPORT int32_t velqua_trad_busca_linea(velqua_trad* trad, const char* valor,
                                              int16_t* posicion);

/* ---- The program's road: record bytes in, call rows out ----
 * The rows of `velqua translate`: records framed at CR LF, LF or CR, empty
 * lines skipped, multi-line calls gathered (case 4), and what the switch did
 * not print left blank rather than taken from the clock. A record the library
 * fails on becomes an unrecognised row carrying the error. Translations on
 * several threads take turns inside the library. */

typedef struct velqua_translation_settings {
  const char* extensions; /* KX-TDA extension list, or NULL */
  const char* errors_log; /* unrecognised-record log (English), appended to, or NULL */
  bool utf8;              /* records in UTF-8 rather than Windows-1252 */
  int32_t year;           /* year received, for switches that print none; 0: today */
} velqua_translation_settings;

/* One row; every text is the caller's (velqua_call_clear releases them all)
 * and never NULL: "" where the row has nothing. */
typedef struct velqua_call {
  int64_t record;           /* 1, 2, ... in input order */
  int32_t type;             /* emTipoLlamadaTraductor */
  char* type_name;          /* "outgoing", ... */
  int32_t attribute;        /* emAtributoTraductor */
  char* attribute_name;     /* "none", "in-transfer", ... */
  bool has_fields;          /* false: unrecognised, the fields below are blank */
  bool has_date;            /* the switch printed the day and the month; else 0s below */
  int32_t year, month, day; /* a year not printed: the year received */
  bool has_time;            /* the switch printed the hour and the minute; else 0 below */
  bool has_seconds;         /* ... and the seconds; else the seconds are 0 */
  int32_t time;             /* the call's start, seconds from midnight (a switch that
                               prints the end: the end less the duration) */
  int32_t duration;         /* seconds; -1 when none */
  int32_t ring;             /* seconds; -1 when none */
  char* dialled;
  char* extension;
  char* trunk;
  char* receiving_extension;
  char* receiving_trunk;
  char* account_code;
  bool extension_random; /* drawn at random for an account code not in the list */
  char* error;           /* why the library failed on the record, in English, or "" */
  /* The call's end: the start plus the duration (or the time a switch that
   * prints the end printed). has_end false, and 0s below, when the duration
   * or the time is not known; the end's date is 0s when no date was printed,
   * and is the next day's when the call went past midnight. */
  bool has_end;
  int32_t end_year, end_month, end_day;
  int32_t end_time; /* seconds from midnight, as precise as the start (see has_seconds) */
} velqua_call;

typedef struct velqua_counts {
  int64_t read;
  int64_t unrecognised; /* failed records included */
  int64_t failed;
  int64_t random_extensions;
} velqua_counts;

/* A translation with the configuration of `cfg` (shared: later changes count;
 * its case and separator decide, here, how lines are gathered). settings may
 * be NULL. A list that cannot be read or a log that cannot be appended to
 * fail with 5, naming the file. */
VELQUA_EXPORT int32_t velqua_translation_create(const velqua_cfg* cfg,
                                                const velqua_translation_settings* settings,
                                                velqua_translation** translation);
/* Takes the next bytes of the input, cut anywhere: every line they complete
 * is translated now and its row made ready. */
VELQUA_EXPORT int32_t velqua_translation_write(velqua_translation* translation, const char* bytes,
                                               size_t size);
/* Ends the input: a last line without a line end and an open multi-line call
 * are translated. */
VELQUA_EXPORT int32_t velqua_translation_finish(velqua_translation* translation);
/* Moves the oldest ready row into *call and sets *got; *got false when no
 * row is ready. *call must be zeroed or hold an earlier row, which is
 * released first (velqua_call_clear). */
VELQUA_EXPORT int32_t velqua_translation_next(velqua_translation* translation, velqua_call* call,
                                              bool* got);
VELQUA_EXPORT int32_t velqua_translation_counts(const velqua_translation* translation,
                                                velqua_counts* counts);
/* Releases the translation and the rows not taken. NULL is ignored. */
VELQUA_EXPORT void velqua_translation_release(velqua_translation* translation);
/* Releases the texts of a row and leaves it zeroed; a zeroed row is fine. */
VELQUA_EXPORT void velqua_call_clear(velqua_call* call);

#ifdef __cplusplus
} /* extern "C" */
#endif
