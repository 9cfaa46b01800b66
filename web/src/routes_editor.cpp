// The layout editor's API (doc/editor.md): everything the page shows about
// records, files and the cable is computed here, by the record road the
// program uses (config_editor.h); the page only edits the JSON form.
#include <filesystem>
#include <string>
#include <vector>

#include "api.h"
#include "editor_files.h"
#include "routes.h"
#include "velqua/error.h"
#include "velqua/records/bundled.h"
#include "velqua/records/config_editor.h"
#include "velqua/records/config_json.h"
#include "velqua/records/error_text.h"
#include "velqua/store/import.h"

namespace velqua_web {
namespace {

using velqua_records::ConfigFormat;
using velqua_records::SwitchConfig;

constexpr size_t kMaxSamples = 5000;

// Sends a JSON answer. The HTTP library compresses a plain "application/json"
// answer with Brotli at its slowest setting whenever the browser accepts it,
// which takes seconds for a preview of 500 samples on a loopback connection
// that gains nothing from it; with its charset named, the answer is sent as
// it is.
void Answer(ApiRequest& r, const nlohmann::json& value) {
  r.response.status = 200;
  r.response.set_content(value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
                         "application/json; charset=utf-8");
}

// The configuration a request carries as its JSON form. A configuration the
// library refuses is the request's fault: 400 with the member at fault.
SwitchConfig ConfigOf(const ApiRequest& r) {
  if (!r.body.is_object() || !r.body.contains("config") || !r.body["config"].is_object()) {
    throw ApiError(400, "member 'config': the configuration's JSON form, an object");
  }
  SwitchConfig config;
  config.cfg = std::make_shared<velqua::clsCfgConmut>();
  velqua_records::SwitchConfigFromJson(r.body["config"].dump(), *config.cfg, &config.form,
                                       &config.delivery);
  return config;
}

nlohmann::json JsonOf(SwitchConfig& config) {
  return nlohmann::json::parse(velqua_records::ConfigBytes(config, ConfigFormat::kJson));
}

std::vector<std::string> SamplesOf(const nlohmann::json& body) {
  if (!body.contains("samples") || !body["samples"].is_array()) {
    throw ApiError(400, "member 'samples': a list of record lines");
  }
  if (body["samples"].size() > kMaxSamples) {
    throw ApiError(400, "member 'samples': at most " + std::to_string(kMaxSamples) + " lines");
  }
  return body["samples"].get<std::vector<std::string>>();
}

ConfigFormat FormatOf(const std::string& word) {
  if (word == "json") return ConfigFormat::kJson;
  if (word == "cfg") return ConfigFormat::kCfg;
  if (word == "ini") return ConfigFormat::kIni;
  throw ApiError(400, "member 'format': json, cfg or ini, not '" + word + "'");
}

velqua_records::RowFormat RowFormatOf(const std::string& word) {
  if (word == "table") return velqua_records::RowFormat::kTable;
  if (word == "csv") return velqua_records::RowFormat::kCsv;
  if (word == "jsonl") return velqua_records::RowFormat::kJsonl;
  throw ApiError(400, "member 'format': table, csv or jsonl, not '" + word + "'");
}

// Runs `fn`, turning what the library refuses into the request's fault.
template <typename Fn>
void Guarded(Fn fn) {
  try {
    fn();
  } catch (const velqua::Error& e) {
    throw ApiError(400, velqua_records::ErrorText(e));
  }
}

nlohmann::json PreviewJson(const velqua_records::Preview& preview) {
  nlohmann::json rows = nlohmann::json::array();
  for (const velqua_records::PreviewRow& row : preview.rows) {
    rows.push_back({{"sample", row.sample},
                    {"status", velqua_records::RowStatusWord(row.status)},
                    {"line", row.line},
                    {"record", row.record},
                    {"reasons", row.reasons}});
  }
  const velqua_records::Counts& c = preview.counts;
  return {{"header", preview.header},
          {"rows", rows},
          {"counts",
           {{"read", c.read},
            {"unrecognised", c.unrecognised},
            {"failed", c.failed},
            {"damaged", c.damaged},
            {"headings", c.headings}}}};
}

void RegisterFileRoutes(Api& api) {
  api.Get("/api/editor/catalog", Access::kAdmin, [](ApiRequest& r) {
    Answer(r, nlohmann::json::parse(velqua_records::EditorCatalogJson()));
  });
  api.Get("/api/editor/bundled", Access::kAdmin, [](ApiRequest& r) {
    nlohmann::json names = nlohmann::json::array();
    for (const auto& entry : velqua_records::ListBundledSwitches()) names.push_back(entry.name);
    Answer(r, names);
  });
  api.Get("/api/editor/bundled/([a-z0-9-]+)", Access::kAdmin, [](ApiRequest& r) {
    const std::string name = r.http.matches[1];
    for (const auto& entry : velqua_records::ListBundledSwitches()) {
      if (entry.name != name) continue;
      SwitchConfig config = velqua_records::LoadSwitchConfig(entry.config);
      Answer(r, {{"config", JsonOf(config)}, {"samples", BundledSamples(entry.config)}});
      return;
    }
    throw ApiError(404, "no bundled switch '" + name + "'");
  });
  api.Post("/api/editor/open", Access::kAdmin, [](ApiRequest& r) {
    const ConfigFormat format = FormatOf(r.body.value("format", ""));
    const std::string bytes = DecodeBase64(r.body.value("data", ""));
    Guarded([&] {
      SwitchConfig config = velqua_records::ConfigFromBytes(bytes, format);
      Answer(r, {{"config", JsonOf(config)}});
    });
  });
  api.Post("/api/editor/guess", Access::kAdmin, [](ApiRequest& r) {
    const std::string draft = velqua_records::GuessFromSamples(
        SamplesOf(r.body), r.body.value("brand", "Unknown"), r.body.value("model", "Unknown"));
    Answer(r, {{"config", nlohmann::json::parse(draft)}});
  });
  api.Post("/api/editor/preview", Access::kAdmin, [](ApiRequest& r) {
    const SwitchConfig config = ConfigOf(r);
    const auto format = RowFormatOf(r.body.value("format", "table"));
    const auto year = r.body.value("year", 0);
    if (year < 0 || year > 9999) throw ApiError(400, "member 'year': 1 to 9999");
    Guarded([&] {
      Answer(r, PreviewJson(velqua_records::PreviewSamples(config, SamplesOf(r.body), format,
                                                           static_cast<int32_t>(year))));
    });
  });
  api.Post("/api/editor/save", Access::kAdmin, [](ApiRequest& r) {
    SwitchConfig config = ConfigOf(r);
    const ConfigFormat format = FormatOf(r.body.value("format", ""));
    Guarded([&] {
      const std::string bytes = velqua_records::ConfigBytes(config, format);
      Answer(r, {{"data", EncodeBase64(bytes)}, {"size", bytes.size()}});
    });
  });
  api.Post("/api/editor/wiring", Access::kAdmin, [](ApiRequest& r) {
    const SwitchConfig config = ConfigOf(r);
    const std::string svg = WiringSvg(*config.cfg, r.body.value("port", "db9"));
    r.response.set_content(svg, "image/svg+xml; charset=utf-8");
  });
}

std::string SwitchOf(ApiRequest& r) {
  const std::string name = r.http.matches[1];
  if (!r.store.FindSwitch(name)) throw ApiError(404, "no switch '" + name + "' in the store");
  return name;
}

void RegisterStoreRoutes(Api& api) {
  api.Get("/api/editor/switches/([^/]+)/config", Access::kAdmin, [](ApiRequest& r) {
    const std::string name = SwitchOf(r);
    const std::string path = r.store.FindSwitch(name)->config_path;
    if (path.empty()) throw ApiError(404, "switch '" + name + "' has no configuration yet");
    Guarded([&] {
      SwitchConfig config = velqua_records::LoadSwitchConfig(path);
      Answer(r, {{"config", JsonOf(config)}, {"path", path}});
    });
  });
  api.Get("/api/editor/switches/([^/]+)/records", Access::kAdmin, [](ApiRequest& r) {
    const std::string name = SwitchOf(r);
    const int64_t last = r.IntParam("last", 200, 1, static_cast<int64_t>(kMaxSamples));
    Answer(r, {{"records", StoredSamples(r.store, name, last)}});
  });
  api.Put("/api/editor/switches/([^/]+)/config", Access::kAdmin, [](ApiRequest& r) {
    const std::string name = SwitchOf(r);
    SwitchConfig config = ConfigOf(r);
    std::string json;
    Guarded([&] { json = velqua_records::ConfigBytes(config, ConfigFormat::kJson); });
    const std::string path = StoreConfigFile(name, json);
    velqua_store::SwitchInfo info = *r.store.FindSwitch(name);
    info.config_path = path;
    info.config_hash = velqua_store::ConfigHash(path);
    r.store.PutSwitch(info);
    Answer(r, {{"path", path}});
  });
  api.Post("/api/editor/switches/([^/]+)/retranslate", Access::kAdmin, [](ApiRequest& r) {
    const std::string name = SwitchOf(r);
    const std::string path = r.store.FindSwitch(name)->config_path;
    if (path.empty()) throw ApiError(409, "switch '" + name + "' has no configuration to use");
    Guarded([&] {
      const velqua_store::RewriteResult result = velqua_store::Retranslate(
          r.store, name, path, velqua_records::BundledExtensionList(path));
      const int64_t changed = result.updated + result.recognised + result.unrecognised;
      Answer(r, {{"total", changed + result.unchanged},
                 {"changed", changed},
                 {"updated", result.updated},
                 {"recognised", result.recognised},
                 {"unrecognised", result.unrecognised},
                 {"unchanged", result.unchanged}});
    });
  });
}

}  // namespace

void RegisterEditorRoutes(Api& api) {
  RegisterFileRoutes(api);
  RegisterStoreRoutes(api);
}

}  // namespace velqua_web
