#pragma once
// What the fuzz targets share: quiet standard streams (the library reports on them by design, and the
// noise would hide libFuzzer's own lines; sanitizer reports are written past them and stay visible).

#include <cstdlib>
#include <iostream>
#include <streambuf>

namespace prsm::fuzz {

class NullBuffer : public std::streambuf {
protected:
    int overflow(int c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(char const*, std::streamsize n) override { return n; }
};

// PRSM_FUZZ_VERBOSE set in the environment keeps them, to read the library's messages on a reproducer.
inline void quietStreams() {
    if (std::getenv("PRSM_FUZZ_VERBOSE") != nullptr) return;
    static NullBuffer null;
    std::cout.rdbuf(&null);
    std::cerr.rdbuf(&null);
    std::clog.rdbuf(&null);
}

}  // namespace prsm::fuzz
