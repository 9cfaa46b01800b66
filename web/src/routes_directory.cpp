// Directory and tariffs: who an extension or account code is, and the
// rating plan in force. Everyone reads; only admins change them, and a new
// plan is checked whole (every tariff it names) before the store keeps it.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "api.h"
#include "routes.h"
#include "velqua/rating/tariff.h"
#include "velqua/store/browse.h"

namespace velqua_web {
namespace {

using velqua_rating::DirectoryEntry;

nlohmann::json EntryJson(const DirectoryEntry& e) {
  return {{"kind", e.kind == DirectoryEntry::Kind::kAccount ? "account" : "extension"},
          {"key", e.key},
          {"from", e.from},
          {"person", e.person},
          {"department", e.department},
          {"cost_centre", e.cost_centre},
          {"client", e.client},
          {"project", e.project}};
}

std::string Field(const nlohmann::json& j, const char* key) {
  const nlohmann::json v = j.value(key, nlohmann::json(""));
  if (!v.is_string()) throw ApiError(400, std::string("'") + key + "' must be a text");
  return v.get<std::string>();
}

DirectoryEntry EntryOf(const nlohmann::json& j) {
  if (!j.is_object()) throw ApiError(400, "a directory entry is a JSON object");
  DirectoryEntry e;
  const std::string kind = Field(j, "kind");
  if (kind != "extension" && kind != "account") {
    throw ApiError(400, "'kind' must be extension or account");
  }
  e.kind = kind == "account" ? DirectoryEntry::Kind::kAccount : DirectoryEntry::Kind::kExtension;
  e.key = Field(j, "key");
  if (e.key.empty()) throw ApiError(400, "an entry needs its 'key' (the extension or code)");
  e.from = Field(j, "from");
  if (!e.from.empty() && (e.from.size() != 10 || e.from[4] != '-' || e.from[7] != '-')) {
    throw ApiError(400, "'from' must be YYYY-MM-DD or empty");
  }
  e.person = Field(j, "person");
  e.department = Field(j, "department");
  e.cost_centre = Field(j, "cost_centre");
  e.client = Field(j, "client");
  e.project = Field(j, "project");
  return e;
}

// A file name the upload may use: no folder, nothing hidden.
void CheckName(const std::string& name) {
  if (name.empty() || name.size() > 100 || name[0] == '.' ||
      name.find_first_of("/\\") != std::string::npos) {
    throw ApiError(400, "tariff file name '" + name + "': a plain file name is expected");
  }
}

// Writes the upload to a folder of its own and keeps it through
// PutRatingPlan, which loads the plan and every tariff before touching the
// store. Messages name the files as uploaded.
void PutUpload(velqua_store::Store& store, const nlohmann::json& body) {
  if (!body.is_object() || !body.value("plan", nlohmann::json()).is_string() ||
      !body.value("tariffs", nlohmann::json()).is_object()) {
    throw ApiError(400, "send {\"plan\": TEXT, \"tariffs\": {FILE: TEXT, ...}}");
  }
  char folder[] = "/tmp/velqua-upload-XXXXXX";
  if (mkdtemp(folder) == nullptr) throw ApiError(503, "no temporary folder for the upload");
  const std::filesystem::path dir(folder);
  try {
    std::ofstream(dir / "plan.toml") << body["plan"].get<std::string>();
    for (const auto& [name, text] : body["tariffs"].items()) {
      CheckName(name);
      if (!text.is_string()) throw ApiError(400, "tariff '" + name + "' must be a text");
      std::ofstream(dir / name) << text.get<std::string>();
    }
    store.PutRatingPlan((dir / "plan.toml").string());
  } catch (const velqua_rating::TariffError& e) {
    std::filesystem::remove_all(dir);
    std::string message = e.what();
    for (size_t at; (at = message.find(dir.string() + "/")) != std::string::npos;) {
      message.erase(at, dir.string().size() + 1);
    }
    throw ApiError(400, message);
  } catch (...) {
    std::filesystem::remove_all(dir);
    throw;
  }
  std::filesystem::remove_all(dir);
}

}  // namespace

void RegisterDirectoryRoutes(Api& api) {
  api.Get("/api/directory", Access::kViewer, [](ApiRequest& r) {
    nlohmann::json list = nlohmann::json::array();
    for (const DirectoryEntry& e : r.store.ListDirectory()) list.push_back(EntryJson(e));
    r.Reply(list);
  });
  api.Post("/api/directory", Access::kAdmin, [](ApiRequest& r) {
    if (!r.body.is_object() || !r.body.value("entries", nlohmann::json()).is_array()) {
      throw ApiError(400, "send {\"entries\": [...]}");
    }
    std::vector<DirectoryEntry> entries;
    for (const auto& j : r.body["entries"]) entries.push_back(EntryOf(j));
    r.Reply({{"written", r.store.PutDirectory(entries)}});
  });
  api.Get("/api/tariffs", Access::kViewer, [](ApiRequest& r) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& f : velqua_store::RatingFiles(r.store)) {
      list.push_back({{"name", std::filesystem::path(f.name).filename().string()},
                      {"kind", f.kind},
                      {"loaded_utc", f.loaded_utc},
                      {"content", f.content}});
    }
    r.Reply(list);
  });
  api.Post("/api/tariffs", Access::kAdmin, [](ApiRequest& r) {
    PutUpload(r.store, r.body);
    r.Reply({{"ok", true}});
  });
}

}  // namespace velqua_web
