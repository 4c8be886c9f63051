// Any bytes as a plain name and as a stored one: nothing crashes, and what must hold does.
#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"
#include "crypto/StoredName.h"
#include "crypto/Utf8.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace nimbrel;

// The fuzzer takes an abort for a finding and keeps the input.
void require(bool holds, const char *property)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", property);
    std::abort();
}

// Any fixed key will do, so that a finding can be repeated: the blob isn't checked.
NBCryptor cryptorOf(std::int64_t keySize)
{
    constexpr std::string_view blob =
        "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA==";
    return NBCryptor::withPassphrase("fuzz", {.encodedKeyData = blob,
                                              .keySize = keySize,
                                              .blockSize = 32,
                                              .saltData = "AAAA",
                                              .kdfIterations = 1,
                                              .checkKey = false})
        .value();
}

void checkPlainName(const NBCryptor &cryptor, std::string_view name)
{
    const auto stored = cryptor.encodeString(name);
    require(stored.has_value(), "every name has a stored form");
    require(isCanonicalStoredName(*stored), "every stored form is canonical");
    require(stored->size() == (8 * (name.size() + 2) + 5) / 6, "the stored form has its length");
    const auto back = cryptor.decodeString(*stored);
    require(isUtf8(name) ? back == name : !back, "exactly UTF-8 names come back");
}

void checkStoredName(const NBCryptor &cryptor, std::string_view text)
{
    const auto name = cryptor.decodeString(text);
    if (!name)
        return;
    require(isUtf8(*name), "a decoded name is UTF-8");
    require((cryptor.encodeString(*name) == text) == isCanonicalStoredName(text),
            "exactly canonical texts are what the encoder writes");
}

// A stored form with the input's bytes behind a right code, and with its last character changed:
// far more of these decode than of plain noise.
void checkChangedName(const NBCryptor &cryptor, std::string_view name)
{
    std::string stored = cryptor.encodeString(name).value_or("");
    for (std::uint8_t value = 0; value < 64; ++value) {
        stored.back() = base64EncodedASCIIString({&value, 1}).front();
        checkStoredName(cryptor, stored);
    }
}

void checkCodings(ByteView bytes)
{
    require(dataWithBase64String(base64EncodedString(bytes)).size() == bytes.size(),
            "base64 comes back");
    const Bytes values = changeBase2(bytes, 8, 6, true);
    const Bytes back = changeBase2(values, 6, 8, false);
    require(textOf(back) == textOf(bytes), "regrouping comes back");
    require(dataWithBase64String(textOf(bytes)).size() <= bytes.size(),
            "decoding yields no more than it was given");
}

void checkRun(const NBCryptor &cryptor, ByteView bytes, std::uint64_t firstBlock)
{
    Bytes out(bytes.size());
    require(cryptor.encryptRun(bytes, firstBlock, out), "a run can be encrypted");
    require(cryptor.decryptRun(out, firstBlock, out), "a run can be decrypted");
    require(textOf(out) == textOf(bytes), "a run comes back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const std::array<NBCryptor, 3> cryptors = {cryptorOf(128), cryptorOf(192),
                                                      cryptorOf(256)};
    if (size == 0)
        return 0;
    const NBCryptor &cryptor = cryptors[data[0] % cryptors.size()];
    const ByteView bytes(data + 1, size - 1);
    checkPlainName(cryptor, textOf(bytes));
    checkStoredName(cryptor, textOf(bytes));
    checkChangedName(cryptor, textOf(bytes));
    checkCodings(bytes);
    checkRun(cryptor, bytes, data[0] < 128 ? data[0] : std::uint64_t{0} - data[0]);
    return 0;
}
