#include <prsm/host/serve/OriginGuard.h>
#include <prsm/sheetfunc/PRSMTextFunctions.h>

#include <algorithm>

namespace prsm::host::serve {

bool isLoopback(std::string const& host) {
    return host == "localhost" || host == "::1" || host.rfind("127.", 0) == 0;
}

OriginGuard::OriginGuard(std::string const& host, int port) {
    std::string const suffix = ":" + std::to_string(port);
    for (std::string const name : {"127.0.0.1", "localhost", "[::1]"}) m_hosts.push_back(name + suffix);
    // An IPv6 address is bracketed in a Host header.
    std::string const own = host.find(':') != std::string::npos ? "[" + host + "]" : host;
    std::string const ownHost = PRSMHelperUtils::ToLower(own) + suffix;
    if (std::find(m_hosts.begin(), m_hosts.end(), ownHost) == m_hosts.end()) m_hosts.push_back(ownHost);
}

std::string OriginGuard::refusal(std::string const& hostHeader, std::string const& originHeader) const {
    auto const own = [&](std::string const& name) {
        return std::find(m_hosts.begin(), m_hosts.end(), PRSMHelperUtils::ToLower(name)) != m_hosts.end();
    };
    if (!own(hostHeader)) return "the Host header \"" + hostHeader + "\" does not name this server";
    if (!originHeader.empty() && !(originHeader.rfind("http://", 0) == 0 && own(originHeader.substr(7))))
        return "requests from the page at \"" + originHeader + "\" are not answered";
    return {};
}

}  // namespace prsm::host::serve
