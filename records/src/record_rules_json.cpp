// The "derived" member of a delimited record form: fields read by rule
// (record_rules.h), read from and written to the JSON form.
#include <string>

#include "record_form_json.h"
#include "velqua/records/common.h"

namespace velqua_records {
namespace {

using nlohmann::json;

constexpr size_t kMaxDerived = 100;
constexpr size_t kMaxRules = 100;
constexpr size_t kMaxText = 255;

std::u16string Text(const json& object, const char* name, const std::string& where) {
  if (!object.contains(name)) return u"";
  const json& value = object.at(name);
  if (!value.is_string()) FailJson(where + "." + name, "must be a string");
  std::u16string text = U16(value.get<std::string>());
  if (text.size() > kMaxText) FailJson(where + "." + name, "must be at most 255 characters");
  return text;
}

// The part `name_member` names ("field" in a test, "take" in a rule) with its
// "after", "upto", "before" and "skip".
// `names`: the declared fields' and the derived fields' before this one.
using Names = std::vector<std::string>;

FieldPart ReadPart(const json& object, const char* name_member, const Names& names,
                   const std::string& where) {
  const json& name = object.at(name_member);
  if (!name.is_string()) FailJson(where + "." + name_member, "must be a field's name");
  FieldPart part;
  part.field = -1;
  for (size_t i = 0; i < names.size() && part.field < 0; ++i) {
    if (names[i] == name.get<std::string>()) part.field = static_cast<int>(i);
  }
  if (part.field < 0) {
    FailJson(where + "." + name_member,
             "no declared field, nor derived one before it, is called " + name.dump());
  }
  part.after = Text(object, "after", where);
  part.upto = Text(object, "upto", where);
  part.before = Text(object, "before", where);
  if (object.contains("skip")) {
    const json& skip = object.at("skip");
    if (!skip.is_number_integer() || skip.get<int64_t>() < 0 || skip.get<int64_t>() > 255) {
      FailJson(where + ".skip", "must be 0 to 255");
    }
    part.skip = static_cast<int>(skip.get<int64_t>());
  }
  return part;
}

FieldTest ReadTest(const json& test, const Names& form, const std::string& where,
                   bool inner = false) {
  CheckJsonMembers(
      test, where,
      {"field", "after", "upto", "before", "skip", "matches", "digits", "earlier", "not"});
  if (!test.contains("field")) FailJson(where + ".field", "missing: the field tested");
  FieldTest out;
  out.part = ReadPart(test, "field", form, where);
  if (test.contains("matches")) {
    const json& matches = test.at("matches");
    const json list = matches.is_array() ? matches : json::array({matches});
    if (list.empty()) FailJson(where + ".matches", "must name at least one pattern");
    for (const json& pattern : list) {
      if (!pattern.is_string()) FailJson(where + ".matches", "must be a pattern or a list of them");
      out.patterns.push_back(U16(pattern.get<std::string>()));
      if (out.patterns.back().size() > kMaxText) {
        FailJson(where + ".matches", "a pattern is at most 255 characters");
      }
    }
  }
  if (test.contains("digits")) {
    if (test.at("digits") != true) FailJson(where + ".digits", "must be true");
    out.digits = true;
  }
  if (test.contains("earlier")) {
    const json& earlier = test.at("earlier");
    if (inner) FailJson(where + ".earlier", "cannot be inside another \"earlier\"");
    if (!earlier.is_array()) FailJson(where + ".earlier", "must be a list of tests");
    if (earlier.size() > kMaxRules) FailJson(where + ".earlier", "more than 100 tests");
    out.seen = true;
    for (size_t i = 0; i < earlier.size(); ++i) {
      out.earlier.push_back(
          ReadTest(earlier[i], form, where + ".earlier[" + std::to_string(i) + "]", true));
    }
  }
  if ((out.digits ? 1 : 0) + (out.patterns.empty() ? 0 : 1) + (out.seen ? 1 : 0) != 1) {
    FailJson(where, "needs one of \"matches\", \"digits\" and \"earlier\"");
  }
  if (test.contains("not")) {
    if (!test.at("not").is_boolean()) FailJson(where + ".not", "must be true or false");
    out.negate = test.at("not").get<bool>();
  }
  return out;
}

FieldRule ReadRule(const json& rule, const Names& form, const std::string& where) {
  CheckJsonMembers(rule, where, {"when", "take", "after", "upto", "before", "skip", "text"});
  FieldRule out;
  if (rule.contains("when")) {
    const json& when = rule.at("when");
    if (!when.is_array()) FailJson(where + ".when", "must be a list of tests");
    for (size_t i = 0; i < when.size(); ++i) {
      out.when.push_back(ReadTest(when[i], form, where + ".when[" + std::to_string(i) + "]"));
    }
  }
  if (rule.contains("take") == rule.contains("text")) {
    FailJson(where, "needs one of \"take\" (a field) and \"text\"");
  }
  if (rule.contains("take")) {
    out.takes = true;
    out.take = ReadPart(rule, "take", form, where);
  } else {
    if (rule.contains("after") || rule.contains("upto") || rule.contains("before") ||
        rule.contains("skip")) {
      FailJson(where, "\"after\", \"upto\", \"before\" and \"skip\" go with \"take\"");
    }
    out.text = Text(rule, "text", where);
  }
  return out;
}

DerivedField ReadDerived(const json& field, const Names& form, const std::string& where) {
  CheckJsonMembers(field, where, {"name", "width", "rules"});
  DerivedField out;
  if (field.contains("name")) {
    if (!field.at("name").is_string()) FailJson(where + ".name", "must be a string");
    out.name = field.at("name").get<std::string>();
  }
  if (!field.contains("width") || !field.at("width").is_number_integer() ||
      field.at("width").get<int64_t>() < 1 || field.at("width").get<int64_t>() > 255) {
    FailJson(where + ".width", "must be 1 to 255");
  }
  out.width = static_cast<int>(field.at("width").get<int64_t>());
  if (!field.contains("rules") || !field.at("rules").is_array() || field.at("rules").empty()) {
    FailJson(where + ".rules", "must be a list of rules");
  }
  const json& rules = field.at("rules");
  if (rules.size() > kMaxRules) FailJson(where + ".rules", "more than 100 rules");
  for (size_t i = 0; i < rules.size(); ++i) {
    out.rules.push_back(ReadRule(rules[i], form, where + ".rules[" + std::to_string(i) + "]"));
  }
  return out;
}

std::string Quote(const std::u16string& text) { return json(U8(text)).dump(); }

// "field": NAME plus the part's "after", "upto", "before" and "skip" as set.
std::string PartJson(const char* member, const FieldPart& part, const Names& names) {
  std::string out =
      std::string("\"") + member + "\": " + json(names[static_cast<size_t>(part.field)]).dump();
  if (!part.after.empty()) out += ", \"after\": " + Quote(part.after);
  if (!part.upto.empty()) out += ", \"upto\": " + Quote(part.upto);
  if (!part.before.empty()) out += ", \"before\": " + Quote(part.before);
  if (part.skip > 0) out += ", \"skip\": " + std::to_string(part.skip);
  return out;
}

std::string TestJson(const FieldTest& test, const Names& form) {
  std::string out = "{" + PartJson("field", test.part, form);
  if (test.digits) out += ", \"digits\": true";
  if (test.patterns.size() == 1) out += ", \"matches\": " + Quote(test.patterns[0]);
  if (test.patterns.size() > 1) {
    out += ", \"matches\": [";
    for (size_t i = 0; i < test.patterns.size(); ++i) {
      out += (i == 0 ? "" : ", ") + Quote(test.patterns[i]);
    }
    out += "]";
  }
  if (test.seen) {
    out += ", \"earlier\": [";
    for (size_t i = 0; i < test.earlier.size(); ++i) {
      out += (i == 0 ? "" : ", ") + TestJson(test.earlier[i], form);
    }
    out += "]";
  }
  if (test.negate) out += ", \"not\": true";
  return out + "}";
}

}  // namespace

std::vector<DerivedField> DerivedFromJson(const json& derived, const DelimitedForm& form) {
  const std::string where = "records.delimited.derived";
  if (!derived.is_array()) FailJson(where, "must be a list of fields read by rule");
  if (derived.size() > kMaxDerived) FailJson(where, "more than 100 fields");
  std::vector<DerivedField> out;
  Names names;
  for (const DelimitedField& field : form.fields) names.push_back(field.name);
  for (size_t i = 0; i < derived.size(); ++i) {
    out.push_back(ReadDerived(derived[i], names, where + "[" + std::to_string(i) + "]"));
    names.push_back(out.back().name);
  }
  return out;
}

std::string DerivedToJson(const DelimitedForm& delimited) {
  Names form;
  for (const DelimitedField& field : delimited.fields) form.push_back(field.name);
  for (const DerivedField& field : delimited.derived) form.push_back(field.name);
  std::string out = ",\n      \"derived\": [";
  for (size_t i = 0; i < delimited.derived.size(); ++i) {
    const DerivedField& field = delimited.derived[i];
    out += i == 0 ? "\n" : ",\n";
    out += "        {\"name\": " + json(field.name).dump() +
           ", \"width\": " + std::to_string(field.width) + ", \"rules\": [";
    for (size_t r = 0; r < field.rules.size(); ++r) {
      const FieldRule& rule = field.rules[r];
      out += r == 0 ? "\n          {" : ",\n          {";
      if (!rule.when.empty()) {
        out += "\"when\": [";
        for (size_t t = 0; t < rule.when.size(); ++t) {
          out += (t == 0 ? "" : ", ") + TestJson(rule.when[t], form);
        }
        out += "], ";
      }
      out += rule.takes ? PartJson("take", rule.take, form) : "\"text\": " + Quote(rule.text);
      out += "}";
    }
    out += "\n        ]}";
  }
  return out + "\n      ]";
}

}  // namespace velqua_records
