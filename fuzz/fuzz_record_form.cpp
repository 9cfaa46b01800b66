// Fuzz target: the record form of velqua_records (velqua/records/record_form.h)
// and its JSON member. The input's first line is a "records" member of the
// JSON form; when it is refused (as most are), the first byte picks one of a
// few forms instead. The other lines go through the form.
// Invariants checked:
//  - a refused member is refused with a Failure, never another exception;
//  - an accepted form is written back and read back the same;
//  - a shaped delimited record is exactly as wide as the form declares, and
//    its field count agrees with what it says was fewer or more;
//  - a pattern without wildcards matches its own text, and "*" + it matches
//    any text ending with it;
//  - translating the lines through the form writes one row per record;
//  - each extra field cut from a line is one text, no wider than its columns.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/cfg_conmut.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/record_form.h"
#include "velqua/records/translation.h"

namespace velqua_fuzz_record_form {

inline velqua_records::RecordForm Fallback(uint8_t choice) {
  velqua_records::RecordForm form;
  form.delimited = (choice & 1) != 0;
  form.fields = {(choice & 2) ? u';' : u',',
                 (choice & 4) ? u'\0' : u'"',
                 {{"a", choice & 7}, {"b", 0}, {"s", 7 + (choice >> 5), true}, {"c", 3}},
                 {}};
  if (choice &
      128) {  // a field by rule: the 4th's text up to a comma, from its 2nd character, else "x"
    using velqua_records::FieldPart;
    using velqua_records::FieldRule;
    using velqua_records::FieldTest;
    FieldTest test;
    test.part = FieldPart{0, u"", u"", 0, u""};
    test.patterns = {u"?*"};
    form.fields.derived = {{"r",
                            3,
                            {FieldRule{{test}, true, FieldPart{3, u"", u"-", 1, u","}, u""},
                             FieldRule{{}, false, FieldPart{0, u"", u"", 0, u""}, u"x"}}}};
  }
  if (choice & 8) form.headings = {u"*PAGE ???", u"====*"};
  form.nul_ends_record = (choice & 16) != 0;
  if (!form.delimited && (choice & 32)) {
    form.continuation = u" &*";
    form.continuation_column = 1 + (choice >> 2);
  }
  form.seven_bit = (choice & 64) != 0;
  return form;
}

inline void CheckShape(const velqua_records::DelimitedForm& form, std::u16string_view record) {
  int width = 0;
  velqua_records::ShapedColumns(form, &width);
  std::u16string shaped;
  const velqua_records::ShapeOutcome outcome =
      velqua_records::ShapeDelimited(form, record, &shaped);
  if (static_cast<int>(shaped.size()) != width) velqua_fuzz::Hallazgo("shaped width differs");
  const size_t declared = form.fields.size();
  if (outcome.fields == 0 || outcome.fewer != (outcome.fields < declared) ||
      outcome.more != (outcome.fields > declared)) {
    velqua_fuzz::Hallazgo("field count disagrees with fewer/more");
  }
}

inline void CheckPattern(std::u16string_view text) {
  std::u16string plain(text.substr(0, 40));
  for (char16_t& c : plain) {
    if (c == u'*' || c == u'?') c = u'x';
  }
  if (!velqua_records::MatchesPattern(plain, plain))
    velqua_fuzz::Hallazgo("text unmatched by itself");
  const std::u16string longer = std::u16string(text) + plain;
  if (!velqua_records::MatchesPattern(u"*" + plain, longer)) {
    velqua_fuzz::Hallazgo("*text unmatched by a text ending with it");
  }
}

struct Count : velqua_records::RowSink {
  void Write(const velqua_records::Row&) override { ++rows; }
  int64_t rows = 0;
};

int Run(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const size_t end = input.find('\n');
  const std::string member = input.substr(0, end);
  const std::string rest = end == std::string::npos ? "" : input.substr(end + 1);
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  velqua_records::RecordForm form;
  std::string delivery;
  try {
    velqua_records::SwitchConfigFromJson("{\"records\": " + member + "}", *cfg, &form, &delivery);
    const std::string text = velqua_records::SwitchConfigToJson(*cfg, form, delivery);
    velqua::clsCfgConmut again;
    velqua_records::RecordForm back;
    velqua_records::SwitchConfigFromJson(text, again, &back, &delivery);
    if (velqua_records::SwitchConfigToJson(again, back, delivery) != text) {
      velqua_fuzz::Hallazgo("a record form reads back differently");
    }
  } catch (const velqua_records::Failure&) {
    form = Fallback(size > 0 ? data[0] : 0);
  }
  const std::u16string text = velqua::DesdeAnsi(rest);
  if (form.delimited) CheckShape(form.fields, text.substr(0, 2000));
  CheckPattern(text);
  const auto extras = velqua_records::CutExtras(form.extras, text);
  for (size_t i = 0; i < extras.size(); ++i) {
    if (extras[i].second.size() > static_cast<size_t>(form.extras[i].width)) {
      velqua_fuzz::Hallazgo("an extra field wider than its columns");
    }
  }
  if (extras.size() != form.extras.size()) velqua_fuzz::Hallazgo("extra fields lost");
  cfg->Caso(velqua::emCasoEstandar);
  Count count;
  velqua_records::Translation translation(cfg, count,
                                          {"", "", false, form, false, velqua_fuzz::EntornoFijo()});
  for (size_t at = 0; at <= text.size();) {
    const size_t next = std::min(text.find(u'\n', at), text.size());
    translation.Line(std::u16string_view(text).substr(at, next - at));
    at = next + 1;
  }
  translation.Finish();
  if (count.rows != translation.counts().read) velqua_fuzz::Hallazgo("rows and records differ");
  return 0;
}

}  // namespace velqua_fuzz_record_form
