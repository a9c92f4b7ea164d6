// A folder for files that are not finished, beside the place where they will be.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace cli {

class FolderLock;

/// A new folder "rgen.part-..." that nobody else may enter, so that no one can plant links in it.
/// It is locked while its owner lives: what killed runs left in the same place is removed first,
/// what belongs to a living one stays.
class OwnFolder {
public:
    /// Makes the folder in `parent`. Throws std::system_error.
    explicit OwnFolder(const std::string& parent);
    ~OwnFolder();
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;

    /// The UTF-8 path of a file in it.
    std::string file(const std::string& name) const;

    /// Removes the folder with everything in it; errors are ignored, a later run tries again.
    void remove();

private:
    std::string path_;
    std::unique_ptr<FolderLock> lock_;
};

}  // namespace cli
