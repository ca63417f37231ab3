#pragma once
// What the `prsm serve` tests share: the design they open, a scratch folder for the files the server
// writes, the API over both, and requests that check their status and answer with the parsed body.

#include <prsm/host/serve/Api.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace prsm::host::serve::test {

namespace fs = std::filesystem;
using Json = nlohmann::json;

// One TestLoad block at a given junction temperature and no static sheet, so the total is the blocks'
// dynamic power: CAPACITANCE pF * VCCINT^2 * CLOCK_FREQ MHz on VCCINT, plus AUX_MILLIAMPS on VCCAUX.
// core: 1000e-12 * 0.8^2 * 100e6 = 0.064 W (0.08 A), and 0.010 A * 1.5 V = 0.015 W: 0.079 W.
constexpr char kLoadDesign[] = R"({
  "schema_version": 1,
  "device": {"part": "TESTDEV", "internal_part": "TESTDEV"},
  "thermal": {"junction_temperature": 50},
  "rails": {"VCCINT": 0.8, "VCCAUX": 1.5},
  "blocks": [
    {"name": "core", "model": "TestLoad", "inputs": {"CAPACITANCE": 1000, "CLOCK_FREQ": 100, "AUX_MILLIAMPS": 10}}
  ]
})";

inline fs::path scratchFolder() {
    std::string pattern = (fs::temp_directory_path() / "prsm-serve-XXXXXX").string();
    return fs::path(mkdtemp(pattern.data()));
}

// The API over `kLoadDesign`; a derived fixture opens another design through the constructor.
class ServeFixture : public ::testing::Test {
protected:
    explicit ServeFixture(std::string const& design = kLoadDesign)
        : api{Workspace(folder), DesignSession(design, "test.json")} {}
    ~ServeFixture() override { fs::remove_all(folder); }

    Json call(std::string const& method, std::string const& path, Json const& body, int status) {
        ApiResponse const r = api.handle({method, path, body.is_null() ? "" : body.dump()});
        EXPECT_EQ(r.status, status) << path << " " << r.body;
        return Json::parse(r.body);
    }
    Json post(std::string const& path, Json const& body, int status = 200) {
        return call("POST", path, body, status);
    }
    Json get(std::string const& path, int status = 200) { return call("GET", path, nullptr, status); }

    // The whole answer to setting one input.
    Json setInput(std::string const& block, std::string const& cell, Json const& value) {
        return post("/api/input", {{"block", block}, {"cell", cell}, {"value", value}});
    }
    static double total(Json const& report) { return report["totals"]["total_power"].get<double>(); }

    fs::path const folder = scratchFolder();
    Api api;
};

}  // namespace prsm::host::serve::test
