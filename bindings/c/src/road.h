// The program's road for the hosts of the bindings: the bytes of a record
// stream in, the rows of `velqua translate` out (velqua_records::Translation),
// fed block by block. The C interface's velqua_translation and Python's
// velqua.translate are built on it, so every host gets the program's rows.
// Each road has its own translation and clock: any number of roads may run
// at once, on any threads, one thread per road at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/lineas.h"
#include "velqua/records/call_row.h"
#include "velqua/records/translation.h"

namespace velqua_bindings {

using velqua_records::Row;

class Road {
 public:
  struct Settings {
    std::string extensions;           // KX-TDA extension list, or ""
    std::string errors_log;           // unrecognised-record log, or ""
    bool utf8 = false;                // records in UTF-8 rather than Windows-1252
    int32_t year = 0;                 // year received for switches that print none; 0: see input
    std::string input = "-";          // a file: its time is when its records were received
    velqua_records::RecordForm form;  // delimited shaping, page headings (the JSON form's)
  };

  // Throws velqua_records::Failure naming a list that cannot be read or a
  // log that cannot be appended to (the library would skip them silently).
  // The translation itself starts with the first bytes, so the encoding may
  // be changed until then.
  Road(std::shared_ptr<velqua::clsCfgConmut> cfg, const Settings& settings);
  ~Road();
  Road(const Road&) = delete;
  Road& operator=(const Road&) = delete;

  // The next bytes of the input, cut anywhere: the rows of every line they
  // complete are appended to *rows; an unfinished last line waits for more.
  void Write(std::string_view bytes, std::vector<Row>* rows);
  // The end of the input: the unfinished line and an open multi-line call.
  void Finish(std::vector<Row>* rows);

  // Records in UTF-8 (true) or Windows-1252; ignored once bytes came.
  void Utf8(bool utf8) { settings_.utf8 = utf8; }

  velqua_records::Counts counts() const;

 private:
  class Collector;
  void Start();
  void Line(std::string_view line, int64_t at);

  std::shared_ptr<velqua::clsCfgConmut> cfg_;
  Settings settings_;
  std::unique_ptr<Collector> collector_;
  std::unique_ptr<velqua_records::Translation> translation_;  // from the first bytes on
  velqua::CortadorLineas cutter_;
};

}  // namespace velqua_bindings
