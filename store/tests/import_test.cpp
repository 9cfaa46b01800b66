// Importing files and translating them again, on both engines; and the
// same records give the same exports on both.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "store_test_support.h"
#include "velqua/store/call_output.h"
#include "velqua/store/import.h"

namespace velqua_store {
namespace {

using velqua_store_testing::EditedHicom;
using velqua_store_testing::Engine;
using velqua_store_testing::ReadFile;
using velqua_store_testing::StoreTest;
using velqua_store_testing::WriteFile;

const std::string kExamples = VELQUA_SOURCE_DIR "/examples/";

// The first `n` lines (CR LF ended) of a text.
std::string FirstLines(const std::string& text, int n) {
  size_t end = 0;
  for (int i = 0; i < n; ++i) end = text.find('\n', end) + 1;
  return text.substr(0, end);
}

ImportSettings Settings(const std::string& switch_name, const std::string& config) {
  ImportSettings s;
  s.switch_name = switch_name;
  s.config = config;
  s.year = 2026;
  s.batch = 4;  // several batches even for the examples
  return s;
}

class ImportTest : public StoreTest {
 protected:
  ImportTest() : dir_(velqua_store_testing::TempDir(velqua_store_testing::Name() + "-files")) {}
  ~ImportTest() override { std::filesystem::remove_all(dir_); }
  std::string dir_;
};

TEST_P(ImportTest, AFileImportedAgainAddsNothingAndAGrownFileOnlyItsTail) {
  const std::string records = ReadFile(kExamples + "hicom/records.txt");
  const std::string path = dir_ + "/calls.txt";
  Importer importer(*store_, Settings("hicom", kExamples + "hicom/hicom.json"));
  struct Step {
    const char* what;
    std::string content;
    int64_t read, calls, unrecognised;
  };
  const Step steps[] = {
      {"the first ten records", FirstLines(records, 10), 10, 10, 0},
      {"the same file again", FirstLines(records, 10), 0, 10, 0},
      {"the file has grown", records, 5, 14, 1},
      {"and once more", records, 0, 14, 1},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    WriteFile(path, step.content);
    const ImportResult result = importer.Import({path});
    EXPECT_EQ(result.read, step.read);
    EXPECT_EQ(store_->CountCalls("hicom"), step.calls);
    EXPECT_EQ(store_->CountUnrecognised("hicom"), step.unrecognised);
  }
  // The unrecognised record, read in the grown part, is known by the line of
  // the whole file it is on: the lines of the part read before count.
  std::vector<StoredUnrecognised> kept;
  store_->ListUnrecognised("hicom", 0, [&](const StoredUnrecognised& u) { kept.push_back(u); });
  ASSERT_EQ(kept.size(), 1u);
  EXPECT_GT(kept[0].line, 10);
  const std::string before = FirstLines(records, static_cast<int>(kept[0].line) - 1);
  EXPECT_EQ(records.substr(before.size(), kept[0].raw.size() + 2), kept[0].raw + "\r\n");
}

// A file is known by its first bytes: a rotated log, a copy, a file under
// another name never stores its calls twice, and a new file under an
// imported file's name is a source of its own.
TEST_P(ImportTest, AFileIsKnownByItsFirstBytesWhateverItsName) {
  const std::string records = ReadFile(kExamples + "hicom/records.txt");
  const auto in_year = [&records](const char* year) {  // the same calls another year
    std::string text = records;
    for (size_t at = 0; (at = text.find(".26 ", at)) != std::string::npos;) {
      text.replace(at, 4, std::string(".") + year + " ");
    }
    return text;
  };
  const std::string next_year = in_year("27");
  Importer importer(*store_, Settings("hicom", kExamples + "hicom/hicom.json"));
  struct Step {
    const char* what;
    const char* file;
    std::string content;
    int64_t read, calls;
    const char* note;  // the start of the one note expected, or ""
  };
  const Step steps[] = {
      {"the log's first eight records", "smdr.log", FirstLines(records, 8), 8, 8, ""},
      {"rotated after it grew", "smdr.log.1", records, 7, 14, "continues the source"},
      {"a new log under the old name", "smdr.log", FirstLines(next_year, 4), 4, 18,
       "is another file than"},
      {"a copy of the rotated log", "copy.txt", records, 0, 18, "continues the source"},
      {"the new log grown", "smdr.log", next_year, 11, 28, ""},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    const std::string path = dir_ + "/" + step.file;
    WriteFile(path, step.content);
    const ImportResult result = importer.Import({path});
    EXPECT_EQ(result.read, step.read);
    EXPECT_EQ(store_->CountCalls("hicom"), step.calls);
    const std::string note = step.note;
    const std::string first = result.notes.empty() ? "" : result.notes[0];
    EXPECT_NE(first.find(note), std::string::npos) << first;
    EXPECT_EQ(result.notes.empty(), note.empty());
    const std::string last = result.notes.empty() ? "" : result.notes.back();
    EXPECT_EQ(last.find("skipped") != std::string::npos, step.read == 0);
  }
  // A file known by its first 4096 bytes but cut shorter than the part
  // imported is refused: its tail is gone, and what follows would be misread.
  const std::string big = in_year("28") + in_year("29") + in_year("30") + in_year("31");
  ASSERT_GT(big.size(), 4600u);
  WriteFile(dir_ + "/big.log", big);
  importer.Import({dir_ + "/big.log"});
  WriteFile(dir_ + "/big.log", big.substr(0, 4500));
  EXPECT_THROW(importer.Import({dir_ + "/big.log"}), velqua_records::Failure);
}

// A corrected configuration: records it now recognises move to calls, calls
// it reads differently are updated, calls it no longer recognises move to
// unrecognised, and nothing else is touched.
TEST_P(ImportTest, RetranslationRewritesOnlyWhatChanges) {
  const std::string full = kExamples + "hicom/hicom.json";
  // Without the mark of a plain incoming call: six of the seven incoming calls
  // are not recognised (the seventh is a forwarded one, with its own mark).
  const std::string no_incoming = EditedHicom(
      dir_, "no-incoming", {{"\"emDatoCteIdentEntrante\": {\"pos\": 79, \"text\": \"1\"},", ""}});
  // Outgoing numbers cut to five digits: six of the seven are longer.
  const std::string short_numbers =
      EditedHicom(dir_, "short",
                  {{"\"emParamTelefonoSaliente\": {\"pos\": 45, \"size\": 20",
                    "\"emParamTelefonoSaliente\": {\"pos\": 45, \"size\": 5"}});
  Importer(*store_, Settings("hicom", no_incoming)).Import({kExamples + "hicom/records.txt"});
  ASSERT_EQ(store_->CountCalls("hicom"), 8);
  struct Step {
    std::string config;
    RewriteResult expected;  // unchanged, updated, recognised, unrecognised
    int64_t calls;
  };
  const Step steps[] = {
      {full, {9, 0, 6, 0}, 14},
      {full, {15, 0, 0, 0}, 14},
      {short_numbers, {9, 6, 0, 0}, 14},
      {no_incoming, {3, 6, 0, 6}, 8},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.config);
    const RewriteResult r = Retranslate(*store_, "hicom", step.config, "");
    EXPECT_EQ(r.unchanged, step.expected.unchanged);
    EXPECT_EQ(r.updated, step.expected.updated);
    EXPECT_EQ(r.recognised, step.expected.recognised);
    EXPECT_EQ(r.unrecognised, step.expected.unrecognised);
    EXPECT_EQ(store_->CountCalls("hicom"), step.calls);
    EXPECT_EQ(store_->CountUnrecognised("hicom"), 15 - step.calls);
    EXPECT_EQ(store_->FindSwitch("hicom")->config_hash, ConfigHash(step.config));
  }
}

// The extensions of the account-code calls of the KX-TDA example (*1234,
// *5678, *2468, *9999, *1234), "-" for one left blank.
std::string AccountExtensions(Store& store) {
  std::string out;
  store.ListCalls({}, [&](const StoredCall& c) {
    if (!c.account_code) return;
    out += (out.empty() ? "" : " ") + c.extension.value_or("-");
    if (c.extension_random != !c.extension) out += "?";  // blank exactly when unlisted
  });
  return out;
}

// A switch's extension list is kept with it: what an import is given is
// what a retranslation without a list and a later import use, even once the
// file is gone; a list given later replaces it. An unlisted code never gets
// an extension.
TEST_P(ImportTest, TheExtensionListIsKeptWithTheSwitch) {
  const std::string config = kExamples + "kx-tda/kx-tda.cfg";
  const std::string records = kExamples + "kx-tda/records.txt";
  const std::string list = dir_ + "/list.txt";
  const std::string kept = ReadFile(kExamples + "kx-tda/extensions.txt");
  WriteFile(list, kept);
  Importer(*store_,
           [&] {
             ImportSettings s = Settings("kx", config);
             s.extensions = list;
             return s;
           }())
      .Import({records});
  std::filesystem::remove(list);
  struct Step {
    const char* what;
    std::function<void()> act;
    std::string extensions, kept;
  };
  const Step steps[] = {
      {"imported with the list", [] {}, "201 206 208 - 201", kept},
      {"retranslated, the file gone",
       [&] { EXPECT_EQ(Retranslate(*store_, "kx", config, "").unlisted, 1); }, "201 206 208 - 201",
       kept},
      {"retranslated with another list",
       [&] {
         WriteFile(list, "1234;301\r\n9999;309\r\n");
         EXPECT_EQ(Retranslate(*store_, "kx", config, list).updated, 5);
         std::filesystem::remove(list);
       },
       "301 - - 309 301", "1234;301\r\n9999;309\r\n"},
      {"a dry run with the example list changes nothing kept",
       [&] {
         Retranslate(*store_, "kx", config, kExamples + "kx-tda/extensions.txt", false, true);
       },
       "301 - - 309 301", "1234;301\r\n9999;309\r\n"},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    step.act();
    EXPECT_EQ(AccountExtensions(*store_), step.extensions);
    EXPECT_EQ(store_->FindSwitch("kx")->extension_list, step.kept);
  }
  // Another file of the switch, imported without a list: the kept one.
  WriteFile(dir_ + "/more.txt",
            "01/21/26 09:00AM *9999 01 0312345678                     00:00'47\r\n");
  Importer(*store_, Settings("kx", config)).Import({dir_ + "/more.txt"});
  EXPECT_EQ(AccountExtensions(*store_), "301 - - 309 301 309");
  // A list that is not text is refused before anything is written.
  for (const std::string& bad : {std::string("1234;201\r\n\x93"), std::string("1234;2\0"
                                                                              "01",
                                                                              7)}) {
    SCOPED_TRACE(bad);
    WriteFile(list, bad);
    ImportSettings s = Settings("kx", config);
    s.extensions = list;
    EXPECT_THROW(Importer(*store_, s), velqua_records::Failure);
    EXPECT_EQ(store_->FindSwitch("kx")->extension_list, "1234;301\r\n9999;309\r\n");
  }
}

// Calls stored when the configuration took the time the switch prints for
// the call's start, though it is the end, carry that time as their start; translated again with a
// configuration that says so, they carry the true start, and the end beside it.
TEST_P(ImportTest, RetranslationGivesStoredCallsTheirTrueStart) {
  const std::string as_start =
      EditedHicom(dir_, "as-start", {{"\"time\": \"end\"", "\"time\": \"start\""}});
  Importer(*store_, Settings("hicom", as_start)).Import({kExamples + "hicom/records.txt"});
  const auto first = [&] {
    StoredCall call;
    CallFilter one;
    one.limit = 1;
    one.from = "2026-03-09";
    store_->ListCalls(one, [&](const StoredCall& c) { call = c; });
    return call;
  };
  // 08:03:12 printed, 155 s long: taken as the start, it ends 155 s later.
  EXPECT_EQ(first().start.value_or(""), "2026-03-09T08:03:12");
  EXPECT_EQ(first().ended.value_or(""), "2026-03-09T08:05:47");
  const RewriteResult r = Retranslate(*store_, "hicom", kExamples + "hicom/hicom.json", "");
  EXPECT_EQ(r.updated, 14);  // every call: each has a duration
  EXPECT_EQ(first().start.value_or(""), "2026-03-09T08:00:37");
  EXPECT_EQ(first().ended.value_or(""), "2026-03-09T08:03:12");
  EXPECT_EQ(Retranslate(*store_, "hicom", kExamples + "hicom/hicom.json", "").updated, 0);
}

// A dry run counts what a real run does and writes nothing; an import with
// the switch's configuration file edited since says so, once.
TEST_P(ImportTest, ADryRunWritesNothingAndAnEditedConfigurationIsNoted) {
  const std::string config = dir_ + "/hicom.json";
  WriteFile(config, ReadFile(kExamples + "hicom/hicom.json"));
  const std::string records = kExamples + "hicom/records.txt";
  EXPECT_TRUE(Importer(*store_, Settings("hicom", config)).Import({records}).notes.empty());
  const std::string one_digit =
      EditedHicom(dir_, "one-digit",
                  {{"\"emParamDuracionSegundos\": {\"pos\": 42, \"size\": 2",
                    "\"emParamDuracionSegundos\": {\"pos\": 42, \"size\": 1"}});
  const RewriteResult dry = Retranslate(*store_, "hicom", one_digit, "", false, true);
  EXPECT_GT(dry.updated, 0);
  EXPECT_EQ(dry.changed.at("duration"), dry.updated);
  // Hicom prints the time a call ended: its start moves with the duration.
  EXPECT_EQ(dry.changed.at("start"), dry.updated);
  EXPECT_EQ(dry.changed.size(), 2u);
  EXPECT_EQ(store_->FindSwitch("hicom")->config_hash, ConfigHash(config));
  const RewriteResult real = Retranslate(*store_, "hicom", one_digit, "");
  EXPECT_EQ(real.updated, dry.updated);
  EXPECT_EQ(real.changed, dry.changed);

  // Back to the first file (another file than the switch's last: no note),
  // then that file edited.
  EXPECT_EQ(Importer(*store_, Settings("hicom", config)).Import({records}).notes.size(), 1u);
  WriteFile(config, ReadFile(one_digit));
  const std::vector<std::string> notes =
      Importer(*store_, Settings("hicom", config)).Import({records}).notes;
  ASSERT_EQ(notes.size(), 2u);  // the configuration, and the file stored already
  EXPECT_NE(notes[0].find("changed since"), std::string::npos) << notes[0];
  EXPECT_EQ(Importer(*store_, Settings("hicom", config)).Import({records}).notes.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Engines, ImportTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

// Every output form of every example's calls, with UTC times, from one
// store; the hicom example imported with a configuration that misses its
// incoming calls, then translated again with the right one.
std::string ExportAll(const std::string& url, const std::string& dir) {
  std::unique_ptr<Store> store = OpenStore(url);
  struct Example {
    const char* name;
    const char* config;
    const char* extensions;
  };
  for (const Example& e :
       {Example{"kx-tda", "kx-tda.json", "extensions.txt"}, Example{"norstar", "norstar.cfg", ""},
        Example{"hicom", "", ""}, Example{"definity", "definity.json", ""}}) {
    const std::string examples = kExamples + e.name + "/";
    const std::string no_incoming = "\"emDatoCteIdentEntrante\": {\"pos\": 79, \"text\": \"1\"},";
    ImportSettings s =
        Settings(e.name, *e.config != '\0' ? examples + e.config
                                           : EditedHicom(dir, "no-incoming", {{no_incoming, ""}}));
    s.time_zone = "America/New_York";
    s.source = std::string(e.name) + "/records.txt";  // the same on every machine
    if (*e.extensions != '\0') s.extensions = examples + e.extensions;
    Importer(*store, s).Import({examples + "records.txt"});
  }
  const RewriteResult r = Retranslate(*store, "hicom", kExamples + "hicom/hicom.ini", "");
  EXPECT_EQ(r.recognised, 6);
  std::string all;
  for (const char* format : {"table", "csv", "jsonl", "cdr-csv"}) {
    char* text = nullptr;
    size_t size = 0;
    std::FILE* out = open_memstream(&text, &size);
    std::unique_ptr<CallWriter> writer = MakeCallWriter(CallFormatNamed(format), out);
    store->ListCalls({}, [&](const StoredCall& call) { writer->Write(call); });
    writer->Finish();
    std::fclose(out);
    all += std::string(text, size);
    std::free(text);
  }
  return all;
}

TEST(PostgresAndSqlite, ExportTheSameBytes) {
  const std::string dir = velqua_store_testing::TempDir("exports");
  const std::string sqlite = ExportAll(dir + "/calls.db", dir);
  const std::string postgres =
      ExportAll(velqua_store_testing::PgTestServer::Shared().NewDatabase(), dir);
  EXPECT_GT(sqlite.size(), 20000u);
  EXPECT_EQ(sqlite, postgres);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace velqua_store
