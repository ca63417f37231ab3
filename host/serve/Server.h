#pragma once
// `prsm serve`: the API and the page over HTTP, on the loopback address unless asked otherwise.

#include <prsm/host/Request.h>
#include <prsm/host/serve/Api.h>

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

namespace httplib {
class Server;
}

namespace prsm::host::serve {

struct ServerOptions {
    std::string host = "127.0.0.1";
    int port = 0;  // 0: a free port
    // A request body beyond this is answered 413 unread: a design of 1,000 blocks is about 200 kB.
    std::size_t maxBodyBytes = 4u << 20;
};

class Server {
public:
    Server(Api& api, ServerOptions options);
    ~Server();

    // Binds the socket and returns the port. Throws HostError(kExitBadInput) when it cannot.
    int bind();
    // Answers requests until stop(); call after bind().
    void run();
    void stop();
    std::string url() const;

private:
    void routes();

    Api& m_api;
    ServerOptions m_options;
    std::unique_ptr<httplib::Server> m_http;
    int m_port = 0;
};

// Runs `prsm serve`: prints the page's address on `out`, a warning on `err` when the server is
// reachable from other machines, and answers until the process is stopped.
int runServe(Request const& request, std::ostream& out, std::ostream& err);

}  // namespace prsm::host::serve
