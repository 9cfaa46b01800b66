#include "web_test_support.h"

#include "velqua/web/users.h"

namespace velqua_web_testing {

RunningServer::RunningServer(const velqua_web::ServeOptions& options)
    : server_(options), thread_([this] { server_.Run(); }) {}

RunningServer::~RunningServer() {
  server_.Stop();
  thread_.join();
}

httplib::Result ApiClient::Send(const std::string& method, const std::string& path,
                                const std::string& body, const std::string& type, bool with_csrf) {
  httplib::Headers headers;
  if (!cookie_.empty()) headers.emplace("Cookie", cookie_);
  if (with_csrf && !csrf_.empty()) headers.emplace("X-CSRF-Token", csrf_);
  httplib::Request request;
  request.method = method;
  request.path = path;
  request.headers = headers;
  request.body = body;
  if (!type.empty() && !body.empty()) request.set_header("Content-Type", type);
  httplib::Result result = http_.send(request);
  if (result && result->has_header("Set-Cookie")) {
    const std::string set = result->get_header_value("Set-Cookie");
    cookie_ = set.substr(0, set.find(';'));
  }
  return result;
}

int ApiClient::Login(const std::string& name, const std::string& password) {
  httplib::Result r = name.empty()
                          ? Send("GET", "/api/session")
                          : Send("POST", "/api/login",
                                 nlohmann::json{{"name", name}, {"password", password}}.dump());
  if (!r) return 0;
  if (r->status == 200) csrf_ = nlohmann::json::parse(r->body)["csrf"];
  return r->status;
}

httplib::Headers ApiClient::Headers() const {
  return {{"Cookie", cookie_}, {"X-CSRF-Token", csrf_}};
}

nlohmann::json ApiClient::Json(const std::string& path) {
  httplib::Result r = Send("GET", path);
  if (!r) {
    ADD_FAILURE() << path << ": no answer";
    return nullptr;
  }
  EXPECT_EQ(r->status, 200) << path << ": " << r->body;
  return nlohmann::json::parse(r->body, nullptr, false);
}

void WebTest::Start(bool with_users, const std::function<void(velqua_web::ServeOptions&)>& adjust) {
  if (with_users) {
    velqua_web::AddUser(*store_, "ann", "admin", "secret-password");
    velqua_web::AddUser(*store_, "vic", "viewer", "secret-password");
  }
  velqua_web::ServeOptions options;
  options.db = url_;
  options.listen = "127.0.0.1:0";
  options.body_limit = 4096;
  options.connections = 2;
  options.threads = 8;
  if (adjust) adjust(options);
  server_ = std::make_unique<RunningServer>(options);
  client_ = std::make_unique<ApiClient>(server_->port());
}

}  // namespace velqua_web_testing
