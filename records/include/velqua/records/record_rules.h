// Fields read by rule. A delimited record says what a call is in its own
// fields, not always in a fixed one: IP Office names its two parties by
// device (E an extension, T a trunk line, V a voicemail channel) in whichever
// order the call took; Asterisk says a call came in from a trunk by its
// channel's peer name, whatever the dial plan calls its contexts. A derived
// field is shaped after the declared ones, and its text is chosen by the
// first of its rules whose tests all hold over the record's fields (the
// declared ones and the derived ones before it):
//
//   extension: when party1 device matches "E*", take party1 device from its
//              2nd character; when party2 device matches "E*", take party2's
//   transfer:  when continuation matches "1", the text "S"; when the call id
//              was seen on an earlier record whose continuation was "1", "F"
//
// The configuration's columns and marks then address the derived field as
// any other, so the library reads a call's parties and kind as it always has.
// The JSON form is under "records.delimited.derived" (doc/cli.md, "Rules").
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velqua_records {

// A part of one declared field's text: the text after the first `after` (none
// when `after` is absent from it), then before the first `upto` and before the
// last `before` (all of it when they are absent), then without its first
// `skip` characters. "PJSIP/201-00000004" after "/" before "-" is "201";
// "PJSIP/0215550199@carrier,300,T" after "@" upto "," is "carrier".
struct FieldPart {
  int field = 0;  // index of the field: declared ones first, then derived ones
  std::u16string after, before;
  int skip = 0;
  std::u16string upto;
  std::u16string_view Of(const std::vector<std::u16string_view>& fields) const;
};

// The texts an `earlier` test remembers of the records before this one, the
// most recent kMaxKeys of them (a transferred call's records come within
// minutes of each other, not thousands of records apart).
struct RecordMemory {
  static constexpr size_t kMaxKeys = 10000;
  std::deque<std::u16string> order;
  std::unordered_set<std::u16string> keys;
  bool Has(std::u16string_view text) const;
  void Add(std::u16string_view text);
};

// A test of a part: it matches one of `patterns` (`*` any run, `?` any one
// character, letter case exact), or with `digits` it is one or more digits,
// or with `seen` an earlier record of the same input had the same text in
// this part and met every test of `earlier` ("the call ID of a record whose
// Continuation was 1"); `negate` turns the answer round.
struct FieldTest {
  FieldPart part;
  std::vector<std::u16string> patterns;
  bool digits = false;
  bool seen = false;
  std::vector<FieldTest> earlier;  // with `seen`; none of them is itself `seen`
  bool negate = false;
  // The records before: kept with the form, which each input has a copy of
  // (a translation, a check), so that one input's records never answer
  // another's.
  mutable RecordMemory memory;
  bool Holds(const std::vector<std::u16string_view>& fields) const;
  // Once a record's fields are all known: remembers its part's text when it
  // meets every test of `earlier` (`seen` tests only).
  void Remember(const std::vector<std::u16string_view>& fields) const;
};

// When every test holds (a rule without tests always does), the field is
// `take`'s part when `takes`, else `text`.
struct FieldRule {
  std::vector<FieldTest> when;
  bool takes = false;
  FieldPart take;
  std::u16string text;
};

struct DerivedField {
  std::string name;  // what the field holds, for people
  int width = 1;     // columns in the shaped line, 1 to 255
  std::vector<FieldRule> rules;
  // The text of the first rule that holds; empty when none does.
  std::u16string_view Value(const std::vector<std::u16string_view>& fields) const;
  // Lets the `seen` tests of its rules remember the record, once all of its
  // fields (derived ones included) are known.
  void Remember(const std::vector<std::u16string_view>& fields) const;
};

}  // namespace velqua_records
