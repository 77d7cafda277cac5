#include "tools/gps-decode/LibraryLog.h"

#include <cctype>
#include <cstdio>
#include <string_view>

#include "QvFramework/Foundation/QvDbgOutput.h"

namespace decode {

namespace {

/** The text between two others; empty when one of them is missing. */
std::string_view between(std::string_view text, std::string_view before, std::string_view after) {
    const std::size_t begin = text.find(before);
    if (begin == std::string_view::npos) return {};
    const std::size_t end = text.find(after, begin + before.size());
    return end == std::string_view::npos ? std::string_view() : text.substr(begin, end - begin).substr(before.size());
}

}  // namespace

LibraryLog::LibraryLog(bool isShown) : mIsShown(isShown) {
    QvDbgOutput::setSink(&receive, this);
}

LibraryLog::~LibraryLog() {
    QvDbgOutput::setSink(nullptr, nullptr);
}

/** A parser's message is "GpsParseNmeaManager::parseRmcSentence() Lat Error". */
void LibraryLog::receive(void* log, const char* file, const char* function, int line, int, const char* message) {
    auto& self = *static_cast<LibraryLog*>(log);
    std::string_view text(message);
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (self.mIsShown) {
        std::fprintf(stderr, "%s:%d %s: %.*s\n", file, line, function, static_cast<int>(text.size()), text.data());
    }
    const std::string_view parser = between(text, "::parse", "Sentence() ");
    if (parser.empty()) return;
    text.remove_prefix(text.find("() ") + 3);
    if (text.ends_with(" Error")) text.remove_suffix(std::string_view(" Error").size());
    self.mMissingField.clear();
    for (const char letter : parser)
        self.mMissingField += static_cast<char>(std::toupper(letter));
    (self.mMissingField += ' ') += text;
}

}  // namespace decode
