#include "velqua/store/import.h"

#include <sys/stat.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "batch_writer.h"
#include "values.h"
#include "velqua/records/bundled.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_form.h"
#include "velqua/records/translation.h"
#include "velqua/store/extension_list.h"

namespace velqua_store {
namespace {

using velqua_records::Failure;
using velqua_records::FileCloser;

// A file is known by the hash of its first bytes (up to this many): a file
// that grew keeps them, another file put under the same name does not.
constexpr int64_t kFingerprintBytes = 4096;

// About this many bytes a record, to guess the size of a load from its files.
constexpr int64_t kBytesPerRecord = 80;

// "<n>:<FNV-1a of the first n bytes>", n = min(size, kFingerprintBytes).
std::string Fingerprint(std::FILE* f, int64_t n) {
  std::string bytes(static_cast<size_t>(n), '\0');
  std::rewind(f);
  const size_t got = std::fread(&bytes[0], 1, bytes.size(), f);
  bytes.resize(got);
  return std::to_string(got) + ":" + Fnv1aHex(bytes);
}

// Standard input copied into an unnamed temporary file: an import reads a
// file's first bytes (its fingerprint) and then seeks, which a pipe cannot.
std::FILE* CopyOfStandardInput() {
  std::FILE* copy = std::tmpfile();
  if (copy == nullptr) throw Failure("cannot make a temporary copy of standard input");
  char block[65536];
  for (size_t n; (n = std::fread(block, 1, sizeof block, stdin)) > 0;) {
    if (std::fwrite(block, 1, n, copy) != n) {
      std::fclose(copy);
      throw Failure("cannot make a temporary copy of standard input (disk full?)");
    }
  }
  const bool failed = std::ferror(stdin) != 0 || std::fflush(copy) != 0;
  if (failed) {
    std::fclose(copy);
    throw Failure("cannot read standard input");
  }
  return copy;
}

int64_t FileSize(std::FILE* f) {
  struct stat st {};
  return ::fstat(::fileno(f), &st) == 0 ? static_cast<int64_t>(st.st_size) : 0;
}

}  // namespace

std::string LocalToUtc(const velqua_records::FechaHora& local) {
  std::tm tm{};
  tm.tm_year = local.intAnio - 1900;
  tm.tm_mon = local.intMes - 1;
  tm.tm_mday = local.intDia;
  tm.tm_hour = local.intHora;
  tm.tm_min = local.intMinuto;
  tm.tm_sec = local.intSegundo;
  tm.tm_isdst = -1;
  return UtcText(std::mktime(&tm));
}

velqua_records::FechaHora UtcToLocal(const std::string& utc) {
  std::tm tm{};
  if (std::sscanf(utc.c_str(), "%d-%d-%dT%d:%d:%d", &tm.tm_year, &tm.tm_mon, &tm.tm_mday,
                  &tm.tm_hour, &tm.tm_min, &tm.tm_sec) != 6) {
    return velqua_records::ProgramNow();
  }
  tm.tm_year -= 1900;
  tm.tm_mon -= 1;
  const std::time_t t = timegm(&tm);
  std::tm local{};
  localtime_r(&t, &local);
  return velqua_records::FechaHora{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                   local.tm_hour,        local.tm_min,     local.tm_sec};
}

Importer::Importer(Store& store, const ImportSettings& settings,
                   const std::vector<Store*>& more_writers)
    : store_(store), settings_(settings) {
  const std::optional<SwitchInfo> before = store_.FindSwitch(settings_.switch_name);
  extensions_ = std::make_unique<SwitchExtensionList>(
      settings_.extensions, before ? before->extension_list : "", settings_.config);
  settings_.config = velqua_records::ResolveConfig(settings_.config);
  velqua_records::SwitchConfig loaded = velqua_records::LoadSwitchConfig(settings_.config);
  cfg_ = std::move(loaded.cfg);
  form_ = std::move(loaded.form);
  const std::string config_path = std::filesystem::absolute(settings_.config).string();
  const std::string config_hash = ConfigHash(settings_.config);
  // The same configuration file, edited since the switch's records were
  // last translated with it: those records still read as it said then.
  if (before && before->config_path == config_path && !before->config_hash.empty() &&
      before->config_hash != config_hash) {
    config_note_ = "the configuration '" + settings_.config + "' of switch '" +
                   settings_.switch_name +
                   "' changed since its records were last translated with it: the records "
                   "stored before still read as it said then (velqua retranslate --dry-run "
                   "tells what the change would make of them)";
  }
  store_.PutSwitch({settings_.switch_name, config_path, config_hash, settings_.time_zone,
                    extensions_->to_keep()});
  std::vector<Store*> writers = {&store_};
  writers.insert(writers.end(), more_writers.begin(), more_writers.end());
  batcher_ = std::make_unique<BatchWriter>(writers, settings_.batch);
}

Importer::~Importer() = default;

ImportResult Importer::Import(const std::vector<std::string>& files,
                              const std::function<void(const ImportProgress&)>& progress) {
  progress_ = progress;
  int64_t bytes = 0;
  for (const std::string& file : files) {
    if (file == "-") {
      if (settings_.source.empty() || files.size() != 1) {
        throw Failure("standard input ('-') is imported alone and named: --source NAME");
      }
      continue;
    }
    velqua_records::RequireReadableFile(file, "input");
    bytes += static_cast<int64_t>(std::filesystem::file_size(file));
  }
  ImportResult result;
  if (!config_note_.empty()) result.notes.push_back(std::exchange(config_note_, ""));
  store_.BeginBulk(bytes / kBytesPerRecord);
  try {
    for (const std::string& file : files) ImportFile(file, result);
  } catch (...) {
    store_.EndBulk();
    throw;
  }
  store_.EndBulk();
  return result;
}

// The source a file continues: the one whose stored fingerprint its first
// bytes match, whatever the file was called then (a copy, a rotated
// `smdr.log.1`), the one of the same name preferred; else a new source under
// `name`. A source of another file holding `name` is renamed out of the way
// ("NAME (replaced <UTC>)"): a rotated log's new file takes the old name.
Source Importer::SourceFor(std::FILE* f, int64_t size, const std::string& path,
                           const std::string& name, ImportResult& result) {
  std::map<int64_t, std::string> prints;  // the file's fingerprints by length
  const auto print_of = [&](int64_t n) -> const std::string& {
    auto found = prints.find(n);
    if (found == prints.end()) found = prints.emplace(n, Fingerprint(f, n)).first;
    return found->second;
  };
  const std::vector<Source> sources = store_.FileSources(settings_.switch_name);
  const Source* match = nullptr;
  const Source* holder = nullptr;  // the source named `name`, if any
  for (const Source& s : sources) {
    if (s.name == name) holder = &s;
    // The stored fingerprint covers the first n bytes the file had then
    // (fewer than kFingerprintBytes when it was shorter): the same bytes
    // are compared. An empty file is known by nothing.
    const int64_t n = std::stoll(s.fingerprint);
    if (n <= 0 || n > size || print_of(n) != s.fingerprint) continue;
    if (match == nullptr || s.name == name) match = &s;
  }
  if (match != nullptr) {
    if (match->name != name) {
      result.notes.push_back("'" + path + "' continues the source '" + match->name +
                             "' (the same first bytes)");
    }
    return *match;
  }
  if (holder != nullptr) {
    const std::string aside = name + " (replaced " + UtcNow() + ")";
    store_.RenameSource(*holder, aside);
    result.notes.push_back("'" + path + "' is another file than the one imported as '" + name +
                           "' before (its first bytes differ): that source is now '" + aside + "'");
  }
  return store_.OpenSource(settings_.switch_name, name, "file");
}

void Importer::ImportFile(const std::string& path, ImportResult& result) {
  const bool stdin_copy = path == "-";
  const std::string name =
      settings_.source.empty() ? std::filesystem::canonical(path).string() : settings_.source;
  std::unique_ptr<std::FILE, FileCloser> f(
      stdin_copy ? CopyOfStandardInput() : velqua_records::OpenFile(path, "rb", "input"));
  const std::string shown = stdin_copy ? "standard input" : path;
  const int64_t size = FileSize(f.get());
  Source source = SourceFor(f.get(), size, shown, name, result);
  const int64_t head = std::min(size, kFingerprintBytes);
  const std::string fingerprint = Fingerprint(f.get(), head);
  const int64_t from = source.checkpoint.value_or(0);
  if (from > size) {
    throw Failure("input '" + shown + "' is shorter (" + std::to_string(size) +
                  " bytes) than the part already imported (" + std::to_string(from) + " bytes)");
  }
  if (from == size && size > 0) {
    result.notes.push_back("'" + shown + "' skipped: its records are stored already (source '" +
                           source.name + "')");
  }
  if (fingerprint != source.fingerprint) store_.SetFingerprint(source, fingerprint);
  // Records are known by the line they start on too: a resumed file's
  // lines are counted on from those already imported.
  const int64_t lines = from > 0 ? velqua_records::LinesBefore(f.get(), from) : 0;
  std::fseek(f.get(), static_cast<long>(from), SEEK_SET);

  velqua_records::Translation translation(
      cfg_, *batcher_,
      {"", extensions_->path(), settings_.utf8, form_, !settings_.random_extensions});
  // A page heading is kept where every record is kept, as unrecognised with
  // that reason: nothing the switch sent is thrown away.
  translation.on_heading = [&](const std::string&, std::u16string_view line, int64_t at) {
    velqua_records::Row heading;
    heading.error = velqua_records::kPageHeadingReason;
    heading.number = translation.line();
    heading.offset = at;
    heading.text = line;
    batcher_->Write(heading);
  };
  const velqua_records::FechaHora received = velqua_records::ReceivedAt(path, settings_.year);
  const int64_t read_before = result.read;
  // Runs on the writer's thread, while this one waits or translates: it
  // touches only `result`, which this thread reads once the file is written.
  batcher_->Start(source, LocalToUtc(received),
                  [&, read_before](const WriteResult& w, int64_t offset, int64_t read) {
                    result.written.calls += w.calls;
                    result.written.unrecognised += w.unrecognised;
                    result.written.duplicates += w.duplicates;
                    result.read = read_before + read;
                    if (progress_) progress_({path, offset, size, result.read});
                  });
  translation.Input(shown, received, from, lines);
  translation.Stream(f.get());
  translation.Finish();
  batcher_->Commit(translation.end_offset());
  result.failed += translation.counts().failed;
  result.damaged += translation.counts().damaged;
  result.unlisted += translation.counts().random_extensions;
  result.headings += translation.counts().headings;
  ++result.files;
  store_.AddEvent(source, {"import", "", translation.counts().read,
                           "bytes " + std::to_string(from) + " to " + std::to_string(size)});
}

}  // namespace velqua_store
