// The parts of a tariff file, each read and checked by its own function
// (tariff_reader.cpp, tariff_bands.cpp).
#pragma once

#include "toml_reading.h"
#include "velqua/rating/tariff.h"

namespace velqua_rating {

// [[band]]: fills t.bands and t.week; refuses overlaps and gaps.
void ReadBands(const TomlReader& r, const toml::table& root, Tariff& t);
// [holidays]: date = "band"; the bands must be read first.
void ReadHolidays(const TomlReader& r, const toml::table& root, Tariff& t);

}  // namespace velqua_rating
