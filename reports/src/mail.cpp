// SMTP through libcurl: the message is built with curl's MIME API (a text
// part and the report as a base64 attachment), and sent to every recipient
// in one session.
#include "velqua/reports/mail.h"

#include <curl/curl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "velqua/records/common.h"

namespace velqua_reports {
namespace {

using velqua_records::Failure;

struct CurlDeleter {
  void operator()(CURL* c) const { curl_easy_cleanup(c); }
  void operator()(curl_mime* m) const { curl_mime_free(m); }
  void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};

void Check(CURLcode code, const char* what) {
  if (code != CURLE_OK)
    throw Failure(std::string("mail: ") + what + ": " + curl_easy_strerror(code));
}

std::string HostAddress() {
  char host[256] = {0};
  if (::gethostname(host, sizeof host - 1) != 0 || host[0] == '\0') return "velqua@localhost";
  return std::string("velqua@") + host;
}

// A header's text with what would end it (CR, LF) made a blank.
std::string HeaderText(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  return text;
}

}  // namespace

std::string MimeTypeOf(const std::string& form) {
  if (form == "pdf") return "application/pdf";
  if (form == "xlsx") return "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet";
  if (form == "png") return "image/png";
  if (form == "svg") return "image/svg+xml";
  if (form == "csv") return "text/csv";
  if (form == "json") return "application/json";
  return "text/plain";
}

void SendMail(const Mail& mail) {
  if (mail.to.empty()) throw Failure("mail: no recipient (--mail-to)");
  static const CURLcode global = curl_global_init(CURL_GLOBAL_DEFAULT);
  Check(global, "cannot start libcurl");
  std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
  if (!curl) throw Failure("mail: cannot start libcurl");
  CURL* c = curl.get();
  const std::string from = mail.from.empty() ? HostAddress() : mail.from;
  Check(curl_easy_setopt(c, CURLOPT_URL, mail.smtp.c_str()), "--smtp");
  Check(curl_easy_setopt(c, CURLOPT_MAIL_FROM, ("<" + from + ">").c_str()), "sender");
  std::unique_ptr<curl_slist, CurlDeleter> rcpt;
  std::unique_ptr<curl_slist, CurlDeleter> headers;
  std::string to_header;
  for (const std::string& to : mail.to) {
    rcpt.reset(curl_slist_append(rcpt.release(), ("<" + to + ">").c_str()));
    to_header += (to_header.empty() ? "" : ", ") + HeaderText(to);
  }
  for (const std::string& h :
       {"From: " + HeaderText(from), "To: " + to_header, "Subject: " + HeaderText(mail.subject)}) {
    headers.reset(curl_slist_append(headers.release(), h.c_str()));
  }
  curl_easy_setopt(c, CURLOPT_MAIL_RCPT, rcpt.get());
  curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers.get());
  std::unique_ptr<curl_mime, CurlDeleter> mime(curl_mime_init(c));
  curl_mimepart* text = curl_mime_addpart(mime.get());
  curl_mime_data(text, mail.body.c_str(), CURL_ZERO_TERMINATED);
  curl_mime_type(text, "text/plain; charset=utf-8");
  curl_mimepart* file = curl_mime_addpart(mime.get());
  Check(curl_mime_filedata(file, mail.file.c_str()), "attachment");
  curl_mime_filename(file, mail.file_name.c_str());
  curl_mime_type(file, mail.mime_type.c_str());
  curl_mime_encoder(file, "base64");
  curl_easy_setopt(c, CURLOPT_MIMEPOST, mime.get());
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, 30L);
  curl_easy_setopt(c, CURLOPT_TIMEOUT, 120L);
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  char error[CURL_ERROR_SIZE] = {0};
  curl_easy_setopt(c, CURLOPT_ERRORBUFFER, error);
  const CURLcode sent = curl_easy_perform(c);
  if (sent != CURLE_OK) {
    throw Failure("mail: cannot send through '" + mail.smtp +
                  "': " + (error[0] != '\0' ? error : curl_easy_strerror(sent)));
  }
}

void MailReport(const Report& report, Form form, const std::string& path, Mail mail) {
  const std::string name = report.kind + "-" + report.from + "-" + report.to + "." + FormName(form);
  std::string folder, temp;  // a folder of its own: the attachment keeps its name
  if (path.empty()) {
    const char* dir = std::getenv("TMPDIR");
    folder = std::string(dir != nullptr && *dir != '\0' ? dir : "/tmp") + "/velqua-mail-XXXXXX";
    if (::mkdtemp(folder.data()) == nullptr) throw Failure("mail: cannot make a temporary folder");
    temp = folder + "/" + name;
    try {
      WriteReport(report, form, temp);
    } catch (...) {
      ::rmdir(folder.c_str());
      throw;
    }
  }
  mail.file = path.empty() ? temp : path;
  mail.file_name = name;
  mail.mime_type = MimeTypeOf(FormName(form));
  if (mail.subject.empty()) {
    mail.subject = report.title + ", " + report.from + " to " + report.to;
  }
  if (mail.body.empty()) {
    mail.body = "The " + report.kind + " report of " + report.from + " to " + report.to +
                " is attached (" + name + ").\r\n";
  }
  const auto clean = [&] {
    if (temp.empty()) return;
    std::remove(temp.c_str());
    ::rmdir(folder.c_str());
  };
  try {
    SendMail(mail);
  } catch (...) {
    clean();
    throw;
  }
  clean();
}

}  // namespace velqua_reports
