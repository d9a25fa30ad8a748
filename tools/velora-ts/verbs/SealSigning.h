#pragma once

#include <string>

namespace Velora::Store {
class Reader;
class Writer;
}  // namespace Velora::Store

namespace Velora::Ts {

struct SealedTree;

// What others say of a seal: who signed it, and that it existed at a time.

/// What is made of the newest seal. Each text is empty for nothing.
struct Signing {
  std::string keyFile, signer, passphraseFile;
  std::string checkpointFile;  ///< To sign by ssh-keygen.
  std::string queryFile;       ///< For a time-stamping authority.
};

/// What is taken in. Each text is empty for nothing.
struct Taking {
  std::string signatureFile;  ///< What ssh-keygen made of a checkpoint.
  std::string answerFile;     ///< Of a time-stamping authority.
};

/// @throws UsageError when nobody who signs can have the name.
void ExpectName(const Signing& signing);

/// Signs the newest seal, unless this key has, and writes what is asked for. Asks for the passphrase of the key if it
/// is encrypted. Nobody who changes the store gets a signature for that: what is signed is the tree as this program
/// computed it, and what it did not compute, because it was sealed before, is compared with the records first: all of
/// it, but not what this key signed already.
/// @param store the state that was sealed, in which nothing changes.
/// @throws Error when the tree is not that of the records, or when there is no such key.
void SignNewest(const Signing& signing, const SealedTree& sealed, Store::Writer& writer, const Store::Reader& store);

/// Adds a signature or the answer of an authority to the seal that it is of.
/// @throws Error when it is of none.
void TakeIn(const Taking& taking, Store::Writer& writer, const Store::Reader& store);

}  // namespace Velora::Ts
