// A folder for unfinished files, next to the place where the finished ones will be.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace cli {

class FolderLock;

/// A new folder "rgen.part-..." that no other user may enter, so that nobody can plant links in it.
/// It is locked while the object exists. The constructor first removes folders that killed runs
/// left in the same place; those of running processes stay.
class PartFolder {
public:
    /// Makes the folder in `parent`. Throws std::system_error.
    explicit PartFolder(const std::string& parent);
    ~PartFolder();
    PartFolder(const PartFolder&) = delete;
    PartFolder& operator=(const PartFolder&) = delete;

    /// The UTF-8 path of a file in it.
    std::string file(const std::string& name) const;

    /// Removes the folder with everything in it; errors are ignored, a later run tries again.
    void remove();

private:
    std::string path_;
    std::unique_ptr<FolderLock> lock_;
};

}  // namespace cli
