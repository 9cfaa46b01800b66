#include "velqua/records/bundled.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "velqua/records/common.h"

namespace velqua_records {
namespace {

bool IsFolder(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsFile(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

std::vector<std::string> ExamplesFolders() {
  std::vector<std::string> folders;
  const char* env = std::getenv("VELQUA_EXAMPLES");
  if (env != nullptr && *env != '\0') folders.emplace_back(env);
  folders.emplace_back(VELQUA_INSTALLED_EXAMPLES);
  folders.emplace_back(VELQUA_SOURCE_EXAMPLES);
  return folders;
}

std::vector<BundledSwitch> ListBundledSwitches() {
  std::vector<BundledSwitch> found;
  for (const std::string& folder : ExamplesFolders()) {
    if (!IsFolder(folder)) continue;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
      const std::string name = entry.path().filename().string();
      const std::string config = folder + "/" + name + "/" + name + ".json";
      if (IsFile(config)) found.push_back({name, config});
    }
    break;
  }
  std::sort(found.begin(), found.end(),
            [](const BundledSwitch& a, const BundledSwitch& b) { return a.name < b.name; });
  return found;
}

std::string ResolveConfig(const std::string& name_or_path) {
  if (IsFile(name_or_path) || name_or_path.find('/') != std::string::npos ||
      !LowerExtension(name_or_path).empty()) {
    return name_or_path;
  }
  for (const BundledSwitch& bundled : ListBundledSwitches()) {
    if (bundled.name == name_or_path) return bundled.config;
  }
  throw Failure("configuration '" + name_or_path +
                "': no such file, nor a bundled switch (velqua switches lists them)");
}

std::string BundledExtensionList(const std::string& name_or_path) {
  const std::string config = ResolveConfig(name_or_path);
  if (config == name_or_path) return "";  // a file, not a bundled name
  const std::string list =
      std::filesystem::path(config).parent_path().append("extensions.txt").string();
  return IsFile(list) ? list : "";
}

}  // namespace velqua_records
