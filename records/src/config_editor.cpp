// The editor's answers are the program's own: the file bytes come from the
// same checked save as `config convert`, the rows from the same Translation
// and writers as `translate`, the reasons from the same explanation as
// `config check`. Files pass through a private temporary directory because
// the library reads and writes configurations only as files.
#include "velqua/records/config_editor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>

#include "velqua/enums.h"
#include "velqua/records/check_reasons.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/error_text.h"
#include "velqua/records/guess.h"
#include "velqua/records/names.h"
#include "velqua/texto.h"
#include "velqua/traductor.h"

namespace velqua_records {
namespace {

// A directory of its own under $TMPDIR (or /tmp), removed with what it holds.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/velqua-editor-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw Failure("cannot make a temporary directory: " + std::string(std::strerror(errno)));
    }
    path_ = pattern;
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory() {
    for (const char* name : {"config.cfg", "config.ini", "config.json"}) {
      std::remove(File(name).c_str());
    }
    ::rmdir(path_.c_str());
  }

  std::string File(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

const char* FileName(ConfigFormat format) {
  switch (format) {
    case ConfigFormat::kCfg:
      return "config.cfg";
    case ConfigFormat::kIni:
      return "config.ini";
    case ConfigFormat::kJson:
      break;
  }
  return "config.json";
}

// Keeps each row's status and reasons, then hands the row to the writer.
class PreviewSink : public RowSink {
 public:
  PreviewSink(const SwitchConfig& config, RowSink& writer, std::vector<PreviewRow>& rows)
      : config_(config), writer_(writer), rows_(rows) {
    explain_ = config.cfg->Caso() != velqua::emCasoNortelNorstar0x32SMDR6;
    if (explain_) traductor_.Conmutador(config.cfg);
  }

  void Write(const Row& row) override {
    PreviewRow out;
    out.sample = row.offset;
    AppendUtf8(out.record, row.text);
    if (row.error_number != 0) {
      out.status = RowStatus::kFailed;
      out.reasons.push_back(row.error);
    } else if (!row.error.empty()) {
      out.status = RowStatus::kDamaged;
      out.reasons.push_back(row.error);
    } else if (row.type == velqua::emTradNoIdentificada) {
      out.status = RowStatus::kUnrecognised;
      out.reasons = Explain(std::u16string(row.text));
    }
    rows_.push_back(std::move(out));
    writer_.Write(row);
  }

 private:
  // A multi-line call's fields lie on different lines of the call: only its
  // joined text is shown, as `config check` only measures its lines.
  std::vector<std::string> Explain(const std::u16string& record) {
    if (!explain_) return {"no call type was found in the lines of this call"};
    const velqua::emParamDato dato = config_.cfg->DATOActivo();
    const velqua::emParamDatoConstante cte = config_.cfg->CTEActivo();
    traductor_.LlamadaActual(record);
    std::vector<std::string> reasons = UnrecognisedReasons(*config_.cfg, traductor_, record);
    config_.cfg->DATOActivo(dato);
    config_.cfg->CTEActivo(cte);
    return reasons;
  }

  const SwitchConfig& config_;
  RowSink& writer_;
  std::vector<PreviewRow>& rows_;
  bool explain_ = false;
  velqua::clsTraductor traductor_;
};

// The lines of `text`, the last one without its line end.
std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

nlohmann::json Keys(EnumKind kind, int32_t first, int32_t last) {
  nlohmann::json list = nlohmann::json::array();
  for (int32_t value = first; value <= last; ++value) {
    const char* name = EnumNameOf(kind, value);
    if (name == nullptr) continue;
    list.push_back(
        {{"value", value}, {"name", name}, {"description", KeyDescription(kind, value)}});
  }
  return list;
}

}  // namespace

std::string ConfigBytes(SwitchConfig& config, ConfigFormat format) {
  const ScratchDirectory scratch;
  const std::string path = scratch.File(FileName(format));
  const bool modified = config.cfg->Modificado();
  SaveSwitchConfigChecked(config, path, false);
  config.cfg->Modificado(modified);
  return ReadWholeFile(path, "configuration");
}

SwitchConfig ConfigFromBytes(std::string_view bytes, ConfigFormat format) {
  const ScratchDirectory scratch;
  const std::string path = scratch.File(FileName(format));
  {
    std::unique_ptr<std::FILE, FileCloser> f(OpenFile(path, "wb", "configuration"));
    if (std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size() ||
        std::fflush(f.get()) != 0) {
      throw Failure("cannot write a temporary copy of the configuration");
    }
  }
  return LoadSwitchConfig(path);
}

const char* RowStatusWord(RowStatus status) {
  switch (status) {
    case RowStatus::kTranslated:
      return "translated";
    case RowStatus::kUnrecognised:
      return "unrecognised";
    case RowStatus::kDamaged:
      return "damaged";
    case RowStatus::kFailed:
      return "failed";
  }
  return "";
}

Preview PreviewSamples(const SwitchConfig& config, const std::vector<std::string>& lines,
                       RowFormat format, int32_t year) {
  Preview preview;
  std::vector<int64_t> starts;
  std::FILE* memory = std::tmpfile();
  if (memory == nullptr) throw Failure("cannot make a temporary file for the preview");
  std::unique_ptr<std::FILE, FileCloser> closer(memory);
  {
    Output out(memory);
    std::unique_ptr<RowWriter> writer = MakeRowWriter(format, out);
    PreviewSink sink(config, *writer, preview.rows);
    Translation translation(config.cfg, sink, {"", "", true, config.form, true});
    translation.Input("samples", ReceivedAt("-", year));
    // Rows carry the offset of their first line in the samples joined by
    // line ends; it is turned back into the line's index below.
    int64_t offset = 0;
    for (const std::string& line : lines) {
      starts.push_back(offset);
      translation.LineBytes(line, offset);
      offset += static_cast<int64_t>(line.size()) + 1;
    }
    translation.Finish();
    writer->Finish();
    preview.counts = translation.counts();
  }
  std::rewind(memory);
  std::string text;
  char buffer[1 << 14];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, memory)) > 0) text.append(buffer, n);
  std::vector<std::string> printed = SplitLines(text);
  // Every output form prints one line per row after its heading lines.
  const size_t heading = printed.size() - std::min(printed.size(), preview.rows.size());
  preview.header.assign(printed.begin(), printed.begin() + static_cast<std::ptrdiff_t>(heading));
  for (size_t i = 0; i < preview.rows.size(); ++i) {
    PreviewRow& row = preview.rows[i];
    if (heading + i < printed.size()) row.line = printed[heading + i];
    const auto at = std::upper_bound(starts.begin(), starts.end(), row.sample);
    row.sample = at == starts.begin() ? 0 : at - starts.begin() - 1;
  }
  return preview;
}

std::string GuessFromSamples(const std::vector<std::string>& lines, const std::string& brand,
                             const std::string& model) {
  constexpr size_t kMaxSampleLines = 5000;
  std::vector<std::u16string> decoded;
  for (const std::string& line : lines) {
    if (decoded.size() == kMaxSampleLines) break;
    if (!line.empty()) decoded.push_back(velqua::DesdeUtf8(line));
  }
  return GuessToJson(GuessLayout(decoded), brand, model);
}

std::string EditorCatalogJson() {
  nlohmann::json types = nlohmann::json::array();
  for (int32_t tipo : {velqua::emValorNumerico, velqua::emValorConstante, velqua::emValorCadena}) {
    types.push_back({{"value", tipo}, {"name", TypeWord(tipo)}});
  }
  const nlohmann::json catalog = {
      {"cases", Keys(EnumKind::kCaso, velqua::emCasoEstandar, velqua::emCasoAD_TES)},
      {"fields",
       Keys(EnumKind::kParamDato, velqua::emPrimerParamDato + 1, velqua::emUltimoParamDato - 1)},
      {"constants", Keys(EnumKind::kParamDatoConstante, velqua::emPrimerParamDatoConstante + 1,
                         velqua::emUltimoParamDatoConstante - 1)},
      {"types", types}};
  return catalog.dump();
}

}  // namespace velqua_records
