#include "page_calls.h"

#include <cstring>
#include <map>

#include "sql_store.h"

namespace velqua_store {
namespace {

// The calls of these ids into `by_id`, asked for a few hundred at a time (an
// export's hundred thousand would pass the engines' parameter limits), each
// query bounded to the starts' span `span` (first and last) when given.
void ReadCalls(Connection& db, const std::vector<int64_t>& ids, const PageIds* span,
               std::map<int64_t, StoredCall>* by_id) {
  constexpr size_t kPerQuery = 500;
  for (size_t first = 0; first < ids.size(); first += kPerQuery) {
    std::vector<Value> params;
    std::string list;
    for (size_t i = first; i < ids.size() && i < first + kPerQuery; ++i) {
      params.emplace_back(ids[i]);
      list += (list.empty() ? "$" : ", $") + std::to_string(params.size());
    }
    std::string where = " WHERE c.id IN (" + list + ")";
    if (span != nullptr) {
      params.emplace_back(span->first);
      params.emplace_back(span->last);
      where += " AND c.start BETWEEN $" + std::to_string(params.size() - 1) + " AND $" +
               std::to_string(params.size());
    }
    db.Run(CallSelectFrom() + where, params, [&](const ResultRow& r) {
      StoredCall call = ReadCall(r);
      const int64_t id = call.id;
      by_id->emplace(id, std::move(call));
    });
  }
}

}  // namespace

RowFn Collect(PageIds* page) {
  return [page](const ResultRow& r) {
    page->ids.push_back(r.Int(0));
    if (r.IsNull(1)) {
      page->undated = true;
      return;
    }
    std::string start = r.Text(1);
    if (page->first.empty() || start < page->first) page->first = start;
    if (start > page->last) page->last = std::move(start);
  };
}

std::vector<StoredCall> CallsOfIds(Connection& db, const PageIds& page) {
  std::map<int64_t, StoredCall> by_id;
  const bool spanned = !page.undated && std::strcmp(db.engine(), "postgresql") == 0;
  ReadCalls(db, page.ids, spanned ? &page : nullptr, &by_id);
  if (spanned) {
    std::vector<int64_t> missed;
    for (int64_t id : page.ids) {
      if (by_id.count(id) == 0) missed.push_back(id);
    }
    ReadCalls(db, missed, nullptr, &by_id);
  }
  std::vector<StoredCall> calls;
  calls.reserve(page.ids.size());
  for (int64_t id : page.ids) {
    auto found = by_id.find(id);
    if (found != by_id.end()) calls.push_back(std::move(found->second));
  }
  return calls;
}

}  // namespace velqua_store
