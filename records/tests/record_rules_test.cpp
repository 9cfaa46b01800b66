#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/record_form.h"
#include "velqua/records/translation.h"

namespace velqua_records {
namespace {

// A record form of four declared fields (party1 device, party2 device,
// continuation, caller) and the derived fields given in JSON.
RecordForm FormWith(const std::string& derived) {
  const std::string json = R"({"records": {"delimited": {"fields": [
      {"name": "p1", "width": 0}, {"name": "p2", "width": 0},
      {"name": "cont", "width": 0}, {"name": "caller", "width": 6}],
      "derived": )" + derived +
                           "}}}";
  velqua::clsCfgConmut cfg;
  RecordForm form;
  std::string delivery;
  SwitchConfigFromJson(json, cfg, &form, &delivery);
  return form;
}

std::string Shaped(const RecordForm& form, const std::u16string& record) {
  std::u16string line;
  ShapeDelimited(form.fields, record, &line);
  return U8(line);
}

TEST(FieldRules, TheFirstRuleThatHoldsGivesTheText) {
  const RecordForm form = FormWith(R"([
    {"name": "ext", "width": 5, "rules": [
      {"when": [{"field": "p1", "matches": "E*"}], "take": "p1", "skip": 1},
      {"when": [{"field": "p2", "matches": "E*"}], "take": "p2", "skip": 1},
      {"when": [{"field": "p2", "matches": ["V*", "U*"]}], "take": "p2"}]},
    {"name": "kind", "width": 1, "rules": [
      {"when": [{"field": "p1", "matches": "T*"}, {"field": "p2", "matches": "T*"}], "text": "T"},
      {"when": [{"field": "ext", "digits": true}], "text": "E"},
      {"text": "?"}]},
    {"name": "xfer", "width": 1, "rules": [
      {"when": [{"field": "cont", "matches": "1"}], "text": "S"}]}])");
  struct Case {
    const char16_t* record;
    const char* shaped;  // caller (6), ext (5), kind, xfer
  } const cases[] = {
      {u"E201,T9001,0,4688", "4688   201   E  "},
      {u"T9001,E4750,1,0170", "0170   4750  E S"},  // the extension wherever it stands
      {u"T9002,V9502,0,0170", "0170   V9502 ?  "},  // voicemail: no digits, so no E
      {u"T9001,T9002,0,0399", "0399         T  "},  // trunk to trunk: no extension
      {u"X1,Y2,1", "             ? S"},             // a missing field is empty
      {u"E12345678,T1,0,1", "1      12345 E  "},    // cut to its width like any other
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.record));
    EXPECT_EQ(Shaped(form, c.record), c.shaped);
  }
}

TEST(FieldRules, PartsAfterUptoBeforeSkipAndNegatedTests) {
  const RecordForm form = FormWith(R"([
    {"name": "peer", "width": 13, "rules": [
      {"when": [{"field": "p1", "matches": "Local/*"}], "take": "p1", "after": "/", "before": "@"},
      {"when": [{"field": "p1", "matches": "*/*@*"}], "take": "p1", "after": "@", "upto": ","},
      {"when": [{"field": "p1", "matches": "*,*"}], "take": "p1", "after": "/", "upto": ",",
       "before": "/"},
      {"take": "p1", "after": "/", "before": "-"}]},
    {"name": "trunk", "width": 1, "rules": [
      {"when": [{"field": "peer", "digits": true, "not": true}], "text": "T"}]}])");
  struct Case {
    const char16_t* p1;
    const char* shaped;
  } const cases[] = {
      {u"PJSIP/201-00000004", "       201            "},
      {u"SIP/my-provider-0000a", "       my-provider   T"},  // before the last "-"
      {u"Local/305@from-internal-00a;1", "       305            "},
      {u"DAHDI/i1/0215550199-5", "       i1/0215550199 T"},
      {u"nochannel", "                     T"},  // no "/": nothing after it
      {u"IAX2/7001", "       7001           "},  // no "-": all that follows "/"
      // "upto" cuts at the first "," where "before" would cut at the last
      {u"\"PJSIP/0215550199@carrier,300,T\"", "       carrier       T"},
      // ... and "before" then cuts what is left at its last "/"
      {u"\"SIP/peer/0215550199,60,tT\"", "       peer          T"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.p1));
    EXPECT_EQ(Shaped(form, std::u16string(c.p1) + u",,,"), c.shaped);
  }
}

// A test over the records before: the legs of one call (same call ID, here
// the caller field) after a leg that said the call goes on are told apart
// from a first leg and from calls of their own, in the order they came; each
// form copy (each input) remembers only its own records.
TEST(FieldRules, EarlierRecordsOfTheSameInput) {
  const RecordForm form = FormWith(R"([
    {"name": "xfer", "width": 1, "rules": [
      {"when": [{"field": "cont", "matches": "1"},
                {"field": "caller", "earlier": [{"field": "cont", "matches": "1"}]}], "text": "M"},
      {"when": [{"field": "cont", "matches": "1"}], "text": "S"},
      {"when": [{"field": "caller", "earlier": [{"field": "cont", "matches": "1"}]}],
       "text": "F"}]}])");
  struct Case {
    const char16_t* record;
    const char* shaped;  // caller (6), xfer
  } const cases[] = {
      {u"E1,T1,0,100", "100     "},  // a call of its own
      {u"E1,T1,1,101", "101    S"},  // goes on: the first leg
      {u"E2,T1,1,101", "101    M"},  // goes on again: a middle leg
      {u"V1,T1,0,101", "101    F"},  // the last leg
      {u"E1,T1,0,100", "100     "},  // 100 never went on
      {u"E1,T1,0,", "        "},     // no call ID: never an earlier one's
  };
  RecordForm copy = form;  // a second input, shaped after the first
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(c.record));
    EXPECT_EQ(Shaped(form, c.record), c.shaped);
  }
  EXPECT_EQ(Shaped(copy, u"V1,T1,0,101"), "101     ");  // the other input's leg is not this one's
}

TEST(FieldRules, JsonFormRefusesWhatCannotBeRead) {
  struct Case {
    const char* derived;
    const char* error;
  } const cases[] = {
      {R"([{"name": "x", "width": 1, "rules": [{"take": "nope"}]}])",
       "records.delimited.derived[0].rules[0].take: no declared field, nor derived one before it, "
       "is called \"nope\""},
      {R"([{"name": "x", "width": 1, "rules": [{"take": "x"}]}])",
       "records.delimited.derived[0].rules[0].take: no declared field, nor derived one before it, "
       "is called \"x\""},
      {R"([{"name": "x", "width": 0, "rules": [{"text": "a"}]}])",
       "records.delimited.derived[0].width: must be 1 to 255"},
      {R"([{"name": "x", "width": 1, "rules": []}])",
       "records.delimited.derived[0].rules: must be a list of rules"},
      {R"([{"name": "x", "width": 1, "rules": [{"text": "a", "take": "p1"}]}])",
       "records.delimited.derived[0].rules[0]: needs one of \"take\" (a field) and \"text\""},
      {R"([{"name": "x", "width": 1, "rules": [{"text": "a", "skip": 1}]}])",
       "records.delimited.derived[0].rules[0]: \"after\", \"upto\", \"before\" and \"skip\" go "
       "with \"take\""},
      {R"([{"name": "x", "width": 1, "rules": [{"when": [{"field": "p1"}], "text": "a"}]}])",
       "records.delimited.derived[0].rules[0].when[0]: needs one of \"matches\", \"digits\" and "
       "\"earlier\""},
      {R"([{"name": "x", "width": 1, "rules": [{"when": [{"field": "p1", "is": "a"}],
          "text": "a"}]}])",
       "records.delimited.derived[0].rules[0].when[0].is: unknown member"},
      {R"([{"name": "x", "width": 1, "rules": [{"when": [{"field": "p1", "matches": []}],
          "text": "a"}]}])",
       "records.delimited.derived[0].rules[0].when[0].matches: must name at least one pattern"},
      {R"([{"name": "x", "width": 1, "rules": [{"take": "p1", "skip": -1}]}])",
       "records.delimited.derived[0].rules[0].skip: must be 0 to 255"},
      {R"({"name": "x"})", "records.delimited.derived: must be a list of fields read by rule"},
      {R"([{"name": "x", "width": 1, "rules": [{"when": [{"field": "p1", "earlier": [{"field":
          "p2", "earlier": []}]}], "text": "a"}]}])",
       "records.delimited.derived[0].rules[0].when[0].earlier[0].earlier: cannot be inside "
       "another \"earlier\""},
      {R"([{"name": "x", "width": 1, "rules": [{"when": [{"field": "p1", "earlier": {}}],
          "text": "a"}]}])",
       "records.delimited.derived[0].rules[0].when[0].earlier: must be a list of tests"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.derived);
    try {
      FormWith(c.derived);
      ADD_FAILURE() << "accepted";
    } catch (const Failure& e) {
      EXPECT_EQ(std::string(e.what()), c.error);
    }
  }
}

// The bundled configurations that read by rule are written back as they were
// read: convert X.json X.json keeps every rule.
TEST(FieldRules, JsonFormWritesBackWhatItRead) {
  for (const char* name : {"ip-office", "asterisk"}) {
    SCOPED_TRACE(name);
    const std::string path =
        std::string(VELQUA_SOURCE_DIR) + "/examples/" + name + "/" + name + ".json";
    const std::string text = ReadWholeFile(path, "configuration");
    velqua::clsCfgConmut cfg;
    RecordForm form;
    std::string delivery;
    SwitchConfigFromJson(text, cfg, &form, &delivery);
    ASSERT_FALSE(form.fields.derived.empty());
    EXPECT_EQ(nlohmann::json::parse(SwitchConfigToJson(cfg, form, delivery)),
              nlohmann::json::parse(text));
  }
}

class Rows : public RowSink {
 public:
  void Write(const Row& row) override { rows.push_back(row); }
  std::vector<Row> rows;
};

// A field longer than its columns reaches the row whole: a SIP caller
// "number@host" is not cut at the width the configuration shaped it into.
TEST(FieldRules, AFieldLongerThanItsColumnsIsGivenWhole) {
  const std::string json =
      ReadWholeFile(VELQUA_SOURCE_DIR "/records/tests/data/sip_caller.json", "configuration");
  auto cfg = std::make_shared<velqua::clsCfgConmut>();
  Translation::Settings settings;
  std::string delivery;
  SwitchConfigFromJson(json, *cfg, &settings.form, &delivery);
  Rows rows;
  Translation translation(cfg, rows, settings);
  translation.Record(u"I,0518012216@193.43.14.50,2001,01,05");
  translation.Record(u"I,4711,20015,00,09");
  ASSERT_EQ(rows.rows.size(), 2u);
  EXPECT_EQ(rows.rows[0].type, 1) << rows.rows[0].error;
  EXPECT_EQ(U8(rows.rows[0].dialled), "0518012216@193.43.14.50");
  EXPECT_EQ(U8(rows.rows[0].extension), "2001");
  EXPECT_EQ(U8(rows.rows[0].trunk), "0518012216@193.43.14.50");  // a derived field too
  EXPECT_EQ(U8(rows.rows[1].dialled), "4711");
  EXPECT_EQ(U8(rows.rows[1].extension), "20015");
}

}  // namespace
}  // namespace velqua_records
