// The module catalogue on the shipped data (no test file shadows it), checked against the device
// catalogue of the common settings.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/models/dravik/PRSMDravikSomPartsModel.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Params = PRSMDravikSomPartsParams;
using Model = PRSMDravikSomPartsModel;
using Data = PRSMDravikSomPartsData;

TEST(SomParts, EveryPartAgreesWithTheDeviceCatalogue) {
    Model const& model = Model::getGlobal();
    Data const& data = Data::getGlobal();
    auto const& catalogue = PRSMCommonParamControlData::getGlobal();
    std::vector<std::string> const parts = data.getDropdownLists("PART_NAME");
    ASSERT_EQ(parts.size(), 4u);
    int kits = 0;
    for (std::string const& part : parts) {
        SCOPED_TRACE(part);
        Params p;
        p[Params::PART_NAME] = part;
        model.calculate(p);
        EXPECT_EQ(p[Params::FAMILY], "DRAVIK_SOM");
        EXPECT_EQ(catalogue.getDevice("DRAVIK_SOM", part), p[Params::BASE_DEVICE]);
        EXPECT_EQ(catalogue.getDevice("DRAVIK_SOM", p[Params::MODULE]), p[Params::BASE_DEVICE]);
        kits += p[Params::IS_STARTER_KIT];
        EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PART_NAME"), 1);
    }
    EXPECT_EQ(kits, 2);

    // The default part is the larger module, with 4 GB; an unknown part has no figures.
    Params p;
    model.calculate(p);
    EXPECT_EQ(p[Params::MEMORY_SIZE], 4);
    EXPECT_EQ(p[Params::IS_STARTER_KIT], 0);
    p[Params::PART_NAME] = "ZDS99";
    model.calculate(p);
    EXPECT_EQ(p[Params::USB_COUNT], 0);
    EXPECT_EQ(p[Params::BASE_DEVICE], "");
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_PART_NAME"), 0);
}

}  // namespace
