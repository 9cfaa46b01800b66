// Fuzz target: the framer of velqua_records (velqua/records/framer.h),
// which splits a connection's bytes into records. The first byte chooses the
// record end, the stripping and the size of the pieces the bytes arrive in.
// Invariants:
//  - the records do not depend on how the bytes are cut into pieces;
//  - with line ends and no stripping, the records are the reference split
//    (CR, LF or CR LF; empty lines dropped; long lines cut at kMaxRecord);
//  - no record is empty or longer than kMaxRecord, positions grow, and
//    each record's bytes stand in the input at its position.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/records/framer.h"

namespace velqua_fuzz_framer {

struct Framed {
  std::string bytes;
  int64_t position;
  bool heading;
  bool operator==(const Framed& o) const {
    return bytes == o.bytes && position == o.position && heading == o.heading;
  }
};

inline std::vector<Framed> Frame(const velqua_records::FramingSettings& settings,
                                 const std::string& input, size_t piece) {
  velqua_records::Framer framer(settings);
  std::vector<Framed> out;
  const velqua_records::Framer::Emit emit = [&out](const velqua_records::Framer::Record& r) {
    out.push_back({std::string(r.bytes), r.position, r.heading});
  };
  for (size_t at = 0; at < input.size(); at += piece) {
    framer.Feed(std::string_view(input).substr(at, piece), static_cast<int64_t>(at), emit);
  }
  framer.Flush(emit);
  return out;
}

inline std::vector<std::string> Reference(const std::string& s) {
  std::vector<std::string> lines;
  std::string current;
  auto end = [&] {
    if (!current.empty()) lines.push_back(current);
    current.clear();
  };
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\r' || s[i] == '\n') {
      end();
      if (s[i] == '\r' && i + 1 < s.size() && s[i + 1] == '\n') ++i;
    } else {
      current.push_back(s[i]);
      if (current.size() == velqua_records::Framer::kMaxRecord) end();
    }
  }
  end();
  return lines;
}

int Ejecuta(const uint8_t* datos, size_t tam) {
  if (tam == 0) return 0;
  const uint8_t options = datos[0];
  const std::string input(reinterpret_cast<const char*>(datos + 1), tam - 1);
  velqua_records::FramingSettings settings;
  settings.end = static_cast<velqua_records::RecordEnd>(options % 6);
  settings.strip_bit7 = (options & 8) != 0;
  settings.strip_controls = (options & 16) != 0;
  settings.page_headings = {"--------*", "*====", "*Date*Time*"};
  const std::vector<Framed> whole = Frame(settings, input, input.size() + 1);
  const size_t piece = 1 + (options >> 5);
  if (Frame(settings, input, piece) != whole) {
    velqua_fuzz::Hallazgo("records depend on how the bytes are cut into pieces");
  }
  int64_t last = -1;
  for (const Framed& f : whole) {
    if (f.bytes.empty() || f.bytes.size() > velqua_records::Framer::kMaxRecord) {
      velqua_fuzz::Hallazgo("a record is empty or too long");
    }
    if (f.position <= last || f.position >= static_cast<int64_t>(input.size())) {
      velqua_fuzz::Hallazgo("record positions do not grow within the input");
    }
    last = f.position;
    if (!settings.strip_bit7 && !settings.strip_controls &&
        input.compare(static_cast<size_t>(f.position), f.bytes.size(), f.bytes) != 0) {
      velqua_fuzz::Hallazgo("a record is not the input's bytes at its position");
    }
  }
  if (settings.end == velqua_records::RecordEnd::kLine && !settings.strip_bit7 &&
      !settings.strip_controls) {
    const std::vector<std::string> expected = Reference(input);
    bool same = expected.size() == whole.size();
    for (size_t i = 0; same && i < whole.size(); ++i) same = whole[i].bytes == expected[i];
    if (!same) velqua_fuzz::Hallazgo("line records differ from the reference split");
  }
  return 0;
}

}  // namespace velqua_fuzz_framer
