// A PostgreSQL login that may only read the store (the reporting role an
// administrator grants SELECT to) runs reports and the web page: opening a
// store of the current version writes nothing, and days waiting to be
// summed are read from the calls instead, with the same numbers.
#include <gtest/gtest.h>
#include <httplib.h>
#include <libpq-fe.h>
#include <sys/wait.h>

#include <csignal>

#include <cstdio>
#include <string>
#include <vector>

#include "capture_test.h"
#include "program_run.h"
#include "store_test_support.h"

namespace velqua_cli {
namespace {

const std::string kExamples = VELQUA_SOURCE_DIR "/examples";

using Outcome = ProgramRun;

// Runs SQL as the server's superuser; the first column of the first row.
std::string Sql(const std::string& url, const std::string& sql) {
  PGconn* db = PQconnectdb(url.c_str());
  PGresult* r = PQexec(db, sql.c_str());
  const ExecStatusType status = PQresultStatus(r);
  EXPECT_TRUE(status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) << PQerrorMessage(db);
  std::string first = status == PGRES_TUPLES_OK && PQntuples(r) > 0 ? PQgetvalue(r, 0, 0) : "";
  PQclear(r);
  PQfinish(db);
  return first;
}

// The same URL, logged in as `role`.
std::string As(const std::string& url, const std::string& role) {
  const std::string scheme = "postgresql://";
  return scheme + role + url.substr(url.find('@'));
}

TEST(ReadOnlyRole, PostgresReportsAndTheWebPageNeedNoWrite) {
  const std::string admin = velqua_store_testing::PgTestServer::Shared().NewDatabase();
  ASSERT_EQ(
      Velqua({"import", "--db", admin, "--switch", "hicom", "-c", kExamples + "/hicom/hicom.json",
              "--year", "2026", kExamples + "/hicom/records.txt"})
          .status,
      0);
  ASSERT_EQ(Velqua({"rate", "--db", admin, "--plan", kExamples + "/rating/hicom-plan.toml"}).status,
            0);
  Sql(admin,
      "DO $$ BEGIN IF NOT EXISTS (SELECT 1 FROM pg_roles WHERE rolname = 'reader') THEN "
      "CREATE ROLE reader LOGIN; END IF; END $$; "
      "GRANT SELECT ON ALL TABLES IN SCHEMA public TO reader");
  const std::string reader = As(admin, "reader");
  const std::string from = Sql(admin, "SELECT substr(min(start), 1, 10) FROM calls");
  const std::string to = Sql(admin, "SELECT substr(max(start), 1, 10) FROM calls");
  const std::vector<std::string> report = {"report", "extensions", "--from", from,  "--to",
                                           to,       "--format",   "csv",    "--db"};
  const auto report_as = [&](const std::string& url) {
    std::vector<std::string> args = report;
    args.push_back(url);
    return Velqua(args);
  };
  struct Case {
    const char* what;
    const char* before;  // SQL run first, as the administrator
  };
  const Case cases[] = {
      {"the day summaries up to date", ""},
      {"days waiting to be summed (a capture's calls of the day)",
       "INSERT INTO call_days_stale SELECT DISTINCT switch_id, substr(start, 1, 10) "
       "FROM calls WHERE start IS NOT NULL"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    if (*c.before != '\0') Sql(admin, c.before);
    const std::string waiting = Sql(admin, "SELECT count(*) FROM call_days_stale");
    const Outcome by_reader = report_as(reader);
    EXPECT_EQ(by_reader.status, 0) << by_reader.err;
    EXPECT_EQ(Sql(admin, "SELECT count(*) FROM call_days_stale"), waiting);  // nothing written
    const Outcome by_admin = report_as(admin);
    ASSERT_EQ(by_admin.status, 0) << by_admin.err;
    EXPECT_NE(by_admin.out.find('\n'), std::string::npos);
    EXPECT_EQ(by_reader.out, by_admin.out);
  }

  // A writer's command is refused with the server's reason, not a crash.
  const Outcome rate =
      Velqua({"rate", "--db", reader, "--plan", kExamples + "/rating/hicom-plan.toml"});
  EXPECT_EQ(rate.status, 1);
  EXPECT_NE(rate.err.find("permission denied"), std::string::npos) << rate.err;

  velqua_capture_test::Child serve(
      {VELQUA_PROGRAM, "serve", "--db", reader, "--listen", "127.0.0.1:0"});
  const std::string line = serve.WaitLine("velqua serve: ");
  ASSERT_NE(line, "");
  std::string address = line.substr(14, line.find(' ', 14) - 14);  // "http://host:port/"
  if (!address.empty() && address.back() == '/') address.pop_back();
  httplib::Client client(address);
  const auto session = client.Get("/api/session");
  ASSERT_TRUE(session);
  ASSERT_EQ(session->status, 200) << session->body;
  const std::string cookie = session->get_header_value("Set-Cookie");
  const httplib::Headers headers = {{"Cookie", cookie.substr(0, cookie.find(';'))}};
  const auto csv =
      client.Get("/api/reports/extensions?format=csv&from=" + from + "&to=" + to, headers);
  ASSERT_TRUE(csv);
  EXPECT_EQ(csv->status, 200) << csv->body;
  EXPECT_EQ(csv->body, report_as(admin).out);
  const auto calls = client.Get("/api/calls?limit=5", headers);
  ASSERT_TRUE(calls);
  EXPECT_EQ(calls->status, 200) << calls->body;
  serve.Stop(SIGTERM);
}

}  // namespace
}  // namespace velqua_cli
