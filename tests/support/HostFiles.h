#pragma once

#include "support/ScratchFolder.h"

#include <string>

/// The files beside TSAL.config that a host needs, into a folder whose name ends with '/'.
inline void WriteHostFiles(const ScratchFolder& folder, const std::string& into) {
  folder.Write(into + "activities.xml", "<Activities/>");
  folder.Write(into + "instrument.xml", "");
}
