// A folder of its own for each test case, and file operations that take UTF-8 paths on every
// system.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_TEMP_FOLDER_H
#define RGEN_TESTS_SUPPORT_TEMP_FOLDER_H

#include <cstddef>
#include <string>
#include <vector>

namespace rgen_test {

// A new, empty folder below the system's temporary folder; it vanishes with the object.
class TempFolder {
public:
    TempFolder();
    // The folder's name ends in that text, so that a case can have blanks or other letters in it.
    explicit TempFolder(const std::string& nameEnding);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // UTF-8 path with native separators and without one at its end.
    const std::string& path() const { return path_; }
    // UTF-8 path of something inside; "/" in the relative path becomes the native separator.
    std::string file(const std::string& relativePath) const;
    // The data directory that a generator uses when path() is passed to rgen_setDataDirPath,
    // without a separator at its end.
    std::string dataDir() const { return file(".rgen"); }
    // UTF-8 path of something inside the data directory.
    std::string dataFile(const std::string& relativePath) const;

private:
    std::string path_;
};

// "/" becomes the native separator.
std::string nativePath(std::string path);

// True for any file system object; links are followed.
bool exists(const std::string& path);
bool isFolder(const std::string& path);

// The bytes of a file; a file that cannot be read fails the test and reads as the empty text.
std::string readFile(const std::string& path);
// Writes exactly these bytes (no line end translation); missing folders above it are created.
void writeFile(const std::string& path, const std::string& bytes);
// The same for a file that may exist: a new one takes its place, since ext4 writes a file that was
// emptied to the disk when it is closed, which takes milliseconds.
void replaceFile(const std::string& path, const std::string& bytes);
// Creates a folder and the missing ones above it.
void createFolder(const std::string& path);
// Removes a file or a folder with all that is in it; nothing happens when there is none.
void removeAll(const std::string& path);
// The plain names of everything in a folder, sorted, in UTF-8.
std::vector<std::string> namesIn(const std::string& path);

}  // namespace rgen_test

#endif
