#include <prsm/host/DesignPoint.h>

#include <algorithm>
#include <cstdlib>

namespace prsm::host {

namespace {

template <typename Entries, typename Value>
void setEntry(Entries& entries, std::string const& key, Value value) {
    auto const found =
        std::find_if(entries.begin(), entries.end(), [&](auto const& entry) { return entry.first == key; });
    if (found != entries.end())
        found->second = std::move(value);
    else
        entries.emplace_back(key, std::move(value));
}

design::Block* blockNamed(design::Design& design, std::string const& name) {
    if (name == "static" && design.staticSheet) return &*design.staticSheet;
    if (name == "board" && design.board) return &*design.board;
    for (design::Block& block : design.blocks)
        if (block.name == name) return &block;
    return nullptr;
}

// The cell's value in every entry that gives it (a preset's and the block's own), else a new entry.
void setInput(design::Block& block, std::string const& cell, std::string const& text) {
    bool given = false;
    for (design::Input& input : block.inputs)
        if (input.cell == cell) {
            input.text = text;
            given = true;
        }
    if (!given) block.inputs.push_back({cell, text, block.pointer + "/inputs/" + cell});
}

}  // namespace

design::Design designAtPoint(design::Design design,
                             std::map<std::string, DesignTarget::Setting> const& settings,
                             std::map<std::string, std::string> const& values) {
    using Setting = DesignTarget::Setting;
    // `*.CELL` first, so that a block's own setting of the same cell wins.
    for (bool everyBlock : {true, false})
        for (auto const& [name, text] : values) {
            Setting const& setting = settings.at(name);
            if (setting.kind != Setting::Input || (name.compare(0, 2, "*.") == 0) != everyBlock) continue;
            for (std::string const& block : setting.blocks)
                if (design::Block* given = blockNamed(design, block)) setInput(*given, setting.name, text);
        }
    for (auto const& [name, text] : values) {
        Setting const& setting = settings.at(name);
        double const number = std::strtod(text.c_str(), nullptr);
        switch (setting.kind) {
            case Setting::Input:
                break;  // above
            case Setting::Rail:
                setEntry(design.rails, setting.name, number);
                break;
            case Setting::LoadPower:
            case Setting::LoadCurrent:
                for (design::Load& load : design.loads)
                    if (load.name == setting.name) {
                        if (setting.kind == Setting::LoadCurrent)
                            load.current = number;  // the engine converts it with its rail's voltage
                        else
                            load.power = number;
                    }
                break;
            case Setting::Junction:
                design.thermal.junction = number;
                break;
            case Setting::Ambient:
                design.thermal.junction.reset();
                design.thermal.ambient = number;
                break;
            case Setting::ThetaJa:
                design.thermal.junction.reset();
                design.thermal.thetaJa = number;
                break;
            case Setting::Process:
                setEntry(design.device.fields, "process", text);
                break;
        }
    }
    return design;
}

}  // namespace prsm::host
