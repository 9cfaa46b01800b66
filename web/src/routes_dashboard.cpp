// Dashboard: a day and its month at a glance, from the store's aggregates.
#include <date/date.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "api.h"
#include "routes.h"
#include "velqua/store/aggregates.h"
#include "velqua/store/browse.h"

namespace velqua_web {
namespace {

date::year_month_day DayOf(const std::string& text) {
  int y = 0;
  unsigned m = 0, d = 0;
  char extra = 0;
  if (text.size() != 10 || std::sscanf(text.c_str(), "%4d-%2u-%2u%c", &y, &m, &d, &extra) != 3) {
    throw ApiError(400, "parameter 'day': expected YYYY-MM-DD, got '" + text + "'");
  }
  const date::year_month_day day{date::year{y}, date::month{m}, date::day{d}};
  if (!day.ok()) throw ApiError(400, "parameter 'day': no such day '" + text + "'");
  return day;
}

std::string Text(const date::year_month_day& day) {
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text;
}

nlohmann::json Totals(velqua_store::Store& store, const velqua_store::Span& span) {
  int64_t calls = 0, seconds = 0, unanswered = 0;
  for (const auto& c : velqua_store::CountCallsBy(store, span, velqua_store::CallGroup::kDay)) {
    calls += c.calls;
    seconds += c.seconds;
    unanswered += c.unanswered;
  }
  nlohmann::json cost = nlohmann::json::array();
  for (const auto& t : velqua_store::SumCostBy(store, span, velqua_store::CostKey::kAll)) {
    cost.push_back({{"currency", t.currency}, {"cost", t.cost}});
  }
  return {{"calls", calls},
          {"minutes", (seconds + 59) / 60},
          {"unanswered", unanswered},
          {"cost", cost}};
}

nlohmann::json Costs(const std::vector<velqua_store::CostTotal>& totals, size_t most) {
  nlohmann::json list = nlohmann::json::array();
  for (size_t i = 0; i < totals.size() && i < most; ++i) {
    const auto& t = totals[i];
    list.push_back(
        {{"key", t.key}, {"calls", t.calls}, {"cost", t.cost}, {"currency", t.currency}});
  }
  return list;
}

void Dashboard(ApiRequest& r) {
  const std::string sw = r.Param("switch");
  const date::year_month_day day = DayOf(r.Param("day", Today()));
  const date::year_month_day next{date::sys_days{day} + date::days{1}};
  const date::year_month_day first{day.year(), day.month(), date::day{1}};
  const date::year_month_day next_month{first.year() / first.month() / date::day{1} +
                                        date::months{1}};
  const velqua_store::Span today{Text(day), Text(next), sw};
  const velqua_store::Span month{Text(first), Text(next_month), sw};
  auto& store = r.store;

  nlohmann::json hours = nlohmann::json::array();
  for (const auto& c : velqua_store::CountCallsBy(store, today, velqua_store::CallGroup::kHour)) {
    hours.push_back({{"hour", c.key}, {"calls", c.calls}, {"unanswered", c.unanswered}});
  }
  auto extensions = velqua_store::CountCallsBy(store, month, velqua_store::CallGroup::kExtension);
  std::stable_sort(extensions.begin(), extensions.end(),
                   [](const auto& a, const auto& b) { return a.calls > b.calls; });
  nlohmann::json top = nlohmann::json::array();
  for (size_t i = 0; i < extensions.size() && i < 10; ++i) {
    top.push_back({{"extension", extensions[i].key},
                   {"calls", extensions[i].calls},
                   {"minutes", (extensions[i].seconds + 59) / 60}});
  }
  int64_t channels = 0, peak = 0;
  for (const auto& s : velqua_store::ChannelsInUse(store, today)) {
    peak = std::max(peak, s.peak);
    channels += s.change;  // the level at the day's last half hour with a call
  }
  r.Reply({{"day", Text(day)},
           {"latest_day", velqua_store::LatestCallDay(store)},
           {"today", Totals(store, today)},
           {"month", Totals(store, month)},
           {"hours", hours},
           {"top_extensions", top},
           {"top_destinations",
            Costs(velqua_store::SumCostBy(store, month, velqua_store::CostKey::kDestination), 10)},
           {"departments",
            Costs(velqua_store::SumCostBy(store, month, velqua_store::CostKey::kDepartment), 50)},
           {"channels", {{"now", channels}, {"peak", peak}}}});
}

}  // namespace

void RegisterDashboardRoutes(Api& api) { api.Get("/api/dashboard", Access::kViewer, Dashboard); }

}  // namespace velqua_web
