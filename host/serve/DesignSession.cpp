#include <prsm/design/Design.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/host/Commands.h>
#include <prsm/host/HostError.h>
#include <prsm/host/serve/DesignSession.h>

#include <utility>

namespace prsm::host::serve {

namespace {

// The engine's refusals are the command line's messages; a data file that fails is a data failure.
template <typename Action>
auto asHostErrors(Action&& action) {
    try {
        return action();
    } catch (design::DesignError const& e) {
        throw HostError(kExitBadInput, e.what());
    } catch (PRSMException const& e) {
        throw HostError(kExitDataFailure, e.what());
    } catch (nlohmann::json::exception const& e) {
        throw HostError(kExitBadInput, e.what());
    } catch (std::invalid_argument const& e) {
        throw HostError(kExitBadInput, e.what());
    }
}

// The value as the file writes it: text for a text cell, a JSON number as typed when it is one.
DesignSession::Json fileValue(CellType type, std::string const& text) {
    if (type == CellType::String) return text;
    DesignSession::Json number = DesignSession::Json::parse(text, nullptr, false);
    if (number.is_number()) return number;
    if (type == CellType::Int) return std::stoll(text);
    return std::stod(text);  // forms JSON lacks but the engine took, such as ".5"
}

void checkName(std::string const& name) {
    if (name.empty()) throw HostError(kExitBadInput, "a block needs a name");
    if (name == "static" || name == "board")
        throw HostError(kExitBadInput,
                        "\"" + name + "\" names the design's " + name + " sheet; choose another name");
}

}  // namespace

DesignSession::DesignSession(std::string const& text, std::string const& source)
    : DesignSession(FromDocument{}, asHostErrors([&] {
                        design::parseDesign(text, source);  // the command line's messages for a bad file
                        return Json::parse(text);
                    }),
                    source) {}

DesignSession::DesignSession(FromDocument, Json document, std::string source) : m_source(std::move(source)) {
    rebuild(std::move(document));
}

DesignSession DesignSession::empty(std::string const& part) {
    return DesignSession(FromDocument{},
                         Json{{"schema_version", design::kSchemaVersion},
                              {"device", {{"part", part}}},
                              {"thermal", {{"junction_temperature", 25}}},
                              {"blocks", Json::array()}},
                         "new design");
}

design::Design DesignSession::design() const {
    return asHostErrors([&] { return design::parseDesign(m_document.dump(), m_source); });
}

std::string DesignSession::text() const {
    return m_document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void DesignSession::rebuild(Json document) {
    asHostErrors([&] {
        auto engine = std::make_unique<design::Estimator>(design::parseDesign(document.dump(), m_source));
        m_report = &engine->estimate();
        m_engine = std::move(engine);
    });
    m_document = std::move(document);
}

DesignSession::Json::iterator DesignSession::findBlock(Json& document, std::string const& name) const {
    Json& blocks = document["blocks"];
    for (auto it = blocks.begin(); it != blocks.end(); ++it)
        if ((*it).value("name", "") == name) return it;
    throw HostError(kExitBadInput, "the design has no block \"" + name + "\"");
}

DesignSession::Json& DesignSession::inputsOf(Json& document, std::string const& block) const {
    if (block == "static" || block == "board") {
        if (!document.contains(block))
            throw HostError(kExitBadInput, "the design has no " + block + " sheet");
        Json& sheet = document[block];
        if (sheet.is_string())
            sheet = Json{{"model", sheet.get<std::string>()}};  // the short form of a board
        return sheet["inputs"];
    }
    return (*findBlock(document, block))["inputs"];
}

std::string DesignSession::modelOf(std::string const& block) const {
    design::Design const& current = m_engine->design();  // edits change inputs, never a block's model
    if (block == "static" && current.staticSheet) return current.staticSheet->model;
    if (block == "board" && current.board) return current.board->model;
    for (design::Block const& b : current.blocks)
        if (b.name == block) return b.model;
    throw HostError(kExitBadInput, "the design has no block \"" + block + "\"");
}

void DesignSession::setInput(std::string const& block, std::string const& cell, std::string const& text) {
    asHostErrors([&] {
        m_engine->setInput(block, cell, text);  // refuses what the file would refuse, with its message
        inputsOf(m_document, block)[cell] = fileValue(findSheet(modelOf(block)).findCell(cell)->type, text);
        m_report = &m_engine->update();
    });
}

void DesignSession::addBlock(std::string const& model, std::string const& name) {
    findSheet(model);  // an unknown model is named with the closest names
    checkName(name);
    Json document = m_document;
    document["blocks"].push_back(Json{{"name", name}, {"model", model}, {"inputs", Json::object()}});
    rebuild(std::move(document));
}

void DesignSession::duplicateBlock(std::string const& block, std::string const& name) {
    checkName(name);
    Json document = m_document;
    Json copy = *findBlock(document, block);
    copy["name"] = name;
    document["blocks"].insert(findBlock(document, block) + 1, std::move(copy));
    rebuild(std::move(document));
}

void DesignSession::renameBlock(std::string const& block, std::string const& name) {
    checkName(name);
    Json document = m_document;
    (*findBlock(document, block))["name"] = name;
    // Blocks that read from it follow the new name.
    for (Json& other : document["blocks"]) {
        if (!other.contains("inputs")) continue;
        for (Json& value : other["inputs"])
            if (value.is_object() && value.value("from", "") == block) value["from"] = name;
    }
    rebuild(std::move(document));
}

void DesignSession::removeBlock(std::string const& block) {
    Json document = m_document;
    document["blocks"].erase(findBlock(document, block));
    rebuild(std::move(document));
}

std::string DesignSession::freeName(std::string const& stem) const {
    auto const taken = [&](std::string const& name) {
        for (Json const& block : m_document.value("blocks", Json::array()))
            if (block.value("name", "") == name) return true;
        return false;
    };
    if (!taken(stem)) return stem;
    for (int n = 2;; ++n)
        if (!taken(stem + " " + std::to_string(n))) return stem + " " + std::to_string(n);
}

}  // namespace prsm::host::serve
