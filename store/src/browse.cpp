// Browsing queries for the web page, in the SQL both engines share.
#include "velqua/store/browse.h"

#include "sql_store.h"

namespace velqua_store {

std::optional<StoredCall> CallById(Store& store, int64_t id) {
  std::optional<StoredCall> found;
  ConnectionOf(store).Run(CallSelectFrom() + " WHERE c.id = $1", {id},
                          [&](const ResultRow& r) { found = ReadCall(r); });
  return found;
}

ArrivalMark LatestArrival(Store& store) {
  ArrivalMark mark;
  ConnectionOf(store).Run("SELECT (SELECT max(id) FROM calls), (SELECT max(id) FROM unrecognised)",
                          {}, [&](const ResultRow& r) {
                            mark.call = r.IsNull(0) ? 0 : r.Int(0);
                            mark.unrecognised = r.IsNull(1) ? 0 : r.Int(1);
                          });
  return mark;
}

Arrivals ArrivedAfter(Store& store, const ArrivalMark& mark, int64_t limit) {
  Connection& db = ConnectionOf(store);
  Arrivals a;
  a.mark = mark;
  db.Run(CallSelectFrom() + " WHERE c.id > $1 ORDER BY c.id LIMIT $2", {mark.call, limit},
         [&](const ResultRow& r) {
           a.calls.push_back(ReadCall(r));
           a.mark.call = a.calls.back().id;
         });
  db.Run(
      "SELECT u.id, w.name, s.name, u.position, u.received_utc, u.reason, u.raw "
      "FROM unrecognised u JOIN switches w ON w.id = u.switch_id "
      "JOIN sources s ON s.id = u.source_id WHERE u.id > $1 ORDER BY u.id LIMIT $2",
      {mark.unrecognised, limit}, [&](const ResultRow& r) {
        a.unrecognised.push_back(
            {r.Int(0), {r.Text(1), r.Text(2), r.Int(3), r.Text(4), r.Text(5), r.Text(6)}});
        a.mark.unrecognised = r.Int(0);
      });
  return a;
}

std::vector<RatingFile> RatingFiles(Store& store) {
  std::vector<RatingFile> files;
  ConnectionOf(store).Run(
      "SELECT name, kind, content, loaded_utc FROM rating_files ORDER BY kind, name", {},
      [&](const ResultRow& r) {
        files.push_back({r.Text(0), r.Text(1), r.Text(2), r.Text(3)});
      });
  return files;
}

std::string LatestCallDay(Store& store) {
  std::string day;
  ConnectionOf(store).Run("SELECT max(start) FROM calls", {}, [&](const ResultRow& r) {
    if (!r.IsNull(0)) day = r.Text(0).substr(0, 10);
  });
  return day;
}

}  // namespace velqua_store
