#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Include {
    std::string file;
    std::string target;
};

/** Every #include with quotation marks below a directory of the source tree. */
std::vector<Include> includesBelow(const std::string& directory) {
    std::vector<Include> includes;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(QVGPS_SOURCE_DIR) / directory)) {
        std::ifstream file(entry.path());
        for (std::string line; entry.is_regular_file() && std::getline(file, line);) {
            const std::size_t begin = line.find('"') + 1;
            const std::size_t end = line.rfind('"');
            if (!line.starts_with("#include \"") || begin >= end) continue;
            std::string target(1, '/');
            includes.push_back({entry.path().string(), target.append(line, begin, end - begin)});
        }
    }
    return includes;
}

void expectNone(const std::vector<Include>& includes, const std::vector<std::string>& forbidden) {
    EXPECT_GT(includes.size(), 2U) << "found too little to judge";
    for (const auto& [file, target] : includes) {
        for (const std::string& part : forbidden) {
            EXPECT_EQ(target.find(part), std::string::npos) << file << " includes " << target;
        }
    }
}

TEST(IncludeDirections, ThePlatformKnowsNothingOfTheLibrary) {
    expectNone(includesBelow("platform"),
               {"/Gps/", "/QvSingleton.h", "/QvSingletonImpl.h", "/QvObserver.h", "/QvThread.h", "/QvSharedMemory.h"});
}

TEST(IncludeDirections, NothingIncludesToolsOrTests) {
    for (const char* const directory : {"src", "QvFramework", "platform"}) {
        expectNone(includesBelow(directory), {"/tools/", "/tests/", "/bench/", "/fuzz/"});
    }
}

TEST(IncludeDirections, NoManagerIncludesAnother) {
    const std::string managers[] = {"NMEA", "Connection", "Production", "Version", "SharedMemory", "Setting"};
    for (const std::string& manager : managers) {
        const std::vector<Include> includes = includesBelow("src/Public/Gps/private/" + manager);
        for (const std::string& other : managers) {
            if (other != manager) expectNone(includes, {"/private/" + other + "/", "/../" + other + "/"});
        }
    }
}

}  // namespace
