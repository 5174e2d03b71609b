// Small helpers the test suites share: a scratch folder per test and
// whole-file reads.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace tramline::test {

/// The whole content of a file, as bytes.
inline std::string slurp(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

/// Runs `check` as an unprivileged user when the tests run as root (who
/// may write read-only files), in a child process; its result.
inline bool runUnprivileged(const std::function<bool()> &check) {
    if (::geteuid() != 0)
        return check();
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (::setgid(65534) != 0 || ::setuid(65534) != 0)
            ::_exit(2);
        ::_exit(check() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// `text` with the first `from` in it replaced by `to`: a good input spoilt
/// in one place.
inline std::string replaced(std::string text, const std::string &from, const std::string &to) {
    text.replace(text.find(from), from.size(), to);
    return text;
}

/// Writes bytes to a file, replacing it.
inline void spit(const std::filesystem::path &path, const std::string &bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// A fresh scratch folder for one test, removed with the object; `path`
/// names it after the test.
struct ScratchFolder {
    std::filesystem::path path;
    explicit ScratchFolder(const std::string &prefix = "tramline") {
        path = std::filesystem::temp_directory_path() /
               (prefix + "-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~ScratchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;
};

/// A fixture with a fresh scratch folder, removed after the test.
class ScratchFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = std::filesystem::temp_directory_path() /
              ("tramline-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->test_suite_name() + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::permissions(dir, std::filesystem::perms::owner_all, ec);
        std::filesystem::remove_all(dir, ec);
    }

    /// The path of `name` in the scratch folder, as a command line takes it.
    std::string at(const std::string &name) const { return (dir / name).string(); }

    /// Writes `bytes` to `name` in the scratch folder and returns its path.
    std::filesystem::path write(const std::string &name, const std::string &bytes) {
        const auto path = dir / name;
        spit(path, bytes);
        return path;
    }

    std::filesystem::path dir;
};

} // namespace tramline::test
