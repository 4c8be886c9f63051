#include "crypto/StoredName.h"

#include "crypto/FileNameAlphabet.h"

#include <algorithm>

namespace nimbrel {

namespace {

constexpr std::size_t shortestStoredName = 3; // the check value alone

bool isAlphabetCharacter(char c) noexcept
{
    return fileNameAlphabet[fileNameValue(c)] == c;
}

} // namespace

bool isCanonicalStoredName(std::string_view stored) noexcept
{
    if (stored.size() < shortestStoredName ||
        !std::all_of(stored.begin(), stored.end(), isAlphabetCharacter))
        return false;
    const unsigned last = fileNameValue(stored.back());
    switch (stored.size() % 4) {
    case 0: // four characters fill three bytes
        return true;
    case 1: // the last character would belong to no byte
        return false;
    case 2: // two bits of the last character end one byte
        return last >> 2U == 0;
    default: // four bits of it end the second byte
        return last >> 4U == 0;
    }
}

} // namespace nimbrel
