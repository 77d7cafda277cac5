#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/Child.h"
#include "tests/support/ScratchDirectory.h"

// Sessions at the shell: "$ " begins a command, after which come its output and, in brackets, its exit status unless
// that is 0. A session is right when its commands, given again in an empty directory, give the same text.

namespace {

class Session : public testing::TestWithParam<const char*> {};

TEST_P(Session, isRight) {
    const ScratchDirectory directory;
    const std::string session = fileContents(std::string(SESSIONS "/") + GetParam() + ".txt");
    ASSERT_FALSE(session.empty());
    std::istringstream lines(session);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("$ ")) continue;
        Child shell({"bash", "--norc", "-c", "PATH=$PATH:" TOOLS "; cd " + directory.path("") + "; " + line.substr(2)});
        const int status = shell.end();
        text += line + "\n" + shell.all();
        if (status != 0) text += "[" + std::to_string(status) + "]\n";
    }
    EXPECT_EQ(text, session);
}

INSTANTIATE_TEST_SUITE_P(Of, Session,
                         testing::Values("gps-decode", "gps-decode-events", "gps-decode-report", "gps-decode-tracks",
                                         "gps-monitor", "receiver-sim"),
                         [](const auto& file) {
                             std::string name = file.param;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
