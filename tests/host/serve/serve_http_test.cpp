// `prsm serve` over a socket: the server on a free loopback port, asked with httplib's client. Only
// what needs the HTTP layer is here: names and origins that are not the server's own, the body cap,
// the page built into the program, answers sent uncompressed, and a refused file name coming back as
// the API's answer.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/host/serve/OriginGuard.h>
#include <prsm/host/serve/Server.h>

#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <thread>

namespace prsm::host::serve {
namespace {

TEST(OriginGuard, AnswersOnlyTheServersOwnNames) {
    OriginGuard const loopback("127.0.0.1", 8080);
    EXPECT_EQ(loopback.refusal("127.0.0.1:8080", ""), "");
    EXPECT_EQ(loopback.refusal("LocalHost:8080", "http://localhost:8080"), "");
    EXPECT_EQ(loopback.refusal("[::1]:8080", ""), "");
    EXPECT_NE(loopback.refusal("127.0.0.1:8081", ""), "");         // another port is another server
    EXPECT_NE(loopback.refusal("attacker.example:8080", ""), "");  // a rebound name
    EXPECT_NE(loopback.refusal("", ""), "");
    EXPECT_NE(loopback.refusal("127.0.0.1:8080", "http://attacker.example"), "");
    EXPECT_NE(loopback.refusal("127.0.0.1:8080", "https://127.0.0.1:8080"), "");
    EXPECT_NE(loopback.refusal("127.0.0.1:8080", "null"), "");

    OriginGuard const lan("192.168.1.5", 80);
    EXPECT_EQ(lan.refusal("192.168.1.5:80", "http://192.168.1.5:80"), "");
    EXPECT_TRUE(isLoopback("127.0.0.1") && isLoopback("localhost") && isLoopback("::1"));
    EXPECT_FALSE(isLoopback("0.0.0.0") || isLoopback("192.168.1.5"));
}

TEST(ServeHttp, RefusesForeignNamesLargeBodiesAndPathsOutOfTheFolder) {
    std::filesystem::path const folder = std::filesystem::temp_directory_path();
    Api api(Workspace(folder), DesignSession::empty("TESTDEV"));
    ServerOptions options;
    options.maxBodyBytes = 1000;
    Server server(api, options);
    int const port = server.bind();
    std::thread running([&] { server.run(); });

    httplib::Client client("127.0.0.1", port);
    std::string const own = "127.0.0.1:" + std::to_string(port);
    auto page = client.Get("/");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->status, 200);
    EXPECT_NE(page->body.find("app.js"), std::string::npos);
    EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
    auto script = client.Get("/app.js");
    ASSERT_TRUE(script);
    EXPECT_EQ(script->status, 200);

    EXPECT_EQ(client.Get("/api/report", {{"Host", "attacker.example:" + std::to_string(port)}})->status, 403);
    EXPECT_EQ(client.Get("/api/report", {{"Origin", "http://attacker.example"}})->status, 403);
    EXPECT_EQ(client.Get("/api/report", {{"Origin", "http://" + own}})->status, 200);

    // A browser accepts compressed answers; compressing costs more than the loopback saves.
    client.set_decompress(false);
    for (char const* path : {"/api/report", "/app.js", "/"}) {
        auto plain = client.Get(path, {{"Accept-Encoding", "gzip, deflate, br"}});
        ASSERT_TRUE(plain);
        EXPECT_EQ(plain->get_header_value("Content-Encoding"), "") << path;
        EXPECT_EQ(plain->get_header_value("Content-Length"), std::to_string(plain->body.size())) << path;
    }
    auto const report = client.Get("/api/report", {{"Accept-Encoding", "br"}});
    EXPECT_EQ(report->body.front(), '{');
    EXPECT_EQ(report->get_header_value("Content-Security-Policy").rfind("default-src 'self'", 0), 0u);

    auto large = client.Post("/api/input", std::string(2000, ' '), "application/json");
    ASSERT_TRUE(large);
    EXPECT_EQ(large->status, 413);

    auto escape = client.Post("/api/save", R"({"file": "../escape.json"})", "application/json");
    ASSERT_TRUE(escape);
    EXPECT_EQ(escape->status, 400);
    EXPECT_NE(escape->body.find("not allowed"), std::string::npos);

    server.stop();
    running.join();
}

}  // namespace
}  // namespace prsm::host::serve

#endif
