#ifndef TESTS_SUPPORT_SCRATCH_DIRECTORY_H
#define TESTS_SUPPORT_SCRATCH_DIRECTORY_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/** The bytes of a file; none when there is no such file. */
inline std::string fileContents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** The number of entries of a directory. */
inline std::ptrdiff_t entriesOf(const char* directory) {
    return std::distance(std::filesystem::directory_iterator(directory), {});
}

/** A directory for the files of one test, gone with it. */
class ScratchDirectory {
public:
    ScratchDirectory() : mDirectory(std::filesystem::temp_directory_path() / "qvgps-test-XXXXXX") {
        if (mkdtemp(mDirectory.data()) == nullptr) throw std::runtime_error("no directory for the test");
    }
    ~ScratchDirectory() { std::filesystem::remove_all(mDirectory); }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::string path(const std::string& name) const { return mDirectory + "/" + name; }
    std::string read(const std::string& name) const { return fileContents(path(name)); }
    /** The path of a new file. */
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

private:
    std::string mDirectory;
};

#endif
