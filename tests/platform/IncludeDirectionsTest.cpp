#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/** No file below a directory of the source tree includes, by quotation marks, anything with such a part. */
void expectNone(const std::string& directory, const std::vector<std::string>& forbidden) {
    int includes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(QVGPS_SOURCE_DIR) / directory)) {
        std::ifstream file(entry.path());
        for (std::string line; entry.is_regular_file() && std::getline(file, line);) {
            if (!line.starts_with("#include \"")) continue;
            ++includes;
            line.replace(0, line.find('"') + 1, "/");
            for (const std::string& part : forbidden) {
                EXPECT_EQ(line.find(part), std::string::npos) << entry.path() << " includes " << line;
            }
        }
    }
    EXPECT_GT(includes, 2) << "found too little to judge";
}

TEST(IncludeDirections, ThePlatformKnowsNothingOfTheLibrary) {
    expectNone("platform",
               {"/Gps/", "/QvSingleton.h", "/QvSingletonImpl.h", "/QvObserver.h", "/QvThread.h", "/QvSharedMemory.h"});
}

TEST(IncludeDirections, NothingIncludesToolsOrTests) {
    for (const char* const directory : {"src", "QvFramework", "platform"}) {
        expectNone(directory, {"/tools/", "/tests/", "/bench/", "/fuzz/"});
    }
}

TEST(IncludeDirections, NoManagerIncludesAnother) {
    const std::string managers[] = {"NMEA", "Connection", "Production", "Version", "SharedMemory", "Setting"};
    for (const std::string& manager : managers) {
        for (const std::string& other : managers) {
            if (other == manager) continue;
            expectNone("src/Public/Gps/private/" + manager, {"/private/" + other + "/", "/../" + other + "/"});
        }
    }
}

}  // namespace
