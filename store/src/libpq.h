// libpq, loaded when a PostgreSQL store is first opened rather than linked:
// the program starts without it and its dozens of libraries (TLS, Kerberos,
// LDAP), which would triple the start-up time and memory of every
// `velqua translate`, and a machine with SQLite stores only needs no libpq.
#pragma once

#include <libpq-fe.h>

#include <string>

namespace velqua_store {

// clang-format off
#define VELQUA_LIBPQ_FUNCTIONS(X)                                                          \
  X(PQclear) X(PQcmdTuples) X(PQconnectdb) X(PQerrorMessage) X(PQexec) X(PQexecParams)     \
  X(PQfinish) X(PQgetResult) X(PQgetisnull) X(PQgetlength) X(PQgetvalue) X(PQntuples)      \
  X(PQputCopyData) X(PQputCopyEnd) X(PQresultErrorField) X(PQresultStatus)                 \
  X(PQsetNoticeProcessor) X(PQstatus) X(PQtransactionStatus) X(PQsendQueryParams)         \
  X(PQsetSingleRowMode)
// clang-format on

// The functions the store calls, by their libpq names.
struct LibPq {
#define VELQUA_LIBPQ_MEMBER(name) decltype(&::name) name = nullptr;
  VELQUA_LIBPQ_FUNCTIONS(VELQUA_LIBPQ_MEMBER)
#undef VELQUA_LIBPQ_MEMBER
};

// libpq, loaded on the first call. Throws StoreError naming `database` when
// it cannot be (Debian package libpq5 missing).
const LibPq& Pq(const std::string& database);

}  // namespace velqua_store
