#include "generated_month.h"

#include <algorithm>
#include <cstdio>
#include <random>

#include "velqua/records/common.h"

namespace velqua_reports_testing {
namespace {

constexpr int64_t kMarch1 = 20513;  // days since 1970 of 2026-03-01

std::string Pick(std::mt19937& rng, const std::vector<std::string>& from) {
  return from[rng() % from.size()];
}

}  // namespace

std::string StartText(int64_t start) {
  const int64_t day = start / 86400;
  // Civil date of a day number (the days-from-civil algorithm, inverted).
  const int64_t z = day + 719468, era = z / 146097, doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100), mp = (5 * doy + 2) / 153;
  const int64_t d = doy - (153 * mp + 2) / 5 + 1, m = mp < 10 ? mp + 3 : mp - 9;
  const int64_t y = yoe + era * 400 + (m <= 2 ? 1 : 0);
  const int64_t s = start % 86400;
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", static_cast<int>(y),
                static_cast<int>(m), static_cast<int>(d), static_cast<int>(s / 3600),
                static_cast<int>(s / 60 % 60), static_cast<int>(s % 60));
  return text;
}

std::vector<GenCall> GenerateMonth(int count, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<std::string> extensions, trunks, numbers;
  for (int i = 201; i <= 214; ++i) extensions.push_back(std::to_string(i));
  for (int i = 1; i <= 6; ++i) trunks.push_back("0" + std::to_string(i));
  for (int i = 0; i < 120; ++i) numbers.push_back("0" + std::to_string(912000000 + i * 7919));
  std::vector<GenCall> calls;
  for (int i = 0; i < count; ++i) {
    GenCall c;
    // Days -1 ... 31 of March: a few calls fall just outside the month.
    const int64_t day = kMarch1 - 1 + static_cast<int64_t>(rng() % 33);
    const int64_t hour = rng() % 4 == 0 ? rng() % 24 : 8 + rng() % 11;
    c.start = day * 86400 + hour * 3600 + static_cast<int64_t>(rng() % 3600);
    const auto kind = rng() % 10;
    c.type = kind < 4 ? 1 : kind < 8 ? 2 : 3;
    c.unanswered = c.type == 1 && rng() % 4 == 0;
    c.extension = Pick(rng, extensions);
    c.ring = rng() % 8 == 0 ? -1 : static_cast<int64_t>(rng() % 45);
    c.duration = c.unanswered ? 0 : static_cast<int64_t>(rng() % 1200);
    if (c.type != 3) c.trunk = Pick(rng, trunks);
    if (c.type != 3 && rng() % 12 != 0) c.number = Pick(rng, numbers);
    calls.push_back(c);
  }
  return calls;
}

velqua_store::Record RecordOf(const GenCall& c, int64_t position) {
  velqua_store::Record r;
  r.position = position;
  r.raw = StartText(c.start) + " " + c.extension;
  r.received_utc = "2026-04-02T00:00:00Z";
  velqua_records::Row& row = r.row;
  row.has_fields = true;
  row.type = c.type;
  row.attribute = c.unanswered ? 4 : 0;
  const std::string start = StartText(c.start);
  std::sscanf(start.c_str(), "%d-%d-%d", &row.year, &row.month, &row.day);
  row.time = static_cast<int32_t>(c.start % 86400);
  row.duration = static_cast<int32_t>(c.duration);
  row.ring = static_cast<int32_t>(c.ring);
  row.extension = velqua_records::U16(c.extension);
  row.trunk = velqua_records::U16(c.trunk);
  row.dialled = velqua_records::U16(c.number);
  row.account_code = velqua_records::U16(c.account);
  return r;
}

void WriteCalls(velqua_store::Store& store, const std::string& switch_name,
                const std::vector<GenCall>& calls) {
  store.PutSwitch({switch_name, "", "", ""});
  const velqua_store::Source source = store.OpenSource(switch_name, "generated", "capture");
  std::vector<velqua_store::Record> batch;
  for (size_t i = 0; i < calls.size(); ++i) {
    batch.push_back(RecordOf(calls[i], static_cast<int64_t>(i)));
    if (batch.size() == 2000 || i + 1 == calls.size()) {
      store.Write(source, batch, std::nullopt);
      batch.clear();
    }
  }
}

namespace {

void Count(Counts& n, const GenCall& c) {
  ++n.calls;
  n.seconds += c.duration;
  if (c.unanswered) {
    ++n.unanswered;
  } else {
    (c.type == 1 ? n.incoming : c.type == 2 ? n.outgoing : n.internal) += 1;
  }
}

bool CalledBack(const std::vector<GenCall>& calls, const GenCall& m, int64_t window) {
  for (const GenCall& o : calls) {
    if (o.type == 2 && o.number == m.number && o.start >= m.start && o.start <= m.start + window) {
      return true;
    }
  }
  return false;
}

}  // namespace

Expected Expect(const std::vector<GenCall>& calls, int64_t from_day, int64_t to_day,
                int64_t callback_seconds) {
  Expected e;
  const int64_t begin = from_day * 86400, end = to_day * 86400;
  std::vector<const GenCall*> in;
  for (const GenCall& c : calls) {
    if (c.start >= begin && c.start < end) in.push_back(&c);
  }
  for (const GenCall* c : in) {
    Count(e.by_extension[c->extension], *c);
    if (!c->trunk.empty()) Count(e.by_trunk[c->trunk], *c);
    Count(e.by_day[StartText(c->start).substr(0, 10)], *c);
    const int64_t day = c->start / 86400;
    e.weekday_hour[(day % 7 + 3) % 7][c->start % 86400 / 3600] += 1;
    if (c->type == 1 && c->unanswered) {
      char hour[8];
      std::snprintf(hour, sizeof hour, "%02d", static_cast<int>(c->start % 86400 / 3600));
      for (Missed* m : {&e.missed_by_extension[c->extension], &e.missed_by_hour[hour]}) {
        ++m->missed;
        if (c->ring >= 0) m->rings.push_back(c->ring);
        if (!c->number.empty() && !CalledBack(calls, *c, callback_seconds)) ++m->not_called_back;
      }
    }
  }
  // Lines in use: at each half hour's start and at every start within it,
  // the calls on a trunk whose [start, start + ring + duration) holds it.
  for (int64_t slot = begin; slot < end; slot += 1800) {
    std::vector<int64_t> moments{slot};
    for (const GenCall* c : in) {
      if (c->start >= slot && c->start < slot + 1800) moments.push_back(c->start);
    }
    int64_t most = 0;
    for (int64_t t : moments) {
      int64_t n = 0;
      for (const GenCall& c : calls) {
        const int64_t length = std::max<int64_t>(c.ring, 0) + c.duration;
        if (!c.trunk.empty() && c.start >= begin && c.start < end && length > 0 && c.start <= t &&
            t < c.start + length) {
          ++n;
        }
      }
      most = std::max(most, n);
    }
    e.lines_in_use.push_back(most);
  }
  return e;
}

}  // namespace velqua_reports_testing
