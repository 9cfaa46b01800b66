// The aligned table and the cdr-csv form of stored calls.
#include <date/date.h>

#include <chrono>
#include <cstdio>
#include <vector>

#include "call_forms.h"
#include "values.h"
#include "velqua/records/names.h"
#include "velqua/records/text_table.h"

namespace velqua_store {
namespace {

// ---- Table: aligned columns, as `velqua translate` prints its rows ----

class TableWriter : public CallWriter {
 public:
  explicit TableWriter(std::FILE* out)
      : out_(out),
        table_({"start", "switch", "type", "attribute", "dur", "ring", "dialled", "ext", "trunk",
                "rx ext", "rx trunk", "account", "cost", "switch charge", "destination",
                "charged to", "note"},
               {false, false, false, false, true, true}) {}  // the two durations: numbers

  void Write(const StoredCall& c) override {
    std::vector<std::string> cells{
        c.start.value_or(""),
        c.switch_name,
        std::to_string(c.type) + ' ' + velqua_records::CallTypeWord(c.type),
        std::to_string(c.attribute) + ' ' + velqua_records::AttributeWord(c.attribute),
        c.duration ? std::to_string(*c.duration) : "",
        c.ring ? std::to_string(*c.ring) : ""};
    for (size_t i = 0; i < 6; ++i) cells.push_back(Texts(c, i)->value_or(""));
    // No cost with a reason: the call could not be priced, and says why.
    cells.push_back(c.cost ? *c.cost + ' ' + c.currency.value_or("") : c.cost_reason ? "-" : "");
    cells.push_back(c.switch_charge.value_or(""));
    cells.push_back(c.cost || !c.cost_reason ? c.destination.value_or("") : *c.cost_reason);
    cells.push_back(c.person.value_or(c.client.value_or("")));
    std::string note;
    if (c.extension_random) {
      note = c.extension ? "random extension" : "account code not in the extension list";
    }
    if (c.date_received) note += note.empty() ? "date received" : "; date received";
    if (!note.empty()) cells.push_back(std::move(note));
    table_.Add(std::move(cells), &out_.text());
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

// ---- cdr-csv: every text quoted, the two durations bare, LF line ends,
// no header ----

void Quoted(std::string& out, const std::string& text) {
  out += '"';
  for (char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += "\",";
}

// "YYYY-MM-DD HH:MM:SS" of a local start moved on by `seconds`; "" when the
// start has no time (a start printed without seconds counts from :00).
std::string LocalTime(const std::optional<std::string>& start, int64_t seconds) {
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  if (!start || std::sscanf(start->c_str(), "%d-%d-%dT%d:%d:%d", &y, &mo, &d, &h, &mi, &s) < 5) {
    return "";
  }
  const date::sys_seconds at = date::sys_days{date::year{y} / mo / d} +
                               std::chrono::seconds{h * 3600 + mi * 60 + s + seconds};
  return date::format("%F %T", at);
}

// The same id for the same record in every store: FNV-1a of its switch,
// source and position.
std::string UniqueId(const StoredCall& c) {
  return Fnv1aHex(c.switch_name + '\0' + c.source_name + '\0' + std::to_string(c.position));
}

class CdrCsvWriter : public CallWriter {
 public:
  explicit CdrCsvWriter(std::FILE* out) : out_(out) {}

  void Write(const StoredCall& c) override {
    const bool incoming = c.type == 1;
    const bool answered = c.attribute != 4;
    const std::string extension = c.extension.value_or("");
    const std::string dialled = c.dialled.value_or("");
    const std::string other = c.receiving_extension.value_or(c.receiving_trunk.value_or(""));
    const int64_t ring = c.ring.value_or(0), talk = c.duration.value_or(0);
    std::string& b = out_.text();
    Quoted(b, c.account_code.value_or(""));                                 // accountcode
    Quoted(b, incoming ? dialled : extension);                              // src
    Quoted(b, incoming ? extension : (dialled.empty() ? other : dialled));  // dst
    Quoted(b, velqua_records::CallTypeWord(c.type));                        // dcontext
    Quoted(b, "");                                                          // clid
    Quoted(b, incoming ? c.trunk.value_or("") : extension);                 // channel
    Quoted(b, incoming ? extension : c.trunk.value_or(other));              // dstchannel
    Quoted(b, "");                                                          // lastapp
    Quoted(b, "");                                                          // lastdata
    Quoted(b, LocalTime(c.start, 0));                                       // start
    Quoted(b, answered ? LocalTime(c.start, ring) : "");                    // answer
    Quoted(b, LocalTime(c.start, ring + talk));                             // end
    b += std::to_string(ring + talk) + ',' + std::to_string(answered ? talk : 0) + ',';
    Quoted(b, answered ? "ANSWERED" : "NO ANSWER");  // disposition
    Quoted(b, "DOCUMENTATION");                      // amaflags
    Quoted(b, UniqueId(c));                          // uniqueid
    b += '"';
    b += c.attribute == 0 ? "" : velqua_records::AttributeWord(c.attribute);  // userfield
    if (c.date_received) b += c.attribute == 0 ? "date received" : ";date received";
    b += "\"\n";
    out_.MaybeFlush();
  }
  void Finish() override { out_.Flush(); }

 private:
  Buffer out_;
};

}  // namespace

std::unique_ptr<CallWriter> MakeTableWriter(std::FILE* out) {
  return std::make_unique<TableWriter>(out);
}

std::unique_ptr<CallWriter> MakeCdrCsvWriter(std::FILE* out) {
  return std::make_unique<CdrCsvWriter>(out);
}

}  // namespace velqua_store
