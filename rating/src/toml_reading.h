// Small helpers over toml++ for the rating files (tariffs, rating plans):
// each value checked for its type, and every refusal naming the file and
// the line of the value at fault.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include <toml++/toml.h>

#include "velqua/rating/tariff.h"

namespace velqua_rating {

class TomlReader {
 public:
  explicit TomlReader(std::string path) : path_(std::move(path)) {}

  // Parses `text`; a syntax error is a TariffError at its line.
  toml::table Parse(const std::string& text) const;

  [[noreturn]] void Fail(int64_t line, const std::string& reason) const;
  [[noreturn]] void Fail(const toml::node& node, const std::string& reason) const {
    Fail(static_cast<int64_t>(node.source().begin.line), reason);
  }

  // Refuses a key of `table` not in `known` ("unknown key 'conect'").
  void OnlyKeys(const toml::table& table, std::initializer_list<std::string_view> known,
                const std::string& where) const;

  // The text of `key` in `table` ("" when absent and not `required`).
  std::string Text(const toml::table& table, std::string_view key, bool required) const;
  // A whole number in [low, high]; `fallback` when absent.
  int64_t Integer(const toml::table& table, std::string_view key, int64_t low, int64_t high,
                  int64_t fallback) const;
  bool Flag(const toml::table& table, std::string_view key, bool fallback) const;
  // Money as quoted decimal text (or a whole number), in millionths; a
  // negative value, a float or more than 6 decimals are refused.
  int64_t Money(const toml::table& table, std::string_view key, int64_t fallback) const;
  // A table's (or array's) line, for refusals about what it lacks.
  static int64_t Line(const toml::node& node) {
    return static_cast<int64_t>(node.source().begin.line);
  }

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// "YYYY-MM-DD" (a TOML date or text) as a DayNumber; false when not a date.
bool ReadDate(const toml::node& node, int32_t& day_number);

}  // namespace velqua_rating
