#include "velqua/store/call_output.h"

#include <date/date.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "call_forms.h"
#include "values.h"
#include "velqua/records/common.h"
#include "velqua/records/names.h"

namespace velqua_store {
namespace {

using velqua_records::Failure;

// ---- CSV (RFC 4180: CR LF, a field quoted when it holds a comma, a quote,
// CR or LF, quotes doubled) ----

class CsvWriter : public CallWriter {
 public:
  explicit CsvWriter(std::FILE* out) : out_(out) {
    out_.text() =
        "switch,source,position,type,type_name,attribute,attribute_name,start,start_utc,"
        "end,end_utc,duration,ring,dialled,extension,trunk,receiving_extension,receiving_trunk,"
        "account_code,extension_random,received_utc,raw,cost,currency,destination,"
        "destination_class,cost_reason,person,department,cost_centre,client,project,"
        "switch_charge,date_received,extras\r\n";
  }
  void Write(const StoredCall& c) override {
    std::string& b = out_.text();
    velqua_records::AppendCsvField(b, c.switch_name);
    b += ',';
    velqua_records::AppendCsvField(b, c.source_name);
    b += ',' + std::to_string(c.position) + ',' + std::to_string(c.type) + ',' +
         velqua_records::CallTypeWord(c.type) + ',' + std::to_string(c.attribute) + ',' +
         velqua_records::AttributeWord(c.attribute) + ',' + c.start.value_or("") + ',' +
         c.start_utc.value_or("") + ',' + c.ended.value_or("") + ',' + c.ended_utc.value_or("") +
         ',';
    if (c.duration) b += std::to_string(*c.duration);
    b += ',';
    if (c.ring) b += std::to_string(*c.ring);
    for (size_t i = 0; i < 6; ++i) {
      b += ',';
      velqua_records::AppendCsvField(b, Texts(c, i)->value_or(""));
    }
    b += c.extension_random ? ",1," : ",0,";
    b += c.received_utc + ',';
    velqua_records::AppendCsvField(b, c.raw);
    for (const auto* price :
         {&c.cost, &c.currency, &c.destination, &c.destination_class, &c.cost_reason, &c.person,
          &c.department, &c.cost_centre, &c.client, &c.project}) {
      b += ',';
      velqua_records::AppendCsvField(b, price->value_or(""));
    }
    b += ',';
    velqua_records::AppendCsvField(b, c.switch_charge.value_or(""));
    b += c.date_received ? ",1," : ",0,";
    velqua_records::AppendCsvField(b, c.extras.value_or(""));
    b += "\r\n";
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  Buffer out_;
};

// ---- JSON Lines: the CSV's columns as members, absent values null ----

void JsonString(std::string& out, const std::string& text) {
  out += '"';
  velqua_records::AppendJsonEscaped(out, text);
  out += '"';
}

void JsonMember(std::string& out, const char* name, const std::optional<std::string>& text) {
  out += ",\"";
  out += name;
  out += "\":";
  if (text) {
    JsonString(out, *text);
  } else {
    out += "null";
  }
}

void JsonNumber(std::string& out, const char* name, const std::optional<int64_t>& n) {
  out += ",\"";
  out += name;
  out += "\":";
  out += n ? std::to_string(*n) : "null";
}

class JsonlWriter : public CallWriter {
 public:
  explicit JsonlWriter(std::FILE* out) : out_(out) {}
  void Write(const StoredCall& c) override {
    std::string& b = out_.text();
    b += "{\"switch\":";
    JsonString(b, c.switch_name);
    JsonMember(b, "source", c.source_name);
    JsonNumber(b, "position", c.position);
    JsonNumber(b, "type", c.type);
    JsonMember(b, "type_name", std::string(velqua_records::CallTypeWord(c.type)));
    JsonNumber(b, "attribute", c.attribute);
    JsonMember(b, "attribute_name", std::string(velqua_records::AttributeWord(c.attribute)));
    JsonMember(b, "start", c.start);
    JsonMember(b, "start_utc", c.start_utc);
    JsonMember(b, "end", c.ended);
    JsonMember(b, "end_utc", c.ended_utc);
    JsonNumber(b, "duration", c.duration);
    JsonNumber(b, "ring", c.ring);
    for (size_t i = 0; i < 6; ++i) JsonMember(b, CallValues::kTextColumns[i], *Texts(c, i));
    b += c.extension_random ? ",\"extension_random\":true" : ",\"extension_random\":false";
    JsonMember(b, "received_utc", c.received_utc);
    JsonMember(b, "raw", c.raw);
    JsonMember(b, "cost", c.cost);
    JsonMember(b, "switch_charge", c.switch_charge);
    JsonMember(b, "currency", c.currency);
    JsonMember(b, "destination", c.destination);
    JsonMember(b, "destination_class", c.destination_class);
    JsonMember(b, "cost_reason", c.cost_reason);
    JsonMember(b, "person", c.person);
    JsonMember(b, "department", c.department);
    JsonMember(b, "cost_centre", c.cost_centre);
    JsonMember(b, "client", c.client);
    JsonMember(b, "project", c.project);
    b += c.date_received ? ",\"date_received\":true" : ",\"date_received\":false";
    b += ",\"extras\":";
    b += c.extras ? *c.extras : "null";  // a JSON object as stored
    b += "}\n";
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  Buffer out_;
};

}  // namespace

CallFormat CallFormatNamed(const std::string& name) {
  if (name == "table") return CallFormat::kTable;
  if (name == "csv") return CallFormat::kCsv;
  if (name == "jsonl") return CallFormat::kJsonl;
  if (name == "cdr-csv") return CallFormat::kCdrCsv;
  throw Failure("unknown output form '" + name + "': expected table, csv, jsonl or cdr-csv");
}

std::unique_ptr<CallWriter> MakeCallWriter(CallFormat format, std::FILE* out) {
  switch (format) {
    case CallFormat::kCsv:
      return std::make_unique<CsvWriter>(out);
    case CallFormat::kJsonl:
      return std::make_unique<JsonlWriter>(out);
    case CallFormat::kCdrCsv:
      return MakeCdrCsvWriter(out);
    case CallFormat::kTable:
      break;
  }
  return MakeTableWriter(out);
}

}  // namespace velqua_store
