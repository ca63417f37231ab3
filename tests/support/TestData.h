#pragma once
// Where the tests find data. The whole test process reads QDI_DATADIR = "<tests/data>:<shipped data>",
// so a sheet with a file under tests/data/powercfg is tested on that file (round numbers that make
// hand derivations easy) and every other sheet on the shipped file.

#include <cstdlib>
#include <string>

namespace prsm::test {

inline std::string testDataDir() {
    return PRSM_TEST_DATADIR;
}
inline std::string shippedDataDir() {
    return PRSM_SHIPPED_DATADIR;
}

// Points QDI_DATADIR elsewhere for one scope. Data singletons keep what they loaded first, so a test
// that needs other data builds its own data object inside the scope.
class ScopedDataDir {
public:
    explicit ScopedDataDir(std::string const& value) {
        char const* previous = std::getenv("QDI_DATADIR");
        m_wasSet = previous != nullptr;
        if (m_wasSet) m_previous = previous;
        ::setenv("QDI_DATADIR", value.c_str(), 1);
    }
    ScopedDataDir(ScopedDataDir const&) = delete;
    ScopedDataDir& operator=(ScopedDataDir const&) = delete;
    ~ScopedDataDir() {
        if (m_wasSet)
            ::setenv("QDI_DATADIR", m_previous.c_str(), 1);
        else
            ::unsetenv("QDI_DATADIR");
    }

private:
    bool m_wasSet = false;
    std::string m_previous;
};

}  // namespace prsm::test
