#pragma once

#include "proving/Checkpoint.h"
#include "proving/Signers.h"
#include "proving/TimeStamp.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Velora::Ts {

/// A signature of a checkpoint.
struct Signature {
  std::string name;  ///< What messages call it: "signature 3".
  std::string kind;  ///< "note" or "ssh".
  std::string text;  ///< The line under the checkpoint (signed-note), or what `ssh-keygen -Y sign` wrote.
};

/// A time stamp of a checkpoint, or of a signature of it.
struct Stamp {
  std::string name;   ///< What messages call it: "time stamp 2".
  std::string token;  ///< As TokenIn() gives it.
};

/// What others say of one state of a store.
struct Evidence {
  Checkpoint checkpoint;
  std::vector<Signature> signatures;
  std::vector<Stamp> stamps;
};

/// What evidence shows.
struct Judgement {
  std::vector<std::string> signers;   ///< Who signed, in words.
  std::vector<std::string> times;     ///< When what is stamped existed, in words.
  std::vector<std::string> unknown;   ///< What does not count, and why.
  int signaturesLeft = 0;             ///< How many signatures were not judged, because no signers are named.
  int stampsLeft = 0;                 ///< How many time stamps were not judged, because no authorities are named.
  std::vector<std::string> findings;  ///< What is wrong.
};

/// How many signatures, and how many time stamps, a proof can have.
inline constexpr std::size_t mostOfEach = 64;

/// Judges evidence, in a time that is linear in what it has.
/// @param signers whose signatures count; without them, it is only checked that a signature is one.
/// @param authorities whose time stamps count; without them, it is only checked what a time stamp is of.
Judgement Judge(const Evidence& evidence, const Signers* signers, const Authorities* authorities);

/// The kinds of signatures.
inline constexpr const char* ofNote = "note";
inline constexpr const char* ofSsh = "ssh";

}  // namespace Velora::Ts
