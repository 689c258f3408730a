// A folder of a test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

/// Empty at first, and gone with its object.
class TestFolder {
public:
    TestFolder() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }
    ~TestFolder() { std::filesystem::remove_all(path_); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string at(const std::string& name) const { return path_ + "/" + name; }

    void write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(std::filesystem::path(at(name)).parent_path());
        std::ofstream(at(name), std::ios::binary) << content;
    }
    std::optional<std::string> read(const std::string& name) const {
        std::ifstream file(at(name), std::ios::binary);
        if (!file)
            return std::nullopt;
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::string path_ = "/tmp/vxk-test.XXXXXX";
};
