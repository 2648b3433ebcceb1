#ifndef MDF_READER_BYTES_DIGEST_H_
#define MDF_READER_BYTES_DIGEST_H_

// The system's header relies on names of this one.
#include <md5.h>
#include <sys/types.h>

#include <string>
#include <string_view>

namespace mdf_reader {

/// The MD5 digest of bytes that come piece by piece (RFC 1321).
class Md5 {
 public:
  Md5();
  void add(std::string_view bytes);

  /// The 16 bytes of the digest. Nothing can be added after that.
  std::string digest();

 private:
  MD5_CTX context_{};
};

/// "4f2a..." for a digest.
std::string hexDigest(std::string_view digest);

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_DIGEST_H_
