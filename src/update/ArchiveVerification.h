#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "update/AppcastItem.h"

namespace orlet {

enum class Verdict { genuine, noKey, wrongLength, unsigned_, badSignature };

// Decodes a base64 Ed25519 public key; empty when it is not exactly one key.
std::vector<unsigned char> decodePublicKey(std::string_view base64);

// Checks a downloaded archive against its feed item before anything else looks at its bytes:
// first the exact length the feed announced, then the Ed25519 detached signature over the whole
// archive with the publisher's key.
Verdict verifyArchive(std::string_view archive, const AppcastItem& item,
                      const std::vector<unsigned char>& publicKey);

}  // namespace orlet
