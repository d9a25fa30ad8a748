#pragma once

#include <VeloraSystem/System.h>

#include <mutex>

namespace Velora::System::Children {

// The descriptors that no child of this process has: what is started does not get them, and a forked child closes them.

/// Held while descriptors are opened, closed and looked up; a fork waits for it.
std::mutex& Forking();

/// Keeps a descriptor from the children. Needs Forking(). @return whether there was room for one more.
bool Spare(int descriptor, const FileId& file = {});
/// The descriptor of a file that is kept from the children, or -1. Needs Forking().
int SparedOf(const FileId& file);
/// Closes the descriptors of files that were deleted, for which nobody can ask any more. Needs Forking().
void CloseDeleted();

}  // namespace Velora::System::Children
