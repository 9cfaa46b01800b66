// The output forms of stored unrecognised records: what a user reads to
// find what the switch sent and no configuration made a call of, and why.
#include <string>
#include <vector>

#include "call_forms.h"
#include "velqua/records/common.h"
#include "velqua/records/text_table.h"

namespace velqua_store {
namespace {

class CsvWriter : public UnrecognisedWriter {
 public:
  explicit CsvWriter(std::FILE* out) : out_(out) {
    out_.text() = "switch,source,position,received_utc,reason,raw\r\n";
  }
  void Write(const StoredUnrecognised& u) override {
    std::string& b = out_.text();
    for (const std::string* text : {&u.switch_name, &u.source_name}) {
      velqua_records::AppendCsvField(b, *text);
      b += ',';
    }
    b += std::to_string(u.position) + ',' + u.received_utc + ',';
    velqua_records::AppendCsvField(b, u.reason);
    b += ',';
    velqua_records::AppendCsvField(b, u.raw);
    b += "\r\n";
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  Buffer out_;
};

void JsonMember(std::string& out, const char* name, const std::string& text) {
  out += ",\"";
  out += name;
  out += "\":\"";
  velqua_records::AppendJsonEscaped(out, text);
  out += '"';
}

class JsonlWriter : public UnrecognisedWriter {
 public:
  explicit JsonlWriter(std::FILE* out) : out_(out) {}
  void Write(const StoredUnrecognised& u) override {
    std::string& b = out_.text();
    b += "{\"switch\":\"";
    velqua_records::AppendJsonEscaped(b, u.switch_name);
    b += '"';
    JsonMember(b, "source", u.source_name);
    b += ",\"position\":" + std::to_string(u.position);
    JsonMember(b, "received_utc", u.received_utc);
    JsonMember(b, "reason", u.reason);
    JsonMember(b, "raw", u.raw);
    b += "}\n";
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  Buffer out_;
};

class TableWriter : public UnrecognisedWriter {
 public:
  explicit TableWriter(std::FILE* out)
      : out_(out),
        table_({"switch", "source", "position", "reason", "raw"}, {false, false, true}) {}
  void Write(const StoredUnrecognised& u) override {
    table_.Add({u.switch_name, u.source_name, std::to_string(u.position), u.reason, u.raw},
               &out_.text());
    out_.MaybeFlush();
  }
  void Finish() override {
    table_.Finish(&out_.text());
    out_.Flush();
  }

 private:
  Buffer out_;
  velqua_records::AlignedTable table_;
};

}  // namespace

std::unique_ptr<UnrecognisedWriter> MakeUnrecognisedWriter(CallFormat format, std::FILE* out) {
  switch (format) {
    case CallFormat::kJsonl:
      return std::make_unique<JsonlWriter>(out);
    case CallFormat::kTable:
      return std::make_unique<TableWriter>(out);
    case CallFormat::kCsv:
    case CallFormat::kCdrCsv:
      break;
  }
  return std::make_unique<CsvWriter>(out);
}

}  // namespace velqua_store
