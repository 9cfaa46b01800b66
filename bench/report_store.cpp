// Fills a call store with made-up calls for the reports' benchmarks and
// pictures: an office of 40 extensions on 8 trunk lines, busy on weekday
// working hours, quiet at night and at weekends. Its numbers are priced by
// bench/reports/plan.toml; bench/reports/*.csv is its directory.
//
//   report_store STORE_URL CALLS FIRST_DAY DAYS [SEED]
//   report_store calls.db 10000000 2025-01-01 365
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "velqua/records/common.h"
#include "velqua/store/store.h"

namespace {

struct Day {
  int year, month, day;
};

Day CivilOf(int64_t days) {
  const int64_t z = days + 719468, era = z / 146097, doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100), mp = (5 * doy + 2) / 153;
  const int64_t m = mp < 10 ? mp + 3 : mp - 9;
  return {static_cast<int>(yoe + era * 400 + (m <= 2 ? 1 : 0)), static_cast<int>(m),
          static_cast<int>(doy - (153 * mp + 2) / 5 + 1)};
}

int64_t DaysOf(int y, int m, int d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  return era * 146097 + yoe * 365 + yoe / 4 - yoe / 100 + doy - 719468;
}

// A moment of the period, weighted as an office's calls are.
int64_t Moment(std::mt19937_64& rng, int64_t first, int64_t days) {
  for (;;) {
    const int64_t day = first + static_cast<int64_t>(rng() % static_cast<uint64_t>(days));
    const int64_t second = static_cast<int64_t>(rng() % 86400);
    const int64_t hour = second / 3600;
    const bool weekend = (day % 7 + 3) % 7 >= 5;
    const int weight = hour >= 8 && hour < 19   ? (hour == 13 ? 5 : 10)
                       : hour >= 7 && hour < 21 ? 3
                                                : 1;
    if (static_cast<int>(rng() % 10) < (weekend ? (weight + 3) / 4 : weight)) {
      return day * 86400 + second;
    }
  }
}

// A number as the office's switch prints it, dialled or calling: Madrid,
// the rest of Spain, mobiles, and a few abroad (00 and the country), from
// a pool of 200,000 so that callers call again and are called back.
std::string Number(std::mt19937_64& rng) {
  const auto n = static_cast<int64_t>(rng() % 200000);
  const int64_t kind = n % 100;
  const std::string digits = std::to_string(1000000 + n * 7 % 1000000).substr(1);
  if (kind < 45) return "91" + digits + "1";
  if (kind < 65) return "9" + std::to_string(3 + kind % 6) + digits + "2";
  if (kind < 90) return "6" + std::to_string(kind % 10) + digits + "3";
  if (kind < 95) return (kind % 2 == 0 ? "0033" : "0049") + digits + "45";
  return "001" + digits + "789";
}

velqua_store::Record Call(std::mt19937_64& rng, int64_t position, int64_t at) {
  velqua_store::Record r;
  r.position = position;
  r.received_utc = "2026-01-01T00:00:00Z";
  velqua_records::Row& row = r.row;
  const Day d = CivilOf(at / 86400);
  row.has_fields = true;
  row.year = d.year;
  row.month = d.month;
  row.day = d.day;
  row.time = static_cast<int32_t>(at % 86400);
  const auto kind = rng() % 100;
  row.type = kind < 45 ? 1 : kind < 85 ? 2 : 3;
  row.attribute = row.type == 1 && rng() % 100 < 14 ? 4 : 0;
  std::exponential_distribution<double> talk(1.0 / 180);
  row.duration = row.attribute == 4 ? 0 : static_cast<int32_t>(std::min(7200.0, talk(rng)));
  row.ring = static_cast<int32_t>(rng() % (row.attribute == 4 ? 60 : 25));
  row.extension = velqua_records::U16(std::to_string(201 + rng() % 40));
  if (row.type != 3) {
    row.trunk = velqua_records::U16("0" + std::to_string(1 + rng() % 8));
    row.dialled = velqua_records::U16(Number(rng));
    if (row.type == 2 && rng() % 10 == 0) {
      row.account_code = velqua_records::U16(std::to_string(4711 + rng() % 4));
    }
  } else {
    row.dialled = velqua_records::U16(std::to_string(201 + rng() % 40));
  }
  r.raw = std::to_string(position);
  return r;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fprintf(stderr, "usage: report_store STORE_URL CALLS FIRST_DAY DAYS [SEED]\n");
    return 2;
  }
  const int64_t calls = std::atoll(argv[2]);
  int y = 0, m = 0, d = 0;
  std::sscanf(argv[3], "%d-%d-%d", &y, &m, &d);
  const int64_t first = DaysOf(y, m, d), days = std::atoll(argv[4]);
  std::mt19937_64 rng(argc > 5 ? std::strtoull(argv[5], nullptr, 10) : 2026);
  try {
    auto store = velqua_store::OpenStore(argv[1]);
    store->PutSwitch({"hq", "", "", ""});
    const velqua_store::Source source = store->OpenSource("hq", "generated", "capture");
    store->BeginBulk(calls);
    std::vector<velqua_store::Record> batch;
    for (int64_t i = 0; i < calls; ++i) {
      batch.push_back(Call(rng, i, Moment(rng, first, days)));
      if (batch.size() == 20000 || i + 1 == calls) {
        store->Write(source, batch, i);
        batch.clear();
      }
    }
    store->EndBulk();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "report_store: %s\n", e.what());
    return 1;
  }
  return 0;
}
