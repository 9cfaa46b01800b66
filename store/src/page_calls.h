// A page of the search's calls: first their ids in the page's order, then
// the calls themselves, read by id.
#ifndef VELQUA_STORE_SRC_PAGE_CALLS_H_
#define VELQUA_STORE_SRC_PAGE_CALLS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "sql.h"
#include "velqua/store/store.h"

namespace velqua_store {

// The ids of a page's calls in its order, and the span of their starts
// (`undated`: one has none), which tells PostgreSQL which months' tables
// hold them.
struct PageIds {
  std::vector<int64_t> ids;
  std::string first, last;
  bool undated = false;
};

// Reads a page's rows of id and start.
RowFn Collect(PageIds* page);

// The calls of a page, in its order. On PostgreSQL they are read within the
// span of their starts: the months' tables outside it are then not asked
// for every id. Any not found there (a start the engine orders otherwise)
// are read again without it; a call removed since the page was found is
// left out.
std::vector<StoredCall> CallsOfIds(Connection& db, const PageIds& page);

}  // namespace velqua_store

#endif  // VELQUA_STORE_SRC_PAGE_CALLS_H_
