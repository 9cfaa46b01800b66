// The "records" member of the JSON form of a configuration: its record form
// (record_form.h). Private to velqua_records: config_json.cpp reads and writes
// it as part of the whole form.
#pragma once

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "velqua/records/record_form.h"

namespace velqua_records {

// Reads the "records" member; throws Failure naming the member at fault, e.g.
// "records.delimited.fields[3].width: must be 0 to 255".
RecordForm RecordFormFromJson(const nlohmann::json& records);

// Throws Failure "<where>: <what>", naming the member at fault.
[[noreturn]] void FailJson(const std::string& where, const std::string& what);

// Throws FailJson unless `object` is an object whose members are all among
// `allowed`; `where` names it ("" for the whole form).
void CheckJsonMembers(const nlohmann::json& object, const std::string& where,
                      std::initializer_list<const char*> allowed);

// The "derived" member of a delimited form (its fields read by rule), whose
// tests and rules name the fields of `form`; throws Failure naming the member.
std::vector<DerivedField> DerivedFromJson(const nlohmann::json& derived, const DelimitedForm& form);

// ",\n      \"derived\": [...]": the member as written after "fields".
std::string DerivedToJson(const DelimitedForm& form);

// The "records" member's text, two-space indented at the member's depth (one
// field a line), without the member's name; "" for a plain form.
std::string RecordFormToJson(const RecordForm& form);

}  // namespace velqua_records
