#pragma once
// The design a `prsm serve` page edits: the file's JSON document, kept as written so that a saved file
// reads back byte for byte, and the engine estimating it. An input change goes through the engine's
// incremental update; a change of the block list rebuilds the engine from the document.
// Not thread-safe: the server serialises the requests.

#include <prsm/design/Estimate.h>

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace prsm::host::serve {

class DesignSession {
public:
    using Json = nlohmann::ordered_json;

    // Reads and checks the design. Throws HostError(kExitBadInput) with the command line's messages.
    DesignSession(std::string const& text, std::string const& source);
    // A design with no blocks on the device `part`, its junction at 25 degC until the page sets it.
    static DesignSession empty(std::string const& part);

    Json const& document() const { return m_document; }
    std::string const& source() const { return m_source; }
    // The design as it now stands, the input edits included (the engine keeps the design it was built
    // from and takes edits as inputs).
    design::Design design() const;
    // The file's text: two-space indentation, keys in the order read, a final newline.
    std::string text() const;

    // The report after the edits so far.
    design::Report const& report() const { return *m_report; }

    // Each edit either succeeds whole or throws HostError(kExitBadInput) and changes nothing.
    // `block` is a block's name, "static" or "board".
    void setInput(std::string const& block, std::string const& cell, std::string const& text);
    void addBlock(std::string const& model, std::string const& name);
    void duplicateBlock(std::string const& block, std::string const& name);
    void renameBlock(std::string const& block, std::string const& name);
    void removeBlock(std::string const& block);
    // A name no block has yet: `stem`, else "stem 2", "stem 3", ...
    std::string freeName(std::string const& stem) const;

private:
    struct FromDocument {};
    DesignSession(FromDocument, Json document, std::string source);
    // Checks `document` as the file it would save as, and estimates it afresh.
    void rebuild(Json document);
    Json::iterator findBlock(Json& document, std::string const& name) const;
    Json& inputsOf(Json& document, std::string const& block) const;
    std::string modelOf(std::string const& block) const;

    Json m_document;
    std::string m_source;
    std::unique_ptr<design::Estimator> m_engine;
    design::Report const* m_report = nullptr;
};

}  // namespace prsm::host::serve
