// What the filesystem knows of its folder's configuration; the writer's only input.
#pragma once

#include <cstdint>
#include <string>

namespace nimbrel {

struct NBNimbrelFSSettings
{
    std::string cipherAlgorithm = "ssl/aes";
    std::int64_t cipherAlgorithmMajor = 3;
    std::int64_t cipherAlgorithmMinor = 0;
    bool areFilenamesEncrypted = false;
    std::string nameAlgorithm = "nameio/null";
    std::int64_t nameAlgorithmMajor = 1;
    std::int64_t nameAlgorithmMinor = 0;
    std::int64_t keySize = 256;    // bits
    std::int64_t blockSize = 4096; // bytes
    bool uniqueIV = false;
    bool chainedNameIV = false;
    bool externalIVChaining = false;
    std::int64_t blockMACBytes = 0;
    std::int64_t blockMACRandomBytes = 0;
    bool allowHoles = true;
    std::int64_t encodedKeyLength = 52; // bytes, as the file said
    std::int64_t saltLength = 20;       // bytes, as the file said
    std::int64_t kdfIterations = 5000;
    std::int64_t desiredKDFDuration = 500; // milliseconds; nothing acts on it
    std::string encodedKey;                // base64
    std::string salt;                      // base64
};

} // namespace nimbrel
