// The persistent data file of a report type. Concurrent and killed processes leave it complete,
// with the old values or with the new ones.
//
// The library deletes the file and writes a new one under its configured name. So rgen lets it
// write in a temporary data directory inside a folder "rgen.part-...", reads the result, and
// renames it in one step. Readers need no lock; a run that reads, merges and writes holds the lock
// "<file>.lock".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/file_lock.h"
#include "base/interruption.h"
#include "data/report_type.h"
#include "library/library_calls.h"

namespace cli {

class Console;

/// Prevents other rgen processes from changing the persistent data file.
class StoreLock {
public:
    /// Waits until the lock is free and notes that after a second. Throws a CommandError when
    /// locking is not possible or the wait is interrupted.
    StoreLock(const std::string& path, Console& console);

private:
    FileLock lock_;
};

/// New persistent data in a temporary folder next to its file. The destructor removes the folder.
class StagedStore {
public:
    /// Throws a CommandError when the folder cannot be created.
    StagedStore(const std::string& path, const repgen::Guid& guid, const std::string& guidText);

    /// Throws a repgen::Error.
    void write(const ValueSet& values);
    std::vector<Value> read(RgenStatus& status) const;

    /// What is wrong with the file; empty when it is well-formed.
    std::string damage() const;

    /// Replaces the persistent data file. Throws a CommandError; the old file is unchanged then.
    void deliver() const;

private:
    std::string inside(const std::string& name) const;

    std::string path_;
    TemporaryFolder stage_;
    repgen::Guid guid_;
    repgen::Generator generator_;
};

/// An earlier version of rgen renamed the old data to "<file>.kept" while the library wrote. If
/// such a run was killed, restores that file, with a note, unless the current file is well-formed.
/// The caller holds the lock. Throws a CommandError when the data cannot be restored.
void restoreKeptData(const std::string& path, Console& console);

/// The same for a caller without the lock; takes it if there is something to restore.
void recoverPersistentData(const DataDirectory& directory, const ReportType& type,
                           Console& console);

/// The same for commands that only read: data that cannot be restored is only noted.
void recoverForReading(const DataDirectory& directory, const ReportType& type, Console& console);

}  // namespace cli
