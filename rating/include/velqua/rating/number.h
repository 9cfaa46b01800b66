// Numbers as a tariff reads them. A switch prints what the user dialled:
// the outside-line access code first ("9"), then the number in national or
// international form, with spaces or dashes on some models. A NumberRule,
// set per switch or per trunk, brings it to the form the tariff is written
// in, so that one tariff serves every switch.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velqua_rating {

struct NumberRule {
  // Codes dialled to get an outside line, stripped from the front ("9",
  // "0"); the longest that the number starts with goes, and only when
  // something follows it.
  std::vector<std::string> access_codes;
  // Then the longest `from` the number starts with is replaced by `to`:
  // {"00", "+"} and {"0", "+34"} turn national and international forms into
  // the "+" form; {"", "+34"} prefixes every number not matched otherwise.
  std::vector<std::pair<std::string, std::string>> rewrites;
};

// Writes the normalised form of `dialled` to `out` (cleared first): spaces,
// dashes, dots, slashes and parentheses dropped, then `rule` applied. Other
// characters are kept: a letter stops prefix matching where it stands.
void Normalise(std::string_view dialled, const NumberRule& rule, std::string& out);

}  // namespace velqua_rating
