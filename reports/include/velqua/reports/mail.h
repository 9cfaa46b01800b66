// Mailing a report: the report's file as the attachment of a message sent
// through an SMTP server (libcurl), so that a timer can mail last month's
// report on the 1st.
#pragma once

#include <string>
#include <vector>

#include "velqua/reports/output.h"

namespace velqua_reports {

struct Mail {
  std::vector<std::string> to;  // addresses, at least one
  std::string from;             // "" = "velqua@" and the host's name
  std::string subject;
  std::string body;       // plain text
  std::string smtp;       // "smtp://host:port", "smtps://host" (TLS); user:password@ allowed
  std::string file;       // the attachment, read from this path
  std::string file_name;  // its name in the message
  std::string mime_type;  // "application/pdf"
};

// The MIME type of a report form's file ("pdf" -> "application/pdf").
std::string MimeTypeOf(const std::string& form);

// Sends the message; throws velqua_records::Failure with the server's or
// libcurl's reason in one line (a refused recipient, an unreachable server
// after 30 s).
void SendMail(const Mail& mail);

// Sends `report` in `form` as the attachment of `mail` (whose file, name
// and type are filled here): the file at `path` when the report was written
// there, else a temporary file made for it and removed afterwards. The
// subject, when empty, names the report and its period.
void MailReport(const Report& report, Form form, const std::string& path, Mail mail);

}  // namespace velqua_reports
