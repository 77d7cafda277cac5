#ifndef RECEIVER_SIM_DESCRIPTOR_H
#define RECEIVER_SIM_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace sim {

/** Owns a file descriptor; -1 is none. */
class Descriptor {
public:
    explicit Descriptor(int number = -1) : mNumber(number) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : mNumber(std::exchange(other.mNumber, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        reset(std::exchange(other.mNumber, -1));
        return *this;
    }

    int get() const { return mNumber; }
    void reset(int number = -1) {
        if (mNumber >= 0) close(mNumber);
        mNumber = number;
    }

private:
    int mNumber;
};

}  // namespace sim

#endif
