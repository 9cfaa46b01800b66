#include "velqua/store/import.h"

#include <sys/stat.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <memory>
#include <utility>

#include "batch_writer.h"
#include "values.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/records/translation.h"

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
  if (!settings_.extensions.empty()) {
    velqua_records::RequireReadableFile(settings_.extensions, "extension list");
  }
  velqua_records::SwitchConfig loaded = velqua_records::LoadSwitchConfig(settings_.config);
  cfg_ = std::move(loaded.cfg);
  form_ = std::move(loaded.form);
  store_.PutSwitch({settings_.switch_name, std::filesystem::absolute(settings_.config).string(),
                    ConfigHash(settings_.config), settings_.time_zone});
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
    velqua_records::RequireReadableFile(file, "input");
    bytes += static_cast<int64_t>(std::filesystem::file_size(file));
  }
  ImportResult result;
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

void Importer::ImportFile(const std::string& path, ImportResult& result) {
  const std::string name =
      settings_.source.empty() ? std::filesystem::canonical(path).string() : settings_.source;
  std::unique_ptr<std::FILE, FileCloser> f(velqua_records::OpenFile(path, "rb", "input"));
  const int64_t size = FileSize(f.get());
  Source source = store_.OpenSource(settings_.switch_name, name, "file");
  const int64_t head = std::min(size, kFingerprintBytes);
  const std::string fingerprint = Fingerprint(f.get(), head);
  if (!source.fingerprint.empty()) {
    // The stored one covers the first n bytes the file had then (fewer than
    // kFingerprintBytes when it was shorter): the same bytes are compared.
    const int64_t n = std::stoll(source.fingerprint);
    if ((n == head ? fingerprint : Fingerprint(f.get(), n)) != source.fingerprint) {
      throw Failure("input '" + path + "' is not the file imported under that name before (its " +
                    "first bytes differ): rename it to import it as a new file");
    }
  }
  const int64_t from = source.checkpoint.value_or(0);
  if (from > size) {
    throw Failure("input '" + path + "' is shorter (" + std::to_string(size) +
                  " bytes) than the part already imported (" + std::to_string(from) + " bytes)");
  }
  if (fingerprint != source.fingerprint) store_.SetFingerprint(source, fingerprint);
  std::fseek(f.get(), static_cast<long>(from), SEEK_SET);

  velqua_records::Translation translation(cfg_, *batcher_,
                                          {"", settings_.extensions, settings_.utf8, form_});
  // A page heading is kept where every record is kept, as unrecognised with
  // that reason: nothing the switch sent is thrown away.
  translation.on_heading = [this](const std::string&, std::u16string_view line, int64_t at) {
    velqua_records::Row heading;
    heading.error = "page heading";
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
  translation.Input(path, received, from);
  translation.Stream(f.get());
  translation.Finish();
  batcher_->Commit(translation.end_offset());
  result.failed += translation.counts().failed;
  result.headings += translation.counts().headings;
  ++result.files;
  store_.AddEvent(source, {"import", "", translation.counts().read,
                           "bytes " + std::to_string(from) + " to " + std::to_string(size)});
}

}  // namespace velqua_store
