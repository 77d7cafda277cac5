#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace {

namespace fs = std::filesystem;

// What no line "FILE INCLUDED" of the library may match. A manager may include its own headers, those of Support and
// Listeners, and what is below the controller.
const std::regex kForbidden(
    R"(platform/\S+ (?:Gps/|QvFramework/\w+/Qv(?:Singleton|SingletonImpl|Observer|Thread|SharedMemory)\.h).*)"
    R"(|(?:platform/)?QvFramework/\S+ (?:Gps|GpsHal)/.*)"
    R"(|src/Public/Gps/\w+\.h Gps/private/.*)"
    R"(|src/Public/Gps/private/(\w+)/\S+ Gps/private/(?!\1/|Support/|Listeners/|GpsControllerLog).*)"
    R"(|\S+ (?:(?:tools|tests|bench|fuzz)/.*|.*\.\./.*|[^/]*))");

TEST(IncludeDirections, pointDownwardsAndNeverToAnotherManager) {
    int judged = 0;
    for (const char* const top : {"src", "QvFramework", "platform"}) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(QVGPS_SOURCE_DIR) / top)) {
            std::ifstream file(entry.path());
            for (std::string line; entry.is_regular_file() && std::getline(file, line);) {
                if (!line.starts_with("#include \"")) continue;
                ++judged;
                const std::string included = line.substr(10, line.rfind('"') - 10);
                const std::string pair = fs::relative(entry.path(), QVGPS_SOURCE_DIR).string() + " " + included;
                EXPECT_FALSE(std::regex_match(pair, kForbidden)) << pair;
            }
        }
    }
    EXPECT_GT(judged, 100) << "found too little to judge";
}

}  // namespace
