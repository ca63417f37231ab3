#pragma once
// What the design tests write again and again: a design file on the test-only part around a test's own
// members, the message the engine refuses a design with, and a check that a text mentions a part.

#include <prsm/design/Estimate.h>

#include <gtest/gtest.h>

#include <string>

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

namespace prsm::test {

// A design on the test-only part at a `tj` degC junction: `members` is the rest of the top object
// (`"blocks": [...], ...`), `device` the device's members.
inline std::string testDesign(std::string const& members, int tj = 25,
                              std::string const& device = R"("part": "TESTDEV")") {
    return R"({"schema_version": 1, "device": {)" + device + R"(}, "thermal": {"junction_temperature": )" +
           std::to_string(tj) + "}, " + members + "}";
}

// What the engine says when it refuses a design text read as `file`, on reading it or on setting up its
// estimate; empty when it takes the design.
inline std::string designRefusal(std::string const& text, std::string const& file = "bad.json") {
    try {
        design::Estimator const estimator(design::parseDesign(text, file));
    } catch (design::DesignError const& e) {
        return e.what();
    }
    return "";
}

}  // namespace prsm::test
