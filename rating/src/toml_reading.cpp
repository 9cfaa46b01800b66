#include "toml_reading.h"

#include <algorithm>

#include "velqua/rating/money.h"

namespace velqua_rating {

toml::table TomlReader::Parse(const std::string& text) const {
  try {
    return toml::parse(text, path_);
  } catch (const toml::parse_error& e) {
    Fail(static_cast<int64_t>(e.source().begin.line), std::string(e.description()));
  }
}

void TomlReader::Fail(int64_t line, const std::string& reason) const {
  throw TariffError(path_ + ":" + std::to_string(line) + ": " + reason);
}

void TomlReader::OnlyKeys(const toml::table& table, std::initializer_list<std::string_view> known,
                          const std::string& where) const {
  for (const auto& [key, value] : table) {
    if (std::find(known.begin(), known.end(), key.str()) == known.end()) {
      Fail(value, "unknown key '" + std::string(key.str()) + "' " + where);
    }
  }
}

std::string TomlReader::Text(const toml::table& table, std::string_view key, bool required) const {
  const toml::node* node = table.get(key);
  if (node == nullptr) {
    if (required) Fail(table, "'" + std::string(key) + "' is missing");
    return "";
  }
  if (!node->is_string()) Fail(*node, "'" + std::string(key) + "' must be text");
  return node->as_string()->get();
}

int64_t TomlReader::Integer(const toml::table& table, std::string_view key, int64_t low,
                            int64_t high, int64_t fallback) const {
  const toml::node* node = table.get(key);
  if (node == nullptr) return fallback;
  if (!node->is_integer()) Fail(*node, "'" + std::string(key) + "' must be a whole number");
  const int64_t value = node->as_integer()->get();
  if (value < low || value > high) {
    Fail(*node, "'" + std::string(key) + "' must be between " + std::to_string(low) + " and " +
                    std::to_string(high));
  }
  return value;
}

bool TomlReader::Flag(const toml::table& table, std::string_view key, bool fallback) const {
  const toml::node* node = table.get(key);
  if (node == nullptr) return fallback;
  if (!node->is_boolean()) Fail(*node, "'" + std::string(key) + "' must be true or false");
  return node->as_boolean()->get();
}

int64_t TomlReader::Money(const toml::table& table, std::string_view key, int64_t fallback) const {
  const toml::node* node = table.get(key);
  if (node == nullptr) return fallback;
  const std::string name(key);
  if (node->is_integer()) {
    const int64_t value = node->as_integer()->get();
    if (value < 0) Fail(*node, "negative price: '" + name + "' = " + std::to_string(value));
    if (value > kMaxMicro / kMicro) Fail(*node, "'" + name + "' is too large");
    return value * kMicro;
  }
  if (node->is_floating_point()) {
    Fail(*node, "'" + name + "' must be quoted decimal text (e.g. \"0.0250\"), not a float");
  }
  if (!node->is_string()) Fail(*node, "'" + name + "' must be quoted decimal text");
  const std::string& text = node->as_string()->get();
  if (!text.empty() && text[0] == '-') Fail(*node, "negative price: '" + name + "' = " + text);
  int64_t micro = 0;
  if (!ParseMicro(text, micro)) {
    Fail(*node, "'" + name + "' = \"" + text +
                    "\" is not an amount (digits, one point, at most 6 decimals)");
  }
  return micro;
}

bool ReadDate(const toml::node& node, int32_t& day_number) {
  int y = 0, m = 0, d = 0;
  if (const auto* date = node.as_date()) {
    y = date->get().year;
    m = date->get().month;
    d = date->get().day;
  } else if (const auto* text = node.as_string()) {
    const std::string& s = text->get();
    if (s.size() != 10 || s[4] != '-' || s[7] != '-') return false;
    for (size_t i : {0u, 1u, 2u, 3u, 5u, 6u, 8u, 9u}) {
      if (s[i] < '0' || s[i] > '9') return false;
    }
    y = std::stoi(s.substr(0, 4));
    m = std::stoi(s.substr(5, 2));
    d = std::stoi(s.substr(8, 2));
  } else {
    return false;
  }
  static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (y < 1900 || y > 9999 || m < 1 || m > 12 || d < 1 || d > kDays[m - 1]) return false;
  const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  if (m == 2 && d == 29 && !leap) return false;
  day_number = DayNumber(y, m, d);
  return true;
}

}  // namespace velqua_rating
