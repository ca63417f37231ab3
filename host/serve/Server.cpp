#include <prsm/host/Estimate.h>
#include <prsm/host/HostError.h>
#include <prsm/host/serve/OriginGuard.h>
#include <prsm/host/serve/PageFiles.h>
#include <prsm/host/serve/Server.h>

#include <httplib.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <utility>

namespace prsm::host::serve {

namespace {

// Nothing the page loads comes from elsewhere, and no other site may frame it.
void secureHeaders(httplib::Response& response) {
    response.set_header("Content-Security-Policy",
                        "default-src 'self'; img-src 'self' data:; frame-ancestors 'none'");
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Cache-Control", "no-store");
}

// The body as it is. For a client that accepts compression the HTTP library compresses text and JSON,
// which over the loopback costs far more than it saves: on a busy machine a 16 kB answer to an edit
// took 10 to 90 ms to compress and the 230 kB report of a 1,000-block design 2 s, against well under
// a millisecond sent plainly. A body of known length from a provider goes out uncompressed.
void setPlainContent(httplib::Response& response, std::shared_ptr<std::string const> body, char const* type) {
    if (body->empty()) return response.set_content(std::string(), type);
    std::size_t const size = body->size();
    response.set_content_provider(size, type,
                                  [body](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                      return sink.write(body->data() + offset, length);
                                  });
}

}  // namespace

Server::Server(Api& api, ServerOptions options)
    : m_api(api), m_options(std::move(options)), m_http(std::make_unique<httplib::Server>()) {}

Server::~Server() = default;

int Server::bind() {
    m_port = m_options.port == 0
                 ? m_http->bind_to_any_port(m_options.host)
                 : (m_http->bind_to_port(m_options.host, m_options.port) ? m_options.port : -1);
    if (m_port <= 0)
        throw HostError(kExitBadInput,
                        "cannot listen on " + m_options.host + " port " + std::to_string(m_options.port));
    routes();
    return m_port;
}

void Server::run() {
    m_http->listen_after_bind();
}

void Server::stop() {
    m_http->stop();
}

std::string Server::url() const {
    std::string const host =
        m_options.host.find(':') != std::string::npos ? "[" + m_options.host + "]" : m_options.host;
    return "http://" + host + ":" + std::to_string(m_port) + "/";
}

void Server::routes() {
    m_http->set_payload_max_length(m_options.maxBodyBytes);
    // An answer is a header and a body written apart: sent at once, not held back for the header's ACK.
    m_http->set_tcp_nodelay(true);
    OriginGuard const guard(m_options.host, m_port);
    m_http->set_pre_routing_handler([guard](httplib::Request const& request, httplib::Response& response) {
        std::string const refused =
            guard.refusal(request.get_header_value("Host"), request.get_header_value("Origin"));
        if (refused.empty()) return httplib::Server::HandlerResponse::Unhandled;
        response.status = 403;
        response.set_content(nlohmann::json{{"error", refused}}.dump(), "application/json");
        return httplib::Server::HandlerResponse::Handled;
    });

    auto const page = [](httplib::Request const& request, httplib::Response& response) {
        std::string const name = request.path == "/" ? "index.html" : request.path.substr(1);
        PageFile const* file = findPageFile(name);
        if (file == nullptr) {
            response.status = 404;
            return;
        }
        secureHeaders(response);
        setPlainContent(response, std::make_shared<std::string const>(file->content), contentType(name));
    };
    m_http->Get("/", page);
    m_http->Get(R"(/[a-z]+\.(html|js|css))", page);

    auto const api = [this](httplib::Request const& request, httplib::Response& response) {
        ApiResponse answer = m_api.handle({request.method, request.path, request.body});
        secureHeaders(response);
        response.status = answer.status;
        if (!answer.filename.empty())
            response.set_header("Content-Disposition", "attachment; filename=\"" + answer.filename + "\"");
        setPlainContent(response, std::make_shared<std::string const>(std::move(answer.body)),
                        answer.contentType.c_str());
    };
    m_http->Get(R"(/api/.*)", api);
    m_http->Post(R"(/api/.*)", api);
}

int runServe(Request const& request, std::ostream& out, std::ostream& err) {
    Workspace workspace(std::filesystem::current_path());
    DesignSession session =
        request.designFile.empty()
            ? DesignSession::empty(request.serve.part)
            : DesignSession(readDesignText(workspace, request.designFile), request.designFile);
    for (design::Warning const& w : session.report().warnings) err << "prsm: warning: " << warningText(w) << "\n";

    Api api(std::move(workspace), std::move(session));
    Server server(api, {request.serve.host, request.serve.port});
    server.bind();
    if (!isLoopback(request.serve.host))
        err << "prsm: warning: listening on " << request.serve.host
            << ": other machines can reach the design and the files of this folder\n";
    out << "prsm: serving the design at " << server.url() << " (Ctrl-C stops)" << std::endl;
    server.run();
    return kExitOk;
}

}  // namespace prsm::host::serve
