#pragma once
// Where the tests find data. The whole test process reads QDI_DATADIR = "<tests/data>:<shipped data>",
// so a sheet with a file under tests/data/powercfg is tested on that file (round numbers that make
// hand derivations easy) and every other sheet on the shipped file.

#include <cstdlib>
#include <string>

namespace prsm::test {

inline std::string testDataDir() { return PRSM_TEST_DATADIR; }
inline std::string shippedDataDir() { return PRSM_SHIPPED_DATADIR; }

// Points QDI_DATADIR elsewhere for one scope. Data singletons keep what they loaded first, so a test
// that needs other data builds its own data object inside the scope.
class ScopedDataDir {
public:
    explicit ScopedDataDir(std::string const& value) : m_previous(std::getenv("QDI_DATADIR")) {
        ::setenv("QDI_DATADIR", value.c_str(), 1);
    }
    ScopedDataDir(ScopedDataDir const&) = delete;
    ScopedDataDir& operator=(ScopedDataDir const&) = delete;
    ~ScopedDataDir() { ::setenv("QDI_DATADIR", m_previous.c_str(), 1); }

private:
    std::string m_previous;
};

}  // namespace prsm::test
