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
//   transfer:  when continuation matches "1", the text "S"
//
// The configuration's columns and marks then address the derived field as
// any other, so the library reads a call's parties and kind as it always has.
// The JSON form is under "records.delimited.derived" (doc/cli.md, "Rules").
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velqua_records {

// A part of one declared field's text: the text after the first `after` (none
// when `after` is absent from it), then before the last `before` (all of it
// when `before` is absent), then without its first `skip` characters.
// "PJSIP/201-00000004" after "/" before "-" is "201".
struct FieldPart {
  int field = 0;  // index of the field: declared ones first, then derived ones
  std::u16string after, before;
  int skip = 0;
  std::u16string_view Of(const std::vector<std::u16string_view>& fields) const;
};

// A test of a part: it matches one of `patterns` (`*` any run, `?` any one
// character, letter case exact), or with `digits` it is one or more digits;
// `negate` turns the answer round.
struct FieldTest {
  FieldPart part;
  std::vector<std::u16string> patterns;
  bool digits = false;
  bool negate = false;
  bool Holds(const std::vector<std::u16string_view>& fields) const;
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
};

}  // namespace velqua_records
