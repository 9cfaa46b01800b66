// Rows on disk. A row is its number of cells, then each cell: a byte for
// `empty`, the number (8 bytes) and the text (its length in 4 bytes, then
// its bytes), in the machine's own byte order: the file is read back by the
// process that wrote it and by nothing else.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "velqua/records/common.h"
#include "velqua/reports/report.h"

namespace velqua_reports {
namespace {

using velqua_records::Failure;

[[noreturn]] void Fail(const char* what) {
  throw Failure(std::string("cannot keep a report's rows in a temporary file: ") + what);
}

template <typename T>
void Put(std::FILE* file, const T& value) {
  if (std::fwrite(&value, sizeof value, 1, file) != 1) Fail(std::strerror(errno));
}

template <typename T>
T Take(std::FILE* file) {
  T value{};
  if (std::fread(&value, sizeof value, 1, file) != 1) Fail("read back short");
  return value;
}

}  // namespace

RowFile::RowFile() {
  const char* tmpdir = std::getenv("TMPDIR");
  std::string name =
      std::string(tmpdir != nullptr && *tmpdir != '\0' ? tmpdir : "/tmp") + "/velqua-rows.XXXXXX";
  const int fd = ::mkstemp(name.data());
  if (fd < 0) Fail(std::strerror(errno));
  ::unlink(name.c_str());  // gone from the folder now, from the disk once closed
  file_ = ::fdopen(fd, "w+b");
  if (file_ == nullptr) {
    const int error = errno;
    ::close(fd);
    Fail(std::strerror(error));
  }
}

RowFile::~RowFile() { std::fclose(file_); }

void RowFile::Append(const Row& row) {
  Put(file_, static_cast<uint32_t>(row.size()));
  for (const Cell& cell : row) {
    Put(file_, static_cast<uint8_t>(cell.empty ? 1 : 0));
    Put(file_, cell.number);
    Put(file_, static_cast<uint32_t>(cell.text.size()));
    if (!cell.text.empty() &&
        std::fwrite(cell.text.data(), 1, cell.text.size(), file_) != cell.text.size()) {
      Fail(std::strerror(errno));
    }
  }
  ++rows_;
}

void RowFile::ForEach(const std::function<void(const Row&)>& visit) const {
  if (std::fflush(file_) != 0 || std::fseek(file_, 0, SEEK_SET) != 0) Fail(std::strerror(errno));
  Row row;
  for (int64_t n = 0; n < rows_; ++n) {
    row.resize(Take<uint32_t>(file_));
    for (Cell& cell : row) {
      cell.empty = Take<uint8_t>(file_) != 0;
      cell.number = Take<int64_t>(file_);
      cell.text.resize(Take<uint32_t>(file_));
      if (!cell.text.empty() &&
          std::fread(cell.text.data(), 1, cell.text.size(), file_) != cell.text.size()) {
        Fail("read back short");
      }
    }
    visit(row);
  }
  // Rows appended later go after these.
  if (std::fseek(file_, 0, SEEK_END) != 0) Fail(std::strerror(errno));
}

void ForEachRow(const Table& table, const std::function<void(const Row&)>& visit) {
  for (const Row& row : table.rows) visit(row);
  if (table.more) table.more->ForEach(visit);
}

int64_t RowCount(const Table& table) {
  return static_cast<int64_t>(table.rows.size()) + (table.more ? table.more->size() : 0);
}

}  // namespace velqua_reports
