// The program's road through the C interface: bytes in, rows out.
#include <cstdlib>
#include <cstring>
#include <new>

#include "c_support.h"
#include "velqua/records/names.h"

using velqua_bindings::Row;
using velqua_c::Guard;
using velqua_c::Store;

namespace {

velqua_bindings::Road::Settings SettingsOf(const velqua_translation_settings* s) {
  velqua_bindings::Road::Settings settings;
  if (s == nullptr) return settings;
  if (s->extensions != nullptr) settings.extensions = s->extensions;
  if (s->errors_log != nullptr) settings.errors_log = s->errors_log;
  settings.utf8 = s->utf8;
  settings.year = s->year;
  return settings;
}

// Fills a cleared call from a row; texts that fail to be made leave the call
// clearable.
void Fill(const Row& row, velqua_call* call) {
  call->record = row.number;
  call->type = row.type;
  call->attribute = row.attribute;
  call->has_fields = row.has_fields;
  call->has_date = row.has_fields && row.HasDate();
  call->has_time = row.has_fields && row.HasTime();
  call->has_seconds = call->has_time && row.HasSeconds();
  // What the switch did not print is not shown, not even as a number.
  if (call->has_date) {
    call->year = row.year;
    call->month = row.month;
    call->day = row.day;
  }
  if (call->has_time) call->time = call->has_seconds ? row.time : row.time - row.time % 60;
  call->duration = row.has_fields ? row.duration : -1;
  call->ring = row.has_fields ? row.ring : -1;
  call->extension_random = row.random_extension;
  call->has_end = call->has_time && row.HasEnd();
  if (call->has_end) {
    call->end_time = call->has_seconds ? row.end_time : row.end_time - row.end_time % 60;
    if (call->has_date && row.HasEndDate()) {
      call->end_year = row.end_year;
      call->end_month = row.end_month;
      call->end_day = row.end_day;
    }
  }
  Store(&call->type_name, std::string(velqua_records::CallTypeWord(row.type)));
  Store(&call->attribute_name, std::string(velqua_records::AttributeWord(row.attribute)));
  Store(&call->dialled, row.dialled);
  Store(&call->extension, row.extension);
  Store(&call->trunk, row.trunk);
  Store(&call->receiving_extension, row.receiving_extension);
  Store(&call->receiving_trunk, row.receiving_trunk);
  Store(&call->account_code, row.account_code);
  Store(&call->error, row.error);
}

}  // namespace

extern "C" {

int32_t velqua_translation_create(const velqua_cfg* cfg,
                                  const velqua_translation_settings* settings,
                                  velqua_translation** translation) {
  return Guard([&] {
    if (translation == nullptr) velqua_c::ThrowArgument();
    const velqua_bindings::ListenedConfig& held = velqua_c::Cfg(cfg);
    velqua_bindings::Road::Settings road = SettingsOf(settings);
    road.form = held.form();  // delimited records shaped, page headings skipped
    *translation = new velqua_translation(held.shared(), road);
  });
}

int32_t velqua_translation_write(velqua_translation* translation, const char* bytes, size_t size) {
  return Guard([&] {
    velqua_translation& t = velqua_c::Translation(translation);
    if (bytes == nullptr && size > 0) velqua_c::ThrowArgument();
    t.road.Write(std::string_view(bytes == nullptr ? "" : bytes, size), &t.rows);
  });
}

int32_t velqua_translation_finish(velqua_translation* translation) {
  return Guard([&] {
    velqua_translation& t = velqua_c::Translation(translation);
    t.road.Finish(&t.rows);
  });
}

int32_t velqua_translation_next(velqua_translation* translation, velqua_call* call, bool* got) {
  return Guard([&] {
    velqua_translation& t = velqua_c::Translation(translation);
    if (call == nullptr || got == nullptr) velqua_c::ThrowArgument();
    velqua_call_clear(call);
    *got = t.taken < t.rows.size();
    if (!*got) return;
    Fill(t.rows[t.taken], call);
    if (++t.taken == t.rows.size()) {  // all taken: the storage is reused
      t.rows.clear();
      t.taken = 0;
    }
  });
}

int32_t velqua_translation_counts(const velqua_translation* translation, velqua_counts* counts) {
  return Guard([&] {
    const velqua_records::Counts c = velqua_c::Translation(translation).road.counts();
    if (counts == nullptr) velqua_c::ThrowArgument();
    *counts = velqua_counts{c.read, c.unrecognised, c.failed, c.random_extensions};
  });
}

void velqua_translation_release(velqua_translation* translation) {
  if (translation == nullptr || velqua_c::KindOf(translation) != HandleKind::kTranslation) return;
  translation->kind = HandleKind::kReleased;
  delete translation;
}

void velqua_call_clear(velqua_call* call) {
  if (call == nullptr) return;
  char** texts[] = {&call->type_name,       &call->attribute_name, &call->dialled,
                    &call->extension,       &call->trunk,          &call->receiving_extension,
                    &call->receiving_trunk, &call->account_code,   &call->error};
  for (char** text : texts) std::free(*text);
  std::memset(call, 0, sizeof *call);
}

}  // extern "C"
