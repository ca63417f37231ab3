#include <prsm/design/References.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <functional>

namespace prsm::design {

namespace {

std::size_t cellPosition(Sheet const& sheet, std::string const& name) {
    std::vector<CellInfo> const& cells = sheet.cells();
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (cells[i].name == name) return i;
    return cells.size();
}

bool fits(CellType input, CellType source) {
    return input == source || (input == CellType::Float && source == CellType::Int);
}

char const* typeWord(CellType type) {
    return type == CellType::Int ? "a whole number" : type == CellType::Float ? "a number" : "a text";
}

std::map<std::string, std::size_t> indexByName(Design const& design) {
    std::map<std::string, std::size_t> index;
    for (std::size_t b = 0; b < design.blocks.size(); ++b) index.emplace(design.blocks[b].name, b);
    return index;
}

// The pointer of the first reference of block `reader` to block `source`.
std::string referencePointer(Block const& reader, std::string const& source) {
    for (Input const& input : reader.inputs)
        if (input.from == source) return input.pointer;
    return reader.pointer;
}

// Reports each cycle of references once, naming its blocks in reading order.
void findCycles(Design const& design, std::map<std::string, std::size_t> const& index,
                std::vector<ReferenceProblem>& problems) {
    std::size_t const n = design.blocks.size();
    std::vector<std::vector<std::size_t>> sources(n);
    for (std::size_t b = 0; b < n; ++b)
        for (Input const& input : design.blocks[b].inputs)
            if (auto it = index.find(input.from); input.isReference() && it != index.end())
                sources[b].push_back(it->second);
    enum Mark { Unseen, OnPath, Done };
    std::vector<Mark> mark(n, Unseen);
    std::vector<std::size_t> path;
    std::function<void(std::size_t)> visit = [&](std::size_t b) {
        mark[b] = OnPath;
        path.push_back(b);
        for (std::size_t s : sources[b]) {
            if (mark[s] == OnPath) {
                auto const start = std::find(path.begin(), path.end(), s);
                std::string text;
                for (auto it = start; it != path.end(); ++it)
                    text += "\"" + design.blocks[*it].name + "\" reads from ";
                text += "\"" + design.blocks[s].name + "\"";
                Block const& reader = design.blocks[path.back()];
                problems.push_back({referencePointer(reader, design.blocks[s].name),
                                    "block \"" + reader.name + "\": a cycle of references: " + text});
            } else if (mark[s] == Unseen) {
                visit(s);
            }
        }
        path.pop_back();
        mark[b] = Done;
    };
    for (std::size_t b = 0; b < n; ++b)
        if (mark[b] == Unseen) visit(b);
}

}  // namespace

Input const* Block::reference(std::string const& cell) const {
    for (Input const& input : inputs)
        if (input.cell == cell && input.isReference()) return &input;
    return nullptr;
}

std::vector<ReferenceProblem> checkReferences(Design const& design) {
    std::vector<ReferenceProblem> problems;
    std::map<std::string, std::size_t> const index = indexByName(design);
    auto check = [&](Block const& reader) {
        Sheet const* readerSheet = SheetRegistry::instance().find(reader.model);
        for (Input const& input : reader.inputs) {
            if (!input.isReference() || readerSheet == nullptr) continue;
            std::string const who = "block \"" + reader.name + "\": cell " + input.cell;
            auto const found = index.find(input.from);
            if (found == index.end()) {
                problems.push_back(
                    {input.pointer + "/from", who + ": no block \"" + input.from + "\" to take it from"});
                continue;
            }
            Block const& source = design.blocks[found->second];
            Sheet const* sourceSheet = SheetRegistry::instance().find(source.model);
            if (sourceSheet == nullptr) continue;  // its unknown model is reported on its own
            CellInfo const* from = sourceSheet->findCell(input.fromCell);
            CellInfo const* to = readerSheet->findCell(input.cell);
            std::string const of = "cell " + input.fromCell + " of block \"" + source.name + "\"";
            if (from == nullptr) {
                problems.push_back({input.pointer + "/cell", who + ": " + source.model + " has no " + of});
            } else if (DesignOwned const owned = designOwned(sourceSheet->design(), from->name)) {
                problems.push_back(
                    {input.pointer, who + ": " + of + " is the design's, not the block's: " + describe(owned)});
            } else if (to != nullptr && !fits(to->type, from->type)) {
                problems.push_back({input.pointer, who + " takes " + typeWord(to->type) + ", but " + of +
                                                       " holds " + typeWord(from->type)});
            }
        }
    };
    for (Block const& block : design.blocks) check(block);
    if (design.staticSheet) check(*design.staticSheet);
    if (design.board) check(*design.board);
    findCycles(design, index, problems);
    return problems;
}

std::vector<Link> resolveLinks(Block const& reader, Sheet const& readerSheet, Design const& design) {
    std::vector<Link> links;
    std::map<std::string, std::size_t> index;
    for (Input const& input : reader.inputs) {
        if (!input.isReference()) continue;
        if (index.empty()) index = indexByName(design);
        std::size_t const source = index.at(input.from);
        Sheet const& sourceSheet = *SheetRegistry::instance().find(design.blocks[source].model);
        links.push_back(
            {source, cellPosition(sourceSheet, input.fromCell), cellPosition(readerSheet, input.cell)});
    }
    return links;
}

void copyLinked(Link const& link, Sheet const& sourceSheet, SheetInstance& source, Sheet const& readerSheet,
                SheetInstance& reader) {
    CellInfo const& from = sourceSheet.cells()[link.sourceCell];
    CellInfo const& to = readerSheet.cells()[link.targetCell];
    if (to.type == CellType::String) {
        reader.set(to.name, source.evaluate(from.name));
        return;
    }
    reader.setNumber(link.targetCell, calculatedNumber(sourceSheet, source, link.sourceCell));
}

double calculatedNumber(Sheet const& sheet, SheetInstance& instance, std::size_t cell) {
    CellInfo const& info = sheet.cells()[cell];
    double const value = instance.storedNumber(cell);
    bool const notSet = info.type == CellType::Int ? value == kIntNotSet : value >= kFloatNotSet;
    return notSet ? instance.evaluateNumber(cell) : value;
}

std::vector<std::size_t> calculationOrder(std::vector<std::vector<Link>> const& links) {
    std::size_t const n = links.size();
    std::vector<std::size_t> order;
    order.reserve(n);
    std::vector<bool> placed(n, false);
    // Depth first over the sources, so each block follows what it reads and file order stays otherwise.
    std::function<void(std::size_t)> place = [&](std::size_t b) {
        placed[b] = true;
        for (Link const& link : links[b])
            if (!placed[link.source]) place(link.source);
        order.push_back(b);
    };
    for (std::size_t b = 0; b < n; ++b)
        if (!placed[b]) place(b);
    return order;
}

std::vector<std::vector<std::size_t>> readersOf(std::vector<std::vector<Link>> const& links) {
    std::vector<std::vector<std::size_t>> readers(links.size());
    for (std::size_t b = 0; b < links.size(); ++b)
        for (Link const& link : links[b])
            if (std::find(readers[link.source].begin(), readers[link.source].end(), b) ==
                readers[link.source].end())
                readers[link.source].push_back(b);
    return readers;
}

}  // namespace prsm::design
