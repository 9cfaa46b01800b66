// The directory's CSV: what a spreadsheet exports is read, and what cannot
// be meant is refused naming the line.
#include <gtest/gtest.h>

#include <string>

#include "velqua/rating/directory.h"

namespace {

using velqua_rating::DirectoryEntry;
using velqua_rating::ReadDirectory;

TEST(Directory, ReadsExtensionsAndAccountCodesAsExported) {
  const auto people = ReadDirectory(
      "\xEF\xBB\xBF"
      "extension,person,department,cost_centre,from\r\n"
      "201,Ana Ruiz,Sales,CC-100,\r\n"
      "201,Ana Ruiz,Marketing,CC-200,2026-02-01\r\n"
      "\r\n"
      "202,\"Lee, Kim\",\"R&D \"\"Labs\"\"\",CC-300\r\n",
      "people.csv");
  ASSERT_EQ(people.size(), 3u);
  EXPECT_EQ(people[1].department, "Marketing");
  EXPECT_EQ(people[1].from, "2026-02-01");
  EXPECT_EQ(people[2].person, "Lee, Kim");
  EXPECT_EQ(people[2].department, "R&D \"Labs\"");
  EXPECT_EQ(people[2].from, "");
  const auto accounts = ReadDirectory("account,client,project\n4711,Acme,Audit 2026\n", "a.csv");
  ASSERT_EQ(accounts.size(), 1u);
  EXPECT_EQ(accounts[0].kind, DirectoryEntry::Kind::kAccount);
  EXPECT_EQ(accounts[0].client, "Acme");
  EXPECT_EQ(accounts[0].project, "Audit 2026");
}

TEST(Directory, RefusesWhatCannotBeMeantNamingTheLine) {
  struct Case {
    const char* text;
    const char* refusal;
  };
  const Case cases[] = {
      {"", "d.csv:1: empty: the first row names the columns"},
      {"name,person\n", "d.csv:1: the first column is 'extension' or 'account'"},
      {"extension,persona\n", "d.csv:1: unknown column 'persona'"},
      {"account,person\n", "d.csv:1: unknown column 'person'"},
      {"extension,person\n201,Ana\n,Bob\n", "d.csv:3: a row without its extension"},
      {"extension,from\n201,2026-02-30\n", "d.csv:2: '2026-02-30' is not a date (YYYY-MM-DD)"},
      {"extension,person,from\n201,A,2026-01-01\n201,B,2026-01-01\n",
       "d.csv:3: extension 201 is given twice from 2026-01-01"},
      {"extension,person\n201,\"Ana\n", "d.csv:2: a quoted field is not closed"},
      {"extension,person\n201,Ana,extra\n", "d.csv:2: more fields than columns"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    try {
      ReadDirectory(c.text, "d.csv");
      ADD_FAILURE() << "read";
    } catch (const velqua_rating::TariffError& e) {
      EXPECT_EQ(std::string(e.what()), c.refusal);
    }
  }
}

}  // namespace
