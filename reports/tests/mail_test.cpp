// Mailing a report through an SMTP server this test runs on loopback: a
// few lines of the protocol, enough for libcurl's client, keeping what it
// was sent.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <thread>

#include "pg_test_server.h"
#include "test_support.h"
#include "velqua/records/common.h"
#include "velqua/reports/mail.h"

namespace velqua_reports_testing {
namespace {

// Accepts one session; refuses recipients at `refused.example`.
class SmtpServer {
 public:
  SmtpServer() {
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof a;
    EXPECT_EQ(::bind(listener_, reinterpret_cast<sockaddr*>(&a), size), 0);
    EXPECT_EQ(::listen(listener_, 1), 0);
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&a), &size);
    port_ = ntohs(a.sin_port);
    thread_ = std::thread([this] { Serve(); });
  }
  ~SmtpServer() {
    ::shutdown(listener_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
  }

  std::string url() const { return "smtp://127.0.0.1:" + std::to_string(port_); }
  // The session as the server saw it: commands, then the message.
  const std::string& seen() {
    thread_.join();
    thread_ = std::thread([] {});
    return seen_;
  }

 private:
  void Serve() {
    const int fd = ::accept(listener_, nullptr, nullptr);
    if (fd < 0) return;
    Send(fd, "220 test\r\n");
    std::string line;
    bool data = false;
    while (ReadLine(fd, &line)) {
      seen_ += line + "\n";
      if (data) {
        if (line == ".") {
          data = false;
          Send(fd, "250 queued\r\n");
        }
        continue;
      }
      if (line.rfind("EHLO", 0) == 0 || line.rfind("HELO", 0) == 0) {
        Send(fd, "250 test\r\n");
      } else if (line.rfind("RCPT", 0) == 0 && line.find("refused.example") != std::string::npos) {
        Send(fd, "550 no such user here\r\n");
      } else if (line == "DATA") {
        data = true;
        Send(fd, "354 go on\r\n");
      } else if (line == "QUIT") {
        Send(fd, "221 bye\r\n");
        break;
      } else {
        Send(fd, "250 ok\r\n");
      }
    }
    ::close(fd);
  }
  static void Send(int fd, const std::string& s) {
    EXPECT_EQ(::write(fd, s.data(), s.size()), static_cast<ssize_t>(s.size()));
  }
  static bool ReadLine(int fd, std::string* line) {
    line->clear();
    char c = 0;
    while (::read(fd, &c, 1) == 1) {
      if (c == '\n') {
        if (!line->empty() && line->back() == '\r') line->pop_back();
        return true;
      }
      *line += c;
    }
    return false;
  }

  int listener_ = -1;
  int port_ = 0;
  std::thread thread_;
  std::string seen_;
};

TEST(ReportMail, TheReportArrivesAsAnAttachment) {
  SmtpServer server;
  velqua_reports::Mail mail;
  mail.to = {"manager@example.com", "it@example.com"};
  mail.from = "pbx@example.com";
  mail.smtp = server.url();
  const velqua_reports::Report report = SampleReport(40);
  velqua_reports::MailReport(report, velqua_reports::Form::kCsv, "", mail);
  const std::string& seen = server.seen();
  const std::string dir = velqua_store_testing::TempDir("reports-mail");
  velqua_reports::WriteReport(report, velqua_reports::Form::kCsv, dir + "/r.csv");
  // The attachment's first line of base64: the file's first 57 bytes.
  const std::string first = RunCommand("head -c 57 '" + dir + "/r.csv' | base64 -w0");
  for (const std::string& expected :
       {std::string("MAIL FROM:<pbx@example.com>"), std::string("RCPT TO:<manager@example.com>"),
        std::string("RCPT TO:<it@example.com>"),
        std::string("Subject: Sample, 2026-03-01 to 2026-03-31"),
        std::string("filename=\"sample-2026-03-01-2026-03-31.csv\""),
        std::string("Content-Type: text/csv"), first}) {
    EXPECT_NE(seen.find(expected), std::string::npos) << expected << " in\n" << seen;
  }
}

TEST(ReportMail, ARefusedRecipientIsAnErrorWithTheServersReason) {
  SmtpServer server;
  velqua_reports::Mail mail;
  mail.to = {"nobody@refused.example"};
  mail.smtp = server.url();
  try {
    velqua_reports::MailReport(SampleReport(2), velqua_reports::Form::kCsv, "", mail);
    ADD_FAILURE() << "sent";
  } catch (const velqua_records::Failure& e) {
    EXPECT_NE(std::string(e.what()).find("cannot send through '" + server.url() + "'"),
              std::string::npos)
        << e.what();
  }
}

}  // namespace
}  // namespace velqua_reports_testing
