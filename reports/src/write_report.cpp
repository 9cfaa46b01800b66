// Writing a report to a file all or nothing: the form is written into a
// temporary file beside the target (same folder, so same file system) and
// renamed over it once complete; a reader of the target never sees half a
// report, and a failure leaves the target as it was.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "velqua/records/common.h"
#include "velqua/reports/output.h"

namespace velqua_reports {
namespace {

using velqua_records::Failure;

struct FormInfo {
  Form form;
  const char* name;
  bool binary;
};

constexpr FormInfo kForms[] = {
    {Form::kTable, "table", false}, {Form::kCsv, "csv", false},  {Form::kJson, "json", false},
    {Form::kPdf, "pdf", true},      {Form::kXlsx, "xlsx", true}, {Form::kPng, "png", true},
    {Form::kSvg, "svg", false},
};

std::string Folder(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string Base(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A new empty file named after `path` in `folder`; its name.
std::string TempBeside(const std::string& folder, const std::string& path) {
  std::string name = folder + "/." + Base(path) + ".XXXXXX";
  const int fd = ::mkstemp(name.data());
  if (fd < 0) {
    throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  }
  // mkstemp makes it private; a report gets the permissions of any new file.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  const int changed = ::fchmod(fd, 0666 & ~mask);
  ::close(fd);
  if (changed != 0) {
    std::remove(name.c_str());
    throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  }
  return name;
}

void WriteText(const Report& report, Form form, std::FILE* out) {
  if (form == Form::kCsv) return WriteCsv(report, out);
  if (form == Form::kJson) return WriteJson(report, out);
  WriteTable(report, out);
}

// The form into the file `path` (made before).
void WriteForm(const Report& report, Form form, const std::string& path) {
  if (form == Form::kPdf) return WritePdf(report, path);
  if (form == Form::kXlsx) return WriteXlsx(report, path);
  if (form == Form::kPng || form == Form::kSvg) return WriteChartImage(report, form, path);
  std::unique_ptr<std::FILE, velqua_records::FileCloser> file(std::fopen(path.c_str(), "wb"));
  if (!file) throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  WriteText(report, form, file.get());
  if (std::fclose(file.release()) != 0) {
    throw Failure("cannot write '" + path + "': " + std::strerror(errno));
  }
}

void CopyToStdout(const std::string& path) {
  std::unique_ptr<std::FILE, velqua_records::FileCloser> in(std::fopen(path.c_str(), "rb"));
  char buffer[65536];
  size_t n = 0;
  while (in && (n = std::fread(buffer, 1, sizeof buffer, in.get())) > 0) {
    if (std::fwrite(buffer, 1, n, stdout) != n) throw Failure("cannot write the report");
  }
  if (std::fflush(stdout) != 0) throw Failure("cannot write the report");
}

}  // namespace

Form FormNamed(const std::string& name) {
  for (const FormInfo& f : kForms) {
    if (name == f.name) return f.form;
  }
  throw Failure("unknown form '" + name + "': expected table, csv, json, pdf, xlsx, png or svg");
}

const char* FormName(Form form) {
  for (const FormInfo& f : kForms) {
    if (form == f.form) return f.name;
  }
  return "";
}

bool IsBinary(Form form) {
  for (const FormInfo& f : kForms) {
    if (form == f.form) return f.binary;
  }
  return false;
}

void CheckWritable(const std::string& path) {
  if (!path.empty() && path.back() == '/') throw Failure("cannot write '" + path + "': a folder");
  const std::string temp = TempBeside(Folder(path), path);
  std::remove(temp.c_str());
}

void WriteReport(const Report& report, Form form, const std::string& path) {
  if (path.empty() && !IsBinary(form) && form != Form::kSvg) {
    WriteText(report, form, stdout);
    if (std::fflush(stdout) != 0) throw Failure("cannot write the report");
    return;
  }
  if (path.empty() && ::isatty(::fileno(stdout))) {
    throw Failure(std::string("a ") + FormName(form) +
                  " report is not for a terminal: give -o FILE or redirect the output");
  }
  const char* tmpdir = std::getenv("TMPDIR");
  const std::string temp =
      path.empty() ? TempBeside(tmpdir != nullptr && *tmpdir != '\0' ? tmpdir : "/tmp", "report")
                   : TempBeside(Folder(path), path);
  try {
    WriteForm(report, form, temp);
    if (path.empty()) {
      CopyToStdout(temp);
      std::remove(temp.c_str());
    } else if (std::rename(temp.c_str(), path.c_str()) != 0) {
      throw Failure("cannot write '" + path + "': " + std::strerror(errno));
    }
  } catch (...) {
    std::remove(temp.c_str());
    throw;
  }
}

}  // namespace velqua_reports
