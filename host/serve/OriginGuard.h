#pragma once
// Which requests the server answers. A page on another site can make a browser send requests to a
// loopback port, and a name it controls can be made to resolve to 127.0.0.1 (DNS rebinding): the
// server answers only requests addressed to one of its own names, from a page it served itself.

#include <string>
#include <vector>

namespace prsm::host::serve {

class OriginGuard {
public:
    // `host` is the address the server listens on; the loopback names are always its own.
    OriginGuard(std::string const& host, int port);

    // Why a request with these headers is refused, or "" when it is answered. The Host header must
    // name the server; an Origin header, when there is one, must be the server's own page.
    std::string refusal(std::string const& hostHeader, std::string const& originHeader) const;

private:
    std::vector<std::string> m_hosts;  // "name:port", lower case
};

// Whether the server listening there is reachable from this machine only.
bool isLoopback(std::string const& host);

}  // namespace prsm::host::serve
