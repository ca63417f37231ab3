#pragma once
// What the module boards' tests share: their shipped efficiency tables have a row of their own for every
// key a load can round to, from no load to a fifth beyond the converter's rating.

#include <gtest/gtest.h>

#include <vector>

namespace prsm::test {

// A converter, the cell holding its load (A) and its rating (A).
template <typename Model>
struct RatedConverter {
    typename Model::Converter converter;
    typename Model::Params::FloatEnum load;
    float rating;
};

// Every milliampere up to 1.2 times the rating finds its row: no fall-back to 50 %, no 0 or 1.
template <typename Model>
void expectAnEfficiencyRowForEveryLoad(Model const& model, typename Model::Data const& data,
                                       std::vector<RatedConverter<Model>> const& converters) {
    for (RatedConverter<Model> const& row : converters) {
        SCOPED_TRACE(Model::memberName(row.converter));
        int const top = static_cast<int>(row.rating * 1200.0f);
        for (int ma = 0; ma <= top; ++ma) {
            typename Model::Params q;
            q[row.load] = ma / 1000.0f;
            float const e = model.calculateEfficiency(q, data, row.converter);
            ASSERT_TRUE(e > 0.0f && e < 1.0f && e != 0.5f) << ma << " mA";
        }
    }
}

}  // namespace prsm::test
