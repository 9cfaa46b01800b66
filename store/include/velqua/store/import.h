// Loading record files into the store, and translating stored records
// again with a corrected configuration (`velqua import`, `velqua retranslate`).
//
// An import takes the same road as `velqua translate` (line ends, decoding,
// multi-line calls, extension list), and writes each file as a source of its
// own, named by the file's absolute path, one transaction a batch. Each
// batch moves the source's checkpoint to the byte where reading resumes, so
// an import that stopped (killed, disk full, lost connection) goes on from
// there when run again, and a file that has grown since is read from where
// the last import ended. A record's place of origin is its byte offset, so
// nothing is ever stored twice.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/records/clock.h"
#include "velqua/records/record_form.h"
#include "velqua/store/store.h"

namespace velqua_store {

class BatchWriter;

struct ImportSettings {
  std::string switch_name;
  std::string config;      // the configuration file (.cfg, .ini or .json)
  std::string extensions;  // the KX-TDA account code to extension list, or ""
  bool utf8 = false;       // records in UTF-8 rather than Windows-1252
  std::string time_zone;   // the switch's IANA time zone; "" keeps the stored one
  int32_t year = 0;        // year received for switches that print none; 0: file time
  std::string source;      // the source's name for a single file, instead of its path
  size_t batch = 20000;    // records a transaction
  // Keep the extension the library draws for an account code missing from
  // the extension list; false leaves it blank (translation.h).
  bool random_extensions = false;
};

// How far an import has come in the file at hand (after each batch).
struct ImportProgress {
  std::string file;
  int64_t offset = 0;   // bytes of the file behind us
  int64_t size = 0;     // the file's size
  int64_t records = 0;  // records read so far in this run (all files)
};

struct ImportResult {
  int64_t files = 0;
  int64_t read = 0;      // records read in this run (a resumed file: past its checkpoint)
  int64_t failed = 0;    // records the library failed on (kept as unrecognised)
  int64_t damaged = 0;   // records failing the row check (kept as unrecognised, with why)
  int64_t headings = 0;  // page-heading lines (kept as unrecognised, with that reason)
  int64_t unlisted = 0;  // calls whose account code the extension list lacks
  WriteResult written;
  // What the user should know about the files: one continuing a source
  // under another name, one skipped as stored already, a source moved aside.
  std::vector<std::string> notes;
};

class Importer {
 public:
  // Loads the configuration and puts the switch in the store with it (and
  // the time zone). When the switch was last translated with the same file
  // and the file has changed since, the first Import's notes say so. `more_writers` are further
  // stores open on the same PostgreSQL database: batches are then written on all at once (the
  // server works on each on a core of its own) and committed in order.
  // Throws velqua_records::Failure, velqua::Error or StoreError.
  Importer(Store& store, const ImportSettings& settings,
           const std::vector<Store*>& more_writers = {});
  ~Importer();
  Importer(const Importer&) = delete;
  Importer& operator=(const Importer&) = delete;

  // Imports the files in order; `progress` (if set) is called after every
  // batch. A file is known by its first bytes, not its name: one whose first
  // bytes match a source imported before continues that source from its
  // checkpoint (a copy, a rotated `smdr.log.1`: nothing is stored twice),
  // and another file under an imported file's name becomes a source of its
  // own, the old one renamed "NAME (replaced <UTC>)" (ImportResult::notes
  // says so). "-" is standard input, alone and named by `source`. A file
  // shorter than the part of its source already imported is refused
  // (Failure). Throws as the constructor; what was committed stays.
  ImportResult Import(const std::vector<std::string>& files,
                      const std::function<void(const ImportProgress&)>& progress = nullptr);

 private:
  void ImportFile(const std::string& path, ImportResult& result);
  Source SourceFor(std::FILE* f, int64_t size, const std::string& path, const std::string& name,
                   ImportResult& result);

  Store& store_;
  ImportSettings settings_;
  std::shared_ptr<velqua::clsCfgConmut> cfg_;
  velqua_records::RecordForm form_;  // delimited shaping, page headings
  std::unique_ptr<BatchWriter> batcher_;
  std::function<void(const ImportProgress&)> progress_;
  std::string config_note_;  // the configuration file changed since the last import
};

// Translates a switch's stored records (calls and unrecognised) again with
// `config` and stores what changed (Store::Rewrite), batch by batch; the
// switch's configuration becomes `config`. Records received before keep
// their year rule: the year is the one they were received in.
// `random_extensions` as in ImportSettings. With `dry_run` nothing is
// written, the switch's configuration included: the result tells what would
// change.
RewriteResult Retranslate(Store& store, const std::string& switch_name, const std::string& config,
                          const std::string& extensions, bool random_extensions = false,
                          bool dry_run = false);

// "YYYY-MM-DDTHH:MM:SSZ" of a local date and time of this machine, and back.
std::string LocalToUtc(const velqua_records::FechaHora& local);
velqua_records::FechaHora UtcToLocal(const std::string& utc);

}  // namespace velqua_store
