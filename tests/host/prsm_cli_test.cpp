// The `prsm` executable run as a subprocess: its error paths (message on standard error, nothing on
// standard output, exit status 2 or 3) and one calculation read back as JSON. The process inherits the
// test's QDI_DATADIR. The logic-element sheet is the one every case drives.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace {

struct HostRun {
    int status = -1;
    std::string out;
    std::string err;
};

std::string quoted(std::string const& word) {
    std::string text = "'";
    for (char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

class TempFile {
public:
    explicit TempFile(std::string const& content = std::string()) {
        char name[] = "/tmp/prsm_cli_test_XXXXXX";
        int const fd = ::mkstemp(name);
        if (fd >= 0) ::close(fd);
        m_path = name;
        std::ofstream(m_path) << content;
    }
    TempFile(TempFile const&) = delete;
    TempFile& operator=(TempFile const&) = delete;
    ~TempFile() { std::remove(m_path.c_str()); }
    std::string const& path() const { return m_path; }
    std::string read() const {
        std::ostringstream text;
        text << std::ifstream(m_path).rdbuf();
        return text.str();
    }

private:
    std::string m_path;
};

// Runs prsm with the arguments; `environment` is prepended as shell assignments ("QDI_DATADIR=/x"),
// `redirections` appended ("< in.json", ">/dev/full").
HostRun prsm(std::vector<std::string> const& args, std::string const& environment = std::string(),
             std::string const& redirections = std::string()) {
    TempFile errors;
    std::string command = environment + " " + quoted(PRSM_HOST_BINARY);
    for (std::string const& arg : args) command += " " + quoted(arg);
    command += " " + redirections + " 2>" + quoted(errors.path());
    HostRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return run;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.out.append(buffer, n);
    int const status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = errors.read();
    return run;
}

bool has(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

class PrsmCli : public ::testing::Test {
protected:
    void SetUp() override {
        HostRun const models = prsm({"models"});
        ASSERT_EQ(models.status, 0) << models.err;
        if (!has(models.out, "TalvexCleLogic\n") && !has(models.out, "TalvexCleLogic "))
            GTEST_SKIP() << "the logic-element sheet is not registered";
    }

    // A rejected run: exit status, nothing on standard output, each part in the message.
    static void expectRejected(HostRun const& run, int status, std::vector<std::string> const& parts) {
        EXPECT_EQ(run.status, status) << run.err;
        EXPECT_EQ(run.out, "");
        for (std::string const& part : parts)
            EXPECT_TRUE(has(run.err, part)) << "no \"" << part << "\" in " << run.err;
    }
};

// The in-process tests (host_core_test.cpp, host_input_rules_test.cpp) check each refusal's text; here,
// that the executable ends with status 2, every problem of the run on standard error, nothing on standard
// output.
TEST_F(PrsmCli, RejectsUnknownNamesCellsThatAreNoInputsAndMissingFiles) {
    expectRejected(prsm({"calc", "TalvexCleLogik"}), 2, {"unknown model TalvexCleLogik", "TalvexCleLogic"});
    expectRejected(prsm({"cells", "talvexclelogic"}), 2, {"did you mean TalvexCleLogic?"});
    expectRejected(prsm({"calc"}), 2, {"model"});
    expectRejected(
        prsm({"calc", "TalvexCleLogic", "CLOCK_FRQ=100", "INSTANCE_COUNT=1.5", "LOGIC_POWER=1", "--json"}), 2,
        {"no cell CLOCK_FRQ", "CLOCK_FREQ", "INSTANCE_COUNT", "LOGIC_POWER is an output cell"});
    expectRejected(prsm({"calc", "TalvexCleLogic", "--input", "/nonexistent/inputs.json"}), 2,
                   {"cannot open input file /nonexistent/inputs.json"});
    TempFile const unknown(R"({"CLOCK_FREQUENCY": 100})");
    expectRejected(prsm({"calc", "TalvexCleLogic", "-i", unknown.path()}), 2,
                   {"CLOCK_FREQUENCY", unknown.path()});
}

TEST_F(PrsmCli, ReportsDataThatCannotBeLoaded) {
    // The library's report is its one line; the host names the file and the directories searched.
    HostRun const calc = prsm({"calc", "TalvexCleLogic", "--json"}, "QDI_DATADIR=/nonexistent");
    EXPECT_EQ(calc.status, 3);
    EXPECT_EQ(calc.out, "");
    EXPECT_EQ(calc.err,
              "I/O error while reading file.\n"
              "prsm: error: calculating TalvexCleLogic failed: data file "
              "powercfg/talvex/PRSMTalvexCleLogicData.cfg not found in the data directories (QDI_DATADIR): "
              "/nonexistent\n"
              "prsm: hint: data directory from QDI_DATADIR: /nonexistent\n");

    // An estimate names the file too, on the line of the block that needed it: here a data directory
    // that holds the common settings and nothing else.
    std::string const dir = "/tmp/prsm_cli_test_data_" + std::to_string(::getpid());
    ASSERT_EQ(std::system(("mkdir -p " + quoted(dir + "/powercfg") + " && ln -sfn " +
                           quoted(std::string(PRSM_SHIPPED_DATADIR) + "/powercfg/common") + " " +
                           quoted(dir + "/powercfg/common"))
                              .c_str()),
              0);
    TempFile const design(R"({"schema_version": 1, "device": {"part": "ZQVC1902"},
        "thermal": {"junction_temperature": 50}, "rails": {"VCCINT": 0.8},
        "blocks": [{"name": "logic", "model": "TalvexCleLogic"}]})");
    HostRun const estimate = prsm({"estimate", design.path()}, "QDI_DATADIR=" + quoted(dir));
    std::system(("rm -rf " + quoted(dir)).c_str());
    EXPECT_EQ(estimate.status, 3);
    EXPECT_TRUE(has(estimate.err,
                    "prsm: error: block \"logic\" (TalvexCleLogic): data file "
                    "powercfg/talvex/PRSMTalvexCleLogicData.cfg not found in the data "
                    "directories (QDI_DATADIR): " +
                        dir + "\n"))
        << estimate.err;
    std::istringstream lines(estimate.err);
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(line.rfind("prsm: ", 0) == 0 || line == "I/O error while reading file.") << line;

    // Listing cells falls back to the declared defaults.
    HostRun const cells =
        prsm({"cells", "TalvexCleLogic", "--category", "input"}, "QDI_DATADIR=/nonexistent");
    EXPECT_EQ(cells.status, 0) << cells.err;
    EXPECT_TRUE(has(cells.err, "declared defaults are shown")) << cells.err;
    EXPECT_TRUE(has(cells.out, "CLOCK_FREQ")) << cells.out;
}

TEST_F(PrsmCli, CalculatesToJsonWithDefaultsApplied) {
    auto calc = [](std::vector<std::string> args) {
        args.insert(args.begin(), {"calc", "TalvexCleLogic", "--json"});
        HostRun const run = prsm(args);
        EXPECT_EQ(run.status, 0) << run.err;
        return nlohmann::json::parse(run.out);
    };
    nlohmann::json const one = calc({"INSTANCE_COUNT=1", "CLOCK_FREQ=250"});
    EXPECT_EQ(one["model"], "TalvexCleLogic");
    EXPECT_TRUE(one["inputs"]["INSTANCE_COUNT"].is_number_integer());
    EXPECT_TRUE(one["inputs"]["CLOCK_FREQ"].is_number_float());
    EXPECT_EQ(one["inputs"]["CLOCK_FREQ"].get<double>(), 250.0);
    EXPECT_EQ(one["inputs"]["TOGGLE_RATE"].get<double>(), 0.125);  // the declared default
    EXPECT_EQ(one["inputs"]["INSTANCE_TYPE"].get<std::string>(), "LUT_LOGIC");
    EXPECT_EQ(one["valid"]["CLOCK_FREQ"], true);
    EXPECT_GT(one["outputs"]["LOGIC_POWER"].get<double>(), 0.0);

    // The group's power is the instance count times one instance's power.
    nlohmann::json const four = calc({"INSTANCE_COUNT=4", "CLOCK_FREQ=250"});
    EXPECT_NEAR(four["outputs"]["LOGIC_POWER"].get<double>(), 4 * one["outputs"]["LOGIC_POWER"].get<double>(),
                1e-6 * four["outputs"]["LOGIC_POWER"].get<double>());

    // The command line overrides the file. A clock of 0 is invalid but calculated: every signal rate
    // defaults to clock x toggle rate, so a logic look-up table draws nothing.
    TempFile const inputs(R"({"CLOCK_FREQ": 300, "INSTANCE_COUNT": 8})");
    HostRun const zero = prsm({"calc", "TalvexCleLogic", "--json", "-i", inputs.path(), "CLOCK_FREQ=0"});
    EXPECT_EQ(zero.status, 0);
    EXPECT_TRUE(has(zero.err, "CLOCK_FREQ = 0 MHz is invalid")) << zero.err;
    nlohmann::json const json = nlohmann::json::parse(zero.out);
    EXPECT_EQ(json["inputs"]["CLOCK_FREQ"].get<double>(), 0.0);
    EXPECT_EQ(json["inputs"]["INSTANCE_COUNT"].get<int>(), 8);
    EXPECT_EQ(json["valid"]["CLOCK_FREQ"], false);
    EXPECT_EQ(json["outputs"]["LOGIC_POWER"].get<double>(), 0.0);
}

// The rule for values written as text is tested in process (host_input_rules_test.cpp); here, what used
// to abort the executable, every problem of one run on standard error, and what only a real file shows.
TEST_F(PrsmCli, RefusesValuesThatUsedToCrashOrPassSilently) {
    // JSON numbers beyond the double range, and a string that is not UTF-8 in the JSON output.
    TempFile const huge(R"({"CLOCK_FREQ": 1e400})");
    expectRejected(prsm({"calc", "TalvexCleLogic", "-i", huge.path()}), 2,
                   {"cell CLOCK_FREQ = 1e400 is out of the float range"});
    TempFile const hugeInt(R"({"INSTANCE_COUNT": -1e400})");
    expectRejected(prsm({"calc", "TalvexCleLogic", "-i", hugeInt.path()}), 2,
                   {"cell INSTANCE_COUNT = -1e400 is out of the int range"});
    expectRejected(prsm({"calc", "TalvexCleLogic", "INSTANCE_TYPE=\xff", "--json"}), 2,
                   {"cell INSTANCE_TYPE", "not UTF-8"});
    // The library's reserved values and non-finite numbers, each named.
    expectRejected(prsm({"calc", "TalvexCleLogic", "INSTANCE_COUNT=2147483647", "CLOCK_FREQ=inf",
                         "INSTANCE_TYPE=UninitializedString"}),
                   2,
                   {"cell INSTANCE_COUNT = \"2147483647\" is the library's reserved",
                    "cell CLOCK_FREQ takes a finite number",
                    "cell INSTANCE_TYPE = \"UninitializedString\" is the library's reserved"});
    // A NUL that JSON escapes reaches the number rule as it is.
    TempFile const loose(R"({"CLOCK_FREQ": "250\u0000junk", "A1_SIG_RATE": 1e-400, "VCCINT": 0.8})");
    expectRejected(prsm({"calc", "TalvexCleLogic", "-i", loose.path()}), 2,
                   {"cell CLOCK_FREQ takes a number, not \"250\\0junk\"",
                    "cell A1_SIG_RATE = 1e-400 is too close to 0"});
    expectRejected(prsm({"calc", "TalvexCleLogic", "-i", "/tmp"}), 2, {"input file /tmp is a directory"});
    expectRejected(prsm({"calc", "TalvexCleLogic", "-i", "/dev/zero"}), 2, {"larger than 16 MiB"});
}

TEST_F(PrsmCli, ReportsAFailedWriteAndReadsStandardInput) {
    HostRun const full = prsm({"calc", "TalvexCleLogic", "--json"}, "", ">/dev/full");
    EXPECT_EQ(full.status, 3);
    EXPECT_TRUE(has(full.err, "could not be written to standard output")) << full.err;

    TempFile const inputs(R"({"CLOCK_FREQ": 250, "INSTANCE_COUNT": 4})");
    HostRun const piped =
        prsm({"calc", "TalvexCleLogic", "-i", "-", "--json"}, "", "<" + quoted(inputs.path()));
    ASSERT_EQ(piped.status, 0) << piped.err;
    nlohmann::json const json = nlohmann::json::parse(piped.out);
    EXPECT_EQ(json["inputs"]["INSTANCE_COUNT"].get<int>(), 4);
    EXPECT_EQ(json["inputs"]["CLOCK_FREQ"].get<double>(), 250.0);
}

TEST_F(PrsmCli, DescribesEveryCellWithItsUnitInTheListingsAndTheirJson) {
    HostRun const table = prsm({"cells", "TalvexCleLogic", "--category", "input"});
    ASSERT_EQ(table.status, 0) << table.err;
    // The unit follows the category; the description is the last column, after the valid values.
    EXPECT_TRUE(has(table.out, "category  unit")) << table.out;
    EXPECT_TRUE(std::regex_search(table.out, std::regex("valid values +description\n"))) << table.out;
    EXPECT_TRUE(std::regex_search(
        table.out, std::regex("\nCLOCK_FREQ +float +input +MHz .* > 0\\.0 +Clock frequency of the logic\n")))
        << table.out;

    HostRun const listing = prsm({"cells", "TalvexCleLogic", "--json"});
    ASSERT_EQ(listing.status, 0) << listing.err;
    nlohmann::json const json = nlohmann::json::parse(listing.out);
    EXPECT_EQ(json["model"], "TalvexCleLogic");
    std::size_t described = 0;
    for (nlohmann::json const& cell : json["cells"]) {
        if (cell["name"] == "CLOCK_FREQ") {
            EXPECT_EQ(cell["unit"], "MHz");
            EXPECT_EQ(cell["default"], "200");
            EXPECT_EQ(cell["valid_values"], "> 0.0");
        }
        // "*_SIG_RATE" gives each pin its own line.
        if (cell["name"] == "A3_SIG_RATE") {
            EXPECT_EQ(cell["description"], "Signal rate on pin A3");
        }
        if (cell["category"] != "intermediate") {
            EXPECT_NE(cell["description"], "") << cell["name"];
            ++described;
        }
    }
    EXPECT_EQ(described, 41u);  // 4 int, 18 float and 3 string inputs; 16 float outputs

    nlohmann::json const calc = nlohmann::json::parse(prsm({"calc", "TalvexCleLogic", "--json"}).out);
    EXPECT_EQ(calc["unit"]["LUT_INSTANCE_POWER"], "mW");
    EXPECT_EQ(calc["unit"]["INSTANCE_TYPE"], "");
    EXPECT_EQ(calc["description"]["A6_SIG_RATE"], "Signal rate on pin A6");

    HostRun const sweep =
        prsm({"sweep", "TalvexCleLogic", "CLOCK_FREQ=100,200", "--outputs", "LOGIC_POWER", "--json"});
    ASSERT_EQ(sweep.status, 0) << sweep.err;
    nlohmann::json const swept = nlohmann::json::parse(sweep.out);
    EXPECT_EQ(swept["variables"][0]["description"], "Clock frequency of the logic");
    EXPECT_EQ(swept["outputs"][0]["description"],
              "Dynamic power of all the logic elements of this configuration");
}

TEST_F(PrsmCli, WarnsOfAnInputWithoutItsOwnRowInATable) {
    // A lower-case part name has no scale row of its own: calculated with the default row, and said.
    HostRun const lower = prsm({"calc", "TalvexCleLogic", "DEVICE=zqvc1902", "--json"});
    EXPECT_EQ(lower.status, 0) << lower.err;
    EXPECT_TRUE(has(lower.err,
                    "warning: DEVICE = zqvc1902 has no row of its own in BLOCK_POWER_SCALE "
                    "(did you mean ZQVC1902?)"))
        << lower.err;
    EXPECT_EQ(prsm({"calc", "TalvexCleLogic", "DEVICE=ZQVC1902"}).err, "");
    // The same for a key below the first and for an input that names an internal device.
    EXPECT_TRUE(
        has(prsm({"calc", "TalvexNoc", "DATA_PATH=ps_to_ddrc"}).err,
            "DATA_PATH = ps_to_ddrc has no row of its own in DEVICE_DATA (did you mean PS_TO_DDRC?)"));
    EXPECT_TRUE(
        has(prsm({"calc", "TalvexAie", "INTERNAL_DEVICE_NAME=zq10s80"}).err,
            "INTERNAL_DEVICE_NAME = zq10s80 has no row of its own in SHIM_DATA (did you mean ZQ10S80?)"));
}

// An input outside its list names the list (the test data's INSTANCE_TYPE_LIST); the logic sheet then
// gives 0 W, and the warning says the block contributes nothing.
TEST_F(PrsmCli, NamesTheChoicesOfAListInput) {
    std::string const choices = "one of LUT_LOGIC, LUT_DRAM, LUT_SRL, REG_FF, REG_X, OFMUX, BYP, LOOKAHEAD8";
    HostRun const json = prsm({"calc", "TalvexCleLogic", "INSTANCE_TYPE=NOPE", "--json"});
    ASSERT_EQ(json.status, 0) << json.err;
    EXPECT_EQ(nlohmann::json::parse(json.out)["outputs"]["LOGIC_POWER"].get<double>(), 0.0);
    EXPECT_TRUE(has(json.err, "prsm: warning: INSTANCE_TYPE = NOPE is invalid (valid when " + choices +
                                  "); calculated anyway: the block gives 0 W and contributes nothing\n"))
        << json.err;
    HostRun const table = prsm({"calc", "TalvexCleLogic", "INSTANCE_TYPE=NOPE"});
    EXPECT_TRUE(has(table.out, "NOPE") && has(table.out, choices + "\n")) << table.out;
    EXPECT_TRUE(
        has(table.out, "With INSTANCE_TYPE outside its list the block gives 0 W and contributes nothing.\n"))
        << table.out;
}

// A sheet with hundreds of outputs shows the ones a list of names and globs selects.
TEST_F(PrsmCli, ShowsTheOutputsAListSelects) {
    HostRun const run = prsm({"calc", "TalvexStatic", "JUNCTION_TEMPERATURE=100", "PROCESS=MAX", "--json",
                              "--outputs", "*_STATIC_POWER, VCCINT_STATIC_CURRENT"});
    ASSERT_EQ(run.status, 0) << run.err;
    nlohmann::json const json = nlohmann::json::parse(run.out);
    EXPECT_TRUE(json["outputs"].contains("TOTAL_STATIC_POWER"));
    EXPECT_TRUE(json["outputs"].contains("VCCO33_STATIC_POWER"));
    EXPECT_TRUE(json["outputs"].contains("VCCINT_STATIC_CURRENT"));
    EXPECT_FALSE(json["outputs"].contains("VCCAUX_STATIC_CURRENT"));
    for (auto const& output : json["outputs"].items())
        EXPECT_TRUE(has(output.key(), "_STATIC_POWER") || output.key() == "VCCINT_STATIC_CURRENT")
            << output.key();
    expectRejected(prsm({"calc", "TalvexStatic", "--outputs", "TOTAL_STATIC_POWER,NO_SUCH_*"}), 2,
                   {"no output of TalvexStatic matches \"NO_SUCH_*\""});
}

}  // namespace
