// A folder of the test's own, removed with everything in it.
#pragma once
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "neltctrl-XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }

    std::string File(const std::string& name) const { return (path_ / name).string(); }
    static std::string Read(const std::string& file) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    static void Write(const std::string& file, const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
    }

  private:
    std::filesystem::path path_;
};
