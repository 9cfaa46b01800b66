// A C++ host of Velqua: checks a switch configuration with the C++ classes,
// then prints one CSV row a record, as `velqua translate --format csv` does.
//
//   velqua_rows_cpp CONFIG.cfg RECORDS [EXTENSION_LIST]
//
// The rows come from the library's road (its C interface): it gathers
// multi-line calls and leaves blank what the switch did not print, where the
// translator's properties fall back to the clock.
#include <velqua/velqua.h>
#include <velqua/velqua_c.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace {

std::string Taken(char* text) {
  std::string copy = text != nullptr ? text : "";
  velqua_free(text);
  return copy;
}

// The library's last error on this thread, in one line.
std::string LastError() {
  char* source = nullptr;
  char* description = nullptr;
  velqua_error_source(&source);
  velqua_error_description(&description);
  return "error " + std::to_string(velqua_error_number()) + " in " + Taken(source) + ": " +
         Taken(description);
}

// A CSV field, quoted when it holds a comma, a quote, CR or LF.
std::string Field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

std::string Two(int32_t v) { return (v < 10 ? "0" : "") + std::to_string(v); }

std::string Row(const velqua_call& c) {
  std::string row = std::to_string(c.record) + "," + std::to_string(c.type) + "," + c.type_name +
                    "," + std::to_string(c.attribute) + "," + c.attribute_name + ",";
  if (!c.has_fields) return row + ",,,,,,,,,,," + Field(c.error);
  if (c.has_date) {
    char date[32];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", static_cast<int>(c.year),
                  static_cast<int>(c.month), static_cast<int>(c.day));
    row += date;
  }
  row += ",";
  if (c.has_time) row += Two(c.time / 3600) + ":" + Two(c.time / 60 % 60);
  if (c.has_time && c.has_seconds) row += ":" + Two(c.time % 60);
  row += "," + (c.duration >= 0 ? std::to_string(c.duration) : "");
  row += "," + (c.ring >= 0 ? std::to_string(c.ring) : "");
  for (const char* text : {c.dialled, c.extension, c.trunk, c.receiving_extension,
                           c.receiving_trunk, c.account_code}) {
    row += "," + Field(text);
  }
  return row + (c.extension_random ? ",1," : ",0,") + Field(c.error);
}

struct Release {
  void operator()(velqua_cfg* p) const { velqua_cfg_release(p); }
  void operator()(velqua_translation* p) const { velqua_translation_release(p); }
};

// Translates the records, printing each row as soon as it is ready.
bool Translate(const char* config, std::istream& records, const char* extensions) {
  velqua_cfg* cfg_handle = nullptr;
  if (velqua_cfg_load(config, &cfg_handle) != 0) return false;
  const std::unique_ptr<velqua_cfg, Release> cfg(cfg_handle);
  const velqua_translation_settings settings{extensions, nullptr, false, 0};
  velqua_translation* handle = nullptr;
  if (velqua_translation_create(cfg.get(), &settings, &handle) != 0) return false;
  const std::unique_ptr<velqua_translation, Release> translation(handle);
  velqua_call call{};
  const auto drain = [&] {
    bool got = true;
    while (got) {
      if (velqua_translation_next(translation.get(), &call, &got) != 0) return false;
      if (got) std::cout << Row(call) << "\r\n";
    }
    return true;
  };
  std::cout << "record,type,type_name,attribute,attribute_name,date,time,duration,ring,dialled,"
               "extension,trunk,receiving_extension,receiving_trunk,account_code,"
               "extension_random,error\r\n";
  char block[65536];
  bool ok = true;
  while (ok && records.read(block, sizeof block).gcount() > 0) {
    ok = velqua_translation_write(translation.get(), block,
                                  static_cast<size_t>(records.gcount())) == 0 &&
         drain();
  }
  ok = ok && velqua_translation_finish(translation.get()) == 0 && drain();
  velqua_call_clear(&call);
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 4) {
    std::cerr << "usage: velqua_rows_cpp CONFIG.cfg RECORDS [EXTENSION_LIST]\n";
    return 2;
  }
  try {  // the C++ classes: a failure is a velqua::Error
    velqua::clsCfgConmut cfg;
    cfg.Abrir(velqua::DesdeUtf8(argv[1]));
    std::cerr << "switch: " << velqua::AUtf8(cfg.NombreConmutador()) << " (case " << cfg.Caso()
              << ")\n";
  } catch (const velqua::Error& e) {
    std::cerr << "velqua_rows_cpp: error " << e.Number() << " in " << velqua::AUtf8(e.Source())
              << ": " << e.what() << "\n";
    return 1;
  }
  std::ifstream records(argv[2], std::ios::binary);
  if (!records) {
    std::cerr << "velqua_rows_cpp: cannot read " << argv[2] << "\n";
    return 1;
  }
  if (!Translate(argv[1], records, argc == 4 ? argv[3] : nullptr)) {
    std::cerr << "velqua_rows_cpp: " << LastError() << "\n";
    return 1;
  }
  return 0;
}
