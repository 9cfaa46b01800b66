#include "day_sums_all.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "sql.h"

namespace velqua_store {
namespace {

// A row of call_days being gathered: its key and its sums.
struct DayRow {
  char kind = 0;
  std::string day;
  int64_t switch_id = 0;
  std::string item, cls, currency;
  int64_t decimals = 0;
  int64_t calls = 0, seconds = 0, cost = 0, unpriced = 0;
  int64_t outgoing = 0, incoming = 0, internal = 0, unanswered = 0;

  auto Key() const { return std::tie(kind, day, switch_id, item, cls, currency, decimals); }
};

// What a price's label gives the sums.
struct Label {
  std::string destination, cls, currency;
};

// The columns read of each call, and of its price if it has one.
constexpr const char* kCalls =
    "SELECT c.start, c.switch_id, c.extension, c.trunk, c.account_code, c.duration, c.type, "
    "c.attribute, k.call_id, k.cost, k.label FROM calls c "
    "LEFT JOIN call_costs k ON k.call_id = c.id WHERE c.start IS NOT NULL";

// One call as read, its texts reused from call to call.
struct Call {
  std::string start, extension, trunk, account_code, cost_text;
  int64_t switch_id = 0;
  bool has_trunk = false, has_account = false;
  bool has_duration = false, has_type = false, has_attribute = false;
  int64_t duration = 0, type = 0, attribute = 0;
  bool priced = false, has_cost = false;  // a price row; with a cost
  int64_t label = 0;

  void Read(const ResultRow& r) {
    r.TextInto(0, start);
    switch_id = r.Int(1);
    r.TextInto(2, extension);
    has_trunk = !r.IsNull(3);
    r.TextInto(3, trunk);
    has_account = !r.IsNull(4);
    r.TextInto(4, account_code);
    has_duration = !r.IsNull(5);
    duration = has_duration ? r.Int(5) : 0;
    has_type = !r.IsNull(6);
    type = has_type ? r.Int(6) : 0;
    has_attribute = !r.IsNull(7);
    attribute = has_attribute ? r.Int(7) : 0;
    priced = !r.IsNull(8);
    has_cost = !r.IsNull(9);
    r.TextInto(9, cost_text);
    label = r.IsNull(10) ? 0 : r.Int(10);
  }
};

class Summer {
 public:
  explicit Summer(std::unordered_map<int64_t, Label> labels) : labels_(std::move(labels)) {}

  void Add(const Call& c) {
    // A price is exact decimal text: its digits without the point are its
    // units, and the digits after the point its decimals.
    const size_t point = c.cost_text.find('.');
    const int64_t decimals =
        point == std::string::npos ? 0 : static_cast<int64_t>(c.cost_text.size() - point - 1);
    int64_t cost = 0;
    bool digits = false;
    for (char ch : c.cost_text) {
      if (ch >= '0' && ch <= '9') {
        cost = cost * 10 + (ch - '0');
        digits = true;
      }
    }
    if (!c.cost_text.empty() && c.cost_text[0] == '-') cost = -cost;
    if (!c.has_cost || !digits) cost = 0;
    const auto found = c.label > 0 ? labels_.find(c.label) : labels_.end();
    const Label* label = found == labels_.end() ? nullptr : &found->second;
    const std::string_view currency = label ? std::string_view(label->currency) : "";
    const std::string_view day = std::string_view(c.start).substr(0, 10);
    const auto add = [&](char kind, std::string_view item, std::string_view cls, bool money) {
      DayRow& row =
          Row(kind, day, c.switch_id, item, cls, money ? currency : "", money ? decimals : 0);
      ++row.calls;
      row.seconds += c.duration;
      if (money) {
        row.cost += cost;
        if (c.priced && !c.has_cost) ++row.unpriced;
      }
      if (c.has_attribute && c.attribute == 4) {
        ++row.unanswered;
      } else if (c.has_attribute && c.has_type) {
        if (c.type == 2 || c.type == 5) ++row.outgoing;
        if (c.type == 1) ++row.incoming;
        if (c.type == 3) ++row.internal;
      }
    };
    add('e', c.extension, "", true);
    if (c.has_trunk) add('t', c.trunk, "", true);
    if (c.has_account) add('a', c.account_code, "", true);
    if (label != nullptr && !label->destination.empty()) {
      add('d', label->destination, label->cls, true);
    }
    if (c.start.size() >= 16) add('h', std::string_view(c.start).substr(11, 2), "", false);
  }

  // The rows in the order of call_days' key, so that they are appended:
  // by kind, then day and switch (the order of days_), then the rest.
  std::vector<const DayRow*> Sorted() const {
    std::vector<const DayRow*> sorted, day;
    for (const char kind : {'a', 'd', 'e', 'h', 't'}) {
      for (const auto& [when, rows] : days_) {
        day.clear();
        for (const auto& [key, row] : rows) {
          if (row.kind == kind) day.push_back(&row);
        }
        std::sort(day.begin(), day.end(),
                  [](const DayRow* a, const DayRow* b) { return a->Key() < b->Key(); });
        sorted.insert(sorted.end(), day.begin(), day.end());
      }
    }
    return sorted;
  }

 private:
  using Rows = std::unordered_map<std::string, DayRow>;

  // The rows of one day of a switch: a few hundred, so that finding one
  // stays in the processor's cache; the calls come mostly in order of
  // time, so the day is mostly the one before.
  Rows& Day(std::string_view day, int64_t switch_id) {
    if (last_ != nullptr && switch_id == last_switch_ && day == last_day_) return *last_;
    last_day_.assign(day);
    last_switch_ = switch_id;
    last_ = &days_[{last_day_, switch_id}];
    return *last_;
  }

  DayRow& Row(char kind, std::string_view day, int64_t switch_id, std::string_view item,
              std::string_view cls, std::string_view currency, int64_t decimals) {
    Rows& rows = Day(day, switch_id);
    // The key packed: each text after its length, so no two keys meet.
    key_.assign(1, kind);
    const auto text = [this](std::string_view t) {
      const auto n = static_cast<uint32_t>(t.size());
      key_.append(reinterpret_cast<const char*>(&n), sizeof n);
      key_.append(t);
    };
    text(item);
    text(cls);
    text(currency);
    key_.append(reinterpret_cast<const char*>(&decimals), sizeof decimals);
    auto found = rows.find(key_);
    if (found != rows.end()) return found->second;
    DayRow& row = rows[key_];
    row.kind = kind;
    row.day.assign(day);
    row.switch_id = switch_id;
    row.item.assign(item);
    row.cls.assign(cls);
    row.currency.assign(currency);
    row.decimals = decimals;
    return row;
  }

  std::unordered_map<int64_t, Label> labels_;
  std::map<std::pair<std::string, int64_t>, Rows> days_;  // by day, then switch
  Rows* last_ = nullptr;
  std::string last_day_;
  int64_t last_switch_ = 0;
  std::string key_;
};

}  // namespace

void SumEveryCall(Connection& db) {
  std::unordered_map<int64_t, Label> labels;
  db.Run("SELECT id, destination, destination_class, currency FROM cost_labels", {},
         [&](const ResultRow& r) {
           Label& label = labels[r.Int(0)];
           r.TextInto(1, label.destination);
           r.TextInto(2, label.cls);
           r.TextInto(3, label.currency);
         });
  Summer summer(std::move(labels));
  Call call;
  db.Run(kCalls, {}, [&](const ResultRow& r) {
    call.Read(r);
    summer.Add(call);
  });
  db.Run("DELETE FROM call_days");
  for (const DayRow* s : summer.Sorted()) {
    db.Run(
        "INSERT INTO call_days VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, "
        "$13, $14, $15)",
        {std::string(1, s->kind), s->day, s->switch_id, s->item, s->cls, s->currency, s->decimals,
         s->calls, s->seconds, s->cost, s->unpriced, s->outgoing, s->incoming, s->internal,
         s->unanswered});
  }
}

}  // namespace velqua_store
