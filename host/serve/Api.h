#pragma once
// The JSON API of `prsm serve`, as plain functions from a request to a response so that it can be
// driven without a socket. Every request takes the one lock of the design, so concurrent requests
// see the edits one after the other. Failures answer with the command line's message.

#include <prsm/host/serve/DesignSession.h>
#include <prsm/host/serve/Workspace.h>

#include <memory>
#include <mutex>
#include <string>

namespace prsm::host::serve {

struct ApiRequest {
    std::string method;  // "GET" or "POST"
    std::string path;    // "/api/report", "/api/sheets/TalvexCleLogic", ...
    std::string body;    // a JSON object for POST
};

struct ApiResponse {
    int status = 200;  // 400: refused input, 404: no such route, 500: a data or calculation failure
    std::string contentType = "application/json";
    std::string body;
    std::string filename;  // a download's name; empty for data the page reads
};

class Api {
public:
    Api(Workspace workspace, DesignSession session);

    ApiResponse handle(ApiRequest const& request);

    // The most sweep points one request may ask for.
    static constexpr std::size_t kMaxSweepPoints = 2000;

private:
    using Json = nlohmann::ordered_json;
    ApiResponse route(ApiRequest const& request, Json const& body);
    std::string designJson() const;
    std::string editedJson() const;
    ApiResponse setInput(Json const& body);
    ApiResponse sweep(Json const& body);
    ApiResponse open(Json const& body);
    ApiResponse save(Json const& body);
    Json files() const;

    std::mutex m_lock;
    Workspace m_workspace;
    DesignSession m_session;
};

}  // namespace prsm::host::serve
