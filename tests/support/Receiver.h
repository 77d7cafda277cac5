#ifndef TESTS_SUPPORT_RECEIVER_H
#define TESTS_SUPPORT_RECEIVER_H

#include <termios.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/Child.h"

/** The receiver's end of a pseudo-terminal, under a symbolic link, for its own lifetime. */
class Receiver : public Stream {
public:
    explicit Receiver(const std::string& link, bool isRaw = false)
        : Stream(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        grantpt(descriptor());
        unlockpt(descriptor());
        termios initial = settings();
        if (isRaw) cfmakeraw(&initial);
        tcsetattr(descriptor(), TCSANOW, &initial);
        std::filesystem::remove(link);
        std::filesystem::create_symlink(ptsname(descriptor()), link);
    }

    termios settings() const {
        termios settings{};
        tcgetattr(descriptor(), &settings);  // of the pair, so also those of the other end
        return settings;
    }
};

#endif
