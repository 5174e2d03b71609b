// Shared pieces of the coordinate store tests: a scratch folder, a fixed
// clock, and bytes built by hand (never by the code under test).
#pragma once

#include "../support/test_support.h"
#include "base/interaction.h"
#include "crd/crd_io.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace crdtest {

using Bytes = std::vector<unsigned char>;

/// 15 April 2009, 10:30 UTC.
inline std::time_t april15() {
    std::tm tm{};
    tm.tm_year = 2009 - 1900;
    tm.tm_mon = 3;
    tm.tm_mday = 15;
    tm.tm_hour = 10;
    tm.tm_min = 30;
    return timegm(&tm);
}

inline void addDouble(Bytes &b, double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, 8);
    for (int i = 0; i < 8; ++i)
        b.push_back(static_cast<unsigned char>(bits >> (8 * i)));
}

/// A text field: the characters, then zeros to `size`.
inline void addText(Bytes &b, const std::string &text, std::size_t size) {
    b.insert(b.end(), text.begin(), text.end());
    b.insert(b.end(), size - text.size(), 0);
}

inline Bytes numericRecord(double n, double e, double z, const std::string &description) {
    Bytes b;
    addDouble(b, n);
    addDouble(b, e);
    addDouble(b, z);
    addText(b, description, 32);
    return b;
}

inline Bytes alphaRecord(double n, double e, double z, const std::string &description,
                         const std::string &name) {
    Bytes b = numericRecord(n, e, z, description);
    addText(b, name, 10);
    return b;
}

inline Bytes alphaHeader(const std::string &date, const std::string &title,
                         const std::string &mark = "New CRD Format2", double number = 0.0) {
    Bytes b;
    addDouble(b, number);
    addText(b, date, 32);
    addText(b, title, 32);
    addText(b, mark, 32);
    return b;
}

inline void append(Bytes &to, const Bytes &from) {
    to.insert(to.end(), from.begin(), from.end());
}

inline Bytes readBytes(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeBytes(const std::filesystem::path &path, const Bytes &bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

using tramline::test::runUnprivileged;

/// A scratch folder per test, a scripted interaction that records the
/// store's messages, and a context with a fixed clock and instant waits
/// (each wait is recorded).
class CrdTest : public tramline::test::ScratchFolderTest {
protected:
    CrdTest() {
        context.messages = &ui;
        context.clock = [] { return april15(); };
        context.wait = [this](int ms) {
            waits.push_back(ms);
            return true;
        };
    }
    std::filesystem::path file(const std::string &name) const { return dir / name; }

    tramline::ScriptedInteraction ui;
    std::vector<int> waits;
    tramline::crd::CrdContext context;
};

} // namespace crdtest
