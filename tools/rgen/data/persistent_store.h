// The persistent data file of a report type, as processes that run at once and processes that are
// killed leave it: whole, with the old values or with the new ones.
//
// The library removes the file and writes it anew under its configured name. So rgen lets it write
// in a data directory of its own, in a folder "rgen.part-...", reads what came of it, and gives it
// the file's name in one step. Readers need no lock for that; who reads, merges and writes holds
// the lock "<file>.lock".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/file_lock.h"
#include "base/interruption.h"
#include "data/report_type.h"
#include "library/generator.h"

namespace cli {

class Console;

/// Keeps other processes from changing the persistent data file.
class StoreLock {
public:
    /// Waits until the lock is free; a note says so after a second. Throws a CommandError when
    /// there can be no lock, and when the waiting is interrupted.
    StoreLock(const std::string& path, Console& console);

private:
    FileLock lock_;
};

/// What the library makes of values, in a folder beside the file that they are meant for. The
/// folder goes with it.
class StagedStore {
public:
    /// Throws a CommandError when there can be no folder.
    StagedStore(const std::string& path, const RgenGuid& guid, const std::string& guidText);

    RgenStatus write(const std::vector<Value>& values) const;
    std::vector<Value> read(RgenStatus& status) const;

    /// What is wrong with the file; empty when it is whole.
    std::string damage() const;

    /// Replaces the persistent data file. Throws a CommandError, and the old file stays then.
    void deliver() const;

private:
    std::string inside(const std::string& name) const;

    std::string path_;
    TemporaryFolder stage_;
    RgenGuid guid_;
    Generator generator_;
};

/// An earlier rgen kept the old data aside ("<file>.kept") while the library wrote. Of a run of it
/// that was killed the data comes back, with a note, unless the file is whole. The caller holds the
/// lock. Throws a CommandError when the data cannot come back.
void putKeptDataBack(const std::string& path, Console& console);

/// The same without a lock, which is taken when there is something to put back.
void recoverPersistentData(const DataDirectory& directory, const ReportType& type,
                           Console& console);

/// The same for those who only read: data that cannot come back is noted.
void recoverForReading(const DataDirectory& directory, const ReportType& type, Console& console);

}  // namespace cli
