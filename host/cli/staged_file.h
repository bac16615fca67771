// A file that is first completed beside its place, under a temporary name, and then put there in one step.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "cli/cancel.h"
#include "cli/descriptor.h"
#include "cli/output_path.h"

namespace rovescio::cli {

// Hands bytes to a sink, piece by piece, and stops when the sink answers false.
using ByteSource = std::function<bool(const std::function<bool(std::string_view)>& sink)>;

// Writes all bytes to a descriptor. The number of the first error; 0 when all went well. So do the functions
// below.
int writeAll(int descriptor, const ByteSource& source);

class StagedFile {
  public:
    explicit StagedFile(OutputPath target);
    // Removes what has not reached its place.
    ~StagedFile();
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    // Writes the whole file beside its place; owner, group and permissions are those of the file there.
    int write(const ByteSource& source);
    // Puts it into its place. If it may have to be taken back, the file that was there is kept aside, where
    // the file system has links.
    int place(bool mayBeTakenBack);
    // Puts back what was there before; false when that cannot be done.
    bool takeBack();
    // Gives up what was there before.
    void forgetOld();

    [[nodiscard]] const OutputPath& target() const { return target_; }

  private:
    int create();
    int takeAttributes(int descriptor) const;

    OutputPath target_;
    std::string temporary_;
    std::string kept_;  // the file that was there before; empty for none
    std::unique_ptr<Descriptor> file_;
    std::unique_ptr<RemovedOnCancel> removed_;
    bool placed_ = false;
};

// Removes what processes of this program that were killed have left in a folder.
void removeLeftovers(const std::string& folder);

}  // namespace rovescio::cli
