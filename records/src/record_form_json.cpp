#include "record_form_json.h"

#include <string>

#include "velqua/records/common.h"

namespace velqua_records {
namespace {

using nlohmann::json;

// At most this many fields and heading patterns: a switch prints a few dozen
// fields and a page heading of a few lines.
constexpr size_t kMaxFields = 1000;
constexpr size_t kMaxHeadings = 100;
constexpr size_t kMaxPattern = 255;

// A member holding one character ("" gives u'\0' when `may_be_empty`).
char16_t Character(const json& object, const char* name, const std::string& where,
                   char16_t fallback, bool may_be_empty) {
  if (!object.contains(name)) return fallback;
  const json& value = object.at(name);
  const std::u16string text = value.is_string() ? U16(value.get<std::string>()) : u"??";
  if (text.size() == 1) return text[0];
  if (text.empty() && may_be_empty) return u'\0';
  FailJson(where + "." + name,
           may_be_empty ? "must be one character or \"\"" : "must be one character");
}

DelimitedField ReadField(const json& field, const std::string& where) {
  CheckJsonMembers(field, where, {"name", "width", "seconds"});
  DelimitedField out;
  if (field.contains("name")) {
    if (!field.at("name").is_string()) FailJson(where + ".name", "must be a string");
    out.name = field.at("name").get<std::string>();
  }
  if (!field.contains("width") || !field.at("width").is_number_integer()) {
    FailJson(where + ".width", "must be an integer");
  }
  const int64_t width = field.at("width").get<int64_t>();
  if (width < 0 || width > 255) FailJson(where + ".width", "must be 0 to 255");
  out.width = static_cast<int>(width);
  if (field.contains("seconds")) {
    if (!field.at("seconds").is_boolean()) FailJson(where + ".seconds", "must be true or false");
    out.seconds = field.at("seconds").get<bool>();
    if (out.seconds && out.width < 7) {
      FailJson(where + ".width", "a field of seconds needs at least 7 columns (H:MM:SS)");
    }
  }
  return out;
}

DelimitedForm ReadDelimited(const json& delimited) {
  const std::string where = "records.delimited";
  CheckJsonMembers(delimited, where, {"separator", "quote", "fields", "derived"});
  DelimitedForm form;
  form.separator = Character(delimited, "separator", where, u',', false);
  form.quote = Character(delimited, "quote", where, u'"', true);
  if (form.quote == form.separator) FailJson(where + ".quote", "must differ from the separator");
  if (!delimited.contains("fields") || !delimited.at("fields").is_array() ||
      delimited.at("fields").empty()) {
    FailJson(where + ".fields", "must be a list of fields ({\"name\", \"width\"})");
  }
  const json& fields = delimited.at("fields");
  if (fields.size() > kMaxFields) FailJson(where + ".fields", "more than 1000 fields");
  for (size_t i = 0; i < fields.size(); ++i) {
    form.fields.push_back(ReadField(fields[i], where + ".fields[" + std::to_string(i) + "]"));
  }
  if (delimited.contains("derived")) form.derived = DerivedFromJson(delimited.at("derived"), form);
  return form;
}

std::vector<std::u16string> ReadHeadings(const json& headings) {
  const std::string where = "records.headings";
  if (!headings.is_array()) FailJson(where, "must be a list of patterns");
  if (headings.size() > kMaxHeadings) FailJson(where, "more than 100 patterns");
  std::vector<std::u16string> out;
  for (size_t i = 0; i < headings.size(); ++i) {
    const std::string at = where + "[" + std::to_string(i) + "]";
    if (!headings[i].is_string()) FailJson(at, "must be a string");
    std::u16string pattern = U16(headings[i].get<std::string>());
    if (pattern.empty() || pattern.size() > kMaxPattern)
      FailJson(at, "must be 1 to 255 characters");
    if (pattern.find_first_not_of(u'*') == std::u16string::npos) {
      FailJson(at, "matches every line");
    }
    out.push_back(std::move(pattern));
  }
  return out;
}

void ReadContinuation(const json& continuation, RecordForm* form) {
  const std::string where = "records.continuation";
  CheckJsonMembers(continuation, where, {"pattern", "column"});
  if (!continuation.contains("pattern") || !continuation.at("pattern").is_string()) {
    FailJson(where + ".pattern", "must be a string");
  }
  form->continuation = U16(continuation.at("pattern").get<std::string>());
  if (form->continuation.empty() || form->continuation.size() > kMaxPattern ||
      form->continuation.find_first_not_of(u'*') == std::u16string::npos) {
    FailJson(where + ".pattern", "must be 1 to 255 characters, not only *");
  }
  if (!continuation.contains("column") || !continuation.at("column").is_number_integer()) {
    FailJson(where + ".column", "must be an integer");
  }
  const int64_t column = continuation.at("column").get<int64_t>();
  if (column < 1 || column > 255) FailJson(where + ".column", "must be 1 to 255");
  form->continuation_column = static_cast<int>(column);
  if (form->delimited) FailJson(where, "delimited records have no continuation lines");
}

// "extras": {"charge": {"pos": 66, "size": 8}, ...}
std::vector<ExtraField> ReadExtras(const json& extras) {
  if (!extras.is_object()) FailJson("records.extras", "must be an object of fields by name");
  std::vector<ExtraField> out;
  for (auto it = extras.begin(); it != extras.end(); ++it) {
    const std::string where = "records.extras." + it.key();
    const std::string& name = it.key();
    const bool named =
        !name.empty() && name.size() <= 32 && name[0] >= 'a' && name[0] <= 'z' &&
        name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == std::string::npos;
    if (!named) {
      FailJson(where, "a name is 1 to 32 lower-case letters, digits and '_', from a letter");
    }
    CheckJsonMembers(it.value(), where, {"pos", "size"});
    ExtraField field;
    field.name = name;
    for (const char* member : {"pos", "size"}) {
      const json& v = it.value().contains(member) ? it.value().at(member) : json();
      if (!v.is_number_integer() || v.get<int64_t>() < 1 || v.get<int64_t>() > 255) {
        FailJson(where + "." + member, "must be an integer from 1 to 255");
      }
      (std::string(member) == "pos" ? field.column : field.width) = v.get<int>();
    }
    out.push_back(field);
  }
  return out;
}

// "seconds_counts": [{"pos": 52, "size": 8, "mark": "S="}, ...]
std::vector<SecondsCount> ReadSecondsCounts(const json& counts, bool delimited) {
  const std::string where = "records.seconds_counts";
  if (!counts.is_array() || counts.empty() || counts.size() > 16) {
    FailJson(where, "must be a list of 1 to 16 columns");
  }
  if (delimited) FailJson(where, "delimited records mark their counts of seconds by field");
  std::vector<SecondsCount> out;
  for (size_t i = 0; i < counts.size(); ++i) {
    const std::string at = where + "[" + std::to_string(i) + "]";
    CheckJsonMembers(counts[i], at, {"pos", "size", "mark"});
    SecondsCount count;
    for (const char* member : {"pos", "size"}) {
      const json& v = counts[i].contains(member) ? counts[i].at(member) : json();
      const int64_t low = std::string(member) == "pos" ? 1 : 7;
      if (!v.is_number_integer() || v.get<int64_t>() < low || v.get<int64_t>() > 255) {
        FailJson(at + "." + member, "must be an integer from " + std::to_string(low) + " to 255");
      }
      (std::string(member) == "pos" ? count.column : count.width) = v.get<int>();
    }
    const json& mark = counts[i].contains("mark") ? counts[i].at("mark") : json();
    if (!mark.is_string() || mark.get<std::string>().empty() ||
        U16(mark.get<std::string>()).size() > 255) {
      FailJson(at + ".mark", "must be the text printed before the count, 1 to 255 characters");
    }
    count.mark = U16(mark.get<std::string>());
    out.push_back(count);
  }
  return out;
}

std::string Quote(std::u16string_view text) { return json(U8(text)).dump(); }

}  // namespace

RecordForm RecordFormFromJson(const json& records) {
  CheckJsonMembers(records, "records",
                   {"delimited", "headings", "record_end", "continuation", "seven_bit", "time",
                    "extras", "seconds_counts"});
  RecordForm form;
  if (records.contains("delimited")) {
    form.delimited = true;
    form.fields = ReadDelimited(records.at("delimited"));
  }
  if (records.contains("headings")) form.headings = ReadHeadings(records.at("headings"));
  if (records.contains("record_end")) {
    const json& end = records.at("record_end");
    if (!end.is_string() || (end != "line" && end != "nul")) {
      FailJson("records.record_end", "must be \"line\" or \"nul\"");
    }
    form.nul_ends_record = end == "nul";
  }
  if (records.contains("continuation")) ReadContinuation(records.at("continuation"), &form);
  if (records.contains("seven_bit")) {
    if (!records.at("seven_bit").is_boolean())
      FailJson("records.seven_bit", "must be true or false");
    form.seven_bit = records.at("seven_bit").get<bool>();
  }
  if (records.contains("time")) {
    const json& time = records.at("time");
    if (!time.is_string() || (time != "start" && time != "end")) {
      FailJson("records.time", "must be \"start\" or \"end\" (which time the records print)");
    }
    form.printed_time = time == "end" ? PrintedTime::kEnd : PrintedTime::kStart;
  }
  if (records.contains("extras")) form.extras = ReadExtras(records.at("extras"));
  if (records.contains("seconds_counts")) {
    form.seconds_counts = ReadSecondsCounts(records.at("seconds_counts"), form.delimited);
  }
  return form;
}

std::string RecordFormToJson(const RecordForm& form) {
  if (form.Plain() && form.printed_time == PrintedTime::kUnstated && form.extras.empty()) {
    return "";
  }
  std::string out = "{";
  const char* next = "\n";
  if (form.delimited) {
    out += next;
    out += "    \"delimited\": {\n      \"separator\": " + Quote({&form.fields.separator, 1});
    out += ",\n      \"quote\": ";
    out += form.fields.quote == u'\0' ? "\"\"" : Quote({&form.fields.quote, 1});
    out += ",\n      \"fields\": [";
    for (size_t i = 0; i < form.fields.fields.size(); ++i) {
      const DelimitedField& field = form.fields.fields[i];
      out += i == 0 ? "\n" : ",\n";
      out += "        {\"name\": " + json(field.name).dump();
      out += ", \"width\": " + std::to_string(field.width);
      if (field.seconds) out += ", \"seconds\": true";
      out += "}";
    }
    out += "\n      ]";
    if (!form.fields.derived.empty()) out += DerivedToJson(form.fields);
    out += "\n    }";
    next = ",\n";
  }
  if (!form.headings.empty()) {
    out += next;
    out += "    \"headings\": [";
    for (size_t i = 0; i < form.headings.size(); ++i) {
      out += (i == 0 ? "\n      " : ",\n      ") + Quote(form.headings[i]);
    }
    out += "\n    ]";
    next = ",\n";
  }
  if (form.nul_ends_record) {
    out += next;
    out += "    \"record_end\": \"nul\"";
    next = ",\n";
  }
  if (!form.continuation.empty()) {
    out += next;
    out += "    \"continuation\": {\"pattern\": " + Quote(form.continuation) +
           ", \"column\": " + std::to_string(form.continuation_column) + "}";
    next = ",\n";
  }
  if (form.seven_bit) {
    out += next;
    out += "    \"seven_bit\": true";
    next = ",\n";
  }
  if (!form.seconds_counts.empty()) {
    out += next;
    out += "    \"seconds_counts\": [";
    for (size_t i = 0; i < form.seconds_counts.size(); ++i) {
      const SecondsCount& c = form.seconds_counts[i];
      out += (i == 0 ? "{" : ", {");
      out += "\"pos\": " + std::to_string(c.column) + ", \"size\": " + std::to_string(c.width) +
             ", \"mark\": " + Quote(c.mark) + "}";
    }
    out += "]";
    next = ",\n";
  }
  if (form.printed_time != PrintedTime::kUnstated) {
    out += next;
    out += form.printed_time == PrintedTime::kEnd ? "    \"time\": \"end\""
                                                  : "    \"time\": \"start\"";
    next = ",\n";
  }
  if (!form.extras.empty()) {
    out += next;
    out += "    \"extras\": {";
    for (size_t i = 0; i < form.extras.size(); ++i) {
      const ExtraField& e = form.extras[i];
      out += (i == 0 ? "\n      " : ",\n      ") + json(e.name).dump() +
             ": {\"pos\": " + std::to_string(e.column) + ", \"size\": " + std::to_string(e.width) +
             "}";
    }
    out += "\n    }";
  }
  return out + "\n  }";
}

void FailJson(const std::string& where, const std::string& what) {
  throw Failure(where + ": " + what);
}

void CheckJsonMembers(const nlohmann::json& object, const std::string& where,
                      std::initializer_list<const char*> allowed) {
  if (!object.is_object()) FailJson(where, "must be an object");
  for (auto it = object.begin(); it != object.end(); ++it) {
    bool known = false;
    for (const char* name : allowed) known = known || it.key() == name;
    if (!known) FailJson(where.empty() ? it.key() : where + "." + it.key(), "unknown member");
  }
}

}  // namespace velqua_records
