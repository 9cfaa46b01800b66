// The Calls view's query string: the filters, order and page that
// /api/calls and its exports share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "api.h"
#include "velqua/store/browse.h"

namespace velqua_web {

constexpr int64_t kExportLimit = 100000;  // calls an export (CSV, XLSX) holds at most

// The query of a request's parameters: from, to, switch, extension, person,
// department, number, trunk, account, type, unanswered, min_duration,
// min_cost, max_cost, sort, order, offset, limit. Throws ApiError 400 naming
// the parameter that is malformed or out of range.
velqua_store::CallQuery CallQueryOf(const httplib::Request& http);

// An amount of money as a user types it ("12", "0.5", "-1.25"; up to 6
// decimals and 12 digits before the point) in millionths of its unit;
// nothing when it is not such a number.
std::optional<int64_t> MillionthsOf(const std::string& text);

}  // namespace velqua_web
