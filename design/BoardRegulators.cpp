#include <prsm/design/BoardRegulators.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>

namespace prsm::design {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

double positiveOrNone(double value) {
    return value > 0 ? value : kNone;
}

// Works the figures out in topological order through memoised recursion: a regulator's load needs what
// the regulators it feeds draw, and their draw needs their own load (the table refuses cycles).
class Topology {
public:
    Topology(std::vector<BoardRegulator> const& declared, std::vector<RegulatorReadings> const& read)
        : m_declared(declared), m_read(read), m_load(declared.size()) {}

    double load(std::size_t i) {
        if (m_load[i]) return *m_load[i];
        double total = m_read[i].load;
        if (!m_declared[i].loadIncludesFed)
            for (std::size_t j = 0; j < m_declared.size(); ++j)
                if (m_declared[j].fedFrom == m_declared[i].name) total += inputCurrent(j);
        m_load[i] = total;
        return total;
    }

    // V_in: the feeding regulator's output voltage, or the input cell's value.
    double inputVoltage(std::size_t i) const {
        if (std::optional<std::size_t> const up = find(m_declared[i].fedFrom))
            return positiveOrNone(m_declared[*up].voltage);
        return m_read[i].inputVoltage;
    }

    double loss(std::size_t i) {
        BoardRegulator const& r = m_declared[i];
        double const volts = positiveOrNone(r.voltage);
        if (r.kind == "ldo") return (inputVoltage(i) - volts) * load(i);
        if (r.kind == "buck" && std::isnan(m_read[i].loss)) {
            double const efficiency = m_read[i].efficiency;
            return efficiency > 0 ? volts * load(i) * (1.0 / efficiency - 1.0) : kNone;
        }
        return m_read[i].loss;
    }

private:
    // What regulator `i` draws from the one feeding it: an LDO passes its load through; a switching
    // regulator draws its output power and loss from the feeding voltage.
    double inputCurrent(std::size_t i) {
        if (m_declared[i].kind == "ldo") return load(i);
        return (positiveOrNone(m_declared[i].voltage) * load(i) + loss(i)) / inputVoltage(i);
    }

    std::optional<std::size_t> find(std::string const& name) const {
        if (name.empty()) return std::nullopt;
        for (std::size_t j = 0; j < m_declared.size(); ++j)
            if (m_declared[j].name == name) return j;
        return std::nullopt;
    }

    std::vector<BoardRegulator> const& m_declared;
    std::vector<RegulatorReadings> const& m_read;
    std::vector<std::optional<double>> m_load;
};

}  // namespace

std::string regulatorLabel(BoardRegulator const& declared) {
    std::string label = declared.name;
    for (char& c : label)
        if (c == '_') c = ' ';
    return declared.rail.empty() ? label : label + " (" + declared.rail + ")";
}

std::vector<RegulatorResult> regulatorView(std::vector<BoardRegulator> const& declared,
                                           std::vector<RegulatorReadings> const& read) {
    Topology topology(declared, read);
    std::vector<RegulatorResult> rows;
    rows.reserve(declared.size());
    for (std::size_t i = 0; i < declared.size(); ++i) {
        BoardRegulator const& r = declared[i];
        RegulatorResult row;
        row.name = r.name;
        row.label = regulatorLabel(r);
        row.rail = r.rail;
        row.kind = r.kind;
        row.voltage = positiveOrNone(r.voltage);
        row.input = r.fedFrom;
        row.inputVoltage = r.fedFrom.empty() ? kNone : topology.inputVoltage(i);
        row.rating = positiveOrNone(r.rating);
        row.load = topology.load(i);
        row.efficiency = r.kind == "ldo" ? kNone : read[i].efficiency;
        row.loss = topology.loss(i);
        row.overLimit = read[i].overLimit;
        row.margin = row.rating - row.load;
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace prsm::design
