#pragma once
// What the sheet tests share: a fixture with the sheet's model and data (the process-wide instances)
// and one set of inputs, and a comparison within a relative tolerance.

#include <gtest/gtest.h>

#include <cmath>

namespace prsm::test {

// A fixture over one sheet: `model`, `data`, the inputs `p`, and `calc(cell)`, the figure of a cell
// after a full calculation of `p` (`calc(q, cell)` of other inputs).
template <typename ModelT>
class ModelFixture : public ::testing::Test {
protected:
    using Model = ModelT;
    using Params = typename ModelT::Params;
    using Data = typename ModelT::Data;

    float calc(typename Params::FloatEnum cell) {
        model.calculate(p);
        return p[cell];
    }

    // The same for other inputs `q`, such as a test's own configuration.
    float calc(Params& q, typename Params::FloatEnum cell) {
        model.calculate(q);
        return q[cell];
    }

    // A validity flag (IS_VALID_<INPUT>) of the inputs as they stand, or of other inputs `q`; calculated
    // first, since a calculation clears the flags cached before.
    int valid(char const* flag) { return valid(p, flag); }
    int valid(Params& q, char const* flag) {
        model.calculate(q);
        return model.intDispatchTable(q, data, flag);
    }

    Model const& model = Model::getGlobal();
    Data const& data = Data::getGlobal();
    Params p;
};

// `actual` within 1e-5 of `expected`, relative, and 1e-9 absolute (for figures near 0).
inline void expectRel(double actual, double expected) {
    EXPECT_NEAR(actual, expected, 1e-5 * std::fabs(expected) + 1e-9) << "expected " << expected;
}

}  // namespace prsm::test
