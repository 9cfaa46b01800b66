#include "velqua/capture/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "../src/allow_list.h"

namespace velqua_capture {
namespace {

const std::string kExamples = std::string(VELQUA_SOURCE_DIR) + "/examples";
const std::string kFile = kExamples + "/capture/test.toml";  // relative paths start here

// A valid configuration with one source of each kind; the mistakes below
// name its lines.
std::string Config() {
  std::ifstream in(VELQUA_SOURCE_DIR "/capture/tests/data/settings.toml", std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST(Settings, AValidFileGivesEveryValueWithPathsFromItsFolder) {
  const ServiceSettings s = ParseSettings(Config(), kFile);
  EXPECT_EQ(s.store, "sqlite:" + kExamples + "/capture/calls.db");
  EXPECT_EQ(s.spool, "/var/spool/velqua");
  EXPECT_EQ(s.fsync, FsyncPolicy::kInterval);
  ASSERT_EQ(s.switches.size(), 1u);
  const SwitchSettings& sw = s.switches[0];
  EXPECT_EQ(sw.config, kExamples + "/kx-tda/kx-tda.json");
  EXPECT_EQ(sw.framing.end, velqua_records::RecordEnd::kCrLf);
  EXPECT_EQ(sw.framing.page_headings.size(), 2u);
  EXPECT_EQ(sw.idle_flush, Millis(500));
  ASSERT_EQ(sw.sources.size(), 4u);
  EXPECT_EQ(sw.sources[0].login.at(0).send, "SMDR\r\n");
  EXPECT_EQ(sw.sources[0].silence, Millis(3600000));  // the service's default
  EXPECT_EQ(sw.sources[1].parity, Parity::kMark);
  EXPECT_EQ(sw.sources[1].data_bits, 7);
  EXPECT_EQ(sw.sources[2].bind, "127.0.0.1");
  EXPECT_EQ(sw.sources[2].silence, Millis(7200000));
  EXPECT_EQ(sw.sources[3].path, kExamples + "/capture/smdr.log");
}

// A bundled switch's name is a configuration here too (a file name is from
// the settings file's folder, as above).
TEST(Settings, TheConfigMayBeABundledName) {
  std::string text = Config();
  text.replace(text.find("../kx-tda/kx-tda.json"), 21, "hicom");
  EXPECT_EQ(ParseSettings(text, kFile).switches.at(0).config, "hicom");
}

// Each mistake is refused with the file, the line of the key at fault and
// the key's full name.
TEST(Settings, MistakesAreNamedByFileLineAndKey) {
  const struct {
    const char* from;  // replaced in the valid file by `to`
    const char* to;
    const char* expected;  // after "<file>:"
  } rows[] = {
      // clang-format off
      {"fsync = \"interval\"", "fsync = \"interval\"\nfsync = \"never\"", "4: "},  // TOML's own
      {"fsync = \"interval\"", "fsink = \"always\"", "3: fsink: not a key of the service's configuration"},
      {"port = 2300", "port = 2300\nbaud = 9600", "18: switch[0].source[0].baud: not a key of a tcp-connect source"},
      {"baud = 1200", "stop_bits = 3", "25: switch[0].source[1].stop_bits: 3 is outside 1..2"},
      {"port = 5000", "port = 5000\nbind = \"localhost:80\"", "33: switch[0].source[2].bind: \"localhost:80\" is not an address"},
      {"idle_flush = \"500ms\"", "strip_bit7 = \"yes\"", "12: switch[0].framing.strip_bit7: must be true or false"},
      {"name = \"kx-tda\"", "name = \"kx-tda\"\nencoding = \"latin9\"", "6: switch[0].encoding: \"latin9\" is not one of windows-1252, utf-8"},
      {"time_zone = \"Europe/Madrid\"", "resend_horizon_age = \"forever\"", "8: switch[0].resend_horizon_age: must be a duration"},
      {"baud = 1200", "baud = 14400", "25: switch[0].source[1].baud: 14400 is not a standard rate"},
      {"name = \"ipo\"", "name = \"pbx\"", "30: switch[0].source[2].name: a second source named \"pbx\""},
      {"\"192.0.2.7\"", "\"192.0.2.0/33\"", "33: switch[0].source[2].allow: \"192.0.2.0/33\" is not"},
      {"../kx-tda/kx-tda.json", "../kx-tda/none.json", "6: switch[0].config: "},
      {"../kx-tda/kx-tda.json", "../kx-tda/records.txt", "6: switch[0].config: "},
      {"../kx-tda/extensions.txt", "none.txt", "7: switch[0].extensions: "},
      {"Europe/Madrid", "Mars/Olympus", "8: switch[0].time_zone: \"Mars/Olympus\" is not a time zone"},
      {"'--------------------*'", "'***'", "11: switch[0].framing.page_headings: page heading '***' would match every record"},
      {"host = \"192.0.2.10\"\n", "", "13: switch[0].source[0].host: missing"},
      {"kind = \"serial\"", "kind = \"usb\"", "23: switch[0].source[1].kind: \"usb\" is not one of"},
      {"[[switch]]", "[switch]", "4: switch: must be [[switch]] tables"},
      // A retry at once would spin on a switch that refuses every connection.
      {"port = 2300", "port = 2300\nretry_min = \"0ms\"", "13: switch[0].source[0].retry_max: retry_min must be above zero"},
      {"port = 2300", "port = 2300\nretry_min = \"2s\"\nretry_max = \"1s\"", "19: switch[0].source[0].retry_max: retry_min must be above zero"},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.to);
    std::string text = Config();
    text.replace(text.find(row.from), std::string(row.from).size(), row.to);
    try {
      ParseSettings(text, kFile);
      ADD_FAILURE() << "accepted";
    } catch (const SettingsError& e) {
      EXPECT_EQ(std::string(e.what()).rfind(kFile + ":" + row.expected, 0), 0u) << e.what();
    }
  }
}

// A switch's or a source's name is 1 to 64 letters, digits, '-', '_' or '.':
// it names files in the spool folder and labels in the metrics.
TEST(Settings, NamesOfOneTo64SafeCharacters) {
  const struct {
    std::string name;
    bool accepted;
  } rows[] = {{"a", true},
              {std::string(64, 'x'), true},
              {std::string(65, 'x'), false},
              {"pbx-2_b.c", true},
              {"a b", false},
              {"caf\xc3\xa9", false}};
  for (const auto& row : rows) {
    for (const char* at : {"name = \"kx-tda\"", "name = \"log\""}) {
      SCOPED_TRACE(row.name + " as " + at);
      std::string text = Config();
      const std::string from = at;
      text.replace(text.find(from), from.size(), "name = \"" + row.name + "\"");
      if (row.accepted) {
        EXPECT_NO_THROW(ParseSettings(text, kFile));
      } else {
        EXPECT_THROW(ParseSettings(text, kFile), SettingsError);
      }
    }
  }
}

TEST(Settings, EveryBundledExampleLoads) {
  for (const auto& e : std::filesystem::directory_iterator(kExamples + "/capture")) {
    if (e.path().extension() != ".toml") continue;
    SCOPED_TRACE(e.path().string());
    EXPECT_NO_THROW(LoadSettings(e.path().string()));
  }
}

TEST(Settings, Durations) {
  const struct {
    const char* text;
    int64_t ms;  // -1: refused
  } rows[] = {{"500ms", 500},    {"2s", 2000},     {"2", 2000}, {"60m", 3600000},
              {"24h", 86400000}, {"1d", 86400000}, {"", -1},    {"s", -1},
              {"2 s", -1},       {"1.5s", -1},     {"-1s", -1}, {"3w", -1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    Millis value{-7};
    EXPECT_EQ(ParseDuration(row.text, &value), row.ms >= 0);
    if (row.ms >= 0) {
      EXPECT_EQ(value.count(), row.ms);
    }
  }
}

// A listening source admits the addresses and the networks of its list, of
// either family, and every peer when the list is empty.
TEST(AllowList, AddressesAndNetworksOfBothFamilies) {
  const AllowList list({"10.1.0.0/16", "192.0.2.7", "fd00::/8"});
  const struct {
    const char* peer;
    bool admitted;
  } cases[] = {{"10.1.200.3", true},      {"10.2.0.1", false}, {"192.0.2.7", true},
               {"192.0.2.8", false},      {"fd12::1", true},   {"fe80::1", false},
               {"::ffff:10.1.0.1", false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.peer);
    EXPECT_EQ(list.Admits(asio::ip::make_address(c.peer)), c.admitted);
  }
  EXPECT_TRUE(AllowList({}).Admits(asio::ip::make_address("203.0.113.9")));
}

}  // namespace
}  // namespace velqua_capture
