// A fresh directory under the test temporary folder, removed with everything in it.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        static std::atomic<int> counter = 0;
        path_ = std::filesystem::path(testing::TempDir()) /
                ("microservices-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
        std::filesystem::create_directories(path_);
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(path_); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // Writes text to the file at relative, creating its folders.
    std::filesystem::path write(const std::filesystem::path& relative, const std::string& text) const
    {
        const auto file = path_ / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
        return file;
    }

private:
    std::filesystem::path path_;
};
