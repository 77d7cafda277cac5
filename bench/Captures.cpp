#include "bench/Captures.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "GpsHal/GpsHalFramer.h"

namespace {

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> readCaptures() {
    std::vector<std::string> sentences;
    const char* const directory = std::getenv("QVGPS_CAPTURES");
    if (directory == nullptr) return sentences;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() != ".log") continue;
        GpsHalFramer framer;
        const std::string content = contentOf(entry.path());
        framer.feed(content.data(), static_cast<unsigned>(content.size()), [&](const void* data, unsigned length) {
            const std::string_view chunk(static_cast<const char*>(data), length);
            if (chunk.starts_with('$') && !chunk.starts_with("$GPTXT") && !chunk.starts_with("$GNTXT")) {
                sentences.emplace_back(chunk);
            }
        });
    }
    return sentences;
}

}  // namespace

const std::vector<std::string>& capturedSentences() {
    static const std::vector<std::string> sentences = [] {
        std::vector<std::string> read = readCaptures();
        if (read.empty()) {
            std::fputs("no sentences: QVGPS_CAPTURES must name a directory of captures (*.log)\n", stderr);
            std::exit(1);
        }
        return read;
    }();
    return sentences;
}

const char* exampleGga() {
    return "$GPGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,*5C\r\n";
}
