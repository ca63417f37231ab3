// The `prsm serve` API driven in-process: edits against figures worked out by hand on the test-only
// block, invalid values marked with their reason, refused requests, the sheet metadata a form is built
// from, a design saved and reopened byte for byte, and file names kept inside the folder.
#ifdef PRSM_HOST_CORE_LINKED

#include "ServeFixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <map>
#include <vector>

namespace prsm::host::serve::test {
namespace {

struct ApiFixture : ServeFixture {
    // The report after setting an input, which recalculates the edited block alone.
    Json edited(std::string const& block, std::string const& cell, Json const& value) {
        Json answer = setInput(block, cell, value);
        EXPECT_TRUE(answer["blocks_changed_only"].get<bool>());
        return answer["report"];
    }
};

TEST_F(ApiFixture, EditsReestimateTheDesign) {
    EXPECT_NEAR(total(get("/api/report")), 0.079, 1e-6);

    // CLOCK_FREQ 200: 1000e-12 * 0.64 * 200e6 = 0.128 W, + 0.015 W = 0.143 W.
    EXPECT_NEAR(total(edited("core", "CLOCK_FREQ", "200")), 0.143, 1e-6);
    // A number in the request is taken as it is written.
    EXPECT_NEAR(total(edited("core", "CLOCK_FREQ", 150)), 0.111, 1e-6);

    // A new TestLoad at its defaults: 1000 pF at 100 MHz = 0.064 W, no VCCAUX current: 0.111 + 0.064.
    Json added = post("/api/blocks/add", {{"model", "TestLoad"}});
    EXPECT_NEAR(total(added["report"]), 0.175, 1e-6);
    EXPECT_EQ(added["design"]["document"]["blocks"][1]["name"], "testload");

    // The copy keeps the edited input: another 0.111 W.
    Json copied = post("/api/blocks/duplicate", {{"block", "core"}});
    EXPECT_NEAR(total(copied["report"]), 0.286, 1e-6);
    EXPECT_EQ(copied["design"]["document"]["blocks"][1]["name"], "core copy");
    EXPECT_EQ(copied["design"]["document"]["blocks"][1]["inputs"]["CLOCK_FREQ"], 150);

    Json renamed = post("/api/blocks/rename", {{"block", "testload"}, {"name", "spare"}});
    EXPECT_EQ(renamed["report"]["blocks"][2]["name"], "spare");
    EXPECT_NEAR(total(post("/api/blocks/remove", {{"block", "core copy"}})["report"]), 0.175, 1e-6);

    // An input edit answers with the blocks whose figures moved only: spare at 50 MHz is
    // 1000e-12 * 0.64 * 50e6 = 0.032 W, core keeps its 0.111 W.
    Json const spare = edited("spare", "CLOCK_FREQ", "50");
    ASSERT_EQ(spare["blocks"].size(), 1u);
    EXPECT_EQ(spare["blocks"][0]["name"], "spare");
    EXPECT_NEAR(spare["blocks"][0]["power"].get<double>(), 0.032, 1e-6);
    EXPECT_NEAR(total(spare), 0.143, 1e-6);

    // The review page of the design as it now stands, the edited block in it, as `--html` writes it.
    ApiResponse const page = api.handle({"GET", "/api/report.html", ""});
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.contentType, "text/html; charset=utf-8");
    EXPECT_NE(page.body.find("<svg"), std::string::npos);
    EXPECT_NE(page.body.find("core"), std::string::npos);
}

TEST_F(ApiFixture, InvalidEntriesAreMarkedAndRefusedOnesChangeNothing) {
    // A value outside the rule is taken and warned about, naming the block, the cell and the rule.
    Json const report = edited("core", "MODE", "SLEEP");
    bool marked = false;
    for (Json const& w : report["warnings"])
        marked |= w["block"] == "core" && w["cell"] == "MODE" &&
                  w["message"].get<std::string>().find("ON, OFF or BROKEN") != std::string::npos;
    EXPECT_TRUE(marked) << report["warnings"].dump();

    // What the engine refuses is answered with its message, and the design keeps its value.
    Json const refused =
        post("/api/input", {{"block", "core"}, {"cell", "CLOCK_FREQ"}, {"value", "fast"}}, 400);
    EXPECT_NE(refused["error"].get<std::string>().find("CLOCK_FREQ"), std::string::npos);
    EXPECT_EQ(get("/api/design")["document"]["blocks"][0]["inputs"]["CLOCK_FREQ"], 100);
    post("/api/input", {{"block", "core"}, {"cell", "VCCINT"}, {"value", "0.9"}}, 400);  // the design's rail
    post("/api/input", {{"block", "nowhere"}, {"cell", "MODE"}, {"value", "ON"}}, 400);

    EXPECT_NE(post("/api/blocks/add", {{"model", "TestLod"}}, 400)["error"].get<std::string>().find(
                  "unknown model TestLod (did you mean TestLoad?)"),
              std::string::npos);
    post("/api/blocks/rename", {{"block", "core"}, {"name", "static"}}, 400);
    post("/api/blocks/add", {{"model", "TestLoad"}, {"name", "core"}}, 400);  // names are unique
    EXPECT_EQ(api.handle({"POST", "/api/input", "{\"block\": "}).status, 400);
    EXPECT_EQ(api.handle({"POST", "/api/input", "[1]"}).status, 400);
    post("/api/input", {{"cell", "MODE"}}, 400);
    get("/api/nothing", 404);
    EXPECT_NEAR(total(get("/api/report")), 0.079, 1e-6);  // a MODE other than OFF draws as ON does
}

TEST_F(ApiFixture, SheetMetadataDescribesTheForm) {
    Json const load = get("/api/sheets/TestLoad");
    std::map<std::string, Json> cells;
    for (Json const& c : load["cells"]) cells[c["name"]] = c;
    EXPECT_EQ(cells["CLOCK_FREQ"]["default"], "100");
    EXPECT_EQ(cells["CLOCK_FREQ"]["description"], "Clock frequency of the switched capacitance");
    EXPECT_TRUE(cells["VCCINT"].contains("design_owned"));  // set from the design's rails
    EXPECT_FALSE(cells["CAPACITANCE"].contains("design_owned"));
    EXPECT_EQ(cells.count("CORE_POWER"), 0u);  // outputs are no part of the form

    // A list input's choices come from the sheet's data, for a drop-down.
    Json const sampler = get("/api/sheets/TestSampler");
    for (Json const& c : sampler["cells"]) {
        if (c["name"] == "MODE") {
            EXPECT_EQ(c["choices"], Json::array({"FAST", "SLOW"}));
        }
    }

    bool listed = false;
    for (Json const& s : get("/api/sheets")) listed |= s["name"] == "TestLoad" && s["region"] == "logic";
    EXPECT_TRUE(listed);
    get("/api/sheets/Nothing", 400);
}

TEST_F(ApiFixture, SweepsABlockInput) {
    // CLOCK_FREQ 100, 200, 300: 0.064, 0.128, 0.192 W on VCCINT, + 0.015 W.
    Json const sweep =
        post("/api/sweep",
             {{"variable", "core.CLOCK_FREQ"}, {"values", "100:300:100"}, {"outputs", "total_power"}});
    ASSERT_EQ(sweep["rows"].size(), 3u);
    double const expected[] = {0.079, 0.143, 0.207};
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(sweep["rows"][i]["total_power"].get<double>(), expected[i], 1e-6);
    post("/api/sweep", {{"variable", "core.NOPE"}, {"values", "1,2"}}, 400);
    post("/api/sweep", {{"variable", "core.CLOCK_FREQ"}, {"values", "1:100000:1"}}, 400);  // too many points
}

TEST_F(ApiFixture, SavedDesignsReopenByteForByte) {
    edited("core", "CLOCK_FREQ", "212.5");
    post("/api/blocks/add", {{"model", "TestLoad"}, {"name", "b\u00e4r"}});
    post("/api/save", {{"file", "one.json"}});
    post("/api/open", {{"file", "one.json"}});
    post("/api/save", {{"file", "two.json"}});
    auto read = [&](char const* name) {
        std::ifstream in(folder / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_EQ(read("one.json"), read("two.json"));
    EXPECT_NE(read("one.json").find("\"CLOCK_FREQ\": 212.5"), std::string::npos);
    EXPECT_EQ(get("/api/files"), Json::array({"one.json", "two.json"}));

    // A file that is not a design is refused with the command line's message; the design stays.
    std::ofstream(folder / "bad.json") << "{\"schema_version\": 1, \"blocks\": 3}";
    post("/api/open", {{"file", "bad.json"}}, 400);
    // core at 212.5 MHz: 1000e-12 * 0.64 * 212.5e6 = 0.136 W, + 0.015 W; the new block 0.064 W.
    EXPECT_NEAR(total(get("/api/report")), 0.215, 1e-6);
    EXPECT_EQ(get("/api/design")["document"]["blocks"].size(), 2u);
}

TEST_F(ApiFixture, FilesStayInsideTheFolder) {
    fs::path const outside = scratchFolder();
    fs::create_symlink(outside, folder / "out");
    for (std::string const& name : std::vector<std::string>{"../x.json", "sub/../../x.json",
                                                            (outside / "x.json").string(), "out/x.json", ""})
        post("/api/save", {{"file", name}}, 400);
    EXPECT_TRUE(fs::is_empty(outside));
    post("/api/open", {{"file", "/etc/hostname"}}, 400);
    fs::remove_all(outside);
}

TEST(DesignSession, RenamingABlockRenamesTheBlocksThatReadFromIt) {
    std::string design = kLoadDesign;
    design.replace(design.rfind("}\n  ]"), 1,
                   R"(},
    {"name": "reader", "model": "TestLoad", "inputs": {"CAPACITANCE": {"from": "core"}}})");
    DesignSession session(design, "refs.json");
    session.renameBlock("core", "main");
    EXPECT_EQ(session.document()["blocks"][1]["inputs"]["CAPACITANCE"]["from"], "main");
    // reader takes core's 1000 pF at its own default 100 MHz: 0.064 W, beside core's 0.079 W.
    EXPECT_NEAR(session.report().totalPower, 0.143, 1e-6);
    // Its capacitance follows the source: 2000 pF doubles the reader's power, 0.128 W, and core's
    // VCCINT power, 0.128 W + 0.015 W.
    session.setInput("main", "CAPACITANCE", "2000");
    EXPECT_NEAR(session.report().totalPower, 0.271, 1e-6);
}

}  // namespace
}  // namespace prsm::host::serve::test

#endif
