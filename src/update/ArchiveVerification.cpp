#include "update/ArchiveVerification.h"

#include <sodium.h>

namespace orlet {

std::vector<unsigned char> decodePublicKey(std::string_view base64) {
  if (sodium_init() < 0) return {};
  std::vector<unsigned char> key(crypto_sign_PUBLICKEYBYTES);
  std::size_t length = 0;
  const char* end = nullptr;
  if (sodium_base642bin(key.data(), key.size(), base64.data(), base64.size(), " \n", &length, &end,
                        sodium_base64_VARIANT_ORIGINAL) != 0 ||
      end != base64.data() + base64.size() || length != key.size())
    return {};
  return key;
}

Verdict verifyArchive(std::string_view archive, const AppcastItem& item,
                      const std::vector<unsigned char>& publicKey) {
  if (publicKey.size() != crypto_sign_PUBLICKEYBYTES || sodium_init() < 0) return Verdict::noKey;
  if (archive.size() != item.length) return Verdict::wrongLength;
  if (item.edSignature.size() != crypto_sign_BYTES) return Verdict::unsigned_;
  const auto* bytes = reinterpret_cast<const unsigned char*>(archive.data());
  if (crypto_sign_verify_detached(item.edSignature.data(), bytes, archive.size(),
                                  publicKey.data()) != 0)
    return Verdict::badSignature;
  return Verdict::genuine;
}

}  // namespace orlet
